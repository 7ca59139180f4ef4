// What a list tells of its file: encoding, classes, styles, and the engine's messages.
#include "caption_list.h"
#include "language_tag.h"
#include "subtitle_file.h"

namespace
{

const ZyrCaptions NO_LIST = {};

const ZyrCaptions &Get_List(const ZyrCaptions *pstCaptions)
{
    return pstCaptions == nullptr ? NO_LIST : *pstCaptions;
}

template <typename Element>
uint32_t Get_Count(const std::vector<Element> &astElements)
{
    return static_cast<uint32_t>(astElements.size());
}

void Tell_Encoding(const ZyrCaptions &stList, ZyrCaptionsFile &stFile)
{
    const bool bAnsi = std::string_view(stList.stRule.pszEncoding) == "ANSI";
    stFile.pszEncoding = stList.stRule.pszEncoding;
    stFile.pszCodePage = bAnsi ? stList.strCodePage.c_str() : nullptr;
    stFile.bGuessed = bAnsi && stList.bGuessed ? 1 : 0;
    stFile.bSingleByte = bAnsi && stList.bSingleByte ? 1 : 0;
    stFile.uiRule = stList.stRule.uiRule;
    stFile.uiUtf8Characters = stList.stRule.uiCharacters;
    stFile.uiNotUtf8 = stList.stRule.uiInvalid;
    stFile.uiScanned = stList.stRule.uiScanned;
    stFile.uiFirstNotUtf8 = stList.stRule.uiFirstInvalid;
    stFile.uiFirstUnreadable = stList.uiFirstUnreadable;
    stFile.ucFirstNotUtf8 = stList.ucFirstNotUtf8;
    stFile.ucFirstUnreadable = stList.ucFirstUnreadable;
    stFile.uiCodePages = Get_Count(stList.astCodePages);
}

void Tell_Header(const HeaderTexts &stHeader, ZyrCaptionsFile &stFile)
{
    stFile.pszTitle = stHeader.strTitle.c_str();
    stFile.pszOriginalScript = stHeader.strOriginalScript.c_str();
    stFile.pszScriptType = stHeader.strScriptType.c_str();
    stFile.uiDelay = stHeader.uiDelay;
    stFile.uiColor = stHeader.uiColor;
    stFile.uiFontSize = stHeader.uiFontSize;
    stFile.pszFont = stHeader.strFont.c_str();
}

} // namespace

int zyrCaptions_getFile(const ZyrCaptions *pstCaptions, ZyrCaptionsFile *pstFile)
{
    if (pstFile == nullptr) return ZYR_CAPTIONS_BAD_ARGUMENT;
    const ZyrCaptions &stList = Get_List(pstCaptions);
    *pstFile = {};
    pstFile->pszFile = stList.strFile.c_str();
    pstFile->uiFormat = stList.uiFormat;
    pstFile->pszFormat = Get_FormatName(stList.uiFormat);
    Tell_Encoding(stList, *pstFile);
    pstFile->uiCaptions = Get_Count(stList.astRecords);
    pstFile->uiWithText = stList.uiWithText;
    pstFile->uiBadCharacters = stList.uiBadCharacters;
    pstFile->uiClasses = Get_Count(stList.astClasses);
    pstFile->uiSsaStyles = Get_Count(stList.astSsaStyles);
    pstFile->uiLogLines = Get_Count(stList.astLog);
    pstFile->iLastEnd = stList.iLastEnd;
    Tell_Header(stList.stHeader, *pstFile);
    return ZYR_CAPTIONS_OK;
}

int zyrCaptions_getClass(const ZyrCaptions *pstCaptions, uint32_t uiClass, ZyrCaptionClass *pstClass)
{
    if (pstClass == nullptr) return ZYR_CAPTIONS_BAD_ARGUMENT;
    *pstClass = {};
    const ZyrCaptions &stList = Get_List(pstCaptions);
    if (uiClass >= stList.astClasses.size()) return ZYR_CAPTIONS_BAD_ARGUMENT;
    const LanguageClass &stClass = stList.astClasses[uiClass];
    *pstClass = {stClass.strName.c_str(),
                 Find_LanguageTag(stClass.strName),
                 stClass.uiOrder,
                 Get_Count(stClass.astrFolded),
                 stClass.uiCaptions,
                 stClass.iFirst,
                 stClass.iLast};
    return ZYR_CAPTIONS_OK;
}

const char *zyrCaptions_getFoldedName(const ZyrCaptions *pstCaptions, uint32_t uiClass, uint32_t uiName)
{
    const ZyrCaptions &stList = Get_List(pstCaptions);
    if (uiClass >= stList.astClasses.size()) return nullptr;
    const std::vector<std::string> &astrFolded = stList.astClasses[uiClass].astrFolded;
    return uiName < astrFolded.size() ? astrFolded[uiName].c_str() : nullptr;
}

int zyrCaptions_getCodePage(const ZyrCaptions *pstCaptions, uint32_t uiIndex, ZyrCaptionCodePage *pstCodePage)
{
    if (pstCodePage == nullptr) return ZYR_CAPTIONS_BAD_ARGUMENT;
    *pstCodePage = {};
    const ZyrCaptions &stList = Get_List(pstCaptions);
    if (uiIndex >= stList.astCodePages.size()) return ZYR_CAPTIONS_BAD_ARGUMENT;
    const CodePageGuess &stGuess = stList.astCodePages[uiIndex];
    *pstCodePage = {stGuess.strName.c_str(), stGuess.strPreview.c_str(),
                    stGuess.strName == stList.strCodePage ? 1U : 0U};
    return ZYR_CAPTIONS_OK;
}

int zyrCaptions_getSsaStyle(const ZyrCaptions *pstCaptions, uint32_t uiIndex, ZyrCaptionSsaStyle *pstStyle)
{
    if (pstStyle == nullptr) return ZYR_CAPTIONS_BAD_ARGUMENT;
    *pstStyle = {};
    const ZyrCaptions &stList = Get_List(pstCaptions);
    if (uiIndex >= stList.astSsaStyles.size()) return ZYR_CAPTIONS_BAD_ARGUMENT;
    const SsaStyle &stStyle = stList.astSsaStyles[uiIndex];
    const SSAStyleInfo &stNumbers = stStyle.stNumbers;
    *pstStyle = {stStyle.strName.c_str(),     stStyle.strFont.c_str(),
                 stNumbers.uiFontSize,        stNumbers.uiPrimaryColour,
                 stNumbers.uiSecondaryColour, stNumbers.uiTertiaryColour,
                 stNumbers.uiBackColour,      stNumbers.uiBold,
                 stNumbers.uiItalic,          stNumbers.uiBorderStyle,
                 stNumbers.uiOutline,         stNumbers.uiShadow,
                 stNumbers.uiAlignment,       stNumbers.uiMarginL,
                 stNumbers.uiMarginR,         stNumbers.uiMarginV,
                 stNumbers.uiAlphaLevel,      stNumbers.uiEncoding};
    return ZYR_CAPTIONS_OK;
}

int zyrCaptions_getLogLine(const ZyrCaptions *pstCaptions, uint32_t uiIndex, ZyrCaptionLogLine *pstLine)
{
    if (pstLine == nullptr) return ZYR_CAPTIONS_BAD_ARGUMENT;
    *pstLine = {};
    const ZyrCaptions &stList = Get_List(pstCaptions);
    if (uiIndex >= stList.astLog.size()) return ZYR_CAPTIONS_BAD_ARGUMENT;
    const LogRecord &stRecord = stList.astLog[uiIndex];
    const char *const pszLog = stList.strLog.data();
    *pstLine = {stRecord.iPriority, stRecord.uiTag == NO_TAG ? nullptr : pszLog + stRecord.uiTag,
                pszLog + stRecord.uiText, stRecord.uiCaption};
    return ZYR_CAPTIONS_OK;
}

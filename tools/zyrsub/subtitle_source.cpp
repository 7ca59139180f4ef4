#include "subtitle_source.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "code_page.h"
#include "file_bytes.h"
#include "time_text.h"
#include "zyr/zyr_host.h"
#include "zyr/zyr_subtitle.h"

// A private name exists only for the engine of this program, so that no file beside it can get in its way.
static constexpr const char *PRIVATE_BASE = "zyrhost:zyrsub";

struct EndingRow {
    const char *pszEnding; // in the engine's order
    CaptionFormat eFormat;
};
static constexpr EndingRow ENDINGS[] = {
    {".SMI", E_CAPTION_FORMAT_SAMI},      {".smi", E_CAPTION_FORMAT_SAMI},
    {".SAMI", E_CAPTION_FORMAT_SAMI},     {".sami", E_CAPTION_FORMAT_SAMI},
    {".SRT", E_CAPTION_FORMAT_SUBRIP},    {".srt", E_CAPTION_FORMAT_SUBRIP},
    {".SUB", E_CAPTION_FORMAT_SUBVIEWER}, {".sub", E_CAPTION_FORMAT_SUBVIEWER},
    {".SSA", E_CAPTION_FORMAT_SSA},       {".ssa", E_CAPTION_FORMAT_SSA},
};

static std::string Fold_Case(std::string strText, int (*pfFold)(int))
{
    for (char &cChar : strText)
        if (static_cast<uint8_t>(cChar) < 0x80) cChar = static_cast<char>(pfFold(cChar));
    return strText;
}

static std::string Get_Ending(const std::string &strPath)
{
    const size_t uiDot = strPath.rfind('.');
    return uiDot == std::string::npos ? "" : strPath.substr(uiDot);
}

static CaptionFormat Find_Format(const std::string &strEnding)
{
    for (const EndingRow &stRow : ENDINGS)
        if (strEnding == stRow.pszEnding) return stRow.eFormat;
    return E_CAPTION_FORMAT_NONE;
}

std::vector<std::string> List_NamesBeside(const std::string &strMovie)
{
    std::vector<std::string> astrNames;
    const std::string strBase = strMovie.substr(0, strMovie.rfind('.'));
    for (const EndingRow &stRow : ENDINGS) astrNames.push_back(strBase + stRow.pszEnding);
    return astrNames;
}

std::string Lower_Case(std::string strText)
{
    return Fold_Case(std::move(strText), std::tolower);
}

bool Is_SubtitleName(const std::string &strFile)
{
    return Find_Format(Lower_Case(Get_Ending(strFile))) != E_CAPTION_FORMAT_NONE;
}

std::string Show_ClassName(const std::string &strName)
{
    return strName.empty() ? "(unnamed)" : strName;
}

Outcome SubtitleSource::Open(const std::string &strMovie)
{
    Close();
    zyr_host_setLineEnds(m_stOptions.bRawLineEnds ? 0 : 1);
    const std::string strEnding = Lower_Case(Get_Ending(strMovie));
    const bool bSubtitle = Find_Format(strEnding) != E_CAPTION_FORMAT_NONE;
    Outcome stOpened = bSubtitle ? Open_File(strMovie, strEnding) : Open_Beside(strMovie);
    return stOpened.IsGood() ? Select_Classes() : stOpened;
}

void SubtitleSource::Close()
{
    zyrSubtitle_close();
    m_stDecoder.reset();
    m_eFormat = E_CAPTION_FORMAT_NONE;
}

Outcome SubtitleSource::Open_File(const std::string &strFile, const std::string &strEnding)
{
    m_strFile = strFile;
    const std::string strName = PRIVATE_BASE + strEnding;
    zyr_host_mapFile(strName.c_str(), strFile.c_str());
    Outcome stOpened = Open_Engine(std::string(PRIVATE_BASE) + ".movie");
    zyr_host_mapFile(strName.c_str(), nullptr);
    return stOpened;
}

// The engine takes the first of these names that opens; it is found here first, to say what was missing.
Outcome SubtitleSource::Open_Beside(const std::string &strMovie)
{
    const std::string strBase = strMovie.substr(0, strMovie.rfind('.'));
    for (const EndingRow &stRow : ENDINGS) {
        m_strFile = strBase + stRow.pszEnding;
        if (Read_Bytes(m_strFile, 3)) return Open_Engine(strMovie);
    }
    m_strFile.clear();
    return {E_EXIT_NOT_FOUND,
            "no readable subtitle beside it (" + strBase + " with .smi, .sami, .srt, .sub or .ssa)"};
}

Outcome SubtitleSource::Open_Engine(const std::string &strName)
{
    const std::optional<std::string> strHead = Read_Bytes(m_strFile, 3);
    if (!strHead) return {E_EXIT_NOT_FOUND, "not found or not readable"};
    if (strHead->empty()) return {E_EXIT_NOT_SUBTITLE, "the file is empty"};
    Choose_CodePage();
    if (zyrSubtitle_open(strName.c_str(), m_bSingleByte ? 1 : 0) != 0)
        return {E_EXIT_NOT_SUBTITLE, "not a subtitle that can be read as its name says (-v tells why)"};
    m_eFormat = Find_Format(Lower_Case(Get_Ending(m_strFile)));
    m_bMark =
        *strHead == "\xEF\xBB\xBF" || strHead->starts_with("\xFF\xFE") || strHead->starts_with("\xFE\xFF");
    m_bBigEndian = strHead->starts_with("\xFE\xFF");
    m_stDecoder.emplace(zyrSubtitle_getOutputTextCharacterSet(), m_strCodePage, m_bSingleByte);
    return {};
}

// How many bytes a character takes must be known before the engine opens the file; a guess tells that, too.
void SubtitleSource::Choose_CodePage()
{
    m_strCodePage = Widen_CodePage(m_stOptions.strCodePage);
    m_bSingleByte = m_stOptions.bSingleByte;
    if (Lower_Case(m_strCodePage) != AUTO_CODE_PAGE) return;
    const std::vector<std::string> astrGuesses = Guess_CodePages(Read_Bytes(m_strFile).value_or(""));
    m_strCodePage = astrGuesses.empty() ? SourceOptions().strCodePage : astrGuesses.front();
    m_bSingleByte = m_bSingleByte || Is_SingleByte(m_strCodePage);
}

std::string SubtitleSource::Get_Encoding() const
{
    switch (zyrSubtitle_getOutputTextCharacterSet()) {
    case E_OUTPUT_CHARSET_UTF16: return m_bBigEndian ? "UTF-16BE" : "UTF-16LE";
    case E_OUTPUT_CHARSET_UTF8: return "UTF-8";
    default: return "ANSI";
    }
}

uint32_t SubtitleSource::Count_Classes()
{
    uint32_t uiClasses = 0;
    return zyrSubtitle_getClassNums(&uiClasses) == 0 ? uiClasses : 0;
}

uint32_t SubtitleSource::Count_Streams()
{
    return pstQuibCaptionParserInfo == nullptr ? 0 : pstQuibCaptionParserInfo->uiStreamNums;
}

uint32_t SubtitleSource::Get_StreamClass(uint32_t uiStream)
{
    return uiStream < Count_Streams() ? pstQuibCaptionParserInfo->astStreamState[uiStream].uiClassIndex : 0;
}

std::string SubtitleSource::Decode_Name(const uint16_t *pusName, uint32_t uiUnits) const
{
    return m_stDecoder->Decode_Units({pusName, uiUnits});
}

std::string SubtitleSource::Get_ClassName(uint32_t uiClass) const
{
    if (uiClass >= Count_Classes()) return "";
    const CaptionClassInfo &stClass = pstQuibCaptionParserInfo->astClassInfo[uiClass];
    return Decode_Name(stClass.ausName, stClass.uiNameLength);
}

// Only the SAMI header counts the frames; the other formats tell by being read.
void SubtitleSource::Count_Frames(LanguageClass &stClass) const
{
    for (const Frame &stFrame : Read_All()) {
        stClass.iFirst = stClass.uiFrames == 0 ? stFrame.iStart : std::min(stClass.iFirst, stFrame.iStart);
        stClass.iLast = stClass.uiFrames == 0 ? stFrame.iStart : std::max(stClass.iLast, stFrame.iStart);
        ++stClass.uiFrames;
    }
}

std::vector<LanguageClass> SubtitleSource::List_Classes() const
{
    std::vector<LanguageClass> astClasses;
    for (uint32_t uiClass = 0; uiClass < Count_Classes(); ++uiClass) {
        const CaptionClassInfo &stInfo = pstQuibCaptionParserInfo->astClassInfo[uiClass];
        LanguageClass stClass;
        stClass.strName = Decode_Name(stInfo.ausName, stInfo.uiNameLength);
        for (uint32_t uiName = 0; uiName < stInfo.uiAltNameNums; ++uiName)
            stClass.astrFolded.push_back(
                Decode_Name(stInfo.ausAltName[uiName], stInfo.auiAltNameLength[uiName]));
        stClass.uiFrames = stInfo.uiFrameNums;
        stClass.iFirst = stInfo.iMinPTS;
        stClass.iLast = stInfo.iMaxPTS;
        astClasses.push_back(std::move(stClass));
    }
    if (m_eFormat != E_CAPTION_FORMAT_SAMI && !astClasses.empty()) {
        astClasses.front().uiFrames = 0;
        Count_Frames(astClasses.front());
    }
    return astClasses;
}

// A name beats an index, so that a class called "1" can be had; a folded name leads to the class that took
// it.
std::optional<uint32_t> SubtitleSource::Find_Class(const std::string &strWanted) const
{
    const std::string strUpper = Fold_Case(strWanted, std::toupper);
    const std::string strName = strUpper == "(UNNAMED)" ? "" : strUpper;
    for (uint32_t uiClass = 0; uiClass < Count_Classes(); ++uiClass) {
        const CaptionClassInfo &stInfo = pstQuibCaptionParserInfo->astClassInfo[uiClass];
        if (Get_ClassName(uiClass) == strName) return uiClass;
        for (uint32_t uiAlt = 0; uiAlt < stInfo.uiAltNameNums; ++uiAlt)
            if (Decode_Name(stInfo.ausAltName[uiAlt], stInfo.auiAltNameLength[uiAlt]) == strName)
                return uiClass;
    }
    const bool bIndex = strWanted.size() == 1 && strWanted[0] >= '0' && strWanted[0] <= '9';
    const auto uiIndex = static_cast<uint32_t>(bIndex ? strWanted[0] - '0' : 0);
    return bIndex && uiIndex < Count_Classes() ? std::optional(uiIndex) : std::nullopt;
}

Outcome SubtitleSource::Refuse_Class(const std::string &strWanted) const
{
    std::string strText = "no language class '" + strWanted + "'; there are:";
    for (uint32_t uiClass = 0; uiClass < Count_Classes(); ++uiClass)
        strText += (uiClass > 0 ? ", " : " ") + std::to_string(uiClass) + " " +
                   Show_ClassName(Get_ClassName(uiClass));
    return {E_EXIT_USAGE, strText};
}

Outcome SubtitleSource::Select_Classes()
{
    std::vector<uint32_t> auiClasses;
    for (const std::string &strWanted : m_stOptions.astrClasses) {
        const std::optional<uint32_t> uiClass = Find_Class(strWanted);
        if (!uiClass) return Refuse_Class(strWanted);
        auiClasses.push_back(*uiClass);
    }
    if (auiClasses.empty()) return {};
    if (zyrSubtitle_selectClass(static_cast<int32_t>(auiClasses.size()), auiClasses.data()) != 0)
        return {E_EXIT_SOME_FAILED, "the language classes could not be selected"};
    return {};
}

bool SubtitleSource::Seek(uint32_t uiMs) const
{
    return zyrSubtitle_seek(uiMs) == 0;
}

static FrameStyle Get_Style()
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    return {stInfo.uiFontSize, stInfo.usFontColor, stInfo.usOutlineColor, stInfo.uiHighlight,
            stInfo.uiDisplayMode};
}

// The joined texts come through the engine's lower call; its length counts the two closing zero bytes.
std::optional<std::span<const uint8_t>> SubtitleSource::Read_Block(bool bTogether, Frame &stFrame)
{
    uint32_t uiLines = 0;
    uint32_t uiBytes = 0;
    uint8_t *pucText = nullptr;
    if (bTogether) {
        if (QUIB_CAPTION_ParsingProcessEx() != 2) return std::nullopt;
        if (zyrSubtitleHandler_getFrameInfo(&stFrame.uiStream, &stFrame.iStart, &stFrame.iEnd, &uiLines,
                                            &uiBytes, &pucText) != 0)
            return std::nullopt;
        uiBytes = uiBytes < 2 ? 0 : uiBytes - 2;
        stFrame.uiStream = ALL_STREAMS;
    } else if (zyrSubtitle_getFrame(&stFrame.uiStream, &stFrame.iStart, &stFrame.iEnd, &uiLines, &uiBytes,
                                    &pucText) != 0) {
        return std::nullopt;
    }
    return std::span<const uint8_t>(pucText, uiBytes);
}

std::optional<Frame> SubtitleSource::Read(bool bTogether) const
{
    Frame stFrame;
    const std::optional<std::span<const uint8_t>> aucText = Read_Block(bTogether, stFrame);
    if (!aucText) return std::nullopt;
    stFrame.uiClass = Get_StreamClass(stFrame.uiStream);
    stFrame.astrLines = Split_Lines(m_stDecoder->Decode(*aucText));
    stFrame.stStyle = Get_Style();
    return stFrame;
}

std::vector<uint8_t> SubtitleSource::Read_HighText() const
{
    Frame stFrame;
    if (!Seek(0)) return {};
    while (const std::optional<std::span<const uint8_t>> aucText = Read_Block(false, stFrame))
        if (std::any_of(aucText->begin(), aucText->end(), [](uint8_t ucByte) { return ucByte >= 0x80; }))
            return {aucText->begin(), aucText->end()};
    return {};
}

std::vector<Frame> SubtitleSource::Read_All() const
{
    std::vector<Frame> astFrames;
    if (!Seek(0)) return astFrames;
    while (std::optional<Frame> stFrame = Read(false)) astFrames.push_back(std::move(*stFrame));
    return astFrames;
}

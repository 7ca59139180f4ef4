// Loads: what a program asks for becomes a list.
#include <algorithm>
#include <climits>
#include <memory>
#include <new>

#include "caption_list.h"
#include "code_page.h"
#include "engine_reading.h"
#include "source_place.h"
#include "subtitle_file.h"
#include "text_decode.h"

namespace
{

constexpr uint32_t KNOWN_FLAGS =
    ZYR_CAPTIONS_BOX_LINE_ENDS | ZYR_CAPTIONS_SINGLE_BYTE | ZYR_CAPTIONS_TOGETHER;

struct Load {
    ZyrCaptions &stList;
    const ZyrCaptionsOptions &stOptions;
    std::string strBytes = {};
    std::vector<std::string> astrGuesses = {};
};

bool Is_Ansi(const ZyrCaptions &stList)
{
    return std::string_view(stList.stRule.pszEncoding) == "ANSI";
}

// How many bytes a character takes must be known before the engine opens the file; a guess tells that, too.
LoadResult Choose_CodePage(Load &stLoad)
{
    ZyrCaptions &stList = stLoad.stList;
    const char *const pszAsked = stLoad.stOptions.pszCodePage;
    if (Is_Ansi(stList)) stLoad.astrGuesses = Guess_CodePages(stLoad.strBytes);
    stList.bGuessed = pszAsked == nullptr;
    if (pszAsked != nullptr)
        stList.strCodePage = Widen_CodePage(pszAsked);
    else
        stList.strCodePage = stLoad.astrGuesses.empty() ? USUAL_CODE_PAGE : stLoad.astrGuesses.front();
    const CodePageReader stReader(stList.strCodePage);
    if (!stReader.Is_Known())
        return {ZYR_CAPTIONS_NO_CODE_PAGE,
                "there is no code page '" + stList.strCodePage + "' ('iconv -l' lists them)"};
    stList.bSingleByte =
        (stLoad.stOptions.uiFlags & ZYR_CAPTIONS_SINGLE_BYTE) != 0 || stReader.Is_SingleByte();
    return {};
}

bool Is_Surrogate(uint32_t uiUnit, uint32_t uiKind)
{
    return (uiUnit & 0xFC00U) == uiKind;
}

// The first half of a character that stands alone, or the last byte of an odd number.
size_t Find_BadUnit(std::string_view strBytes, bool bBigEndian)
{
    const auto pfUnit = [&](size_t uiAt) -> uint32_t {
        if (uiAt + 1 >= strBytes.size()) return 0;
        const auto ucFirst = static_cast<uint8_t>(strBytes[uiAt]);
        const auto ucSecond = static_cast<uint8_t>(strBytes[uiAt + 1]);
        return bBigEndian ? static_cast<uint32_t>(ucFirst << 8 | ucSecond)
                          : static_cast<uint32_t>(ucSecond << 8 | ucFirst);
    };
    size_t uiAt = 0;
    for (; uiAt + 1 < strBytes.size(); uiAt += 2) {
        if (Is_Surrogate(pfUnit(uiAt), 0xDC00)) return uiAt;
        if (!Is_Surrogate(pfUnit(uiAt), 0xD800)) continue;
        if (!Is_Surrogate(pfUnit(uiAt + 2), 0xDC00)) return uiAt;
        uiAt += 2;
    }
    return uiAt < strBytes.size() ? uiAt : ZYR_CAPTIONS_NOWHERE;
}

// A code page is tried on the whole file only where its captions say that there is something to find: reading all of
// it once more would double the cost of a load.
size_t Find_Unreadable(const ZyrCaptions &stList, const std::string &strBytes)
{
    const std::string_view strEncoding = stList.stRule.pszEncoding;
    const auto pfBad = [](const CaptionRecord &stRecord) { return stRecord.usBad > 0; };
    if (strEncoding == "ANSI")
        return std::any_of(stList.astRecords.begin(), stList.astRecords.end(), pfBad)
                   ? Find_UnreadableByte(strBytes, stList.strCodePage)
                   : ZYR_CAPTIONS_NOWHERE;
    if (strEncoding != "UTF-8") return Find_BadUnit(strBytes, strEncoding == "UTF-16BE");
    const size_t uiValid = Count_ValidUtf8(strBytes);
    return uiValid == strBytes.size() ? ZYR_CAPTIONS_NOWHERE : uiValid;
}

// The first line of a block that needs a code page, read in one.
std::string Read_Preview(const ZyrCaptions &stList, const std::string &strBlock,
                         const std::string &strCodePage)
{
    const CodePageReader stReader(strCodePage);
    const EngineText stText(E_OUTPUT_CHARSET_ANSI, strCodePage,
                            (stList.bSingleByte && strCodePage == stList.strCodePage) ||
                                stReader.Is_SingleByte());
    std::string strUtf8;
    stText.Append_Block({reinterpret_cast<const uint8_t *>(strBlock.data()), strBlock.size()}, strUtf8);
    for (size_t uiStart = 0; uiStart < strUtf8.size();) {
        const size_t uiEnd = std::min(strUtf8.find('\n', uiStart), strUtf8.size());
        std::string strLine = strUtf8.substr(uiStart, uiEnd - uiStart);
        if (std::any_of(strLine.begin(), strLine.end(), Is_High)) return strLine;
        uiStart = uiEnd + 1;
    }
    return "";
}

// The code page in use is one of them even if nothing speaks for it.
void Keep_CodePages(Load &stLoad, const std::string &strBlock)
{
    ZyrCaptions &stList = stLoad.stList;
    std::vector<std::string> &astrNames = stLoad.astrGuesses;
    if (!Is_Ansi(stList) || Count_Ascii(stLoad.strBytes) == stLoad.strBytes.size()) return;
    if (std::find(astrNames.begin(), astrNames.end(), stList.strCodePage) == astrNames.end())
        astrNames.push_back(stList.strCodePage);
    for (const std::string &strName : astrNames)
        stList.astCodePages.push_back({strName, Read_Preview(stList, strBlock, strName)});
}

uint8_t Get_Byte(const std::string &strBytes, size_t uiAt)
{
    return uiAt < strBytes.size() ? static_cast<uint8_t>(strBytes[uiAt]) : uint8_t{0};
}

LoadResult Load_Bytes(Load &stLoad)
{
    ZyrCaptions &stList = stLoad.stList;
    if (stLoad.strBytes.empty()) return {ZYR_CAPTIONS_EMPTY, "the file is empty"};
    if (stLoad.strBytes.size() > INT32_MAX)
        return {ZYR_CAPTIONS_TOO_LARGE, "larger than 2 GiB, which no subtitle is"};
    stList.bTogether = (stLoad.stOptions.uiFlags & ZYR_CAPTIONS_TOGETHER) != 0;
    stList.stRule = Find_EncodingRule(stLoad.strBytes);
    LoadResult stResult = Choose_CodePage(stLoad);
    if (!stResult.Is_Good()) return stResult;
    std::string strHighBlock;
    stResult = Read_WithEngine(stList, stLoad.strBytes, stLoad.stOptions, strHighBlock);
    if (!stResult.Is_Good()) return stResult;
    if ((stLoad.stOptions.uiFlags & ZYR_CAPTIONS_BOX_LINE_ENDS) == 0)
        Place_InFile(stList.astRecords, stLoad.strBytes);
    stList.uiFirstUnreadable = Find_Unreadable(stList, stLoad.strBytes);
    stList.ucFirstUnreadable = Get_Byte(stLoad.strBytes, stList.uiFirstUnreadable);
    stList.ucFirstNotUtf8 = Get_Byte(stLoad.strBytes, stList.stRule.uiFirstInvalid);
    Keep_CodePages(stLoad, strHighBlock);
    return {};
}

LoadResult Load_Path(Load &stLoad, const char *pszPath)
{
    stLoad.stList.strFile = pszPath == nullptr ? "" : pszPath;
    if (stLoad.stList.strFile.empty()) return {ZYR_CAPTIONS_BAD_ARGUMENT, "no file was named"};
    LoadResult stRead = Read_Subtitle(stLoad.stList.strFile, stLoad.strBytes);
    if (!stRead.Is_Good()) return stRead;
    stLoad.stList.uiFormat = Find_FormatByName(stLoad.stList.strFile);
    return Load_Bytes(stLoad);
}

LoadResult Load_Memory(Load &stLoad, const void *pvData, size_t uiBytes, const char *pszName)
{
    ZyrCaptions &stList = stLoad.stList;
    if (pszName != nullptr) stList.strFile = pszName;
    if (pvData == nullptr) return {ZYR_CAPTIONS_BAD_ARGUMENT, "no data was given"};
    stLoad.strBytes.assign(static_cast<const char *>(pvData), uiBytes);
    stList.uiFormat = Find_FormatByName(stList.strFile);
    if (stList.uiFormat == ZYR_CAPTIONS_UNKNOWN) stList.uiFormat = Find_FormatByText(stLoad.strBytes);
    if (stList.uiFormat == ZYR_CAPTIONS_UNKNOWN && uiBytes > 0)
        return {ZYR_CAPTIONS_NO_FORMAT, "neither its name nor its text says SAMI, SubRip, SubViewer or SSA"};
    return Load_Bytes(stLoad);
}

bool Is_Usable(const ZyrCaptionsOptions &stOptions)
{
    if ((stOptions.uiFlags & ~KNOWN_FLAGS) != 0) return false;
    if (stOptions.uiClasses > 0 && stOptions.ppszClasses == nullptr) return false;
    const auto pfMissing = [](const char *pszName) { return pszName == nullptr; };
    return std::none_of(stOptions.ppszClasses, stOptions.ppszClasses + stOptions.uiClasses, pfMissing);
}

// No exception passes the border: all that a load can throw is that memory ran out.
template <typename LoadStep>
ZyrCaptions *Run_Load(const ZyrCaptionsOptions *pstOptions, const LoadStep &pfLoad)
{
    static const ZyrCaptionsOptions NO_OPTIONS = {};
    std::unique_ptr<ZyrCaptions> pstList(new (std::nothrow) ZyrCaptions);
    if (!pstList) return nullptr;
    try {
        Load stLoad{*pstList, pstOptions == nullptr ? NO_OPTIONS : *pstOptions};
        LoadResult stResult{ZYR_CAPTIONS_BAD_ARGUMENT, "an option has no meaning"};
        if (Is_Usable(stLoad.stOptions)) stResult = pfLoad(stLoad);
        if (!stResult.Is_Good()) {
            pstList->astRecords.clear();
            for (LogRecord &stLine : pstList->astLog) stLine.uiCaption = 0;
            Fail_Load(*pstList, stResult.iError, stResult.strSentence);
        }
        Finish_List(*pstList);
        return pstList.release();
    } catch (...) {
        return nullptr;
    }
}

} // namespace

ZyrCaptions *zyrCaptions_load(const char *pszPath, const ZyrCaptionsOptions *pstOptions)
{
    return Run_Load(pstOptions, [&](Load &stLoad) { return Load_Path(stLoad, pszPath); });
}

ZyrCaptions *zyrCaptions_loadMemory(const void *pvData, size_t uiBytes, const char *pszName,
                                    const ZyrCaptionsOptions *pstOptions)
{
    return Run_Load(pstOptions, [&](Load &stLoad) { return Load_Memory(stLoad, pvData, uiBytes, pszName); });
}

void zyrCaptions_free(ZyrCaptions *pstCaptions)
{
    delete pstCaptions;
}

#include "engine_reading.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <new>
#include <optional>
#include <span>

#include "text_decode.h"
#include "zyr/zyr_host.h"
#include "zyr/zyr_subtitle.h"

namespace
{

// A private name exists only in this process, so that no file can get in its way.
const std::string PRIVATE_BASE = "zyrhost:captions";

// The state that a load borrows; all of it is given back, however the load ends.
class EngineLoan
{
public:
    EngineLoan(ZyrCaptions &stList, const std::string &strBytes, bool bBoxLineEnds);
    ~EngineLoan();
    EngineLoan(const EngineLoan &) = delete;
    EngineLoan &operator=(const EngineLoan &) = delete;

    bool Has_NoMemory() const { return m_bNoMemory; }

private:
    static void Take_Message(int iPriority, const char *pszTag, const char *pszText, void *pvLoan) noexcept;
    void Keep_Message(int iPriority, const char *pszTag, const char *pszText);

    ZyrCaptions &m_stList;
    std::string m_strName;
    void *m_pvContext = nullptr; // filled in beside the sink, and so before it
    ZyrHostLogSink m_pfSink;
    int m_iLineEnds;
    bool m_bNoMemory = false;
};

EngineLoan::EngineLoan(ZyrCaptions &stList, const std::string &strBytes, bool bBoxLineEnds)
    : m_stList(stList), m_strName(PRIVATE_BASE + Get_FormatEnding(stList.uiFormat)),
      m_pfSink(zyr_host_getLogSink(&m_pvContext)), m_iLineEnds(zyr_host_getLineEnds())
{
    zyr_host_setLineEnds(bBoxLineEnds ? 0 : 1);
    zyr_host_setLogSink(Take_Message, this);
    m_bNoMemory =
        zyr_host_mapMemory(m_strName.c_str(), strBytes.data(), static_cast<uint32_t>(strBytes.size())) != 0;
}

EngineLoan::~EngineLoan()
{
    zyrSubtitle_close();
    zyr_host_mapMemory(m_strName.c_str(), nullptr, 0);
    zyr_host_setLogSink(m_pfSink, m_pvContext);
    zyr_host_setLineEnds(m_iLineEnds);
}

// The engine calls this, and no exception may pass it.
void EngineLoan::Take_Message(int iPriority, const char *pszTag, const char *pszText, void *pvLoan) noexcept
{
    auto *const pstLoan = static_cast<EngineLoan *>(pvLoan);
    try {
        pstLoan->Keep_Message(iPriority, pszTag, pszText);
    } catch (const std::bad_alloc &) {
        pstLoan->m_bNoMemory = true;
    }
}

void EngineLoan::Keep_Message(int iPriority, const char *pszTag, const char *pszText)
{
    LogRecord stRecord{iPriority, static_cast<uint32_t>(m_stList.astRecords.size()), NO_TAG, 0};
    const auto pfStore = [&](const std::string &strText) {
        const size_t uiAt = m_stList.strLog.size();
        m_stList.strLog.append(strText.c_str(), strText.size() + 1);
        return uiAt;
    };
    if (pszTag != nullptr) stRecord.uiTag = pfStore(pszTag);
    std::string strText = pszText;
    const size_t uiName = strText.find(m_strName);
    if (uiName != std::string::npos) strText.replace(uiName, m_strName.size(), m_stList.strFile);
    stRecord.uiText = pfStore(strText);
    m_stList.astLog.push_back(stRecord);
}

// Fixed arrays of names are padded with zeros.
template <size_t uiSize>
std::string Read_Padded(const EngineText &stText, const uint16_t (&ausText)[uiSize])
{
    return stText.Read_Units({ausText, std::find(ausText, ausText + uiSize, uint16_t{0})});
}

// A header text begins with the blank behind its colon.
std::string Read_HeaderText(const EngineText &stText, const uint16_t *pusText, uint32_t uiUnits)
{
    if (pusText == nullptr) return "";
    const std::string strText = stText.Read_Units({pusText, uiUnits});
    const size_t uiFirst = strText.find_first_not_of(" \t");
    return uiFirst == std::string::npos ? "" : strText.substr(uiFirst);
}

// What the file is: read once, behind its header.
void Read_Header(ZyrCaptions &stList, const EngineText &stText)
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    HeaderTexts &stHeader = stList.stHeader;
    stHeader.strTitle = Read_HeaderText(stText, stInfo.pusSSATitle, stInfo.uiSSATitleLength);
    stHeader.strOriginalScript =
        Read_HeaderText(stText, stInfo.pusSSAOriginalScript, stInfo.uiSSAOriginalScriptLength);
    stHeader.strScriptType = Read_HeaderText(stText, stInfo.pusSSAScriptType, stInfo.uiSSAScriptTypeLength);
    for (const SSAStyleNode *pstNode = stInfo.pstSSAStyleList; pstNode != nullptr; pstNode = pstNode->pstNext)
        stList.astSsaStyles.push_back({Read_Padded(stText, pstNode->stStyle.ausStyleName),
                                       Read_Padded(stText, pstNode->stStyle.ausFontName), pstNode->stStyle});
    const SubViewerHeaderInfo &stViewer = stInfo.stSubViewerInfo;
    const uint32_t uiFont = std::min<uint32_t>(stViewer.uiFontNameLength, ZYR_SUBVIEWER_FONT_UNITS);
    if (stList.uiFormat != ZYR_CAPTIONS_SUBVIEWER) return;
    stHeader.strFont = stText.Read_Units({stViewer.ausFontName, uiFont});
    stHeader.uiDelay = stViewer.uiDelay;
    stHeader.uiColor = stViewer.uiColf;
    stHeader.uiFontSize = stViewer.uiSize;
}

void Read_Classes(ZyrCaptions &stList, const EngineText &stText)
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    for (uint32_t uiClass = 0; uiClass < stInfo.uiClassNums; ++uiClass) {
        const CaptionClassInfo &stEngine = stInfo.astClassInfo[uiClass];
        LanguageClass stClass;
        stClass.strName = stText.Read_Units({stEngine.ausName, stEngine.uiNameLength});
        for (uint32_t uiName = 0; uiName < stEngine.uiAltNameNums; ++uiName)
            stClass.astrFolded.push_back(
                stText.Read_Units({stEngine.ausAltName[uiName], stEngine.auiAltNameLength[uiName]}));
        stList.astClasses.push_back(std::move(stClass));
    }
}

std::string Raise_Case(std::string strText)
{
    for (char &cChar : strText)
        if (cChar >= 'a' && cChar <= 'z') cChar = static_cast<char>(cChar & ~0x20);
    return strText;
}

// A name beats an index, so that a class called "1" can be had; a folded name leads to the class that took it.
std::optional<uint32_t> Find_Class(const ZyrCaptions &stList, const std::string &strWanted)
{
    const std::string strUpper = Raise_Case(strWanted);
    const std::string strName = strUpper == "(UNNAMED)" ? "" : strUpper;
    for (uint32_t uiClass = 0; uiClass < stList.astClasses.size(); ++uiClass) {
        const LanguageClass &stClass = stList.astClasses[uiClass];
        const std::vector<std::string> &astrFolded = stClass.astrFolded;
        if (stClass.strName == strName ||
            std::find(astrFolded.begin(), astrFolded.end(), strName) != astrFolded.end())
            return uiClass;
    }
    const bool bIndex = strWanted.size() == 1 && strWanted[0] >= '0' && strWanted[0] <= '9';
    const auto uiIndex = static_cast<uint32_t>(bIndex ? strWanted[0] - '0' : 0);
    return bIndex && uiIndex < stList.astClasses.size() ? std::optional(uiIndex) : std::nullopt;
}

LoadResult Refuse_Class(const ZyrCaptions &stList, const std::string &strWanted)
{
    std::string strText = "no language class '" + strWanted + "'; there are:";
    for (size_t uiClass = 0; uiClass < stList.astClasses.size(); ++uiClass)
        strText += (uiClass > 0 ? ", " : " ") + std::to_string(uiClass) + " " +
                   Show_ClassName(stList.astClasses[uiClass].strName);
    return {ZYR_CAPTIONS_NO_CLASS, strText};
}

// Every class, or those asked for, each once.
LoadResult Choose_Classes(ZyrCaptions &stList, const ZyrCaptionsOptions &stOptions)
{
    for (uint32_t uiName = 0; uiName < stOptions.uiClasses; ++uiName) {
        const std::string strWanted = stOptions.ppszClasses[uiName];
        const std::optional<uint32_t> uiClass = Find_Class(stList, strWanted);
        if (!uiClass) return Refuse_Class(stList, strWanted);
        if (std::find(stList.auiOrder.begin(), stList.auiOrder.end(), *uiClass) == stList.auiOrder.end())
            stList.auiOrder.push_back(*uiClass);
    }
    for (uint32_t uiClass = 0; stOptions.uiClasses == 0 && uiClass < stList.astClasses.size(); ++uiClass)
        stList.auiOrder.push_back(uiClass);
    return {};
}

using StyleMap = std::map<std::string, uint32_t, std::less<>>;

// What one reading keeps while it goes on.
struct Reading {
    ZyrCaptions &stList;
    const EngineText &stText;
    std::string &strHighBlock; // the first output block with a byte from 0x80 on
    StyleMap stStyles = {};
    std::map<const SSAStyleInfo *, uint32_t> stSsaStyles = {};
    uint32_t uiFirstOrder = 0; // of the classes that are being read
};

ZyrCaptionStyle Get_Style(const Reading &stReading)
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    ZyrCaptionStyle stStyle = {};
    stStyle.uiFontSize = stInfo.uiFontSize;
    stStyle.uiDisplayMode = stInfo.uiDisplayMode;
    stStyle.uiHighlight = stInfo.uiHighlight;
    stStyle.usColor = stInfo.usFontColor;
    stStyle.usOutlineColor = stInfo.usOutlineColor;
    stStyle.uiSsaStyle = ZYR_CAPTIONS_NONE;
    if (stReading.stList.uiFormat != ZYR_CAPTIONS_SSA) return stStyle;
    const SSAFrameInfo &stFrame = stInfo.stSSAFrameInfo;
    const auto itStyle = stReading.stSsaStyles.find(stFrame.pstStyle);
    if (itStyle != stReading.stSsaStyles.end()) stStyle.uiSsaStyle = itStyle->second;
    stStyle.uiMarked = stFrame.uiMarked;
    stStyle.uiMarginLeft = stFrame.uiMarginL;
    stStyle.uiMarginRight = stFrame.uiMarginR;
    stStyle.uiMarginVertical = stFrame.uiMarginV;
    stStyle.uiEffect = stFrame.uiEffect;
    stStyle.uiEffectTop = stFrame.uiEffectY1;
    stStyle.uiEffectBottom = stFrame.uiEffectY2;
    stStyle.uiEffectDelay = stFrame.uiEffectDelay;
    return stStyle;
}

// Captions share the styles that are equal, and most have that of the one before.
uint32_t Keep_Style(Reading &stReading)
{
    std::vector<ZyrCaptionStyle> &astStyles = stReading.stList.astStyles;
    const std::vector<CaptionRecord> &astRecords = stReading.stList.astRecords;
    const ZyrCaptionStyle stStyle = Get_Style(stReading);
    const std::string_view strKey(reinterpret_cast<const char *>(&stStyle), sizeof stStyle);
    if (!astRecords.empty() &&
        std::memcmp(&astStyles[astRecords.back().uiStyle], &stStyle, sizeof stStyle) == 0)
        return astRecords.back().uiStyle;
    const auto itKnown = stReading.stStyles.find(strKey);
    if (itKnown != stReading.stStyles.end()) return itKnown->second;
    const auto uiStyle = static_cast<uint32_t>(astStyles.size());
    stReading.stStyles.emplace(strKey, uiStyle);
    astStyles.push_back(stStyle);
    return uiStyle;
}

// A frame as the engine gives it.
struct Block {
    uint32_t uiStream = 0;
    int32_t iStart = 0; // ms
    int32_t iEnd = 0;   // ms
    uint32_t uiLines = 0;
    std::span<const uint8_t> aucText;
};

// The joined texts come through the engine's lower call; its length counts the two closing zero bytes.
bool Read_Block(bool bTogether, Block &stBlock)
{
    uint32_t uiBytes = 0;
    uint8_t *pucText = nullptr;
    if (!bTogether) {
        if (zyrSubtitle_getFrame(&stBlock.uiStream, &stBlock.iStart, &stBlock.iEnd, &stBlock.uiLines,
                                 &uiBytes, &pucText) != 0)
            return false;
    } else {
        if (QUIB_CAPTION_ParsingProcessEx() != 2 ||
            zyrSubtitleHandler_getFrameInfo(&stBlock.uiStream, &stBlock.iStart, &stBlock.iEnd,
                                            &stBlock.uiLines, &uiBytes, &pucText) != 0)
            return false;
        uiBytes = uiBytes < 2 ? 0 : uiBytes - 2;
        stBlock.uiStream = 0;
    }
    stBlock.aucText = {pucText, uiBytes};
    return true;
}

bool Is_AnyHigh(std::span<const uint8_t> aucText)
{
    return std::any_of(aucText.begin(), aucText.end(), [](uint8_t ucByte) { return ucByte >= 0x80; });
}

void Add_Caption(Reading &stReading, const Block &stBlock)
{
    ZyrCaptions &stList = stReading.stList;
    if (stReading.strHighBlock.empty() && Is_AnyHigh(stBlock.aucText))
        stReading.strHighBlock.assign(reinterpret_cast<const char *>(stBlock.aucText.data()),
                                      stBlock.aucText.size());
    CaptionRecord stRecord{};
    stRecord.iStart = stBlock.iStart;
    stRecord.iEnd = stBlock.iEnd;
    stRecord.iShownUntil = stBlock.iEnd;
    stRecord.ucOrder = static_cast<uint8_t>(stReading.uiFirstOrder + stBlock.uiStream);
    stRecord.ucLines = static_cast<uint8_t>(stBlock.uiLines);
    const size_t uiText = stList.strText.size();
    if (uiText > UINT32_MAX) throw std::bad_alloc();
    stRecord.uiText = static_cast<uint32_t>(uiText);
    stRecord.usBad = static_cast<uint16_t>(stReading.stText.Append_Block(stBlock.aucText, stList.strText));
    stRecord.usTextBytes = static_cast<uint16_t>(stList.strText.size() - uiText);
    stList.strText += '\0';
    stRecord.uiStyle = Keep_Style(stReading);
    stRecord.uiSource =
        static_cast<uint32_t>(pstQuibCaptionParserInfo->astStreamState[stBlock.uiStream].llCurrFilePos);
    stList.astRecords.push_back(stRecord);
}

// Only the SAMI header knows the captions beforehand.
bool Is_AnyDue(const ZyrCaptions &stList)
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    for (uint32_t uiStream = 0; stList.uiFormat == ZYR_CAPTIONS_SAMI && uiStream < stInfo.uiStreamNums;
         ++uiStream)
        if (CAPTIONPARS_SAMI_GetNextFramePTS(stInfo.astStreamState[uiStream].uiClassIndex) >= 0) return true;
    return false;
}

// The engine says the same of the end and of a caption that it cannot read, such as one of a class that its SYNC does
// not have, or the file's last one when times do not follow the file: then others still come.
void Read_Captions(Reading &stReading)
{
    static constexpr uint32_t FAILED_MOST = 100; // each may cost a look through the rest of the file
    Block stBlock;
    for (uint32_t uiFailed = 0; uiFailed <= FAILED_MOST; ++uiFailed) {
        while (Read_Block(stReading.stList.bTogether, stBlock)) Add_Caption(stReading, stBlock);
        if (!Is_AnyDue(stReading.stList)) return;
    }
}

// The engine reads five classes side by side; what more there are comes after them, and is put in its place by its
// times, as if it had been read with the others. Neither row changes its own order.
void Merge_Rows(ZyrCaptions &stList, size_t uiSecond)
{
    std::vector<CaptionRecord> astMerged;
    std::vector<uint32_t> auiNewPlace(stList.astRecords.size() + 1);
    size_t uiA = 0;
    size_t uiB = uiSecond;
    while (astMerged.size() < stList.astRecords.size()) {
        const bool bFirst =
            uiB == stList.astRecords.size() ||
            (uiA < uiSecond && stList.astRecords[uiA].iStart <= stList.astRecords[uiB].iStart);
        const size_t uiTaken = bFirst ? uiA++ : uiB++;
        auiNewPlace[uiTaken] = static_cast<uint32_t>(astMerged.size());
        astMerged.push_back(stList.astRecords[uiTaken]);
    }
    auiNewPlace.back() = static_cast<uint32_t>(astMerged.size());
    stList.astRecords = std::move(astMerged);
    for (LogRecord &stLine : stList.astLog) stLine.uiCaption = auiNewPlace[stLine.uiCaption];
}

LoadResult Read_Group(Reading &stReading, std::span<const uint32_t> auiClasses, bool bSelect,
                      uint32_t uiFromMs)
{
    if (bSelect && zyrSubtitle_selectClass(static_cast<int32_t>(auiClasses.size()), auiClasses.data()) != 0)
        return {ZYR_CAPTIONS_NO_MEMORY, "there is no memory for its language classes"};
    // A file without a first place to go to may have captions all the same, as SSA without an [Events] line.
    if (zyrSubtitle_seek(uiFromMs) != 0 && uiFromMs > 0)
        return {ZYR_CAPTIONS_NO_SEEK, "it cannot be read from that time on (the log tells why)"};
    Read_Captions(stReading);
    return {};
}

LoadResult Read_Groups(Reading &stReading, const ZyrCaptionsOptions &stOptions)
{
    ZyrCaptions &stList = stReading.stList;
    const std::span<const uint32_t> auiOrder = stList.auiOrder;
    for (size_t uiFirst = 0; uiFirst < auiOrder.size(); uiFirst += ZYR_STREAM_MAX) {
        const size_t uiBefore = stList.astRecords.size();
        const bool bSelect = stOptions.uiClasses > 0 || uiFirst > 0;
        stReading.uiFirstOrder = static_cast<uint32_t>(uiFirst);
        const auto auiGroup =
            auiOrder.subspan(uiFirst, std::min<size_t>(ZYR_STREAM_MAX, auiOrder.size() - uiFirst));
        LoadResult stResult = Read_Group(stReading, auiGroup, bSelect, stOptions.uiFromMs);
        if (!stResult.Is_Good()) return stResult;
        if (stList.bTogether) break; // what is joined is what fits side by side
        if (uiFirst > 0) Merge_Rows(stList, uiBefore);
    }
    return {};
}

LoadResult Read_Open(ZyrCaptions &stList, const ZyrCaptionsOptions &stOptions, std::string &strHighBlock)
{
    const EngineText stText(zyrSubtitle_getOutputTextCharacterSet(), stList.strCodePage, stList.bSingleByte);
    Read_Classes(stList, stText);
    Read_Header(stList, stText);
    LoadResult stChosen = Choose_Classes(stList, stOptions);
    if (!stChosen.Is_Good()) return stChosen;
    Reading stReading{stList, stText, strHighBlock};
    uint32_t uiStyle = 0;
    for (const SSAStyleNode *pstNode = pstQuibCaptionParserInfo->pstSSAStyleList; pstNode != nullptr;
         pstNode = pstNode->pstNext)
        stReading.stSsaStyles.emplace(&pstNode->stStyle, uiStyle++);
    return Read_Groups(stReading, stOptions);
}

} // namespace

std::mutex &Get_EngineLock()
{
    static std::mutex s_stLock;
    return s_stLock;
}

LoadResult Read_WithEngine(ZyrCaptions &stList, const std::string &strBytes,
                           const ZyrCaptionsOptions &stOptions, std::string &strHighBlock)
{
    const std::lock_guard<std::mutex> stGuard(Get_EngineLock());
    if (pstQuibCaptionParserInfo != nullptr)
        return {ZYR_CAPTIONS_BUSY, "the program has a subtitle open in the engine; close that first"};
    EngineLoan stLoan(stList, strBytes, (stOptions.uiFlags & ZYR_CAPTIONS_BOX_LINE_ENDS) != 0);
    const std::string strMovie = PRIVATE_BASE + ".movie";
    if (zyrSubtitle_open(strMovie.c_str(), stList.bSingleByte ? 1 : 0) != 0)
        return {ZYR_CAPTIONS_MALFORMED,
                "not a subtitle that can be read as its name says (the log tells why)"};
    LoadResult stResult = Read_Open(stList, stOptions, strHighBlock);
    if (stLoan.Has_NoMemory()) throw std::bad_alloc();
    return stResult;
}

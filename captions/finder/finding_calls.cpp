// The calls of zyr_findings.h.
#include <algorithm>
#include <map>
#include <new>
#include <optional>

#include "finder.h"
#include "subtitle_file.h"

namespace
{

// A finding as it is told.
struct KeptFinding {
    ZyrFinding stTold; // its texts are set when it is asked for
    std::string strSentence;
    std::string strText;
};

// Of a text without line ends; what it is about is seen by then.
constexpr size_t TEXT_MOST = 1000;

} // namespace

struct ZyrFindings {
    int iError = ZYR_CAPTIONS_OK;
    std::string strError;
    CaptionsOwner pstMeant;
    CaptionsOwner pstBox; // empty where it is the same list
    std::vector<KeptFinding> astKept;
    std::map<uint32_t, std::string> astrLines; // that findings are on
};

namespace
{

// What a load was asked for, and the file.
struct Search {
    ZyrFindings &stFindings;
    ZyrFindingsOptions stOptions;
    ZyrCaptionsOptions stCaptions;
    std::string strName;
    std::string strBytes;
    std::optional<std::string> strEnding = {}; // why no box looks for the file
};

bool Is_Refusal(int iError)
{
    return iError == ZYR_CAPTIONS_MALFORMED || iError == ZYR_CAPTIONS_EMPTY ||
           iError == ZYR_CAPTIONS_NO_FORMAT;
}

CaptionsOwner Load_Captions(const Search &stSearch, uint32_t uiFlags)
{
    ZyrCaptionsOptions stOptions = stSearch.stCaptions;
    stOptions.uiFlags = (stOptions.uiFlags & ZYR_CAPTIONS_SINGLE_BYTE) | uiFlags;
    stOptions.uiFromMs = 0;
    CaptionsOwner pstList(zyrCaptions_loadMemory(stSearch.strBytes.data(), stSearch.strBytes.size(),
                                                 stSearch.strName.c_str(), &stOptions));
    if (!pstList) throw std::bad_alloc();
    return pstList;
}

// A code page that is found out for one list holds for the other.
bool Has_OtherEnds(const PlainFile &stFile)
{
    return std::any_of(stFile.Get_Lines().begin(), stFile.Get_Lines().end(), [](const PlainLine &stLine) {
        return stLine.eEnd != E_END_CR_LF && stLine.eEnd != E_END_NONE;
    });
}

// Characters of the line that a finding is about.
uint32_t Count_Columns(const FindingRecord &stRecord, const PlainFile &stFile)
{
    const std::string &strText = stFile.Get_Text();
    uint32_t uiColumns = 0;
    for (size_t ui = 0; ui < stRecord.uiTextBytes && stRecord.uiText + ui < strText.size(); ++ui) {
        const char cByte = strText[stRecord.uiText + ui];
        if (cByte == '\n') break;
        if ((cByte & 0xC0) != 0x80) ++uiColumns;
    }
    return std::max(uiColumns, 1U);
}

// Between two characters.
size_t Cut_Text(const std::string &strText, size_t uiText, size_t uiBytes)
{
    if (uiBytes <= TEXT_MOST) return uiBytes;
    uiBytes = TEXT_MOST;
    while (uiBytes > 0 && uiText + uiBytes < strText.size() && (strText[uiText + uiBytes] & 0xC0) == 0x80)
        --uiBytes;
    return uiBytes;
}

// Each line once, however many findings are on it.
void Keep_Line(ZyrFindings &stFindings, const PlainFile &stFile, uint32_t uiLine)
{
    if (uiLine == 0) return;
    const auto [itLine, bNew] = stFindings.astrLines.try_emplace(uiLine);
    if (!bNew) return;
    itLine->second = stFile.Get_Line(uiLine - 1);
    std::replace(itLine->second.begin(), itLine->second.end(), '\0', ' ');
}

KeptFinding Keep_Finding(const FindingRecord &stRecord, const Finder &stFinder)
{
    const PlainFile &stFile = stFinder.stFile;
    const RuleRow &stRule = Get_Rules()[stRecord.eRule];
    KeptFinding stKept;
    stKept.strSentence = stRecord.strSentence;
    stKept.stTold = {};
    stKept.stTold.uiRule = stRecord.eRule;
    stKept.stTold.pszCode = stRule.pszCode;
    stKept.stTold.uiSeverity = stRule.uiSeverity;
    stKept.stTold.uiCaption = stRecord.uiCaption;
    stKept.stTold.uiClass = stRecord.uiCaption < stFinder.astCaptions.size()
                                ? stFinder.astCaptions[stRecord.uiCaption].uiClass
                                : ZYR_CAPTIONS_NONE;
    if (stRecord.bWholeFile) return stKept;
    const PlainPlace stPlace = stFile.Locate(stRecord.uiText);
    stKept.stTold.uiLine = stPlace.uiLine;
    stKept.stTold.uiColumn = stPlace.uiColumn;
    stKept.stTold.uiOffset = stPlace.uiOffset;
    stKept.stTold.uiColumns = Count_Columns(stRecord, stFile);
    stKept.strText =
        stFile.Get_Text().substr(std::min(stRecord.uiText, stFile.Get_Text().size()), stRecord.uiTextBytes);
    std::replace(stKept.strText.begin(), stKept.strText.end(), '\0', ' ');
    return stKept;
}

// By place; of one place the worst first.
void Sort_Findings(std::vector<FindingRecord> &astFindings)
{
    const auto pfBefore = [](const FindingRecord &stA, const FindingRecord &stB) {
        if (stA.bWholeFile != stB.bWholeFile) return stA.bWholeFile;
        if (stA.uiText != stB.uiText) return stA.uiText < stB.uiText;
        const uint32_t uiA = Get_Rules()[stA.eRule].uiSeverity;
        const uint32_t uiB = Get_Rules()[stB.eRule].uiSeverity;
        return uiA != uiB ? uiA > uiB : stA.eRule < stB.eRule;
    };
    const auto pfSame = [](const FindingRecord &stA, const FindingRecord &stB) {
        return stA.eRule == stB.eRule && stA.uiText == stB.uiText && stA.strSentence == stB.strSentence;
    };
    std::stable_sort(astFindings.begin(), astFindings.end(), pfBefore);
    astFindings.erase(std::unique(astFindings.begin(), astFindings.end(), pfSame), astFindings.end());
}

void Take_Captions(Finder &stFinder)
{
    ZyrCaption stCaption;
    for (uint32_t ui = 0; zyrCaptions_get(stFinder.pstMeant, ui, &stCaption) == ZYR_CAPTIONS_OK; ++ui) {
        stFinder.astCaptions.push_back(stCaption);
        const size_t uiText = stFinder.stFile.Find_Text(stCaption.uiSource);
        const size_t uiFirst = stFinder.stFile.Get_Text().find_first_not_of(" \t\n", uiText);
        stFinder.auiPlaces.push_back(uiFirst == std::string::npos ? uiText : uiFirst);
    }
}

void Find_InFormat(Finder &stFinder)
{
    switch (stFinder.stAbout.uiFormat) {
    case ZYR_CAPTIONS_SUBRIP: return Find_InSubRip(stFinder);
    case ZYR_CAPTIONS_SAMI: return Find_InSami(stFinder);
    case ZYR_CAPTIONS_SUBVIEWER: return Find_InSubViewer(stFinder);
    case ZYR_CAPTIONS_SSA: return Find_InSsa(stFinder);
    default: return;
    }
}

std::string Explain_Refusal(const Finder &stFinder, int iError)
{
    static const std::string LEAD = "the box does not open the file: ";
    if (iError == ZYR_CAPTIONS_EMPTY) return LEAD + "it is empty";
    if (stFinder.stAbout.uiFormat == ZYR_CAPTIONS_SUBVIEWER)
        return LEAD + "there is no field [SUBTITLE] in front of its first line that begins with a digit";
    if (iError == ZYR_CAPTIONS_NO_FORMAT) return LEAD + "it is none of SAMI, SubRip, SubViewer and SSA";
    return LEAD + "it is not what its name says";
}

// A file that the box refuses has that one finding, and those of its bytes.
int Find_All(Finder &stFinder, const Search &stSearch)
{
    if (stSearch.strEnding) stFinder.Add_ForFile(E_RULE_FILE_ENDING, *stSearch.strEnding);
    const int iRefused = zyrCaptions_getError(stFinder.pstMeant);
    if (iRefused != ZYR_CAPTIONS_OK)
        stFinder.Add_ForFile(E_RULE_FILE_REFUSED, Explain_Refusal(stFinder, iRefused));
    Find_InBytes(stFinder);
    if (iRefused != ZYR_CAPTIONS_OK) return ZYR_CAPTIONS_OK;
    Find_LineEnds(stFinder);
    Find_InFormat(stFinder);
    Find_InTimes(stFinder);
    Find_InLog(stFinder);
    return stFinder.stOptions.pszOutput == nullptr ? ZYR_CAPTIONS_OK : Find_OnOutput(stFinder);
}

void Fail_Search(ZyrFindings &stFindings, int iError, const std::string &strText)
{
    stFindings.iError = iError;
    stFindings.strError = strText;
}

void Run_Search(Search &stSearch)
{
    ZyrFindings &stFindings = stSearch.stFindings;
    stFindings.pstMeant = Load_Captions(stSearch, 0);
    const int iError = zyrCaptions_getError(stFindings.pstMeant.get());
    if (iError != ZYR_CAPTIONS_OK && !Is_Refusal(iError))
        return Fail_Search(stFindings, iError, zyrCaptions_getErrorText(stFindings.pstMeant.get()));
    ZyrCaptionsFile stAbout;
    zyrCaptions_getFile(stFindings.pstMeant.get(), &stAbout);
    const PlainFile stFile(stSearch.strBytes, stAbout);
    if (Has_OtherEnds(stFile)) {
        if (stAbout.pszCodePage != nullptr) stSearch.stCaptions.pszCodePage = stAbout.pszCodePage;
        stFindings.pstBox = Load_Captions(stSearch, ZYR_CAPTIONS_BOX_LINE_ENDS);
    }
    Finder stFinder{stFile,
                    stAbout,
                    stFindings.pstMeant.get(),
                    zyrFindings_getBoxCaptions(&stFindings),
                    stSearch.stOptions,
                    {},
                    {},
                    {}};
    Take_Captions(stFinder);
    const int iOutput = Find_All(stFinder, stSearch);
    if (iOutput != ZYR_CAPTIONS_OK) Fail_Search(stFindings, iOutput, "the output cannot be drawn on");
    Sort_Findings(stFinder.astFindings);
    for (FindingRecord &stRecord : stFinder.astFindings) {
        stRecord.uiTextBytes = Cut_Text(stFile.Get_Text(), stRecord.uiText, stRecord.uiTextBytes);
        stFindings.astKept.push_back(Keep_Finding(stRecord, stFinder));
        Keep_Line(stFindings, stFile, stFindings.astKept.back().stTold.uiLine);
    }
}

// A text that is there under a name that no box looks for is read all the same, and told.
LoadResult Read_Named(Search &stSearch)
{
    const std::string strAsked = stSearch.strName;
    LoadResult stResult = Read_Subtitle(stSearch.strName, stSearch.strBytes);
    const bool bText = stResult.iError == ZYR_CAPTIONS_NO_FORMAT || strAsked.ends_with(".txt");
    if (stResult.Is_Good() || !bText) return stResult;
    const LoadResult stOther = Read_AnyFile(strAsked, stSearch.strBytes);
    if (!stOther.Is_Good()) return stResult;
    stSearch.strName = strAsked;
    stSearch.strEnding = "no box looks for a subtitle with this ending: " + stResult.strSentence;
    return {};
}

template <typename ReadStep>
ZyrFindings *Run_Load(const ZyrFindingsOptions *pstOptions, const char *pszName, const ReadStep &pfRead)
{
    std::unique_ptr<ZyrFindings> pstFindings(new (std::nothrow) ZyrFindings);
    if (!pstFindings) return nullptr;
    try {
        Search stSearch{*pstFindings, {}, {}, pszName == nullptr ? "" : pszName, ""};
        if (pstOptions != nullptr) stSearch.stOptions = *pstOptions;
        if (stSearch.stOptions.pstCaptions != nullptr) stSearch.stCaptions = *stSearch.stOptions.pstCaptions;
        const LoadResult stRead = pfRead(stSearch);
        if (stRead.Is_Good())
            Run_Search(stSearch);
        else
            Fail_Search(*pstFindings, stRead.iError, stRead.strSentence);
        return pstFindings.release();
    } catch (...) {
        return nullptr;
    }
}

} // namespace

ZyrFindings *zyrFindings_load(const char *pszPath, const ZyrFindingsOptions *pstOptions)
{
    return Run_Load(pstOptions, pszPath, [&](Search &stSearch) -> LoadResult {
        if (stSearch.strName.empty()) return {ZYR_CAPTIONS_BAD_ARGUMENT, "no file was named"};
        return Read_Named(stSearch);
    });
}

ZyrFindings *zyrFindings_loadMemory(const void *pvData, size_t uiBytes, const char *pszName,
                                    const ZyrFindingsOptions *pstOptions)
{
    return Run_Load(pstOptions, pszName, [&](Search &stSearch) -> LoadResult {
        if (pvData == nullptr) return {ZYR_CAPTIONS_BAD_ARGUMENT, "no data was given"};
        stSearch.strBytes.assign(static_cast<const char *>(pvData), uiBytes);
        if (!stSearch.strName.empty() && Find_FormatByName(stSearch.strName) == ZYR_CAPTIONS_UNKNOWN)
            stSearch.strEnding = "no box looks for a subtitle with this ending";
        return {};
    });
}

void zyrFindings_free(ZyrFindings *pstFindings)
{
    delete pstFindings;
}

int zyrFindings_getError(const ZyrFindings *pstFindings)
{
    return pstFindings == nullptr ? ZYR_CAPTIONS_NO_MEMORY : pstFindings->iError;
}

const char *zyrFindings_getErrorText(const ZyrFindings *pstFindings)
{
    return pstFindings == nullptr ? "there is no memory" : pstFindings->strError.c_str();
}

uint32_t zyrFindings_count(const ZyrFindings *pstFindings)
{
    return pstFindings == nullptr ? 0 : static_cast<uint32_t>(pstFindings->astKept.size());
}

int zyrFindings_get(const ZyrFindings *pstFindings, uint32_t uiIndex, ZyrFinding *pstFinding)
{
    if (pstFinding == nullptr) return ZYR_CAPTIONS_BAD_ARGUMENT;
    *pstFinding = {};
    if (uiIndex >= zyrFindings_count(pstFindings)) return ZYR_CAPTIONS_BAD_ARGUMENT;
    const KeptFinding &stKept = pstFindings->astKept[uiIndex];
    *pstFinding = stKept.stTold;
    pstFinding->pszSentence = stKept.strSentence.c_str();
    pstFinding->pszText = stKept.strText.c_str();
    const auto itLine = pstFindings->astrLines.find(stKept.stTold.uiLine);
    pstFinding->pszLine = itLine == pstFindings->astrLines.end() ? "" : itLine->second.c_str();
    return ZYR_CAPTIONS_OK;
}

const ZyrCaptions *zyrFindings_getCaptions(const ZyrFindings *pstFindings)
{
    return pstFindings == nullptr ? nullptr : pstFindings->pstMeant.get();
}

const ZyrCaptions *zyrFindings_getBoxCaptions(const ZyrFindings *pstFindings)
{
    if (pstFindings == nullptr) return nullptr;
    return pstFindings->pstBox ? pstFindings->pstBox.get() : pstFindings->pstMeant.get();
}

int zyrFindings_getRule(uint32_t uiRule, ZyrFindingRule *pstRule)
{
    static constexpr const char *SEVERITIES[] = {"", "doubtful", "changed", "lost"};
    if (pstRule == nullptr) return ZYR_CAPTIONS_BAD_ARGUMENT;
    *pstRule = {};
    if (uiRule >= E_RULE_NUMS) return ZYR_CAPTIONS_BAD_ARGUMENT;
    const RuleRow &stRow = Get_Rules()[uiRule];
    *pstRule = {stRow.pszCode,    stRow.uiSeverity, SEVERITIES[stRow.uiSeverity],
                stRow.pszFormats, stRow.pszTitle,   stRow.pszExplanation,
                stRow.pszFile,    stRow.pszExample};
    return ZYR_CAPTIONS_OK;
}

uint32_t zyrFindings_findRule(const char *pszCode)
{
    const auto pfEqual = [&](const char *pszOther) {
        for (size_t ui = 0;; ++ui) {
            const char cChar = pszCode[ui];
            const char cUpper = cChar >= 'a' && cChar <= 'z' ? static_cast<char>(cChar & ~0x20) : cChar;
            if (cUpper != pszOther[ui]) return false;
            if (cUpper == '\0') return true;
        }
    };
    for (uint32_t uiRule = 0; pszCode != nullptr && uiRule < E_RULE_NUMS; ++uiRule)
        if (pfEqual(Get_Rules()[uiRule].pszCode)) return uiRule;
    return ZYR_CAPTIONS_NONE;
}

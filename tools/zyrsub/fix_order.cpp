// Captions put in the order of their times, and those with too much text made two.
#include "fix_rules.h"

#include <algorithm>

#include "fix_times.h"
#include "text_tools.h"

static constexpr size_t NOWHERE = std::string_view::npos;
static constexpr size_t SSA_COMMAS = 9; // in front of the text

static bool Is_NumberLine(std::string_view strLine)
{
    return !strLine.empty() && strLine.find_first_not_of("0123456789 \t") == NOWHERE &&
           strLine.find_first_not_of(" \t") != NOWHERE;
}

// What moves as one, by its start; lines that stay where they are belong to none.
struct SortBlock {
    FixBlock stLines;
    int64_t llStart;
};

static std::vector<SortBlock> List_Blocks(const FixText &stText, uint32_t uiFormat)
{
    std::vector<SortBlock> astBlocks;
    for (size_t uiLine = 0; uiLine < stText.Count_Lines(); ++uiLine) {
        const std::optional<TimeLine> stTimes = Read_TimeLine(uiFormat, stText.Get_Line(uiLine));
        if (!stTimes) continue;
        const bool bNumber =
            uiFormat == ZYR_CAPTIONS_SUBRIP && uiLine > 0 && Is_NumberLine(stText.Get_Line(uiLine - 1));
        const size_t uiFirst = bNumber ? uiLine - 1 : uiLine;
        if (uiFormat != ZYR_CAPTIONS_SSA && !astBlocks.empty()) astBlocks.back().stLines.uiEnd = uiFirst;
        astBlocks.push_back({{uiFirst, uiLine + 1}, stTimes->llStart});
    }
    if (uiFormat != ZYR_CAPTIONS_SSA && !astBlocks.empty()) {
        size_t &uiEnd = astBlocks.back().stLines.uiEnd;
        uiEnd = stText.Count_Lines() - (stText.Get_Line(stText.Count_Lines() - 1).empty() ? 1 : 0);
    }
    return astBlocks;
}

bool Sort_Captions(FixText &stText, uint32_t uiFormat)
{
    const std::vector<SortBlock> astBlocks = List_Blocks(stText, uiFormat);
    std::vector<SortBlock> astSorted = astBlocks;
    const auto pfBefore = [](const SortBlock &stA, const SortBlock &stB) {
        return stA.llStart < stB.llStart;
    };
    if (std::is_sorted(astSorted.begin(), astSorted.end(), pfBefore)) return false;
    std::stable_sort(astSorted.begin(), astSorted.end(), pfBefore);
    std::vector<FixBlock> astAll;
    size_t uiDone = 0;
    for (size_t ui = 0; ui < astBlocks.size(); ++ui) {
        if (astBlocks[ui].stLines.uiFirst > uiDone) astAll.push_back({uiDone, astBlocks[ui].stLines.uiFirst});
        astAll.push_back(astSorted[ui].stLines);
        uiDone = astBlocks[ui].stLines.uiEnd;
    }
    astAll.push_back({uiDone, stText.Count_Lines()});
    stText.Reorder(astAll);
    return true;
}

// ------------------------------------------------------------------------------------------------- splitting

// A caption that is to be split, and where.
struct SplitPlace {
    FixPlan &stPlan;
    const ZyrFinding &stFinding;
    size_t uiText; // where its text begins
    size_t uiAt;   // where the second half does
    size_t uiEnd;  // behind its text
};

static int64_t Find_Middle(const SplitPlace &stSplit, int64_t llStart, int64_t llEnd)
{
    const auto llBefore = static_cast<int64_t>(stSplit.uiAt - stSplit.uiText);
    const auto llAll = static_cast<int64_t>(std::max(stSplit.uiEnd - stSplit.uiText, size_t{1}));
    return (llStart + (llEnd - llStart) * llBefore / llAll) / 10 * 10;
}

// The beginning of the word that a place is in.
static size_t Find_Word(const std::string &strText, size_t uiFirst, size_t uiAt)
{
    size_t uiWord = uiAt;
    while (uiWord > uiFirst && strText[uiWord - 1] != ' ' && strText[uiWord - 1] != '\n') --uiWord;
    return uiWord > uiFirst ? uiWord : uiAt;
}

static void Split_Entry(SplitPlace &stSplit, size_t uiTimeLine)
{
    const FixText &stText = stSplit.stPlan.stText;
    const uint32_t uiFormat = stSplit.stPlan.uiFormat;
    TimeLine stFirst = *Read_TimeLine(uiFormat, stText.Get_Line(uiTimeLine));
    TimeLine stSecond = stFirst;
    stSplit.uiText = stText.Get_Start(uiTimeLine + 1);
    stSplit.uiEnd = std::min(stText.Get().find("\n\n", stSplit.uiAt), stText.Get().size());
    const size_t uiLine = stText.Get_Start(stText.Find_Line(stSplit.uiAt));
    const bool bLine = uiLine > stSplit.uiText;
    stSplit.uiAt = bLine ? uiLine : Find_Word(stText.Get(), stSplit.uiText, stSplit.uiAt);
    stFirst.llEnd = stSecond.llStart = Find_Middle(stSplit, stFirst.llStart, stFirst.llEnd);
    const bool bNumber = uiFormat == ZYR_CAPTIONS_SUBRIP && uiTimeLine > 0;
    const std::string strNumber = bNumber ? std::string(stText.Get_Line(uiTimeLine - 1)) + "\n" : "";
    stSplit.stPlan.Add(stText.Get_Start(uiTimeLine), stText.Get_Line(uiTimeLine).size(),
                       Write_TimeLine(uiFormat, stFirst), stSplit.stFinding.pszCode, "");
    stSplit.stPlan.Add(
        stSplit.uiAt, 0, (bLine ? "\n" : "\n\n") + strNumber + Write_TimeLine(uiFormat, stSecond) + "\n",
        stSplit.stFinding.pszCode, "what was behind the sixth line put into a caption of its own");
}

static void Split_SsaLine(SplitPlace &stSplit, size_t uiLine)
{
    const FixText &stText = stSplit.stPlan.stText;
    const std::string strLine(stText.Get_Line(uiLine));
    TimeLine stFirst = *Read_TimeLine(ZYR_CAPTIONS_SSA, strLine);
    size_t uiRest = 0; // where the text begins in strRest
    for (size_t uiCommas = 2; uiCommas < SSA_COMMAS; ++uiCommas)
        uiRest = stFirst.strRest.find(',', uiRest) + 1;
    const std::string strFields = stFirst.strRest.substr(0, uiRest);
    const size_t uiStart = strLine.size() - (stFirst.strRest.size() - uiRest);
    const size_t uiWanted = stSplit.uiAt - stText.Get_Start(uiLine);
    const size_t uiBreak = std::max(strLine.rfind("\\N", uiWanted) + 1, strLine.rfind("\\n", uiWanted) + 1);
    const bool bBreak = uiBreak > uiStart;
    const size_t uiSecond = bBreak ? uiBreak + 1 : Find_Word(strLine, uiStart, uiWanted);
    stSplit.uiText = uiStart;
    stSplit.uiAt = uiSecond;
    stSplit.uiEnd = strLine.size();
    TimeLine stSecond = stFirst;
    stFirst.llEnd = stSecond.llStart = Find_Middle(stSplit, stFirst.llStart, stFirst.llEnd);
    stFirst.strRest = strFields + strLine.substr(uiStart, (bBreak ? uiBreak - 1 : uiSecond) - uiStart);
    stSecond.strRest = strFields + strLine.substr(uiSecond);
    stSplit.stPlan.Add(
        stText.Get_Start(uiLine), strLine.size(),
        Write_TimeLine(ZYR_CAPTIONS_SSA, stFirst) + "\n" + Write_TimeLine(ZYR_CAPTIONS_SSA, stSecond),
        stSplit.stFinding.pszCode, "what was behind the sixth line put into a line of its own");
}

// The rest of the paragraph goes behind its SYNC, so that the other languages there stay where they are.
static void Split_Paragraph(SplitPlace &stSplit, const ZyrCaption &stCaption)
{
    static constexpr int64_t OPEN_MS = 8000;
    const std::string &strText = stSplit.stPlan.stText.Get();
    const std::string strLower = Lower_Case(strText);
    const size_t uiSync = strLower.rfind("<sync", stSplit.uiAt);
    const size_t uiSyncEnd = std::min(
        {strLower.find("<sync", stSplit.uiAt), strLower.find("</body", stSplit.uiAt), strText.size()});
    const size_t uiEnd =
        std::min({strLower.find("<p ", stSplit.uiAt), strLower.find("<p>", stSplit.uiAt), uiSyncEnd});
    if (uiSync == NOWHERE) return;
    const size_t uiParagraph = std::max(uiSync, std::min(strLower.rfind("<p ", stSplit.uiAt), stSplit.uiAt));
    stSplit.uiText = std::min(strText.find('>', uiParagraph), stSplit.uiAt);
    stSplit.uiEnd = uiEnd;
    const size_t uiBreak = strLower.rfind("<br>", stSplit.uiAt);
    const bool bBreak = uiBreak != NOWHERE && uiBreak > stSplit.uiText;
    stSplit.uiAt = bBreak ? uiBreak : Find_Word(strText, stSplit.uiText, stSplit.uiAt);
    const int64_t llEnd =
        stCaption.iShownUntil == ZYR_CAPTIONS_OPEN_END ? stCaption.iStart + OPEN_MS : stCaption.iShownUntil;
    ZyrCaptionClass stClass;
    zyrCaptions_getClass(zyrFindings_getCaptions(stSplit.stPlan.pstFindings), stCaption.uiClass, &stClass);
    const std::string strClass = stClass.pszName == nullptr ? "" : stClass.pszName;
    const std::string strTags =
        "\n<SYNC Start=" + std::to_string(Find_Middle(stSplit, stCaption.iStart, llEnd)) + "><P" +
        (strClass.empty() ? "" : " Class=" + strClass) + ">";
    const size_t uiCut = stSplit.uiAt + (bBreak ? 4 : 0);
    const std::string strRest = strText.substr(uiCut, uiEnd - uiCut);
    if (uiEnd == uiSyncEnd)
        return stSplit.stPlan.Add(stSplit.uiAt, uiEnd - stSplit.uiAt, strTags + strRest,
                                  stSplit.stFinding.pszCode,
                                  "what was behind the sixth line put into a caption of its own");
    stSplit.stPlan.Add(stSplit.uiAt, uiEnd - stSplit.uiAt, "", stSplit.stFinding.pszCode, "");
    stSplit.stPlan.Add(uiSyncEnd, 0, strTags + strRest, stSplit.stFinding.pszCode,
                       "what was behind the sixth line put into a caption of its own");
}

void Plan_Split(FixPlan &stPlan, const ZyrFinding &stFinding, size_t uiAt)
{
    ZyrCaption stCaption;
    zyrCaptions_get(zyrFindings_getCaptions(stPlan.pstFindings), stFinding.uiCaption, &stCaption);
    SplitPlace stSplit{stPlan, stFinding, 0, uiAt, 0};
    if (stPlan.uiFormat == ZYR_CAPTIONS_SAMI) return Split_Paragraph(stSplit, stCaption);
    size_t uiLine = stPlan.stText.Find_Line(uiAt);
    if (stPlan.uiFormat == ZYR_CAPTIONS_SSA) return Split_SsaLine(stSplit, uiLine);
    while (uiLine > 0 && !Read_TimeLine(stPlan.uiFormat, stPlan.stText.Get_Line(uiLine))) --uiLine;
    if (Read_TimeLine(stPlan.uiFormat, stPlan.stText.Get_Line(uiLine))) Split_Entry(stSplit, uiLine);
}

// SubRip entries as a person sees them, by their time lines, held against the captions that come of them.
#include <algorithm>
#include <array>
#include <optional>
#include <string>

#include "finder.h"

namespace
{

constexpr size_t NOWHERE = std::string_view::npos;

// What one side of a time line says.
struct TimeText {
    int64_t llMs = 0;
    uint32_t uiNumbers = 0;
    bool bPlain = false; // it can be told what it means
    bool bWidth = false; // its fraction has other than three digits
    size_t uiEnd = 0;    // behind its last digit
};

struct Entry {
    size_t uiFirst;    // its number line, else its time line
    size_t uiTimeLine; // places in the file's text
    size_t uiText;
    size_t uiEnd;
    bool bNumber;
    TimeText stStart;
    TimeText stEnd;
    uint32_t uiNumbers = 0; // of the whole line
};

bool Is_Empty(std::string_view strLine)
{
    return strLine.find_first_not_of(" \t") == NOWHERE;
}

// Digits alone, or with blanks around.
bool Is_NumberLine(std::string_view strLine)
{
    return !Is_Empty(strLine) && strLine.find_first_not_of("0123456789 \t") == NOWHERE;
}

// Where the end of the first time is at the latest: an arrow, or the line's end behind a whole time and nothing else.
size_t Find_Arrow(std::string_view strLine)
{
    static constexpr std::string_view FORM = "00:00:00,000";
    bool bAlone = strLine.size() == FORM.size();
    for (size_t ui = 0; bAlone && ui < FORM.size(); ++ui)
        bAlone = FORM[ui] == ','      ? strLine[ui] == ',' || strLine[ui] == '.'
                 : Is_Digit(FORM[ui]) ? Is_Digit(strLine[ui])
                                      : strLine[ui] == ':';
    if (bAlone) return strLine.size();
    const size_t uiArrow = std::min(strLine.find("-->"), strLine.find("->"));
    if (uiArrow == NOWHERE || strLine.find_first_of("0123456789") > uiArrow) return NOWHERE;
    return strLine.find_first_of(":.,", 0) < uiArrow ? uiArrow : NOWHERE;
}

// Hours may be left out, and a fraction; blanks may stand around the separators.
TimeText Read_Time(std::string_view strLine, size_t uiAt, size_t uiEnd)
{
    std::array<int64_t, 4> allNumbers = {};
    std::array<size_t, 4> auiWidths = {};
    std::array<char, 4> acBefore = {};
    TimeText stTime;
    char cSeparator = 0;
    uiAt = std::min(strLine.find_first_of("0123456789", uiAt), uiEnd);
    while (uiAt < uiEnd && stTime.uiNumbers < 4) {
        acBefore[stTime.uiNumbers] = cSeparator;
        size_t uiWidth = 0;
        for (; uiAt < uiEnd && Is_Digit(strLine[uiAt]) && uiWidth < 9; ++uiAt, ++uiWidth)
            allNumbers[stTime.uiNumbers] = allNumbers[stTime.uiNumbers] * 10 + (strLine[uiAt] - '0');
        auiWidths[stTime.uiNumbers++] = uiWidth;
        stTime.uiEnd = uiAt;
        const size_t uiNext = std::min(strLine.find_first_not_of(" \t", uiAt), uiEnd);
        if (uiNext >= uiEnd || std::string_view(":.,;").find(strLine[uiNext]) == NOWHERE) break;
        cSeparator = strLine[uiNext];
        uiAt = std::min(strLine.find_first_not_of(" \t", uiNext + 1), uiEnd);
        if (uiAt >= uiEnd || !Is_Digit(strLine[uiAt])) break;
    }
    const uint32_t uiNumbers = stTime.uiNumbers;
    const bool bFraction = uiNumbers == 4 || (uiNumbers > 1 && acBefore[uiNumbers - 1] != ':');
    const uint32_t uiWhole = uiNumbers - (bFraction ? 1 : 0);
    for (uint32_t ui = 0; ui < uiWhole; ++ui) stTime.llMs = stTime.llMs * 60 + allNumbers[ui];
    stTime.llMs *= 1000;
    stTime.bPlain = uiNumbers > 1;
    if (!bFraction) return stTime;
    const size_t uiWidth = auiWidths[uiNumbers - 1];
    int64_t llFraction = allNumbers[uiNumbers - 1];
    for (size_t ui = uiWidth; ui < 3; ++ui) llFraction *= 10;
    for (size_t ui = 3; ui < uiWidth; ++ui) llFraction /= 10;
    stTime.llMs += llFraction;
    stTime.bWidth = uiWidth != 3;
    return stTime;
}

uint32_t Count_Numbers(std::string_view strLine)
{
    uint32_t uiNumbers = 0;
    for (size_t ui = 0; ui < strLine.size(); ++ui)
        if (Is_Digit(strLine[ui]) && (ui == 0 || !Is_Digit(strLine[ui - 1]))) ++uiNumbers;
    return uiNumbers;
}

// An entry begins at the number in front of its time line; empty lines may stand between them.
Entry Read_Entry(const PlainFile &stFile, size_t uiLine, size_t uiArrow)
{
    const std::string_view strLine = stFile.Get_Line(uiLine);
    const std::vector<PlainLine> &astLines = stFile.Get_Lines();
    Entry stEntry = {};
    stEntry.uiTimeLine = stEntry.uiFirst = astLines[uiLine].uiText;
    stEntry.uiText = uiLine + 1 < astLines.size() ? astLines[uiLine + 1].uiText : stFile.Get_Text().size();
    stEntry.stStart = Read_Time(strLine, 0, uiArrow);
    stEntry.stEnd = Read_Time(strLine, uiArrow, strLine.size());
    stEntry.uiNumbers = Count_Numbers(strLine);
    size_t uiBefore = uiLine;
    while (uiBefore > 0 && Is_Empty(stFile.Get_Line(uiBefore - 1))) --uiBefore;
    stEntry.bNumber = uiBefore > 0 && Is_NumberLine(stFile.Get_Line(uiBefore - 1));
    if (stEntry.bNumber) stEntry.uiFirst = astLines[uiBefore - 1].uiText;
    return stEntry;
}

std::vector<Entry> Read_Entries(const PlainFile &stFile)
{
    std::vector<Entry> astEntries;
    for (size_t uiLine = 0; uiLine < stFile.Get_Lines().size(); ++uiLine) {
        const size_t uiArrow = Find_Arrow(stFile.Get_Line(uiLine));
        if (uiArrow == NOWHERE) continue;
        Entry stEntry = Read_Entry(stFile, uiLine, uiArrow);
        if (!stEntry.stStart.bPlain) continue;
        if (!astEntries.empty()) {
            stEntry.uiFirst = std::max(stEntry.uiFirst, astEntries.back().uiText);
            astEntries.back().uiEnd = stEntry.uiFirst;
        }
        astEntries.push_back(stEntry);
    }
    if (!astEntries.empty()) astEntries.back().uiEnd = stFile.Get_Text().size();
    return astEntries;
}

size_t Get_LineLength(const Finder &stFinder, size_t uiText)
{
    return stFinder.stFile.Get_Line(stFinder.stFile.Find_Line(uiText)).size();
}

// Where an empty line ends the entry for the box.
size_t Find_EmptyLine(const Finder &stFinder, const Entry &stEntry)
{
    const std::string &strText = stFinder.stFile.Get_Text();
    if (stEntry.uiText < strText.size() && strText[stEntry.uiText] == '\n') return stEntry.uiText;
    return std::min(strText.find("\n\n", stEntry.uiText), stEntry.uiEnd);
}

std::string Show_Span(int64_t llStart, int64_t llEnd)
{
    return Show_Time(llStart) + " to " + Show_Time(llEnd);
}

void Find_Times(Finder &stFinder, const Entry &stEntry, uint32_t uiCaption)
{
    const ZyrCaption &stCaption = stFinder.astCaptions[uiCaption];
    const size_t uiLength = Get_LineLength(stFinder, stEntry.uiTimeLine);
    const bool bSame = stCaption.iStart == stEntry.stStart.llMs &&
                       (!stEntry.stEnd.bPlain || stCaption.iEnd == stEntry.stEnd.llMs);
    const std::string strRead = "the box reads the times as " + Show_Span(stCaption.iStart, stCaption.iEnd) +
                                ", and " + Show_Span(stEntry.stStart.llMs, stEntry.stEnd.llMs) +
                                " is written";
    if (!bSame && !stEntry.bNumber)
        stFinder.Add(E_RULE_SRT_NO_NUMBER_LINE, stEntry.uiTimeLine, uiLength, uiCaption, strRead);
    else if (!bSame && stEntry.uiNumbers == 8 && (stEntry.stStart.bWidth || stEntry.stEnd.bWidth))
        stFinder.Add(E_RULE_SRT_FRACTION, stEntry.uiTimeLine, uiLength, uiCaption, strRead);
    else if (!bSame || stEntry.uiNumbers < 8)
        stFinder.Add(E_RULE_SRT_NUMBERS, stEntry.uiTimeLine, uiLength, uiCaption,
                     bSame ? "the line has " + Show_Count(stEntry.uiNumbers, "number") +
                                 " where the box expects 8"
                           : strRead);
    else if (stEntry.uiNumbers > 8)
        stFinder.Add(E_RULE_SRT_MORE_NUMBERS, stEntry.uiTimeLine + stEntry.stEnd.uiEnd,
                     uiLength - stEntry.stEnd.uiEnd, uiCaption,
                     "the box does not use what stands behind the times");
}

// Letters behind the end time that are no coordinates.
void Find_TimeLineText(Finder &stFinder, const Entry &stEntry, uint32_t uiCaption)
{
    const std::string_view strLine = stFinder.stFile.Get_Line(stFinder.stFile.Find_Line(stEntry.uiTimeLine));
    if (!stEntry.stEnd.bPlain || stEntry.uiNumbers > 8) return;
    const size_t uiFirst = strLine.find_first_not_of(" \t", stEntry.stEnd.uiEnd);
    if (uiFirst == NOWHERE) return;
    stFinder.Add(E_RULE_SRT_TIME_LINE_TEXT, stEntry.uiTimeLine + uiFirst, strLine.size() - uiFirst, uiCaption,
                 Quote(strLine.substr(uiFirst)) + " stands on the line with the times and is not shown");
}

void Find_InEntry(Finder &stFinder, const Entry &stEntry, uint32_t uiCaption)
{
    Find_Times(stFinder, stEntry, uiCaption);
    Find_TimeLineText(stFinder, stEntry, uiCaption);
    PlainText stMeant(stFinder.stFile.Get_Text());
    stMeant.Read_SubRip(stEntry.uiText, stEntry.uiEnd);
    const size_t uiEmpty = Find_EmptyLine(stFinder, stEntry);
    Find_InText(stFinder, uiCaption, stMeant, [&](size_t uiText) {
        return uiText >= uiEmpty ? E_RULE_SRT_BEHIND_EMPTY : E_RULE_TEXT_MISSING;
    });
}

// Behind an empty line, the entry is seen, and then the file ends in its time line.
void Add_Swallowed(Finder &stFinder, const Entry &stEntry, uint32_t uiCaption)
{
    const std::string &strText = stFinder.stFile.Get_Text();
    if (stEntry.uiFirst > 1 && strText.compare(stEntry.uiFirst - 2, 2, "\n\n") == 0)
        return stFinder.Add(E_RULE_SRT_NOT_SHOWN, stEntry.uiTimeLine,
                            Get_LineLength(stFinder, stEntry.uiTimeLine), ZYR_CAPTIONS_NONE,
                            "the box makes no caption of this entry");
    stFinder.Add(E_RULE_SRT_SWALLOWED, stEntry.uiTimeLine, Get_LineLength(stFinder, stEntry.uiTimeLine),
                 uiCaption,
                 "the box does not see that an entry begins here: no empty line stands before its number");
}

// A caption without an entry.
void Add_Stray(Finder &stFinder, uint32_t uiCaption)
{
    const size_t uiPlace = stFinder.auiPlaces[uiCaption];
    const std::string &strText = stFinder.stFile.Get_Text();
    const size_t uiDigit = std::min(strText.find_first_of("0123456789", uiPlace), strText.size());
    const ZyrCaption &stCaption = stFinder.astCaptions[uiCaption];
    stFinder.Add(E_RULE_SRT_STRAY_DIGIT, uiDigit, 1, uiCaption,
                 "the box takes this digit for the beginning of an entry, which shows " +
                     Quote({stCaption.pszText, stCaption.uiTextBytes}) + " from " +
                     Show_Time(stCaption.iStart));
}

} // namespace

// Both captions and entries stand in the order of the file. An entry belongs to the caption in whose stretch of the
// file its time line is; the first one there gives the caption its times, and the others are swallowed.
void Find_InSubRip(Finder &stFinder)
{
    const std::vector<Entry> astEntries = Read_Entries(stFinder.stFile);
    size_t uiEntry = 0;
    for (uint32_t uiCaption = 0; uiCaption < stFinder.astCaptions.size(); ++uiCaption) {
        const size_t uiEnd =
            uiCaption + 1 < stFinder.auiPlaces.size() ? stFinder.auiPlaces[uiCaption + 1] : NOWHERE;
        bool bOwn = false;
        for (; uiEntry < astEntries.size() && astEntries[uiEntry].uiTimeLine < uiEnd; ++uiEntry, bOwn = true)
            if (bOwn)
                Add_Swallowed(stFinder, astEntries[uiEntry], uiCaption);
            else
                Find_InEntry(stFinder, astEntries[uiEntry], uiCaption);
        if (!bOwn) Add_Stray(stFinder, uiCaption);
    }
    for (; uiEntry < astEntries.size(); ++uiEntry)
        stFinder.Add(E_RULE_SRT_NOT_SHOWN, astEntries[uiEntry].uiTimeLine,
                     Get_LineLength(stFinder, astEntries[uiEntry].uiTimeLine), ZYR_CAPTIONS_NONE,
                     "the box makes no caption of this entry");
}

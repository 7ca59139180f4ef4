// What the bytes of the file tell: line ends, encoding, characters that no line of text has.
#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <string>

#include "finder.h"

namespace
{

constexpr const char *END_NAMES[] = {"no line end", "CR LF", "LF", "CR", "CR CR LF"};

// How often each kind of line end comes, and where the first one is that is not CR LF.
struct EndCounts {
    std::array<size_t, 5> auiLines = {};
    size_t uiFirst = 0; // a line
    LineEnd eFirst = E_END_NONE;
};

EndCounts Count_Ends(const PlainFile &stFile)
{
    EndCounts stCounts;
    const std::vector<PlainLine> &astLines = stFile.Get_Lines();
    for (size_t uiLine = 0; uiLine < astLines.size(); ++uiLine) {
        const LineEnd eEnd = astLines[uiLine].eEnd;
        ++stCounts.auiLines[eEnd];
        if (eEnd == E_END_NONE || eEnd == E_END_CR_LF || stCounts.eFirst != E_END_NONE) continue;
        stCounts.eFirst = eEnd;
        stCounts.uiFirst = uiLine;
    }
    return stCounts;
}

std::string Describe_Ends(const EndCounts &stCounts)
{
    std::string strText;
    for (const LineEnd eEnd : {E_END_LF, E_END_CR, E_END_CR_CR_LF})
        if (stCounts.auiLines[eEnd] > 0)
            strText += (strText.empty() ? "" : ", ") + Show_Count(stCounts.auiLines[eEnd], "line") +
                       " with " + END_NAMES[eEnd];
    return strText;
}

size_t Count_Visible(std::string_view strUtf8)
{
    return static_cast<size_t>(std::count_if(strUtf8.begin(), strUtf8.end(), [](char cByte) {
        return static_cast<unsigned char>(cByte) > ' ' && (cByte & 0xC0) != 0x80;
    }));
}

// What the box has of a caption that begins at a place, in a class.
using BoxCaptions = std::multimap<uint32_t, ZyrCaption>;

BoxCaptions Map_Box(const ZyrCaptions *pstBox)
{
    BoxCaptions stMap;
    ZyrCaption stCaption;
    for (uint32_t ui = 0; zyrCaptions_get(pstBox, ui, &stCaption) == ZYR_CAPTIONS_OK; ++ui)
        stMap.emplace(stCaption.uiSource, stCaption);
    return stMap;
}

bool Is_Same(const ZyrCaption &stA, const ZyrCaption &stB)
{
    return stA.iStart == stB.iStart && stA.iEnd == stB.iEnd && stA.uiClass == stB.uiClass &&
           std::string_view(stA.pszText, stA.uiTextBytes) == std::string_view(stB.pszText, stB.uiTextBytes);
}

bool Is_OnBox(const BoxCaptions &stBox, const ZyrCaption &stMeant)
{
    const auto [itFirst, itEnd] = stBox.equal_range(stMeant.uiSource);
    return std::any_of(itFirst, itEnd, [&](const auto &stPair) { return Is_Same(stPair.second, stMeant); });
}

std::string Tell_Lost(const ZyrCaption &stMeant)
{
    const std::string strText(stMeant.pszText, stMeant.uiTextBytes);
    return "the box does not show " + Quote(strText) + " at " + Show_Time(stMeant.iStart) +
           " as it would if all lines ended in CR LF";
}

void Find_Nul(Finder &stFinder)
{
    const std::string &strText = stFinder.stFile.Get_Text();
    const size_t uiFirst = strText.find('\0');
    if (uiFirst == std::string::npos) return;
    const auto uiAll = static_cast<size_t>(std::count(strText.begin(), strText.end(), '\0'));
    stFinder.Add(E_RULE_FILE_NUL, uiFirst, 1, ZYR_CAPTIONS_NONE,
                 "the character 0 is no text: the box drops it or breaks off there (" +
                     Show_Count(uiAll, "place") + ", this is the first)");
}

void Find_Unreadable(Finder &stFinder)
{
    const std::vector<size_t> &auiBad = stFinder.stFile.Get_Unreadable();
    if (auiBad.empty()) return;
    const PlainPlace stPlace = stFinder.stFile.Locate(auiBad.front());
    const std::string_view strBytes = stFinder.stFile.Get_Bytes();
    char szByte[8];
    std::snprintf(szByte, sizeof szByte, "0x%02X",
                  stPlace.uiOffset < strBytes.size() ? static_cast<uint8_t>(strBytes[stPlace.uiOffset]) : 0U);
    const bool bPage = stFinder.stAbout.pszCodePage != nullptr;
    stFinder.Add(E_RULE_FILE_UNREADABLE, auiBad.front(), 3, ZYR_CAPTIONS_NONE,
                 std::string("the byte ") + szByte + " is no character of " +
                     (bPage ? stFinder.stAbout.pszCodePage : stFinder.stAbout.pszEncoding) +
                     ", in which the box reads the file (" + Show_Count(auiBad.size(), "place") +
                     ", this is the first)");
}

void Find_CodePage(Finder &stFinder)
{
    const std::string_view strBytes = stFinder.stFile.Get_Bytes();
    const auto itHigh =
        std::find_if(strBytes.begin(), strBytes.end(), [](char cByte) { return (cByte & 0x80) != 0; });
    if (stFinder.stAbout.pszCodePage == nullptr || itHigh == strBytes.end()) return;
    const size_t uiText = stFinder.stFile.Find_Text(static_cast<size_t>(itHigh - strBytes.begin()));
    const std::string_view strLine = stFinder.stFile.Get_Line(stFinder.stFile.Find_Line(uiText));
    stFinder.Add(E_RULE_FILE_CODE_PAGE, uiText, 1, ZYR_CAPTIONS_NONE,
                 std::string("the file does not say that it is ") + stFinder.stAbout.pszCodePage +
                     ", as it is read here: a box set to another code page shows " + Quote(strLine) +
                     " otherwise");
}

} // namespace

void Find_LineEnds(Finder &stFinder)
{
    const EndCounts stCounts = Count_Ends(stFinder.stFile);
    if (stCounts.eFirst == E_END_NONE) return;
    const BoxCaptions stBox = Map_Box(stFinder.pstBox);
    size_t uiLost = 0;
    size_t uiLostText = 0;
    size_t uiText = 0;
    for (uint32_t uiCaption = 0; uiCaption < stFinder.astCaptions.size(); ++uiCaption) {
        const ZyrCaption &stMeant = stFinder.astCaptions[uiCaption];
        const size_t uiVisible = Count_Visible({stMeant.pszText, stMeant.uiTextBytes});
        uiText += uiVisible;
        if (uiVisible == 0 || Is_OnBox(stBox, stMeant)) continue;
        ++uiLost;
        uiLostText += uiVisible;
        const size_t uiLine = stFinder.stFile.Find_Line(stFinder.auiPlaces[uiCaption]);
        stFinder.Add(E_RULE_FILE_CUT_BY_ENDS, stFinder.auiPlaces[uiCaption],
                     stFinder.stFile.Get_Line(uiLine).size(), uiCaption, Tell_Lost(stMeant));
    }
    const size_t uiPlace = stFinder.stFile.Get_Lines()[stCounts.uiFirst].uiText;
    const std::string_view strLine = stFinder.stFile.Get_Line(stCounts.uiFirst);
    const std::string strWhat =
        "the box ends a line at CR LF alone, and the file has " + Describe_Ends(stCounts);
    if (uiText == 0) return; // there is nothing to lose
    if (uiLost == 0)
        stFinder.Add(E_RULE_FILE_OTHER_ENDS, uiPlace + strLine.size(), 1, ZYR_CAPTIONS_NONE,
                     strWhat + ", which changes nothing here");
    else
        stFinder.Add(E_RULE_FILE_LINE_ENDS, uiPlace + strLine.size(), 1, ZYR_CAPTIONS_NONE,
                     strWhat + ": " + std::to_string(uiLost) + " of " +
                         Show_Count(stFinder.astCaptions.size(), "caption") + " and " +
                         std::to_string(uiLostText) + " of " + Show_Count(uiText, "character") +
                         " are not shown as they would be");
}

void Find_InBytes(Finder &stFinder)
{
    Find_Nul(stFinder);
    Find_Unreadable(stFinder);
    Find_CodePage(stFinder);
}

// One caption's text: what is missing, what is added, how lines are wrapped.
#include <algorithm>
#include <map>
#include <string>

#include "finder.h"
#include "text_match.h"

namespace
{

constexpr uint32_t LINES_MOST = 6;
constexpr uint32_t FIRST_ASTRAL = 0x10000;

struct Comparison {
    Finder &stFinder;
    uint32_t uiCaption;
    const MissingRule &pfMissing;
    const std::vector<PlainCharacter> &astMeant;
    std::string_view strShown;
    const std::vector<PlainCharacter> &astShown;
    std::vector<std::string_view> astrLines; // that are shown
};

size_t Find_CharacterEnd(std::string_view strText, size_t uiAt)
{
    ++uiAt;
    while (uiAt < strText.size() && (strText[uiAt] & 0xC0) == 0x80) ++uiAt;
    return uiAt;
}

size_t Find_MeantEnd(const Comparison &stBoth, const PlainCharacter &stLast)
{
    if (stLast.usEntity > 0) return stLast.uiText + stLast.usEntity;
    return Find_CharacterEnd(stBoth.stFinder.stFile.Get_Text(), stLast.uiText);
}

// What is missing, cut where a line or markup begins: that is enough to see it.
void Add_Missing(const Comparison &stBoth, FindingRule eRule, uint32_t uiFirst, uint32_t uiEnd,
                 const std::string &strWhat)
{
    uint32_t uiLast = uiFirst;
    while (uiLast + 1 < uiEnd && stBoth.astMeant[uiLast + 1].eBreak != E_BREAK_LINE) ++uiLast;
    const size_t uiText = stBoth.astMeant[uiFirst].uiText;
    const size_t uiBytes = Find_MeantEnd(stBoth, stBoth.astMeant[uiLast]) - uiText;
    stBoth.stFinder.Add(eRule, uiText, uiBytes, stBoth.uiCaption,
                        Quote(std::string_view(stBoth.stFinder.stFile.Get_Text()).substr(uiText, uiBytes)) +
                            strWhat);
}

std::string Get_ShownPart(const Comparison &stBoth, const TextPart &stPart)
{
    if (stPart.uiShown == stPart.uiShownEnd) return "";
    const size_t uiFirst = stBoth.astShown[stPart.uiShown].uiText;
    const size_t uiEnd = Find_CharacterEnd(stBoth.strShown, stBoth.astShown[stPart.uiShownEnd - 1].uiText);
    return std::string(stBoth.strShown.substr(uiFirst, uiEnd - uiFirst));
}

bool Is_FullTo(const Comparison &stBoth, const TextPart &stPart)
{
    return stBoth.astrLines.size() >= LINES_MOST && stPart.uiMeantEnd == stBoth.astMeant.size() &&
           stPart.uiShown == stBoth.astShown.size();
}

// A character that the box cannot hold is told of by itself.
uint32_t Skip_Astral(const Comparison &stBoth, uint32_t uiFirst, uint32_t uiEnd)
{
    uint32_t uiAt = uiFirst;
    while (uiAt < uiEnd && stBoth.astMeant[uiAt].uiCharacter >= FIRST_ASTRAL) ++uiAt;
    if (uiAt > uiFirst)
        Add_Missing(stBoth, E_RULE_TEXT_ASTRAL, uiFirst, uiAt, " is beyond U+FFFF, and the box drops it");
    return uiAt;
}

void Tell_Missing(const Comparison &stBoth, const TextPart &stPart, uint32_t uiFirst)
{
    const PlainCharacter &stFirst = stBoth.astMeant[uiFirst];
    if (Is_FullTo(stBoth, stPart))
        return Add_Missing(stBoth, E_RULE_TEXT_SEVENTH_LINE, uiFirst, stPart.uiMeantEnd,
                           " is not shown: the caption is full with six lines");
    if (stFirst.uiCharacter == '<' && stFirst.usEntity == 0)
        return Add_Missing(stBoth, E_RULE_TEXT_OPEN_TAG, uiFirst, stPart.uiMeantEnd,
                           " is taken for a tag and not shown");
    const FindingRule eRule = stBoth.pfMissing(stFirst.uiText);
    Add_Missing(stBoth, eRule, uiFirst, stPart.uiMeantEnd, " is not shown");
}

void Tell_Added(const Comparison &stBoth, const TextPart &stPart)
{
    const std::string strAdded = Get_ShownPart(stBoth, stPart);
    const std::string &strFile = stBoth.stFinder.stFile.Get_Text();
    const size_t uiNear = stBoth.astMeant.empty() ? stBoth.stFinder.auiPlaces[stBoth.uiCaption]
                          : stPart.uiMeant > 0    ? Find_MeantEnd(stBoth, stBoth.astMeant[stPart.uiMeant - 1])
                                                  : stBoth.stFinder.auiPlaces[stBoth.uiCaption];
    const size_t uiFound = strFile.find(strAdded.substr(0, strAdded.find('\n')), uiNear);
    const bool bOverride = strAdded.starts_with("{\\") || strAdded.starts_with("\\");
    stBoth.stFinder.Add(
        bOverride && stBoth.stFinder.stAbout.uiFormat != ZYR_CAPTIONS_SSA ? E_RULE_TEXT_OVERRIDE
                                                                          : E_RULE_TEXT_ADDED,
        uiFound == std::string::npos ? uiNear : uiFound, uiFound == std::string::npos ? 1 : strAdded.size(),
        stBoth.uiCaption, "the box shows " + Quote(strAdded) + " as text");
}

void Tell_Part(const Comparison &stBoth, const TextPart &stPart)
{
    const uint32_t uiFirst = Skip_Astral(stBoth, stPart.uiMeant, stPart.uiMeantEnd);
    const bool bAstral = uiFirst > stPart.uiMeant;
    if (uiFirst < stPart.uiMeantEnd)
        Tell_Missing(stBoth, stPart, uiFirst);
    else if (stPart.uiShown < stPart.uiShownEnd && !bAstral)
        Tell_Added(stBoth, stPart);
}

// Lines that are shown for one line that was meant.
struct LineUse {
    uint32_t uiFirst; // shown
    uint32_t uiLast;
    uint32_t uiMeant; // its first character
};

void Tell_Wrapped(const Comparison &stBoth, const LineUse &stUse)
{
    std::string strLines;
    for (uint32_t uiLine = stUse.uiFirst; uiLine <= stUse.uiLast && uiLine < stBoth.astrLines.size();
         ++uiLine)
        strLines += (strLines.empty() ? "" : " / ") + Quote(stBoth.astrLines[uiLine]);
    const size_t uiText = stBoth.astMeant[stUse.uiMeant].uiText;
    const PlainFile &stFile = stBoth.stFinder.stFile;
    const size_t uiLine = stFile.Find_Line(uiText);
    const size_t uiEnd = stFile.Get_Lines()[uiLine].uiText + stFile.Get_Line(uiLine).size();
    stBoth.stFinder.Add(E_RULE_TEXT_WRAPPED, uiText, uiEnd - uiText, stBoth.uiCaption,
                        "the line has more than 64 characters and is wrapped to " + strLines);
}

void Tell_Cut(const Comparison &stBoth, const TextPair &stPair)
{
    uint32_t uiFirst = stPair.uiMeant;
    while (uiFirst > 0 && stBoth.astMeant[uiFirst].eBreak == E_BREAK_NONE) --uiFirst;
    const size_t uiText = stBoth.astMeant[uiFirst].uiText;
    const size_t uiCut = stBoth.astMeant[stPair.uiMeant].uiText;
    stBoth.stFinder.Add(
        E_RULE_TEXT_WORD_CUT, uiText, uiCut - uiText, stBoth.uiCaption,
        "the word is cut behind " +
            Quote(std::string_view(stBoth.stFinder.stFile.Get_Text()).substr(uiText, uiCut - uiText)));
}

void Tell_Joined(const Comparison &stBoth, const TextPair &stPair)
{
    const size_t uiBefore = stBoth.astMeant[stPair.uiMeant - 1].uiText;
    const size_t uiAfter = Find_MeantEnd(stBoth, stBoth.astMeant[stPair.uiMeant]);
    stBoth.stFinder.Add(E_RULE_TEXT_JOINED, uiBefore, uiAfter - uiBefore, stBoth.uiCaption,
                        "the box shows nothing between these two characters: the words run together");
}

void Find_Breaks(const Comparison &stBoth, const TextMatch &stMatch)
{
    std::map<uint32_t, LineUse> stLines; // by the line that was meant
    uint32_t uiJoined = 0;
    for (size_t ui = 0; ui < stMatch.astPairs.size(); ++ui) {
        const TextPair &stPair = stMatch.astPairs[ui];
        const PlainCharacter &stMeant = stBoth.astMeant[stPair.uiMeant];
        const PlainCharacter &stShown = stBoth.astShown[stPair.uiShown];
        auto [itUse, bNew] =
            stLines.try_emplace(stMeant.uiLine, LineUse{stShown.uiLine, stShown.uiLine, stPair.uiMeant});
        if (stMeant.uiCharacter >= FIRST_ASTRAL)
            Add_Missing(stBoth, E_RULE_TEXT_ASTRAL, stPair.uiMeant, stPair.uiMeant + 1,
                        " is beyond U+FFFF, and the box draws two wrong shapes for it");
        itUse->second.uiLast = std::max(itUse->second.uiLast, stShown.uiLine);
        const bool bFollows = ui > 0 && stMatch.astPairs[ui - 1].uiMeant + 1 == stPair.uiMeant &&
                              stMatch.astPairs[ui - 1].uiShown + 1 == stPair.uiShown;
        if (!bFollows || stMeant.usEntity > 0 || stBoth.astMeant[stPair.uiMeant - 1].usEntity > 0) continue;
        if (stMeant.eBreak == E_BREAK_NONE && stShown.eBreak == E_BREAK_LINE) Tell_Cut(stBoth, stPair);
        if (stMeant.eBreak != E_BREAK_NONE && stShown.eBreak == E_BREAK_NONE && uiJoined++ == 0)
            Tell_Joined(stBoth, stPair);
    }
    for (const auto &[uiLine, stUse] : stLines)
        if (stUse.uiLast > stUse.uiFirst) Tell_Wrapped(stBoth, stUse);
}

std::vector<std::string_view> Split_Shown(std::string_view strShown)
{
    std::vector<std::string_view> astrLines;
    for (size_t uiFirst = 0; uiFirst < strShown.size();) {
        const size_t uiEnd = std::min(strShown.find('\n', uiFirst), strShown.size());
        astrLines.push_back(strShown.substr(uiFirst, uiEnd - uiFirst));
        uiFirst = uiEnd + 1;
    }
    return astrLines;
}

} // namespace

void Find_InText(Finder &stFinder, uint32_t uiCaption, const PlainText &stMeant, const MissingRule &pfMissing)
{
    const ZyrCaption &stCaption = stFinder.astCaptions[uiCaption];
    const std::string_view strShown(stCaption.pszText, stCaption.uiTextBytes);
    PlainText stShown(strShown);
    stShown.Read_Shown(0, strShown.size());
    const Comparison stBoth{
        stFinder, uiCaption, pfMissing, stMeant.Get(), strShown, stShown.Get(), Split_Shown(strShown)};
    const TextMatch stMatch = Match_Texts(stFinder.stFile.Get_Text(), stMeant.Get(), stShown.Get());
    for (const TextPart &stPart : stMatch.astParts) Tell_Part(stBoth, stPart);
    for (const uint32_t uiEntity : stMatch.auiEntities)
        Add_Missing(stBoth, E_RULE_TEXT_ENTITY, uiEntity, uiEntity + 1,
                    " is no entity that the box knows: it stays as it is");
    Find_Breaks(stBoth, stMatch);
    for (const MarkupNote &stNote : stMeant.Get_Notes())
        stFinder.Add(stNote.eRule, stNote.uiText, stNote.uiTextBytes, uiCaption, stNote.strSentence);
}

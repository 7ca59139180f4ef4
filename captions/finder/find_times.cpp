// Times of captions as a viewer has them: order, overlap, length, reading speed.
#include <algorithm>
#include <map>
#include <string>

#include "finder.h"

namespace
{

constexpr uint32_t USUAL_SPEED = 25;      // characters a second
constexpr uint32_t USUAL_LONGEST = 15000; // ms

// Characters that are read, blanks within lines among them.
size_t Count_Characters(const ZyrCaption &stCaption)
{
    return static_cast<size_t>(
        std::count_if(stCaption.pszText, stCaption.pszText + stCaption.uiTextBytes,
                      [](char cByte) { return cByte != '\n' && (cByte & 0xC0) != 0x80; }));
}

bool Is_Shown(const ZyrCaption &stCaption)
{
    return std::any_of(stCaption.pszText, stCaption.pszText + stCaption.uiTextBytes,
                       [](char cByte) { return static_cast<unsigned char>(cByte) > ' '; });
}

// The caption's first line in the file.
void Add_At(Finder &stFinder, FindingRule eRule, uint32_t uiCaption, std::string strSentence)
{
    const size_t uiPlace = stFinder.auiPlaces[uiCaption];
    const size_t uiLine = stFinder.stFile.Find_Line(uiPlace);
    const size_t uiEnd = stFinder.stFile.Get_Lines()[uiLine].uiText + stFinder.stFile.Get_Line(uiLine).size();
    stFinder.Add(eRule, uiPlace, std::max<size_t>(uiEnd - uiPlace, 1), uiCaption, std::move(strSentence));
}

void Find_Length(Finder &stFinder, uint32_t uiCaption)
{
    const ZyrCaption &stCaption = stFinder.astCaptions[uiCaption];
    const ZyrFindingsOptions &stOptions = stFinder.stOptions;
    const bool bSami = stFinder.stAbout.uiFormat == ZYR_CAPTIONS_SAMI;
    if (stCaption.iShownUntil == ZYR_CAPTIONS_OPEN_END) {
        if (bSami && stCaption.iEnd == ZYR_CAPTIONS_OPEN_END)
            Add_At(stFinder, E_RULE_TIME_NO_END, uiCaption,
                   "nothing in the file takes this caption off the screen");
        return;
    }
    const int64_t llLength = static_cast<int64_t>(stCaption.iShownUntil) - stCaption.iStart;
    const size_t uiCharacters = Count_Characters(stCaption);
    const uint32_t uiLongest = stOptions.uiLongestMs == 0 ? USUAL_LONGEST : stOptions.uiLongestMs;
    const uint32_t uiSpeed =
        stOptions.uiCharactersPerSecond == 0 ? USUAL_SPEED : stOptions.uiCharactersPerSecond;
    if (llLength <= 0)
        Add_At(stFinder, E_RULE_TIME_NEVER, uiCaption,
               "the caption begins at " + Show_Time(stCaption.iStart) + " and ends at " +
                   Show_Time(stCaption.iShownUntil) + ", so that it is never on screen");
    else if (uiLongest != ZYR_CAPTIONS_NONE && llLength > uiLongest)
        Add_At(stFinder, E_RULE_TIME_LONG, uiCaption,
               "the caption stays on screen from " + Show_Time(stCaption.iStart) + " to " +
                   Show_Time(stCaption.iShownUntil));
    else if (uiSpeed != ZYR_CAPTIONS_NONE &&
             static_cast<int64_t>(uiCharacters) * 1000 > static_cast<int64_t>(uiSpeed) * llLength)
        Add_At(stFinder, E_RULE_TIME_FAST, uiCaption,
               Show_Count(uiCharacters, "character") + " in " + std::to_string(llLength) + " ms are " +
                   std::to_string(static_cast<int64_t>(uiCharacters) * 1000 / llLength) + " a second");
}

// In the order in which the box hands them out.
void Find_Order(Finder &stFinder, uint32_t uiCaption, const ZyrCaption &stBefore)
{
    const ZyrCaption &stCaption = stFinder.astCaptions[uiCaption];
    if (stCaption.iStart < stBefore.iStart)
        Add_At(stFinder, E_RULE_TIME_ORDER, uiCaption,
               "the caption of " + Show_Time(stCaption.iStart) + " comes behind that of " +
                   Show_Time(stBefore.iStart) + ", as the file has them");
    else if (stCaption.iStart < stBefore.iEnd && stBefore.iEnd != ZYR_CAPTIONS_OPEN_END && Is_Shown(stBefore))
        Add_At(stFinder, E_RULE_TIME_OVERLAP, uiCaption,
               "the caption begins at " + Show_Time(stCaption.iStart) +
                   ", and the one before goes on until " + Show_Time(stBefore.iEnd));
}

} // namespace

void Find_InTimes(Finder &stFinder)
{
    std::map<uint32_t, uint32_t> auiLast; // by class
    for (uint32_t uiCaption = 0; uiCaption < stFinder.astCaptions.size(); ++uiCaption) {
        const ZyrCaption &stCaption = stFinder.astCaptions[uiCaption];
        const bool bSami = stFinder.stAbout.uiFormat == ZYR_CAPTIONS_SAMI;
        const auto itLast = auiLast.find(stCaption.uiClass);
        if (!bSami && itLast != auiLast.end())
            Find_Order(stFinder, uiCaption, stFinder.astCaptions[itLast->second]);
        auiLast[stCaption.uiClass] = uiCaption;
        if (Is_Shown(stCaption))
            Find_Length(stFinder, uiCaption);
        else if (!bSami)
            Add_At(stFinder, E_RULE_TIME_EMPTY, uiCaption, "the caption has no text: it shows nothing");
    }
}

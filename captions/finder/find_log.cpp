// Errors that the engine has logged on the way, held against what was found without it.
#include <algorithm>
#include <string>

#include "finder.h"

namespace
{

constexpr int LOG_ERROR = 6;
constexpr std::string_view PARSER_TAG = "ZYR_SUBTITLE_PARSER";

// A message without the place in the engine's source and without its line end.
std::string Strip_Message(std::string_view strMessage)
{
    const size_t uiBracket = strMessage.find("] ");
    if (uiBracket < 12) strMessage.remove_prefix(uiBracket + 2);
    while (!strMessage.empty() && static_cast<unsigned char>(strMessage.back()) <= ' ')
        strMessage.remove_suffix(1);
    return std::string(strMessage);
}

// The end of a file is an error to the reader, and none of the file's; the end tags of a SAMI file close nothing that
// is open in a caption. Classes are told of by name elsewhere.
bool Is_Ordinary(std::string_view strMessage, bool bSami)
{
    for (const char *const pszOne : {"Get_CharCode() Failed", "End of Caption File",
                                     "Unregistered Clase Name", "Too Many Language Class"})
        if (strMessage.find(pszOne) != std::string_view::npos) return true;
    return bSami && (strMessage.find("Tag Queue is already EMPTY") != std::string_view::npos ||
                     strMessage.find("find the matching tag type") != std::string_view::npos);
}

// The colour that a run of messages is about: in one of them, or a character in each of those behind it.
std::string Read_Colour(const Finder &stFinder, uint32_t uiLine, std::string_view strMessage)
{
    static constexpr std::string_view SIGN = "DATA = ";
    const size_t uiSign = strMessage.find(SIGN);
    if (uiSign == std::string_view::npos) return "";
    std::string strColour(strMessage.substr(uiSign + SIGN.size()));
    if (strMessage.find("Failed") == std::string_view::npos) return strColour.substr(0, strColour.find(','));
    ZyrCaptionLogLine stNext;
    while (zyrCaptions_getLogLine(stFinder.pstMeant, ++uiLine, &stNext) == ZYR_CAPTIONS_OK &&
           *stNext.pszText != ')')
        strColour += stNext.pszText;
    return strColour;
}

// Whether the message is about a colour, which is then told at its place.
bool Find_Colour(Finder &stFinder, uint32_t uiLine, const ZyrCaptionLogLine &stLine)
{
    const std::string_view strMessage = stLine.pszText;
    if (strMessage.find("Color") == std::string_view::npos) return false;
    const std::string strColour = Read_Colour(stFinder, uiLine, strMessage);
    const size_t uiPlace = stFinder.auiPlaces[stLine.uiCaption];
    const size_t uiTag =
        std::min(stFinder.stFile.Get_Lower().find("color", uiPlace), stFinder.stFile.Get_Text().size());
    const size_t uiValue = strColour.empty() ? uiTag : stFinder.stFile.Get_Text().find(strColour, uiTag);
    stFinder.Add(E_RULE_TEXT_COLOUR, std::min(uiValue, stFinder.stFile.Get_Text().size()),
                 std::max<size_t>(strColour.size(), 1), stLine.uiCaption,
                 "the box does not know the colour " + Quote(strColour) + " and leaves it out");
    return true;
}

// Where findings are, in order.
std::vector<size_t> List_Places(const Finder &stFinder)
{
    std::vector<size_t> auiTold;
    for (const FindingRecord &stOne : stFinder.astFindings) {
        if (!stOne.bWholeFile) auiTold.push_back(stOne.uiText);
        if (stOne.uiCaption < stFinder.auiPlaces.size())
            auiTold.push_back(stFinder.auiPlaces[stOne.uiCaption]);
    }
    std::sort(auiTold.begin(), auiTold.end());
    return auiTold;
}

// From the caption before, for what was passed over on the way, to the one behind.
bool Is_Told(const Finder &stFinder, const std::vector<size_t> &auiTold, uint32_t uiCaption)
{
    const std::vector<size_t> &auiPlaces = stFinder.auiPlaces;
    const size_t uiFirst = uiCaption == 0 ? 0 : auiPlaces[uiCaption - 1] + 1;
    const size_t uiEnd = uiCaption + 1 < auiPlaces.size() ? auiPlaces[uiCaption + 1] : SIZE_MAX;
    const auto itTold = std::lower_bound(auiTold.begin(), auiTold.end(), uiFirst);
    return itTold != auiTold.end() && *itTold < uiEnd;
}

bool Is_Parser(const ZyrCaptionLogLine &stLine)
{
    return stLine.iPriority >= LOG_ERROR && stLine.pszTag != nullptr &&
           std::string_view(stLine.pszTag) == PARSER_TAG;
}

} // namespace

// A message belongs to the caption that was being read; what comes behind the last one is the end's.
void Find_InLog(Finder &stFinder)
{
    const bool bSami = stFinder.stAbout.uiFormat == ZYR_CAPTIONS_SAMI;
    const std::vector<size_t> auiTold = List_Places(stFinder);
    ZyrCaptionLogLine stLine;
    uint32_t uiLast = ZYR_CAPTIONS_NONE;
    for (uint32_t ui = 0; zyrCaptions_getLogLine(stFinder.pstMeant, ui, &stLine) == ZYR_CAPTIONS_OK; ++ui) {
        const uint32_t uiCaption = stLine.uiCaption;
        if (!Is_Parser(stLine) || uiCaption >= stFinder.astCaptions.size()) continue;
        if (Find_Colour(stFinder, ui, stLine)) uiLast = uiCaption;
        if (uiCaption == uiLast) continue;
        if (Is_Ordinary(stLine.pszText, bSami) || Is_Told(stFinder, auiTold, uiCaption)) continue;
        uiLast = uiCaption;
        const size_t uiPlace = stFinder.auiPlaces[uiCaption];
        stFinder.Add(E_RULE_FILE_LOG, uiPlace,
                     stFinder.stFile.Get_Line(stFinder.stFile.Find_Line(uiPlace)).size(), uiCaption,
                     "the box logs an error in this caption: " + Quote(Strip_Message(stLine.pszText)));
    }
}

// Errors that the engine has logged on the way, held against what was found without it.
#include <algorithm>
#include <string>

#include "finder.h"

namespace
{

constexpr int LOG_ERROR = 6;

// A message without the place in the engine's source and without its line end.
std::string Strip_Message(std::string_view strMessage)
{
    const size_t uiBracket = strMessage.find("] ");
    if (uiBracket != std::string_view::npos && uiBracket < 12) strMessage.remove_prefix(uiBracket + 2);
    while (!strMessage.empty() && static_cast<unsigned char>(strMessage.back()) <= ' ')
        strMessage.remove_suffix(1);
    return std::string(strMessage);
}

// The end of the file is an error to the reader, and none of the file's. Classes are told of by name elsewhere.
bool Is_Ordinary(std::string_view strMessage)
{
    return strMessage.find("Get_CharCode() Failed") != std::string_view::npos ||
           strMessage.find("Failed in parsing") != std::string_view::npos ||
           strMessage.find("Unregistered Clase Name") != std::string_view::npos;
}

} // namespace

// A message belongs to the caption that was being read; behind the last one it belongs to what is left.
void Find_InLog(Finder &stFinder)
{
    ZyrCaptionLogLine stLine;
    uint32_t uiTold = ZYR_CAPTIONS_NONE;
    for (uint32_t ui = 0; zyrCaptions_getLogLine(stFinder.pstMeant, ui, &stLine) == ZYR_CAPTIONS_OK; ++ui) {
        if (stLine.iPriority < LOG_ERROR || stLine.uiCaption >= stFinder.astCaptions.size()) continue;
        if (stLine.uiCaption == uiTold || Is_Ordinary(stLine.pszText)) continue;
        const size_t uiPlace = stFinder.auiPlaces[stLine.uiCaption];
        const bool bTold = std::any_of(
            stFinder.astFindings.begin(), stFinder.astFindings.end(), [&](const FindingRecord &stOne) {
                return stOne.uiCaption == stLine.uiCaption || (!stOne.bWholeFile && stOne.uiText == uiPlace);
            });
        if (bTold) continue;
        uiTold = stLine.uiCaption;
        const size_t uiFileLine = stFinder.stFile.Find_Line(uiPlace);
        stFinder.Add(E_RULE_FILE_LOG, uiPlace, stFinder.stFile.Get_Line(uiFileLine).size(), stLine.uiCaption,
                     "the box logs an error in this caption: " + Quote(Strip_Message(stLine.pszText)));
    }
}

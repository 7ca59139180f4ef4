#include "markup/tag_arguments.h"

#include <algorithm>

#include "record/engine_log.h"
#include "record/parser_state.h"
#include "text/text_helpers.h"

namespace
{

bool Is_Letter(uint32_t uiUnit)
{
    return To_Upper(uiUnit) - 'A' < 26;
}

/** Read the first attribute of a text, as far as it goes. @return the unit that closes its value, or the text's end */
const uint16_t *Read_Argument(TagArguments &stArguments, TagArgument &stArgument, const uint16_t *pusText,
                              const uint16_t *pusEnd)
{
    stArgument.pusName = std::find_if(pusText, pusEnd, Is_Letter);
    const uint16_t *pusUnit = std::find_if_not(stArgument.pusName, pusEnd, Is_Letter);
    stArgument.uiNameLength = static_cast<uint32_t>(pusUnit - stArgument.pusName);
    if (pusUnit < pusEnd && !Is_Blank(*pusUnit) && *pusUnit != '=') {
        LOG_PARSER("Unexpected Character! (0x%04X)\n", *pusUnit);
        stArguments.bLogged = true;
    }
    pusUnit = std::find(pusUnit, pusEnd, uint16_t{'='});
    if (pusUnit < pusEnd) pusUnit = std::find_if_not(pusUnit + 1, pusEnd, Is_Blank);
    if (pusUnit == pusEnd) return pusEnd;
    const bool bQuoted = *pusUnit == '"' || *pusUnit == '\'';
    stArgument.pusValue = bQuoted ? pusUnit + 1 : pusUnit;
    const uint16_t *const pusClose = bQuoted ? std::find(stArgument.pusValue, pusEnd, *pusUnit)
                                             : std::find_if(stArgument.pusValue, pusEnd, Is_Blank);
    stArgument.uiValueLength = static_cast<uint32_t>(pusClose - stArgument.pusValue);
    return pusClose;
}

} // namespace

void Split_TagArguments(TagArguments *pstArguments, const uint16_t *pusText, uint32_t uiLen)
{
    pstArguments->uiNums = 0;
    pstArguments->bLogged = uiLen == 0;
    if (uiLen == 0) {
        LOG_PARSER("Input Argument is bad! (0x%08X, %d, 0x%08X)\n",
                   static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pusText)), 0,
                   static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pstArguments->astArgument)));
        return;
    }
    const uint16_t *const pusEnd = pusText + uiLen;
    for (const uint16_t *pusUnit = pusText; pusUnit < pusEnd; ++pusUnit) {
        TagArgument stArgument = {};
        pusUnit = Read_Argument(*pstArguments, stArgument, pusUnit, pusEnd);
        if (pusUnit == pusEnd && stArgument.uiValueLength == 0) return;
        pstArguments->astArgument[pstArguments->uiNums++] = stArgument;
        if (pusUnit == pusEnd) return;
        if (pstArguments->uiNums == TAG_ARGUMENTS_MAX) {
            LOG_PARSER("Argument Count is FULL! (COUNT = %d)\n", static_cast<int32_t>(TAG_ARGUMENTS_MAX));
            pstArguments->bLogged = true;
            return;
        }
    }
}

bool Is_ArgumentNamed(const TagArgument &stArgument, const char *pszName)
{
    if (stArgument.uiNameLength != std::strlen(pszName)) return false;
    for (uint32_t uiPos = 0; uiPos < stArgument.uiNameLength; ++uiPos)
        if (To_Upper(stArgument.pusName[uiPos]) != static_cast<uint8_t>(pszName[uiPos])) return false;
    return true;
}

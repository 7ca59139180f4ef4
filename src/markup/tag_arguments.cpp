#include "markup/tag_arguments.h"

#include "record/engine_log.h"
#include "record/parser_state.h"
#include "text/text_helpers.h"

namespace
{

enum ArgumentState : uint32_t {
    E_ARG_SEEK_NAME,
    E_ARG_NAME,
    E_ARG_SEEK_EQUALS,
    E_ARG_SEEK_VALUE,
    E_ARG_BARE,
    E_ARG_QUOTED,
    E_ARG_STORE
};

struct ArgumentSplitter {
    TagArguments *pstArguments;
    TagArgument stPending;
    ArgumentState eState;
    uint32_t uiQuote;
};

bool Is_Letter(uint32_t uiUnit)
{
    return uiUnit - 'A' < 26;
}

// One function per state. Each gives whether its unit is done with; if not, the next state sees it again.

bool Step_SeekName(ArgumentSplitter &stSplit, const uint16_t *pusUnit, uint32_t uiUnit)
{
    if (!Is_Letter(uiUnit)) return true;
    stSplit.stPending.pusName = pusUnit;
    stSplit.stPending.uiNameLength = 0;
    stSplit.eState = E_ARG_NAME;
    return false;
}

bool Step_Name(ArgumentSplitter &stSplit, uint32_t uiUnit)
{
    if (Is_Letter(uiUnit)) {
        ++stSplit.stPending.uiNameLength;
        return true;
    }
    if (!Is_Blank(uiUnit) && uiUnit != '=') {
        LOG_PARSER("Unexpected Character! (0x%04X)\n", uiUnit);
        stSplit.pstArguments->bLogged = true;
    }
    stSplit.eState = E_ARG_SEEK_EQUALS;
    return false;
}

bool Step_SeekValue(ArgumentSplitter &stSplit, const uint16_t *pusUnit, uint32_t uiUnit)
{
    if (Is_Blank(uiUnit)) return true;
    const bool bQuote = uiUnit == '"' || uiUnit == '\'';
    stSplit.stPending.pusValue = bQuote ? pusUnit + 1 : pusUnit;
    stSplit.stPending.uiValueLength = 0;
    stSplit.uiQuote = uiUnit;
    stSplit.eState = bQuote ? E_ARG_QUOTED : E_ARG_BARE;
    return bQuote;
}

bool Step_Value(ArgumentSplitter &stSplit, bool bEnd)
{
    if (bEnd) {
        stSplit.eState = E_ARG_STORE;
        return false;
    }
    ++stSplit.stPending.uiValueLength;
    return true;
}

void Store_Pending(ArgumentSplitter &stSplit)
{
    TagArguments &stArguments = *stSplit.pstArguments;
    stArguments.astArgument[stArguments.uiNums++] = stSplit.stPending;
    stSplit.stPending = {};
    stSplit.eState = E_ARG_SEEK_NAME;
}

bool Step_Argument(ArgumentSplitter &stSplit, const uint16_t *pusUnit)
{
    const uint32_t uiUnit = To_Upper(*pusUnit);
    switch (stSplit.eState) {
    case E_ARG_SEEK_NAME: return Step_SeekName(stSplit, pusUnit, uiUnit);
    case E_ARG_NAME: return Step_Name(stSplit, uiUnit);
    case E_ARG_SEEK_EQUALS:
        if (uiUnit == '=') stSplit.eState = E_ARG_SEEK_VALUE;
        return true;
    case E_ARG_SEEK_VALUE: return Step_SeekValue(stSplit, pusUnit, uiUnit);
    case E_ARG_BARE: return Step_Value(stSplit, Is_Blank(uiUnit));
    case E_ARG_QUOTED: return Step_Value(stSplit, uiUnit == stSplit.uiQuote);
    case E_ARG_STORE: Store_Pending(stSplit); return true;
    }
    return true;
}

bool Is_Complete(const TagArgument &stArgument)
{
    return stArgument.pusName != nullptr && stArgument.uiNameLength != 0 && stArgument.pusValue != nullptr &&
           stArgument.uiValueLength != 0;
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
    ArgumentSplitter stSplit = {pstArguments, {}, E_ARG_SEEK_NAME, 0};
    for (uint32_t uiPos = 0; uiPos < uiLen;) {
        if (Step_Argument(stSplit, pusText + uiPos)) ++uiPos;
        if (pstArguments->uiNums == TAG_ARGUMENTS_MAX) {
            LOG_PARSER("Argument Count is FULL! (COUNT = %d)\n", static_cast<int32_t>(TAG_ARGUMENTS_MAX));
            pstArguments->bLogged = true;
            return;
        }
    }
    if (Is_Complete(stSplit.stPending)) Store_Pending(stSplit);
}

bool Is_ArgumentNamed(const TagArgument &stArgument, const char *pszName)
{
    if (stArgument.uiNameLength != std::strlen(pszName)) return false;
    for (uint32_t uiPos = 0; uiPos < stArgument.uiNameLength; ++uiPos)
        if (To_Upper(stArgument.pusName[uiPos]) != static_cast<uint8_t>(pszName[uiPos])) return false;
    return true;
}

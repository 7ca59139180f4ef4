#include "format/ssa/ssa_line.h"

#include <cstring>

#include "record/engine_log.h"
#include "text/text_helpers.h"

namespace
{

constexpr uint32_t PTS_DIGITS = 7;
constexpr int32_t NAME_UNITS = 30; // longest key or section name, what closes it included

constexpr const char *SSALineTypeTable[] = {"Dialogue", "Style", "Title", "Original Script", "ScriptType"};
static_assert(std::size(SSALineTypeTable) == E_SSA_LINE_UNKNOWN);

} // namespace

uint32_t Parse_SSAPts(const uint16_t *pusTime, int32_t iLen)
{
    uint32_t uiDigits = 0;
    uint32_t uiNumber = 0; // HMMSSCC; of more digits than that only their count matters
    for (int32_t iPos = 0; pusTime != nullptr && iPos < iLen; ++iPos) {
        if (!Is_Digit(pusTime[iPos])) continue;
        uiNumber = uiNumber * 10 + (pusTime[iPos] - '0');
        ++uiDigits;
    }
    if (uiDigits == PTS_DIGITS)
        return uiNumber / 1000000 * 3600000 + uiNumber / 10000 % 100 * 60000 + uiNumber % 10000 * 10;
    LOG_PARSER("SSA PTS FORMAT is BAD! Number Argument = [%d]\n", static_cast<int32_t>(uiDigits));
    return 0;
}

uint32_t Find_SSAName(std::span<const char *const> stNames, const uint16_t *pusText, int32_t iLen)
{
    const uint32_t uiNums = static_cast<uint32_t>(stNames.size());
    const uint32_t uiLen = static_cast<uint32_t>(iLen);
    if (pusText == nullptr || iLen < 2 || iLen > NAME_UNITS) return uiNums;
    char szText[NAME_UNITS + 1] = {};
    uint16_t usBad = 0;
    if (Copy_AsciiUnits(szText, pusText, uiLen, &usBad) < uiLen) {
        LOG_PARSER("Bad SSA LineType Name Character! [0x%04X]\n", usBad);
        return uiNums;
    }
    uint32_t uiName = 0;
    while (uiName < uiNums && Compare_StringNoCase(stNames[uiName], szText,
                                                   static_cast<uint32_t>(std::strlen(stNames[uiName]))) == 0)
        ++uiName;
    return uiName;
}

uint32_t Get_SSALineType(const uint16_t *pusName, int32_t iLen)
{
    return Find_SSAName(SSALineTypeTable, pusName, iLen);
}

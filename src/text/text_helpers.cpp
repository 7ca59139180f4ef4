#include "text/text_helpers.h"

#include <cstring>

#include "record/parser_state.h"
#include "zyr_log.h"

namespace
{

constexpr int32_t NUMBER_DIGITS = 8; // longest number, decimal or hexadecimal
constexpr uint32_t PTS_DIGITS = 7;
constexpr int32_t KEY_UNITS = 30; // longest key of an SSA line, its colon included

constexpr const char *SSALineTypeTable[] = {"Dialogue", "Style", "Title", "Original Script", "ScriptType"};
static_assert(sizeof(SSALineTypeTable) / sizeof(SSALineTypeTable[0]) == E_SSA_LINE_UNKNOWN);

uint32_t Get_HexNumber(const uint16_t *pusDigits, int32_t iLen)
{
    if (iLen > NUMBER_DIGITS) return 0;
    uint32_t uiValue = 0;
    for (int32_t iPos = 0; iPos < iLen; ++iPos) {
        const int32_t iDigit = Get_HexValue(pusDigits[iPos]);
        if (iDigit < 0) break;
        uiValue = (uiValue << 4) | static_cast<uint32_t>(iDigit);
    }
    return uiValue;
}

} // namespace

uint32_t QUIBCAPTPARS_Str2Number(const uint16_t *pusStr, int32_t iLen)
{
    if (pusStr == nullptr || iLen < 1) return 0;
    if (iLen >= 2 && pusStr[0] == '&' && pusStr[1] == 'H') return Get_HexNumber(pusStr + 2, iLen - 2);
    if (iLen > NUMBER_DIGITS) return 0;
    uint32_t uiValue = 0;
    for (int32_t iPos = 0; iPos < iLen && Is_Digit(pusStr[iPos]); ++iPos)
        uiValue = uiValue * 10 + (pusStr[iPos] - '0');
    return uiValue;
}

int32_t QUIBCAPTPARS_StrCmp(const uint16_t *pusA, const uint16_t *pusB, int32_t iLen)
{
    if (iLen < 1) return 1;
    if (pusA == nullptr || pusB == nullptr) return -1;
    for (int32_t iPos = 0; iPos < iLen; ++iPos)
        if (pusA[iPos] != pusB[iPos]) return -1;
    return 1;
}

uint32_t Compare_StringNoCase(const void *pvA, const void *pvB, uint32_t uiLen)
{
    if (pvA == nullptr || pvB == nullptr || uiLen == 0) return 0;
    const uint8_t *const pucA = static_cast<const uint8_t *>(pvA);
    const uint8_t *const pucB = static_cast<const uint8_t *>(pvB);
    for (uint32_t uiPos = 0; uiPos < uiLen; ++uiPos)
        if (pucA[uiPos] != pucB[uiPos] && To_Upper(pucA[uiPos]) != To_Upper(pucB[uiPos])) return 0;
    return 1;
}

uint32_t Copy_AsciiUnits(char *pszTarget, const uint16_t *pusUnits, uint32_t uiLen, uint16_t *pusBad)
{
    for (uint32_t uiPos = 0; uiPos < uiLen; ++uiPos) {
        if (pusUnits[uiPos] > 0x7F) {
            *pusBad = pusUnits[uiPos];
            return uiPos;
        }
        pszTarget[uiPos] = static_cast<char>(pusUnits[uiPos]);
    }
    return uiLen;
}

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
    __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG,
                        " [%d] SSA PTS FORMAT is BAD! Number Argument = [%d]\n", __LINE__,
                        static_cast<int32_t>(uiDigits));
    return 0;
}

uint32_t Get_SSALineType(const uint16_t *pusName, int32_t iLen)
{
    if (pusName == nullptr || iLen < 2 || iLen > KEY_UNITS) return E_SSA_LINE_UNKNOWN;
    char szName[KEY_UNITS + 1] = {};
    uint16_t usBad = 0;
    if (Copy_AsciiUnits(szName, pusName, static_cast<uint32_t>(iLen), &usBad) < static_cast<uint32_t>(iLen)) {
        __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG,
                            " [%d] Bad SSA LineType Name Character! [0x%04X]\n", __LINE__, usBad);
        return E_SSA_LINE_UNKNOWN;
    }
    for (uint32_t uiType = 0; uiType < E_SSA_LINE_UNKNOWN; ++uiType)
        if (Compare_StringNoCase(SSALineTypeTable[uiType], szName,
                                 static_cast<uint32_t>(std::strlen(SSALineTypeTable[uiType]))) != 0)
            return uiType;
    return E_SSA_LINE_UNKNOWN;
}

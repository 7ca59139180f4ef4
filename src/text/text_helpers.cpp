#include "text/text_helpers.h"

#include "zyr/quib_caption.h"

namespace
{

constexpr int32_t NUMBER_DIGITS = 8; // longest number, decimal or hexadecimal

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

#include "zyr/quib_caption.h"

namespace
{

constexpr uint32_t REPLACEMENT = 0xFFFD; // stands for half a surrogate pair

/** Take the character at the next unit. */
uint32_t Take_Character(const uint16_t *&pusUnit, const uint16_t *pusEnd)
{
    const uint32_t uiUnit = *pusUnit++;
    if (uiUnit - 0xD800 >= 0x800) return uiUnit;
    const uint32_t uiLow = uiUnit < 0xDC00 && pusUnit < pusEnd ? *pusUnit - 0xDC00u : UINT32_MAX;
    if (uiLow >= 0x400) return REPLACEMENT;
    ++pusUnit;
    return 0x10000 + ((uiUnit - 0xD800) << 10) + uiLow;
}

int32_t Get_Utf8Bytes(uint32_t uiCode)
{
    if (uiCode < 0x80) return 1;
    if (uiCode < 0x800) return 2;
    return uiCode < 0x10000 ? 3 : 4;
}

void Put_Utf8(uint8_t *pucTarget, uint32_t uiCode, int32_t iBytes)
{
    constexpr uint8_t LEADS[] = {0, 0x00, 0xC0, 0xE0, 0xF0};
    for (int32_t iByte = iBytes - 1; iByte > 0; --iByte) {
        pucTarget[iByte] = static_cast<uint8_t>(0x80 | (uiCode & 0x3F));
        uiCode >>= 6;
    }
    pucTarget[0] = static_cast<uint8_t>(LEADS[iBytes] | uiCode);
}

} // namespace

int32_t _UnicodeToUTF8(const uint16_t *pusSource, int32_t iUnits, uint8_t *pucTarget, int32_t iSize)
{
    if (pucTarget == nullptr || iSize < 1) return 0;
    const uint16_t *const pusEnd = pusSource + (pusSource == nullptr || iUnits < 0 ? 0 : iUnits);
    uint8_t *pucNext = pucTarget;
    uint8_t *const pucLast = pucTarget + iSize - 1; // kept for the zero
    for (const uint16_t *pusUnit = pusSource; pusUnit < pusEnd;) {
        const uint32_t uiCode = Take_Character(pusUnit, pusEnd);
        const int32_t iBytes = Get_Utf8Bytes(uiCode);
        if (pucLast - pucNext < iBytes) {
            *pucNext = 0;
            return 0;
        }
        Put_Utf8(pucNext, uiCode, iBytes);
        pucNext += iBytes;
    }
    *pucNext = 0;
    return static_cast<int32_t>(pucNext - pucTarget);
}


#include "zyr/quib_caption.h"

namespace
{

constexpr uint32_t REPLACEMENT = 0xFFFD; // stands for half a surrogate pair

constexpr int32_t LONGEST_UNIT_BYTES = 3;

bool Is_Surrogate(uint32_t uiUnit)
{
    return uiUnit - 0xD800 < 0x800;
}

bool Is_HighSurrogate(uint32_t uiUnit)
{
    return uiUnit - 0xD800 < 0x400;
}

bool Is_LowSurrogate(uint32_t uiUnit)
{
    return uiUnit - 0xDC00 < 0x400;
}

/** Read the character at *piPos and step over it. */
uint32_t Take_Character(const uint16_t *pusSource, int32_t iUnits, int32_t *piPos)
{
    const uint32_t uiUnit = pusSource[(*piPos)++];
    if (Is_HighSurrogate(uiUnit) && *piPos < iUnits && Is_LowSurrogate(pusSource[*piPos]))
        return 0x10000 + ((uiUnit - 0xD800) << 10) + (pusSource[(*piPos)++] - 0xDC00u);
    return Is_Surrogate(uiUnit) ? REPLACEMENT : uiUnit;
}

int32_t Get_Utf8Bytes(uint32_t uiCode)
{
    if (uiCode < 0x80) return 1;
    if (uiCode < 0x800) return 2;
    return uiCode < 0x10000 ? 3 : 4;
}

inline void Put_Utf8(uint8_t *pucTarget, uint32_t uiCode, int32_t iBytes)
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
    int32_t iWritten = 0;
    for (int32_t iPos = 0; pusSource != nullptr && iPos < iUnits;) {
        // While the longest form of a single unit fits, the two usual lengths need no further test.
        while (iPos < iUnits && iWritten + LONGEST_UNIT_BYTES < iSize) {
            const uint32_t uiUnit = pusSource[iPos];
            if (uiUnit < 0x80) {
                pucTarget[iWritten++] = static_cast<uint8_t>(uiUnit);
            } else if (uiUnit >= 0x800 && !Is_Surrogate(uiUnit)) {
                Put_Utf8(pucTarget + iWritten, uiUnit, LONGEST_UNIT_BYTES);
                iWritten += LONGEST_UNIT_BYTES;
            } else {
                break;
            }
            ++iPos;
        }
        if (iPos == iUnits) break;
        const uint32_t uiCode = Take_Character(pusSource, iUnits, &iPos);
        const int32_t iBytes = Get_Utf8Bytes(uiCode);
        if (iWritten + iBytes >= iSize) {
            pucTarget[iWritten] = 0;
            return 0;
        }
        Put_Utf8(pucTarget + iWritten, uiCode, iBytes);
        iWritten += iBytes;
    }
    pucTarget[iWritten] = 0;
    return iWritten;
}

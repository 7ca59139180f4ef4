#include "zyr/quib_caption.h"

#include <cstddef>
#include <cstring>

#include "text/byte_block.h"

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

/** Text being encoded. */
struct Utf8Writer {
    const uint16_t *pusUnit; // next unit
    const uint16_t *pusEnd;
    uint8_t *pucNext; // where the next byte goes
    uint8_t *pucLast; // last byte of the room, kept for the zero
};

/** Read the character at the next unit. */
uint32_t Take_Character(Utf8Writer &stWriter)
{
    const uint32_t uiUnit = *stWriter.pusUnit++;
    if (Is_HighSurrogate(uiUnit) && stWriter.pusUnit < stWriter.pusEnd && Is_LowSurrogate(*stWriter.pusUnit))
        return 0x10000 + ((uiUnit - 0xD800) << 10) + (*stWriter.pusUnit++ - 0xDC00u);
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

/** @return the three bytes of a unit from 0x800 on, the first one lowest, and a zero. */
constexpr uint32_t Get_ThreeBytes(uint32_t uiUnit)
{
    return 0x8080E0 | uiUnit >> 12 | (uiUnit << 2 & 0x3F00) | (uiUnit << 16 & 0x3F0000);
}

/** @return whether the next units are ASCII and a block of them, which is taken then. */
inline bool Take_AsciiBlock(Utf8Writer &stWriter)
{
    constexpr ptrdiff_t BLOCK = BLOCK_UNITS;
    if (stWriter.pusEnd - stWriter.pusUnit < BLOCK || stWriter.pucLast - stWriter.pucNext < BLOCK ||
        stWriter.pusUnit[1] >= 0x80 || !Narrow_Block(stWriter.pucNext, stWriter.pusUnit))
        return false;
    stWriter.pusUnit += BLOCK;
    stWriter.pucNext += BLOCK;
    return true;
}

/**
 * Encode the usual units, ASCII and those of three bytes up to the surrogates, while four bytes fit: that
 * takes no test of each unit's room. A unit of another kind or one near the end of the room stands there
 * then.
 */
void Encode_UsualUnits(Utf8Writer &stTaken)
{
    Utf8Writer stWriter = stTaken; // a copy that the target's bytes cannot alias
    while (stWriter.pusUnit < stWriter.pusEnd && stWriter.pucLast - stWriter.pucNext >= LONGEST_UNIT_BYTES) {
        const uint32_t uiUnit = *stWriter.pusUnit;
        if (uiUnit - 0x800 < 0xD800 - 0x800) {
            const uint32_t uiBytes = Get_ThreeBytes(uiUnit);
            std::memcpy(stWriter.pucNext, &uiBytes, sizeof(uiBytes));
            stWriter.pucNext += LONGEST_UNIT_BYTES;
            ++stWriter.pusUnit;
        } else if (uiUnit >= 0x80) {
            break;
        } else if (!Take_AsciiBlock(stWriter)) {
            *stWriter.pucNext++ = static_cast<uint8_t>(uiUnit);
            ++stWriter.pusUnit;
        }
    }
    stTaken = stWriter;
}

} // namespace

int32_t _UnicodeToUTF8(const uint16_t *pusSource, int32_t iUnits, uint8_t *pucTarget, int32_t iSize)
{
    if (pucTarget == nullptr || iSize < 1) return 0;
    const int32_t iTaken = pusSource == nullptr || iUnits < 0 ? 0 : iUnits;
    Utf8Writer stWriter = {pusSource, pusSource + iTaken, pucTarget, pucTarget + iSize - 1};
    for (;;) {
        Encode_UsualUnits(stWriter);
        if (stWriter.pusUnit == stWriter.pusEnd) break;
        const uint32_t uiCode = Take_Character(stWriter);
        const int32_t iBytes = Get_Utf8Bytes(uiCode);
        if (stWriter.pucLast - stWriter.pucNext < iBytes) {
            *stWriter.pucNext = 0;
            return 0;
        }
        Put_Utf8(stWriter.pucNext, uiCode, iBytes);
        stWriter.pucNext += iBytes;
    }
    *stWriter.pucNext = 0;
    return static_cast<int32_t>(stWriter.pucNext - pucTarget);
}

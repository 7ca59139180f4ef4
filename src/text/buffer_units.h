/*
 * Usual forms of a file's structure, straight from the read buffer. Nearly all tags and time lines have them;
 * all others, and those that the buffer's end cuts, are left to the state machines.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "record/parser_state.h"
#include "text/byte_block.h"

/** The next units of the read buffer, as long as they are single bytes or UTF-16. */
struct BufferUnits {
    const uint8_t *pucBytes;
    uint32_t uiUnitBytes; // 1 or 2
    uint32_t uiLow;       // byte of a unit that holds its low half
    int32_t iNums;        // units that are there

    uint32_t operator[](uint32_t uiPos) const
    {
        if (uiUnitBytes == 1) return pucBytes[uiPos];
        return pucBytes[2 * uiPos + uiLow] | static_cast<uint32_t>(pucBytes[2 * uiPos + 1 - uiLow]) << 8;
    }
};

inline BufferUnits Get_BufferUnits()
{
    const CaptionStreamInfo &stInfo = Get_StreamInfo();
    const uint32_t uiUnitBytes = s_uiTextEncoding - E_TEXT_ENCODING_UTF16LE <= 1u ? 2 : 1;
    return {stInfo.pucStreamBuf + stInfo.iStreamBufIndex, uiUnitBytes,
            s_uiTextEncoding == E_TEXT_ENCODING_UTF16BE ? 1u : 0u,
            Get_HeldBytes(stInfo) >> (uiUnitBytes - 1)};
}

/** Take units off the read buffer. @return their bytes. */
inline uint32_t Take_BufferUnits(const BufferUnits &stUnits, uint32_t uiNums)
{
    Get_StreamInfo().iStreamBufIndex += static_cast<int32_t>(uiNums * stUnits.uiUnitBytes);
    return uiNums * stUnits.uiUnitBytes;
}

/** A text of 8 to 32 characters in which every '0' stands for any digit. */
struct DigitPattern {
    static constexpr uint32_t BYTES_MAX = 32;
    uint32_t uiUnits;
    uint64_t aullText[BYTES_MAX / 8];
    uint64_t aullBits[BYTES_MAX / 8];  // of the bytes that count
    uint64_t aullSlack[BYTES_MAX / 8]; // what carries a byte's difference to its top bit when it is too large

    template <uint32_t BYTES>
    consteval explicit DigitPattern(const char (&szText)[BYTES])
        : uiUnits(BYTES - 1), aullText(), aullBits(), aullSlack()
    {
        static_assert(BYTES - 1 >= BLOCK_UNITS && BYTES - 1 <= BYTES_MAX);
        for (uint32_t uiPos = 0; uiPos < BYTES - 1; ++uiPos) {
            const bool bDigit = szText[uiPos] == '0';
            aullText[uiPos / 8] |= uint64_t{static_cast<uint8_t>(szText[uiPos])} << uiPos % 8 * 8;
            aullBits[uiPos / 8] |= uint64_t{0xFF} << uiPos % 8 * 8;
            aullSlack[uiPos / 8] |= uint64_t{bDigit ? 0x80u - 10 : 0x80u - 1} << uiPos % 8 * 8;
        }
    }
};

/** The digits of a text that follows a pattern, as values, each in its place. */
struct PatternDigits {
    uint8_t aucDigit[DigitPattern::BYTES_MAX];

    /** @return the number of two digits at a place. */
    constexpr uint32_t Get_Pair(uint32_t uiPos) const { return aucDigit[uiPos] * 10u + aucDigit[uiPos + 1]; }
};

/** Copy units as bytes. @return false when one is not ASCII; big-endian ones never seem to be. */
template <uint32_t UNITS>
bool Copy_AsciiBytes(uint8_t *pucTarget, const BufferUnits &stUnits, uint32_t uiFrom)
{
    const uint8_t *const pucBytes = stUnits.pucBytes + size_t{uiFrom} * stUnits.uiUnitBytes;
    if (stUnits.uiUnitBytes == 1) {
        std::memcpy(pucTarget, pucBytes, UNITS);
        return true;
    }
    constexpr uint32_t LAST = UNITS - BLOCK_UNITS; // the last block may overlap the one before
    for (uint32_t uiPos = 0; uiPos < LAST; uiPos += BLOCK_UNITS)
        if (!Narrow_Block(pucTarget + uiPos, pucBytes + size_t{2} * uiPos)) return false;
    return Narrow_Block(pucTarget + LAST, pucBytes + size_t{2} * LAST);
}

/** @return whether the units from uiFrom on, which must be there, follow a pattern. */
template <DigitPattern PATTERN>
bool Match_Pattern(const BufferUnits &stUnits, uint32_t uiFrom, PatternDigits *pstDigits)
{
    constexpr uint64_t TOP_BITS = 0x8080808080808080u;
    uint64_t aullText[DigitPattern::BYTES_MAX / 8] = {};
    if (!Copy_AsciiBytes<PATTERN.uiUnits>(reinterpret_cast<uint8_t *>(aullText), stUnits, uiFrom))
        return false;
    uint64_t ullBad = 0;
    for (uint32_t uiWord = 0; uiWord < DigitPattern::BYTES_MAX / 8; ++uiWord) {
        aullText[uiWord] = (aullText[uiWord] ^ PATTERN.aullText[uiWord]) & PATTERN.aullBits[uiWord];
        ullBad |= aullText[uiWord] | (aullText[uiWord] + PATTERN.aullSlack[uiWord]);
    }
    std::memcpy(pstDigits->aucDigit, aullText, sizeof(aullText));
    return (ullBad & TOP_BITS) == 0;
}

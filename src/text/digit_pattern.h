/* Times in their usual form, all digits at once. */
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "text/text_block.h"

/** A text of up to 32 bytes in which every '0' stands for any digit. */
struct DigitPattern {
    static constexpr uint32_t BYTES_MAX = 32; // so many bytes can be read wherever the pattern is looked for
    uint32_t uiBytes;
    uint8_t aucText[BYTES_MAX];
    uint8_t aucBits[BYTES_MAX];  // of the bytes that count
    uint8_t aucSlack[BYTES_MAX]; // what carries a byte's difference to its top bit when it is too large

    template <uint32_t SIZE>
    consteval explicit DigitPattern(const char (&szText)[SIZE])
        : uiBytes(SIZE - 1), aucText(), aucBits(), aucSlack()
    {
        static_assert(SIZE - 1 <= BYTES_MAX);
        for (uint32_t uiPos = 0; uiPos < uiBytes; ++uiPos) {
            aucText[uiPos] = static_cast<uint8_t>(szText[uiPos]);
            aucBits[uiPos] = 0xFF;
            aucSlack[uiPos] = szText[uiPos] == '0' ? 0x80 - 10 : 0x80 - 1;
        }
    }
};

/** The digits of a text that follows a pattern, as values, each in its place. */
struct PatternDigits {
    uint8_t aucDigit[DigitPattern::BYTES_MAX];

    /** @return the number of two digits at a place. */
    constexpr uint32_t Get_Pair(uint32_t uiPos) const { return aucDigit[uiPos] * 10u + aucDigit[uiPos + 1]; }
};

/** @return whether the bytes follow a pattern. @param[in] pucBytes  BYTES_MAX bytes */
template <DigitPattern PATTERN>
bool Match_Pattern(const uint8_t *pucBytes)
{
    static constexpr DigitPattern MEMORY = PATTERN; // of static duration
    const auto fnMisfits = [=](uint32_t uiPos) {
        return TextBlock::Load(pucBytes + uiPos)
            .Get_Misfits(TextBlock::Load(MEMORY.aucText + uiPos), TextBlock::Load(MEMORY.aucBits + uiPos),
                         TextBlock::Load(MEMORY.aucSlack + uiPos));
    };
    return (fnMisfits(0) | fnMisfits(BLOCK_BYTES)).Get_HighBits() == 0;
}

/** The same, and the digits. */
template <DigitPattern PATTERN>
bool Match_Pattern(const uint8_t *pucBytes, PatternDigits *pstDigits)
{
    std::memcpy(pstDigits->aucDigit, pucBytes, sizeof(pstDigits->aucDigit));
    for (uint8_t &ucDigit : pstDigits->aucDigit) ucDigit &= 0x0F;
    return Match_Pattern<PATTERN>(pucBytes);
}

/** @return seconds of HH:MM:SS, which stands there. */
inline uint32_t Read_Seconds(const uint8_t *pucTime)
{
    uint64_t ullDigits;
    std::memcpy(&ullDigits, pucTime, sizeof(ullDigits));
    ullDigits &= 0x0F0F0F0F0F0F0F0Fu;
    const uint64_t ullPairs = ullDigits * 10 + (ullDigits >> 8); // each in the place of its first digit
    const auto fnPair = [=](uint32_t uiBit) { return static_cast<uint32_t>(ullPairs >> uiBit & 0xFF); };
    return (fnPair(0) * 60 + fnPair(24)) * 60 + fnPair(48);
}

/** @return the number of two digits, which stand there. */
inline uint32_t Read_Pair(const uint8_t *pucDigit)
{
    return pucDigit[0] * 10u + pucDigit[1] - '0' * 11u;
}

/** @return the number of 1 to 8 digits, which stand there; 8 bytes can be looked at. */
inline uint32_t Read_Number(const uint8_t *pucDigits, uint32_t uiDigits)
{
    uint64_t ullText;
    std::memcpy(&ullText, pucDigits, sizeof(ullText));
    const uint64_t ullDigits = ullText << (64 - 8 * uiDigits) & 0x0F0F0F0F0F0F0F0Fu; // zeros in front
    const uint64_t ullPairs = (ullDigits * 10 + (ullDigits >> 8)) & 0x00FF00FF00FF00FFu;
    const uint64_t ullFours = (ullPairs * 100 + (ullPairs >> 16)) & 0x0000FFFF0000FFFFu;
    return static_cast<uint32_t>(ullFours * 10000 + (ullFours >> 32));
}

/** @return digits that stand there, up to 8 of them. */
inline uint32_t Count_Digits(const uint8_t *pucDigits)
{
    uint64_t ullText;
    std::memcpy(&ullText, pucDigits, sizeof(ullText));
    const uint64_t ullValues = ullText ^ 0x3030303030303030u;
    const uint64_t ullOthers = (ullValues | (ullValues + 0x7676767676767676u)) & 0x8080808080808080u;
    return static_cast<uint32_t>(std::countr_zero(ullOthers)) / 8; // the first one that is none is sure
}

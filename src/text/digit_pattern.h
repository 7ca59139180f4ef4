/* Times in their usual form, all digits at once. */
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

/** A text of up to 32 bytes in which every '0' stands for any digit. */
struct DigitPattern {
    static constexpr uint32_t BYTES_MAX = 32; // so many bytes can be read wherever the pattern is looked for
    uint32_t uiBytes;
    uint64_t aullText[BYTES_MAX / 8];
    uint64_t aullBits[BYTES_MAX / 8];  // of the bytes that count
    uint64_t aullSlack[BYTES_MAX / 8]; // what carries a byte's difference to its top bit when it is too large

    template <uint32_t SIZE>
    consteval explicit DigitPattern(const char (&szText)[SIZE])
        : uiBytes(SIZE - 1), aullText(), aullBits(), aullSlack()
    {
        static_assert(SIZE - 1 <= BYTES_MAX);
        for (uint32_t uiPos = 0; uiPos < uiBytes; ++uiPos) {
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

/** The bytes of a text, as they differ from a pattern: digits as values. @return whether they follow it */
template <DigitPattern PATTERN>
inline bool Subtract_Pattern(const uint8_t *pucBytes, uint64_t (&aullText)[DigitPattern::BYTES_MAX / 8])
{
    constexpr uint64_t TOP_BITS = 0x8080808080808080u;
    std::memcpy(aullText, pucBytes, sizeof(aullText));
    uint64_t ullBad = 0;
    for (uint32_t uiWord = 0; uiWord < DigitPattern::BYTES_MAX / 8; ++uiWord) {
        aullText[uiWord] = (aullText[uiWord] ^ PATTERN.aullText[uiWord]) & PATTERN.aullBits[uiWord];
        ullBad |= aullText[uiWord] | (aullText[uiWord] + PATTERN.aullSlack[uiWord]);
    }
    return (ullBad & TOP_BITS) == 0;
}

/** @return whether the bytes follow a pattern. @param[in] pucBytes  BYTES_MAX bytes */
template <DigitPattern PATTERN>
bool Match_Pattern(const uint8_t *pucBytes)
{
    uint64_t aullText[DigitPattern::BYTES_MAX / 8];
    return Subtract_Pattern<PATTERN>(pucBytes, aullText);
}

/** The same, and the digits. */
template <DigitPattern PATTERN>
bool Match_Pattern(const uint8_t *pucBytes, PatternDigits *pstDigits)
{
    uint64_t aullText[DigitPattern::BYTES_MAX / 8];
    const bool bMatch = Subtract_Pattern<PATTERN>(pucBytes, aullText);
    std::memcpy(pstDigits->aucDigit, aullText, sizeof(aullText));
    return bMatch;
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

/** @return digits that stand there, up to 8 of them. */
inline uint32_t Count_Digits(const uint8_t *pucDigits)
{
    uint64_t ullText;
    std::memcpy(&ullText, pucDigits, sizeof(ullText));
    const uint64_t ullValues = ullText ^ 0x3030303030303030u;
    const uint64_t ullOthers = (ullValues | (ullValues + 0x7676767676767676u)) & 0x8080808080808080u;
    return static_cast<uint32_t>(std::countr_zero(ullOthers)) / 8; // the first one that is none is sure
}

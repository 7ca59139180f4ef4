/*
 * Sixteen bytes of text at a step: which of them are equal to, below or from a value on? An answer has its
 * machine's own form; Get_Bits() makes it a bit for each byte, the first one lowest. One form for SSE2, one for
 * NEON, and one on words of any size for every other little-endian machine.
 */
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(ZYR_NO_SIMD)
#elif defined(__SSE2__)
#define ZYR_BLOCK_SSE2
#include <emmintrin.h>
#elif defined(__ARM_NEON)
#define ZYR_BLOCK_NEON
#include <arm_neon.h>
#endif

static_assert(std::endian::native == std::endian::little,
              "bytes and units are taken from memory as they stand");

constexpr uint32_t BLOCK_BYTES = 16;

/** A block as words. An answer has the top bit of each byte set that hits. */
template <typename Word>
struct WordBlock {
    static constexpr uint32_t WORDS = BLOCK_BYTES / sizeof(Word);
    static constexpr uint32_t WORD_BYTES = sizeof(Word);
    static constexpr Word ONES = static_cast<Word>(0x0101010101010101u);
    static constexpr Word TOPS = ONES * 0x80;
    static constexpr Word UNIT_ONES = static_cast<Word>(0x0001000100010001u);
    static constexpr Word UNIT_TOPS = UNIT_ONES * 0x8000;

    struct Hits {
        Word aHit[WORDS];
        Hits operator|(const Hits &stOther) const
        {
            Hits stBoth;
            for (uint32_t uiWord = 0; uiWord < WORDS; ++uiWord)
                stBoth.aHit[uiWord] = aHit[uiWord] | stOther.aHit[uiWord];
            return stBoth;
        }
        Hits operator&(const Hits &stOther) const
        {
            Hits stBoth;
            for (uint32_t uiWord = 0; uiWord < WORDS; ++uiWord)
                stBoth.aHit[uiWord] = aHit[uiWord] & stOther.aHit[uiWord];
            return stBoth;
        }
        Hits Without(const Hits &stOther) const
        {
            Hits stRest;
            for (uint32_t uiWord = 0; uiWord < WORDS; ++uiWord)
                stRest.aHit[uiWord] = aHit[uiWord] & ~stOther.aHit[uiWord];
            return stRest;
        }
    };
    Word aWord[WORDS];

    static WordBlock Load(const uint8_t *pucBytes)
    {
        WordBlock stBlock;
        std::memcpy(stBlock.aWord, pucBytes, BLOCK_BYTES);
        return stBlock;
    }
    void Store(uint8_t *pucBytes) const { std::memcpy(pucBytes, aWord, BLOCK_BYTES); }
    WordBlock operator|(const WordBlock &stOther) const
    {
        WordBlock stBoth;
        for (uint32_t uiWord = 0; uiWord < WORDS; ++uiWord)
            stBoth.aWord[uiWord] = aWord[uiWord] | stOther.aWord[uiWord];
        return stBoth;
    }

    Hits Find_Equal(uint8_t ucByte) const
    {
        return Ask([ucByte](Word uiWord) {
            const Word uiDiff = uiWord ^ (ONES * ucByte);
            return ~(((uiDiff & ~TOPS) + ~TOPS) | uiDiff) & TOPS;
        });
    }
    /** @param[in] ucBound  1 to 0x80 */
    Hits Find_Below(uint8_t ucBound) const
    {
        return Ask([ucBound](Word uiWord) {
            return ~(((uiWord & ~TOPS) + ONES * (0x80u - ucBound)) | uiWord) & TOPS;
        });
    }
    /** @param[in] ucBound  0x80 or more */
    Hits Find_AtLeast(uint8_t ucBound) const
    {
        return Ask([ucBound](Word uiWord) {
            return ((uiWord & ~TOPS) + ONES * (0x100u - ucBound)) & uiWord & TOPS;
        });
    }
    /** @param[in] ucFirst  0x80 or more  @param[in] ucLast  below 0xFF */
    Hits Find_Between(uint8_t ucFirst, uint8_t ucLast) const
    {
        return Find_AtLeast(ucFirst).Without(Find_AtLeast(static_cast<uint8_t>(ucLast + 1)));
    }
    /** The bytes from 0x80 to 0xBF. */
    Hits Find_Continuations() const
    {
        return Ask([](Word uiWord) { return uiWord & ~(uiWord << 1) & TOPS; });
    }
    /** The same of 16-bit units; both bytes of a unit hit. */
    Hits Find_EqualUnit(uint16_t usUnit) const
    {
        return Ask([usUnit](Word uiWord) {
            const Word uiDiff = uiWord ^ (UNIT_ONES * usUnit);
            return Widen(~(((uiDiff & ~UNIT_TOPS) + ~UNIT_TOPS) | uiDiff) & UNIT_TOPS);
        });
    }
    /** @param[in] usBound  1 to 0x8000 */
    Hits Find_BelowUnit(uint16_t usBound) const
    {
        return Ask([usBound](Word uiWord) {
            return Widen(~(((uiWord & ~UNIT_TOPS) + UNIT_ONES * (0x8000u - usBound)) | uiWord) & UNIT_TOPS);
        });
    }
    WordBlock Get_SwappedUnits() const
    {
        WordBlock stBlock;
        for (uint32_t uiWord = 0; uiWord < WORDS; ++uiWord)
            stBlock.aWord[uiWord] =
                (aWord[uiWord] & (UNIT_ONES * 0xFF)) << 8 | (aWord[uiWord] >> 8 & (UNIT_ONES * 0xFF));
        return stBlock;
    }

    /** Sixteen units as bytes: those beyond a byte become 0xFF, or 0 from 0x8000 on. */
    static WordBlock Narrow_Units(const WordBlock &stFirst, const WordBlock &stSecond)
    {
        uint8_t aucByte[BLOCK_BYTES];
        uint16_t ausUnit[BLOCK_BYTES];
        std::memcpy(ausUnit, stFirst.aWord, BLOCK_BYTES);
        std::memcpy(ausUnit + BLOCK_BYTES / 2, stSecond.aWord, BLOCK_BYTES);
        for (uint32_t uiUnit = 0; uiUnit < BLOCK_BYTES; ++uiUnit) {
            const uint32_t uiBeyond = ausUnit[uiUnit] < 0x8000 ? 0xFF : 0;
            aucByte[uiUnit] = static_cast<uint8_t>(ausUnit[uiUnit] > 0xFF ? uiBeyond : ausUnit[uiUnit]);
        }
        return Load(aucByte);
    }

    /**
     * @return a block that has a byte from 0x80 on where this one differs from a text, in the bits that count, by
     *         so much that its slack carries it there; behind such a byte it may have others
     */
    WordBlock Get_Misfits(const WordBlock &stText, const WordBlock &stBits, const WordBlock &stSlack) const
    {
        WordBlock stMisfits;
        for (uint32_t uiWord = 0; uiWord < WORDS; ++uiWord) {
            const Word uiDiff = (aWord[uiWord] ^ stText.aWord[uiWord]) & stBits.aWord[uiWord];
            stMisfits.aWord[uiWord] = uiDiff | (uiDiff + stSlack.aWord[uiWord]);
        }
        return stMisfits;
    }

    /** @return a bit for each byte from 0x80 on. */
    uint32_t Get_HighBits() const
    {
        return Get_Bits(Ask([](Word uiWord) { return uiWord & TOPS; }));
    }
    static uint32_t Get_Bits(const Hits &stHits)
    {
        // The product brings the top bit of byte i to bit i of the top byte.
        constexpr Word GATHER = static_cast<Word>(WORD_BYTES == 8 ? 0x0102040810204080u : 0x10204080u);
        uint32_t uiBits = 0;
        for (uint32_t uiWord = 0; uiWord < WORDS; ++uiWord) {
            const Word uiGathered = (stHits.aHit[uiWord] >> 7) * GATHER;
            uiBits |= static_cast<uint32_t>(uiGathered >> (8 * WORD_BYTES - WORD_BYTES))
                      << uiWord * WORD_BYTES;
        }
        return uiBits;
    }

private:
    static constexpr Word Widen(Word uiTops) { return uiTops | uiTops >> 8; }

    template <typename Question>
    Hits Ask(const Question &fnQuestion) const
    {
        Hits stHits;
        for (uint32_t uiWord = 0; uiWord < WORDS; ++uiWord)
            stHits.aHit[uiWord] = static_cast<Word>(fnQuestion(aWord[uiWord]));
        return stHits;
    }
};

#if defined(ZYR_BLOCK_SSE2)

struct Sse2Block {
    struct Hits {
        __m128i stHit;
        friend Hits operator|(Hits stA, Hits stB) { return {_mm_or_si128(stA.stHit, stB.stHit)}; }
        friend Hits operator&(Hits stA, Hits stB) { return {_mm_and_si128(stA.stHit, stB.stHit)}; }
        Hits Without(Hits stOther) const { return {_mm_andnot_si128(stOther.stHit, stHit)}; }
    };
    __m128i stBytes;

    static Sse2Block Load(const uint8_t *pucBytes)
    {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i *>(pucBytes))};
    }
    void Store(uint8_t *pucBytes) const { _mm_storeu_si128(reinterpret_cast<__m128i *>(pucBytes), stBytes); }
    Sse2Block operator|(const Sse2Block &stOther) const { return {_mm_or_si128(stBytes, stOther.stBytes)}; }
    Hits Find_Equal(uint8_t ucByte) const { return {_mm_cmpeq_epi8(stBytes, All(ucByte))}; }
    Hits Find_Below(uint8_t ucBound) const
    {
        return {_mm_cmpeq_epi8(_mm_min_epu8(stBytes, All(ucBound - 1u)), stBytes)};
    }
    Hits Find_AtLeast(uint8_t ucBound) const
    {
        return {_mm_cmpeq_epi8(_mm_max_epu8(stBytes, All(ucBound)), stBytes)};
    }
    Hits Find_Between(uint8_t ucFirst, uint8_t ucLast) const
    {
        const __m128i stAbove = _mm_sub_epi8(stBytes, All(ucFirst));
        return {_mm_cmpeq_epi8(_mm_min_epu8(stAbove, All(ucLast - uint32_t{ucFirst})), stAbove)};
    }
    Hits Find_Continuations() const { return {_mm_cmplt_epi8(stBytes, All(0xC0))}; }
    Hits Find_EqualUnit(uint16_t usUnit) const { return {_mm_cmpeq_epi16(stBytes, All_Units(usUnit))}; }
    Hits Find_BelowUnit(uint16_t usBound) const
    {
        return {_mm_cmpeq_epi16(_mm_subs_epu16(stBytes, All_Units(usBound - 1u)), _mm_setzero_si128())};
    }
    Sse2Block Get_SwappedUnits() const
    {
        return {_mm_or_si128(_mm_slli_epi16(stBytes, 8), _mm_srli_epi16(stBytes, 8))};
    }
    static Sse2Block Narrow_Units(const Sse2Block &stFirst, const Sse2Block &stSecond)
    {
        return {_mm_packus_epi16(stFirst.stBytes, stSecond.stBytes)};
    }
    Sse2Block Get_Misfits(const Sse2Block &stText, const Sse2Block &stBits, const Sse2Block &stSlack) const
    {
        const __m128i stDiff = _mm_and_si128(_mm_xor_si128(stBytes, stText.stBytes), stBits.stBytes);
        return {_mm_or_si128(stDiff, _mm_add_epi8(stDiff, stSlack.stBytes))};
    }
    uint32_t Get_HighBits() const { return static_cast<uint32_t>(_mm_movemask_epi8(stBytes)); }
    static uint32_t Get_Bits(Hits stHits) { return static_cast<uint32_t>(_mm_movemask_epi8(stHits.stHit)); }

private:
    static __m128i All(uint32_t uiByte) { return _mm_set1_epi8(static_cast<char>(uiByte)); }
    static __m128i All_Units(uint32_t uiUnit) { return _mm_set1_epi16(static_cast<int16_t>(uiUnit)); }
};
using TextBlock = Sse2Block;

#elif defined(ZYR_BLOCK_NEON)

struct NeonBlock {
    struct Hits {
        uint8x16_t stHit;
        friend Hits operator|(Hits stA, Hits stB) { return {vorrq_u8(stA.stHit, stB.stHit)}; }
        friend Hits operator&(Hits stA, Hits stB) { return {vandq_u8(stA.stHit, stB.stHit)}; }
        Hits Without(Hits stOther) const { return {vbicq_u8(stHit, stOther.stHit)}; }
    };
    uint8x16_t stBytes;

    static NeonBlock Load(const uint8_t *pucBytes) { return {vld1q_u8(pucBytes)}; }
    void Store(uint8_t *pucBytes) const { vst1q_u8(pucBytes, stBytes); }
    NeonBlock operator|(const NeonBlock &stOther) const { return {vorrq_u8(stBytes, stOther.stBytes)}; }
    Hits Find_Equal(uint8_t ucByte) const { return {vceqq_u8(stBytes, vdupq_n_u8(ucByte))}; }
    Hits Find_Below(uint8_t ucBound) const { return {vcltq_u8(stBytes, vdupq_n_u8(ucBound))}; }
    Hits Find_AtLeast(uint8_t ucBound) const { return {vcgeq_u8(stBytes, vdupq_n_u8(ucBound))}; }
    Hits Find_Between(uint8_t ucFirst, uint8_t ucLast) const
    {
        return {vandq_u8(vcgeq_u8(stBytes, vdupq_n_u8(ucFirst)), vcleq_u8(stBytes, vdupq_n_u8(ucLast)))};
    }
    Hits Find_Continuations() const { return Find_Between(0x80, 0xBF); }
    Hits Find_EqualUnit(uint16_t usUnit) const
    {
        return {vreinterpretq_u8_u16(vceqq_u16(vreinterpretq_u16_u8(stBytes), vdupq_n_u16(usUnit)))};
    }
    Hits Find_BelowUnit(uint16_t usBound) const
    {
        return {vreinterpretq_u8_u16(vcltq_u16(vreinterpretq_u16_u8(stBytes), vdupq_n_u16(usBound)))};
    }
    NeonBlock Get_SwappedUnits() const { return {vrev16q_u8(stBytes)}; }
    static NeonBlock Narrow_Units(const NeonBlock &stFirst, const NeonBlock &stSecond)
    {
        return {vcombine_u8(vqmovun_s16(vreinterpretq_s16_u8(stFirst.stBytes)),
                            vqmovun_s16(vreinterpretq_s16_u8(stSecond.stBytes)))};
    }
    NeonBlock Get_Misfits(const NeonBlock &stText, const NeonBlock &stBits, const NeonBlock &stSlack) const
    {
        const uint8x16_t stDiff = vandq_u8(veorq_u8(stBytes, stText.stBytes), stBits.stBytes);
        return {vorrq_u8(stDiff, vaddq_u8(stDiff, stSlack.stBytes))};
    }
    uint32_t Get_HighBits() const { return Get_Bits(Find_AtLeast(0x80)); }
    static uint32_t Get_Bits(Hits stHits)
    {
        constexpr uint8_t BITS[] = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
        const uint8x16_t stBits = vandq_u8(stHits.stHit, vld1q_u8(BITS));
        uint8x8_t stSums = vpadd_u8(vget_low_u8(stBits), vget_high_u8(stBits));
        for (uint32_t uiStep = 0; uiStep < 2; ++uiStep) stSums = vpadd_u8(stSums, stSums);
        return vget_lane_u16(vreinterpret_u16_u8(stSums), 0);
    }
};
using TextBlock = NeonBlock;

#else
using TextBlock = WordBlock<uintptr_t>;
#endif

/**
 * Tell the second bytes of double-byte characters, which may be any: in an unbroken row of high bytes every other
 * one is. A sum carries a bit from the start of each row to behind its end.
 *
 * @param[in]     uiHigh   a bit for each byte of a block from 0x80 on
 * @param[in,out] uiCarry  1: the block's first byte is a second one
 */
inline uint32_t Find_SecondBytes(uint32_t uiHigh, uint32_t &uiCarry)
{
    constexpr uint32_t EVEN = 0x5555;
    const uint32_t uiFirst = uiHigh & ~uiCarry;
    const uint32_t uiBehind = uiFirst << 1 | uiCarry;
    const uint32_t uiOddRows = (uiFirst & ~EVEN & ~uiBehind) + uiFirst;
    uiCarry = uiOddRows >> BLOCK_BYTES & 1;
    return (EVEN ^ uiOddRows << 1) & uiBehind & 0xFFFF;
}

/**
 * Tell the UTF-8 bytes that can begin an overlong form of another character, a bit for each.
 *
 * @param[in] stNext  the block one byte further
 */
inline TextBlock::Hits Find_OverlongLeads(const TextBlock &stBlock, const TextBlock &stNext)
{
    return stBlock.Find_Equal(0xC0) | stBlock.Find_Equal(0xC1) |
           stBlock.Find_Equal(0xE0).Without(stNext.Find_AtLeast(0xA0));
}

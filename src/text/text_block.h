/*
 * Sixteen bytes of text at a step: which of them are equal to, below or from a value on? An answer has its
 * machine's own form; Get_Bits() makes it a bit for each byte, the first one lowest. One form for SSE2 and NEON,
 * and one on words of any size for every other little-endian machine.
 */
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(ZYR_NO_SIMD)
#elif defined(__SSE2__)
#define ZYR_BLOCK_VECTOR
#include <emmintrin.h>
#elif defined(__ARM_NEON)
#define ZYR_BLOCK_VECTOR
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
        Word aWord[WORDS];
        template <typename Join>
        Hits With(const Hits &stOther, const Join &fnJoin) const
        {
            Hits stJoined;
            for (uint32_t uiWord = 0; uiWord < WORDS; ++uiWord)
                stJoined.aWord[uiWord] = fnJoin(aWord[uiWord], stOther.aWord[uiWord]);
            return stJoined;
        }
        Hits operator|(const Hits &stOther) const
        {
            return With(stOther, [](Word uiOwn, Word uiOther) { return uiOwn | uiOther; });
        }
        Hits operator&(const Hits &stOther) const
        {
            return With(stOther, [](Word uiOwn, Word uiOther) { return uiOwn & uiOther; });
        }
        Hits Without(const Hits &stOther) const
        {
            return With(stOther, [](Word uiOwn, Word uiOther) { return uiOwn & ~uiOther; });
        }
    };
    Hits stBytes;

    static WordBlock Load(const uint8_t *pucBytes)
    {
        WordBlock stBlock;
        std::memcpy(&stBlock, pucBytes, BLOCK_BYTES);
        return stBlock;
    }
    void Store(uint8_t *pucBytes) const { std::memcpy(pucBytes, this, BLOCK_BYTES); }
    WordBlock operator|(const WordBlock &stOther) const { return {stBytes | stOther.stBytes}; }

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
        return {Ask([](Word uiWord) {
            return (uiWord & (UNIT_ONES * 0xFF)) << 8 | (uiWord >> 8 & (UNIT_ONES * 0xFF));
        })};
    }

    /** Sixteen units as bytes: those beyond a byte become 0xFF, or 0 from 0x8000 on. */
    static WordBlock Narrow_Units(const WordBlock &stFirst, const WordBlock &stSecond)
    {
        uint8_t aucByte[BLOCK_BYTES];
        uint16_t ausUnit[BLOCK_BYTES];
        stFirst.Store(reinterpret_cast<uint8_t *>(ausUnit));
        stSecond.Store(reinterpret_cast<uint8_t *>(ausUnit + BLOCK_BYTES / 2));
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
        const auto fnDiff = [](Word uiOwn, Word uiOther) { return uiOwn ^ uiOther; };
        const auto fnSlack = [](Word uiDiff, Word uiSlack) { return uiDiff | (uiDiff + uiSlack); };
        return {(stBytes.With(stText.stBytes, fnDiff) & stBits.stBytes).With(stSlack.stBytes, fnSlack)};
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
            const Word uiGathered = (stHits.aWord[uiWord] >> 7) * GATHER;
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
            stHits.aWord[uiWord] = static_cast<Word>(fnQuestion(stBytes.aWord[uiWord]));
        return stHits;
    }
};

#if defined(ZYR_BLOCK_VECTOR)

/** A block in a register. An answer has all bits of a byte set that hits. */
struct VectorBlock {
    using Bytes = uint8_t __attribute__((vector_size(BLOCK_BYTES)));
    typedef uint8_t UnalignedBytes __attribute__((vector_size(BLOCK_BYTES), aligned(1), may_alias));
    using SignedBytes = int8_t __attribute__((vector_size(BLOCK_BYTES)));
    using Units = uint16_t __attribute__((vector_size(BLOCK_BYTES)));

    struct Hits {
        Bytes stHit;
        Hits operator|(Hits stOther) const { return {stHit | stOther.stHit}; }
        Hits operator&(Hits stOther) const { return {stHit & stOther.stHit}; }
        Hits Without(Hits stOther) const { return {stHit & ~stOther.stHit}; }
    };
    Bytes stBytes;

    static VectorBlock Load(const uint8_t *pucBytes)
    {
        return {*reinterpret_cast<const UnalignedBytes *>(pucBytes)};
    }
    void Store(uint8_t *pucBytes) const { *reinterpret_cast<UnalignedBytes *>(pucBytes) = stBytes; }
    VectorBlock operator|(VectorBlock stOther) const { return {stBytes | stOther.stBytes}; }
    Hits Find_Equal(uint8_t ucByte) const { return {Bytes(stBytes == ucByte)}; }
    Hits Find_Below(uint8_t ucBound) const { return {Bytes(stBytes <= static_cast<uint8_t>(ucBound - 1))}; }
    Hits Find_Between(uint8_t ucFirst, uint8_t ucLast) const
    {
        return {Bytes(stBytes - ucFirst <= static_cast<uint8_t>(ucLast - ucFirst))};
    }
    Hits Find_Continuations() const { return {Bytes(SignedBytes(stBytes) < int8_t{-0x40})}; }
    Hits Find_EqualUnit(uint16_t usUnit) const { return {Bytes(Units(stBytes) == usUnit)}; }
    Hits Find_BelowUnit(uint16_t usBound) const
    {
        return {Bytes(Units(stBytes) <= static_cast<uint16_t>(usBound - 1))};
    }
    VectorBlock Get_SwappedUnits() const { return {Bytes(Units(stBytes) << 8 | Units(stBytes) >> 8)}; }
    VectorBlock Get_Misfits(VectorBlock stText, VectorBlock stBits, VectorBlock stSlack) const
    {
        const Bytes stDiff = (stBytes ^ stText.stBytes) & stBits.stBytes;
        return {stDiff | (stDiff + stSlack.stBytes)};
    }
#if defined(__SSE2__)
    Hits Find_AtLeast(uint8_t ucBound) const
    {
        return {Bytes(stBytes == Bytes(_mm_max_epu8(__m128i(stBytes), __m128i(Bytes{} + ucBound))))};
    }
    static VectorBlock Narrow_Units(VectorBlock stFirst, VectorBlock stSecond)
    {
        return {Bytes(_mm_packus_epi16(__m128i(stFirst.stBytes), __m128i(stSecond.stBytes)))};
    }
    uint32_t Get_HighBits() const
    {
        return static_cast<uint32_t>(_mm_movemask_epi8(__m128i(stBytes)));
    }
    static uint32_t Get_Bits(Hits stHits)
    {
        return VectorBlock{stHits.stHit}.Get_HighBits();
    }
#else
    Hits Find_AtLeast(uint8_t ucBound) const
    {
        return {Bytes(stBytes >= ucBound)};
    }
    static VectorBlock Narrow_Units(VectorBlock stFirst, VectorBlock stSecond)
    {
        return {Bytes(
            vcombine_u8(vqmovun_s16(int16x8_t(stFirst.stBytes)), vqmovun_s16(int16x8_t(stSecond.stBytes))))};
    }
    uint32_t Get_HighBits() const
    {
        return Get_Bits(Find_AtLeast(0x80));
    }
    static uint32_t Get_Bits(Hits stHits)
    {
        constexpr Bytes BITS = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
        const uint8x16_t stBits = uint8x16_t(stHits.stHit & BITS);
        uint8x8_t stSums = vpadd_u8(vget_low_u8(stBits), vget_high_u8(stBits));
        for (uint32_t uiStep = 0; uiStep < 2; ++uiStep) stSums = vpadd_u8(stSums, stSums);
        return vget_lane_u16(vreinterpret_u16_u8(stSums), 0);
    }
#endif
};
using TextBlock = VectorBlock;

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

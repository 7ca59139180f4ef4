/*
 * Sixteen bytes of text at a step: where is the first one that a parser must look at, which units are blanks,
 * and what needs no conversion? One form for SSE2, one for NEON, and one on 64-bit words for every other
 * little-endian machine.
 */
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "text/text_block.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__ARM_NEON)
#include <arm_neon.h>
#endif

static_assert(std::endian::native == std::endian::little,
              "bytes and units are taken from memory as they stand");

constexpr uint32_t BLOCK_UNITS = 8;

/** Units below 0x80 at which a run of plain text ends. */
struct StopUnits {
    uint32_t uiNums;
    uint8_t aucUnit[8];
    bool bBlankRuns; // also a blank that follows another blank: a single one is plain text

    constexpr bool Holds(uint32_t uiUnit) const
    {
        for (uint32_t uiIndex = 0; uiIndex < uiNums; ++uiIndex)
            if (aucUnit[uiIndex] == uiUnit) return true;
        return false;
    }
};

#if defined(__SSE2__)

/** @return bytes before the first stop, or before the first byte of 0x80 or above unless bAnyHigh; at
 * most 16. */
template <StopUnits STOPS, bool bAnyHigh>
inline uint32_t Find_StopByte(const uint8_t *pucBytes, bool bPrevBlank)
{
    const __m128i stBytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(pucBytes));
    __m128i stHit = _mm_setzero_si128();
    for (uint32_t uiIndex = 0; uiIndex < STOPS.uiNums; ++uiIndex)
        stHit = _mm_or_si128(
            stHit, _mm_cmpeq_epi8(stBytes, _mm_set1_epi8(static_cast<char>(STOPS.aucUnit[uiIndex]))));
    uint32_t uiMask =
        static_cast<uint32_t>(_mm_movemask_epi8(bAnyHigh ? stHit : _mm_or_si128(stHit, stBytes)));
    if constexpr (STOPS.bBlankRuns) {
        const uint32_t uiBlank =
            static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(stBytes, _mm_set1_epi8(0x20))));
        uiMask |= uiBlank & ((uiBlank << 1) | (bPrevBlank ? 1u : 0u));
    }
    return uiMask == 0 ? BLOCK_BYTES : static_cast<uint32_t>(std::countr_zero(uiMask));
}

/** Write 16 bytes as 16 units. */
inline void Store_Units(uint16_t *pusTarget, const uint8_t *pucBytes)
{
    const __m128i stBytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(pucBytes));
    const __m128i stZero = _mm_setzero_si128();
    _mm_storeu_si128(reinterpret_cast<__m128i *>(pusTarget), _mm_unpacklo_epi8(stBytes, stZero));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(pusTarget + 8), _mm_unpackhi_epi8(stBytes, stZero));
}

/** @return units before the first stop, at most 8. */
template <StopUnits STOPS>
inline uint32_t Find_StopUnit(const uint8_t *pucBytes, bool bBigEndian, bool bPrevBlank)
{
    __m128i stUnits = _mm_loadu_si128(reinterpret_cast<const __m128i *>(pucBytes));
    if (bBigEndian) stUnits = _mm_or_si128(_mm_slli_epi16(stUnits, 8), _mm_srli_epi16(stUnits, 8));
    __m128i stHit = _mm_setzero_si128();
    for (uint32_t uiIndex = 0; uiIndex < STOPS.uiNums; ++uiIndex)
        stHit = _mm_or_si128(stHit, _mm_cmpeq_epi16(stUnits, _mm_set1_epi16(STOPS.aucUnit[uiIndex])));
    uint32_t uiMask = static_cast<uint32_t>(_mm_movemask_epi8(stHit));
    if constexpr (STOPS.bBlankRuns) {
        const uint32_t uiBlank =
            static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi16(stUnits, _mm_set1_epi16(0x20))));
        uiMask |= uiBlank & ((uiBlank << 2) | (bPrevBlank ? 3u : 0u));
    }
    return uiMask == 0 ? BLOCK_UNITS : static_cast<uint32_t>(std::countr_zero(uiMask)) / 2;
}

/** Copy 8 units, tabs as blanks. @return a bit for each unit, the first one lowest: it is a blank now. */
inline uint32_t Copy_TextBlock(uint16_t *pusTarget, const uint16_t *pusSource)
{
    const __m128i stUnits = _mm_loadu_si128(reinterpret_cast<const __m128i *>(pusSource));
    const __m128i stBlank = _mm_set1_epi16(0x20);
    const __m128i stTab = _mm_cmpeq_epi16(stUnits, _mm_set1_epi16('\t'));
    const __m128i stCopy = _mm_or_si128(_mm_andnot_si128(stTab, stUnits), _mm_and_si128(stTab, stBlank));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(pusTarget), stCopy);
    const __m128i stHit = _mm_packs_epi16(_mm_cmpeq_epi16(stCopy, stBlank), _mm_setzero_si128());
    return static_cast<uint32_t>(_mm_movemask_epi8(stHit));
}

/** Write 8 units, from any address, as bytes if all of them are below 0x80. @return whether they are. */
inline bool Narrow_Block(uint8_t *pucTarget, const void *pvUnits)
{
    const __m128i stUnits = _mm_loadu_si128(static_cast<const __m128i *>(pvUnits));
    const __m128i stHigh = _mm_cmpeq_epi16(_mm_srli_epi16(stUnits, 7), _mm_setzero_si128());
    if (_mm_movemask_epi8(stHigh) != 0xFFFF) return false;
    _mm_storel_epi64(reinterpret_cast<__m128i *>(pucTarget), _mm_packus_epi16(stUnits, stUnits));
    return true;
}

#elif defined(__ARM_NEON)

/** Four bits per byte of a comparison's result. */
inline uint64_t Get_NibbleMask(uint8x16_t stHit)
{
    return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(vreinterpretq_u16_u8(stHit), 4)), 0);
}

template <StopUnits STOPS, bool bAnyHigh>
inline uint32_t Find_StopByte(const uint8_t *pucBytes, bool bPrevBlank)
{
    const uint8x16_t stBytes = vld1q_u8(pucBytes);
    uint8x16_t stHit = bAnyHigh ? vdupq_n_u8(0) : vcgeq_u8(stBytes, vdupq_n_u8(0x80));
    for (uint32_t uiIndex = 0; uiIndex < STOPS.uiNums; ++uiIndex)
        stHit = vorrq_u8(stHit, vceqq_u8(stBytes, vdupq_n_u8(STOPS.aucUnit[uiIndex])));
    uint64_t ullMask = Get_NibbleMask(stHit);
    if constexpr (STOPS.bBlankRuns) {
        const uint64_t ullBlank = Get_NibbleMask(vceqq_u8(stBytes, vdupq_n_u8(0x20)));
        ullMask |= ullBlank & ((ullBlank << 4) | (bPrevBlank ? 0xFu : 0u));
    }
    return ullMask == 0 ? BLOCK_BYTES : static_cast<uint32_t>(std::countr_zero(ullMask)) / 4;
}

inline void Store_Units(uint16_t *pusTarget, const uint8_t *pucBytes)
{
    const uint8x16_t stBytes = vld1q_u8(pucBytes);
    vst1q_u16(pusTarget, vmovl_u8(vget_low_u8(stBytes)));
    vst1q_u16(pusTarget + 8, vmovl_u8(vget_high_u8(stBytes)));
}

template <StopUnits STOPS>
inline uint32_t Find_StopUnit(const uint8_t *pucBytes, bool bBigEndian, bool bPrevBlank)
{
    uint8x16_t stRaw = vld1q_u8(pucBytes);
    if (bBigEndian) stRaw = vrev16q_u8(stRaw);
    const uint16x8_t stUnits = vreinterpretq_u16_u8(stRaw);
    uint16x8_t stHit = vdupq_n_u16(0);
    for (uint32_t uiIndex = 0; uiIndex < STOPS.uiNums; ++uiIndex)
        stHit = vorrq_u16(stHit, vceqq_u16(stUnits, vdupq_n_u16(STOPS.aucUnit[uiIndex])));
    uint64_t ullMask = Get_NibbleMask(vreinterpretq_u8_u16(stHit));
    if constexpr (STOPS.bBlankRuns) {
        const uint64_t ullBlank = Get_NibbleMask(vreinterpretq_u8_u16(vceqq_u16(stUnits, vdupq_n_u16(0x20))));
        ullMask |= ullBlank & ((ullBlank << 8) | (bPrevBlank ? 0xFFu : 0u));
    }
    return ullMask == 0 ? BLOCK_UNITS : static_cast<uint32_t>(std::countr_zero(ullMask)) / 8;
}

inline uint32_t Copy_TextBlock(uint16_t *pusTarget, const uint16_t *pusSource)
{
    constexpr uint8_t UNIT_BITS[] = {1, 2, 4, 8, 16, 32, 64, 128};
    const uint16x8_t stBlank = vdupq_n_u16(0x20);
    const uint16x8_t stUnits = vld1q_u16(pusSource);
    const uint16x8_t stCopy = vbslq_u16(vceqq_u16(stUnits, vdupq_n_u16('\t')), stBlank, stUnits);
    vst1q_u16(pusTarget, stCopy);
    uint8x8_t stBits = vand_u8(vmovn_u16(vceqq_u16(stCopy, stBlank)), vld1_u8(UNIT_BITS));
    for (uint32_t uiStep = 0; uiStep < 3; ++uiStep) stBits = vpadd_u8(stBits, stBits);
    return vget_lane_u8(stBits, 0);
}

inline bool Narrow_Block(uint8_t *pucTarget, const void *pvUnits)
{
    const uint16x8_t stUnits = vreinterpretq_u16_u8(vld1q_u8(static_cast<const uint8_t *>(pvUnits)));
    const uint8x8_t stHigh = vqmovn_u16(vshrq_n_u16(stUnits, 7));
    if (vget_lane_u64(vreinterpret_u64_u8(stHigh), 0) != 0) return false;
    vst1_u8(pucTarget, vmovn_u16(stUnits));
    return true;
}

#else

constexpr uint64_t WORD_ONES = 0x0101010101010101u;
constexpr uint64_t WORD_HIGHS = 0x8080808080808080u;

/** @return 0x80 in every byte of ullWord that equals ucByte. */
inline uint64_t Get_EqualBytes(uint64_t ullWord, uint8_t ucByte)
{
    const uint64_t ullDiff = ullWord ^ (WORD_ONES * ucByte);
    return ~(((ullDiff & ~WORD_HIGHS) + ~WORD_HIGHS) | ullDiff | ~WORD_HIGHS);
}

template <StopUnits STOPS, bool bAnyHigh>
inline uint32_t Find_StopByte(const uint8_t *pucBytes, bool bPrevBlank)
{
    for (uint32_t uiPos = 0; uiPos < BLOCK_BYTES; uiPos += 8) {
        uint64_t ullWord;
        std::memcpy(&ullWord, pucBytes + uiPos, sizeof(ullWord));
        uint64_t ullMask = bAnyHigh ? 0 : ullWord & WORD_HIGHS;
        for (uint32_t uiIndex = 0; uiIndex < STOPS.uiNums; ++uiIndex)
            ullMask |= Get_EqualBytes(ullWord, STOPS.aucUnit[uiIndex]);
        if constexpr (STOPS.bBlankRuns) {
            const uint64_t ullBlank = Get_EqualBytes(ullWord, 0x20);
            ullMask |= ullBlank & ((ullBlank << 8) | (bPrevBlank ? 0x80u : 0u));
            bPrevBlank = (ullBlank >> 63) != 0;
        }
        if (ullMask != 0) return uiPos + static_cast<uint32_t>(std::countr_zero(ullMask)) / 8;
    }
    return BLOCK_BYTES;
}

inline void Store_Units(uint16_t *pusTarget, const uint8_t *pucBytes)
{
    for (uint32_t uiPos = 0; uiPos < BLOCK_BYTES; ++uiPos) pusTarget[uiPos] = pucBytes[uiPos];
}

template <StopUnits STOPS>
inline uint32_t Find_StopUnit(const uint8_t *pucBytes, bool bBigEndian, bool bPrevBlank)
{
    for (uint32_t uiUnit = 0; uiUnit < BLOCK_UNITS; ++uiUnit) {
        const uint32_t uiFirst = pucBytes[2 * uiUnit];
        const uint32_t uiSecond = pucBytes[2 * uiUnit + 1];
        const uint32_t uiCode = bBigEndian ? (uiFirst << 8) | uiSecond : (uiSecond << 8) | uiFirst;
        if (STOPS.Holds(uiCode) || (STOPS.bBlankRuns && bPrevBlank && uiCode == 0x20)) return uiUnit;
        bPrevBlank = uiCode == 0x20;
    }
    return BLOCK_UNITS;
}

inline uint32_t Copy_TextBlock(uint16_t *pusTarget, const uint16_t *pusSource)
{
    uint32_t uiBlanks = 0;
    for (uint32_t uiUnit = 0; uiUnit < BLOCK_UNITS; ++uiUnit) {
        const bool bBlank = pusSource[uiUnit] == 0x20 || pusSource[uiUnit] == '\t';
        pusTarget[uiUnit] = bBlank ? uint16_t{0x20} : pusSource[uiUnit];
        uiBlanks |= (bBlank ? 1u : 0u) << uiUnit;
    }
    return uiBlanks;
}

inline bool Narrow_Block(uint8_t *pucTarget, const void *pvUnits)
{
    uint16_t ausUnit[BLOCK_UNITS];
    std::memcpy(ausUnit, pvUnits, sizeof(ausUnit));
    uint32_t uiAll = 0;
    for (const uint16_t usUnit : ausUnit) uiAll |= usUnit;
    if (uiAll >= 0x80) return false;
    for (const uint16_t usUnit : ausUnit) *pucTarget++ = static_cast<uint8_t>(usUnit);
    return true;
}

#endif

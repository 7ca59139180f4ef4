/* A stable sort by a 32-bit key, linear in the number of entries. */
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>

/** @return whether the keys already ascend. */
template <typename Entry, typename KeyOf>
bool Is_Sorted(const Entry *pastEntry, uint32_t uiNums, KeyOf fnKeyOf)
{
    for (uint32_t uiIndex = 1; uiIndex < uiNums; ++uiIndex)
        if (fnKeyOf(pastEntry[uiIndex]) < fnKeyOf(pastEntry[uiIndex - 1])) return false;
    return true;
}

/**
 * Sort by fnKeyOf(entry), a uint32_t, keeping the order of equal keys: at most four counting passes over 8 bits each,
 * whose counts take 1 KiB of stack. A pass whose bits are the same everywhere has nothing to move.
 *
 * @param[in,out] pastEntry    uiNums entries
 * @param[out]    pastScratch  room for as many; holds the result when the call returns
 */
template <typename Entry, typename KeyOf>
void Sort_Stable(Entry *pastEntry, Entry *pastScratch, uint32_t uiNums, KeyOf fnKeyOf)
{
    constexpr uint32_t DIGIT_BITS = 8;
    constexpr uint32_t DIGITS = 1u << DIGIT_BITS;
    Entry *pastFrom = pastEntry;
    Entry *pastTo = pastScratch;
    for (uint32_t uiShift = 0; uiShift < 32; uiShift += DIGIT_BITS) {
        uint32_t auiPlace[DIGITS] = {};
        const auto fnDigitOf = [&](uint32_t uiIndex) {
            return (fnKeyOf(pastFrom[uiIndex]) >> uiShift) & (DIGITS - 1);
        };
        for (uint32_t uiIndex = 0; uiIndex < uiNums; ++uiIndex) ++auiPlace[fnDigitOf(uiIndex)];
        if (uiNums == 0 || auiPlace[fnDigitOf(0)] == uiNums) continue;
        uint32_t uiPlace = 0;
        for (uint32_t &uiSlot : auiPlace) {
            const uint32_t uiCount = uiSlot;
            uiSlot = uiPlace;
            uiPlace += uiCount;
        }
        for (uint32_t uiIndex = 0; uiIndex < uiNums; ++uiIndex)
            pastTo[auiPlace[fnDigitOf(uiIndex)]++] = pastFrom[uiIndex];
        std::swap(pastFrom, pastTo);
    }
    if (pastFrom == pastEntry) std::copy_n(pastEntry, uiNums, pastScratch);
}

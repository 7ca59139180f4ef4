/* Finding a row of a constant table by its name: a hash index that is made at compile time. */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

/** Hash of a name; bFold: the same for both cases of ASCII letters. */
template <typename Unit>
constexpr uint32_t Get_NameHash(const Unit *pName, uint32_t uiLen, bool bFold)
{
    uint32_t uiHash = 2166136261u;
    for (uint32_t uiPos = 0; uiPos < uiLen; ++uiPos) {
        uint32_t uiUnit = static_cast<uint32_t>(pName[uiPos]) & 0x7F;
        if (bFold && uiUnit - 'a' < 26) uiUnit -= 'a' - 'A';
        uiHash = (uiHash ^ uiUnit) * 16777619u;
    }
    return uiHash ^ (uiHash >> 15);
}

/** Slots of row numbers + 1, probed one after the other; 0 = free. At least twice as many slots as rows. */
template <size_t SLOTS, bool FOLD>
struct NameIndex {
    std::array<uint8_t, SLOTS> aucSlot{};

    template <typename Row, size_t ROWS>
    explicit consteval NameIndex(const Row (&astRow)[ROWS])
    {
        static_assert(SLOTS >= 2 * ROWS && ROWS < 256 && (SLOTS & (SLOTS - 1)) == 0);
        for (size_t uiRow = 0; uiRow < ROWS; ++uiRow) {
            const std::string_view strName = astRow[uiRow].szName;
            uint32_t uiSlot = Get_NameHash(strName.data(), static_cast<uint32_t>(strName.size()), FOLD);
            while (aucSlot[uiSlot % SLOTS] != 0) ++uiSlot;
            aucSlot[uiSlot % SLOTS] = static_cast<uint8_t>(uiRow + 1);
        }
    }

    /** @return the row with exactly this name (ASCII case aside if FOLD), or NULL. */
    template <typename Row, size_t ROWS, typename Unit>
    const Row *Find(const Row (&astRow)[ROWS], const Unit *pName, uint32_t uiLen) const
    {
        for (uint32_t uiSlot = Get_NameHash(pName, uiLen, FOLD); aucSlot[uiSlot % SLOTS] != 0; ++uiSlot) {
            const Row &stRow = astRow[aucSlot[uiSlot % SLOTS] - 1];
            if (Is_Name(stRow.szName, pName, uiLen)) return &stRow;
        }
        return nullptr;
    }

private:
    template <typename Unit>
    static bool Is_Name(const char *pszName, const Unit *pName, uint32_t uiLen)
    {
        for (uint32_t uiPos = 0; uiPos < uiLen; ++uiPos) {
            uint32_t uiUnit = static_cast<std::make_unsigned_t<Unit>>(pName[uiPos]);
            uint32_t uiOwn = static_cast<uint8_t>(pszName[uiPos]);
            if (FOLD && uiUnit - 'a' < 26) uiUnit -= 'a' - 'A';
            if (FOLD && uiOwn - 'a' < 26) uiOwn -= 'a' - 'A';
            if (uiOwn == 0 || uiOwn != uiUnit) return false;
        }
        return pszName[uiLen] == '\0';
    }
};

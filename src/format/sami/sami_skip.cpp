#include "format/sami/sami_skip.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "format/sami/sami_index.h"

namespace
{

constexpr uint32_t FIRST_PLACES = 1024; // places to begin with
constexpr uint32_t PLACE_GROWTH = 4;    // and so many times as many whenever they do not do
constexpr uint32_t WORD_BITS = 32;
constexpr uint32_t LEVELS_MAX = 7; // 32^7 bits are more than there can be places

/*
 * For each class a tree of bits. On the ground a bit says that the place must be read; above, that one of the
 * 32 bits of the word below is set. So the next set bit is found in a few steps, however far it is. The bit
 * of the end is always set.
 */
struct PlaceTree {
    uint32_t uiLevels;
    uint32_t auiStart[LEVELS_MAX]; // word where each level begins, from the ground up
    uint32_t uiWords;              // words of one class's tree
};

uint32_t s_uiPlaceRoom = 0;     // places that the block has room for
uint32_t s_uiPlaceNums = 0;     // SYNC tags; the end has this number
bool s_bPlacesComplete = false; // the trees stand behind the places
bool s_bPlacesPassed = false;   // something is known of them
uint32_t s_uiPlacesOption = 0;  // how the file's bytes were taken for characters
PlaceTree s_stPlaceTree = {};

uint32_t *Get_Tree(uint32_t uiClass)
{
    return s_puiSyncPlaces + s_uiPlaceNums + 1 + size_t{uiClass} * s_stPlaceTree.uiWords;
}

/** Move the places to a block of uiWords words. */
bool Move_Places(uint32_t uiWords)
{
    auto *const puiPlaces =
        static_cast<uint32_t *>(Allocate_FrameMemory(uiWords * static_cast<uint32_t>(sizeof(uint32_t))));
    if (puiPlaces == nullptr) return false;
    if (s_puiSyncPlaces != nullptr) {
        std::memcpy(puiPlaces, s_puiSyncPlaces, s_uiPlaceNums * sizeof(uint32_t));
        QUIBCAPTCB_Deallocate_Memory(s_puiSyncPlaces);
    }
    s_puiSyncPlaces = puiPlaces;
    return true;
}

uint32_t Get_DecodingOption()
{
    return s_uiParsingOption & E_PARSING_OPTION_SINGLE_BYTE;
}

void Shape_Tree(uint32_t uiBits)
{
    s_stPlaceTree = {};
    do {
        uiBits = (uiBits + WORD_BITS - 1) / WORD_BITS;
        s_stPlaceTree.auiStart[s_stPlaceTree.uiLevels++] = s_stPlaceTree.uiWords;
        s_stPlaceTree.uiWords += uiBits;
    } while (uiBits > 1);
}

/** @return first set bit from uiBit on; there is one. */
uint32_t Find_SetBit(const uint32_t *puiTree, uint32_t uiBit)
{
    uint32_t uiLevel = 0;
    uint32_t uiWord = 0;
    for (;; ++uiLevel) {
        uiWord = puiTree[s_stPlaceTree.auiStart[uiLevel] + uiBit / WORD_BITS] & (~0u << uiBit % WORD_BITS);
        if (uiWord != 0) break;
        uiBit = uiBit / WORD_BITS + 1;
    }
    uiBit = uiBit / WORD_BITS * WORD_BITS + static_cast<uint32_t>(std::countr_zero(uiWord));
    while (uiLevel-- > 0)
        uiBit = uiBit * WORD_BITS +
                static_cast<uint32_t>(std::countr_zero(puiTree[s_stPlaceTree.auiStart[uiLevel] + uiBit]));
    return uiBit;
}

void Clear_Bit(uint32_t *puiTree, uint32_t uiBit)
{
    for (uint32_t uiLevel = 0; uiLevel < s_stPlaceTree.uiLevels; ++uiLevel) {
        uint32_t &uiWord = puiTree[s_stPlaceTree.auiStart[uiLevel] + uiBit / WORD_BITS];
        uiWord &= ~(1u << uiBit % WORD_BITS);
        if (uiWord != 0) return;
        uiBit /= WORD_BITS;
    }
}

} // namespace

void Begin_SyncPlaces()
{
    Drop_SyncPlaces();
    if (s_puiSyncPlaces != nullptr) QUIBCAPTCB_Deallocate_Memory(s_puiSyncPlaces);
    s_puiSyncPlaces = nullptr;
    s_uiPlaceRoom = 0;
}

bool Append_SyncPlace(int64_t llFilePos)
{
    if (s_uiPlaceNums == s_uiPlaceRoom) {
        const uint32_t uiRoom = std::max(FIRST_PLACES, PLACE_GROWTH * s_uiPlaceRoom);
        if (!Move_Places(uiRoom)) return false;
        s_uiPlaceRoom = uiRoom;
    }
    s_puiSyncPlaces[s_uiPlaceNums++] = static_cast<uint32_t>(llFilePos);
    return true;
}

bool Finish_SyncPlaces(int64_t llEndPos)
{
    if (s_uiPlaceNums == 0) return true;
    Shape_Tree(s_uiPlaceNums + 1);
    if (!Move_Places(s_uiPlaceNums + 1 + ZYR_CLASS_MAX * s_stPlaceTree.uiWords)) return false;
    s_puiSyncPlaces[s_uiPlaceNums] = static_cast<uint32_t>(llEndPos);
    s_bPlacesComplete = true;
    s_uiPlacesOption = Get_DecodingOption();
    Forget_PassedPlaces();
    return true;
}

void Drop_SyncPlaces()
{
    s_uiPlaceNums = 0;
    s_bPlacesComplete = false;
    s_bPlacesPassed = false;
}

void Forget_PassedPlaces()
{
    s_bPlacesPassed = false;
    if (s_puiSyncPlaces != nullptr && s_bPlacesComplete)
        std::memset(Get_Tree(0), 0xFF, sizeof(uint32_t) * ZYR_CLASS_MAX * s_stPlaceTree.uiWords);
}

uint32_t Find_SyncPlace(int64_t llFilePos)
{
    // Other bytes may be characters now: the places would mean nothing.
    if (s_puiSyncPlaces == nullptr || !s_bPlacesComplete || s_uiPlacesOption != Get_DecodingOption())
        return NO_SYNC_PLACE;
    const uint32_t *const puiBegin = s_puiSyncPlaces;
    const uint32_t *const puiPlace =
        std::lower_bound(puiBegin, puiBegin + s_uiPlaceNums, static_cast<uint32_t>(llFilePos));
    return static_cast<uint32_t>(puiPlace - puiBegin);
}

int64_t Get_PlacePosition(uint32_t uiPlace)
{
    return s_puiSyncPlaces[uiPlace];
}

bool Is_SyncTagPlace(uint32_t uiPlace)
{
    return uiPlace < s_uiPlaceNums;
}

void Note_PassedPlace(uint32_t uiPlace, uint32_t uiClassBits)
{
    s_bPlacesPassed = true;
    for (uint32_t uiClass = 0; uiClass < ZYR_CLASS_MAX; ++uiClass)
        if ((uiClassBits >> uiClass & 1) == 0) Clear_Bit(Get_Tree(uiClass), uiPlace);
}

uint32_t Find_NextStop(uint32_t uiClass, uint32_t uiPlace)
{
    return Find_SetBit(Get_Tree(uiClass), uiPlace);
}

uint32_t Find_PassedStart(uint32_t uiClass, int64_t llFilePos)
{
    if (!s_bPlacesPassed) return NO_SYNC_PLACE;
    const uint32_t uiPlace = Find_SyncPlace(llFilePos);
    const bool bPassed = Is_SyncTagPlace(uiPlace) && Find_NextStop(uiClass, uiPlace) > uiPlace + 1;
    return bPassed ? uiPlace : NO_SYNC_PLACE;
}

#include "font/glyph_cache.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

/* Room for some 3,000 Korean glyphs of 32 pixels, or 1,600 of 48: more than the captions of one film use. */
constexpr uint32_t BLOCK_BYTES = 512 * 1024;
constexpr uint32_t SLOT_BITS = 12;
constexpr uint32_t SLOT_NUMS = 1U << SLOT_BITS;
constexpr uint32_t MAX_GLYPHS = SLOT_NUMS / 4 * 3;   // an empty slot always ends a search
constexpr uint32_t MAX_BITS_BYTES = BLOCK_BYTES / 8; // one glyph does not push out all others

struct CachedGlyph {
    uint64_t ullKey;
    FontGlyph stGlyph; // its bits stand right behind this record
};

struct GlyphBlock {
    uint32_t uiUsedBytes; // of aucRecords
    uint32_t uiGlyphNums;
    uint32_t auiSlots[SLOT_NUMS]; // offset of a record in aucRecords, plus 1; 0 = empty
    alignas(CachedGlyph) uint8_t aucRecords[BLOCK_BYTES - (SLOT_NUMS + 2) * sizeof(uint32_t)];
};
static_assert(sizeof(GlyphBlock) == BLOCK_BYTES);

static GlyphBlock *g_pstBlock;

void Open_GlyphCache()
{
    g_pstBlock = static_cast<GlyphBlock *>(malloc(sizeof(GlyphBlock)));
    Clear_GlyphCache();
}

void Close_GlyphCache()
{
    free(g_pstBlock);
    g_pstBlock = nullptr;
}

void Clear_GlyphCache()
{
    if (g_pstBlock == nullptr) return;
    g_pstBlock->uiUsedBytes = 0;
    g_pstBlock->uiGlyphNums = 0;
    memset(g_pstBlock->auiSlots, 0, sizeof(g_pstBlock->auiSlots));
}

static CachedGlyph *Get_Record(uint32_t uiSlotValue)
{
    return reinterpret_cast<CachedGlyph *>(g_pstBlock->aucRecords + (uiSlotValue - 1));
}

/* The slot that holds the key, or the empty one where it belongs. */
static uint32_t *Find_Slot(uint64_t ullKey)
{
    uint32_t uiSlot = static_cast<uint32_t>((ullKey * 0x9E3779B97F4A7C15U) >> (64 - SLOT_BITS));
    while (g_pstBlock->auiSlots[uiSlot] != 0 && Get_Record(g_pstBlock->auiSlots[uiSlot])->ullKey != ullKey)
        uiSlot = (uiSlot + 1) % SLOT_NUMS;
    return &g_pstBlock->auiSlots[uiSlot];
}

const FontGlyph *Find_Glyph(uint64_t ullKey)
{
    if (g_pstBlock == nullptr) return nullptr;
    const uint32_t uiSlotValue = *Find_Slot(ullKey);
    return uiSlotValue == 0 ? nullptr : &Get_Record(uiSlotValue)->stGlyph;
}

/* Rows are packed: FreeType pads them to two bytes. */
static void Copy_Bits(CachedGlyph &stRecord, const FontGlyph &stGlyph, uint32_t uiRowBytes)
{
    uint8_t *pucBits = reinterpret_cast<uint8_t *>(&stRecord + 1);
    for (uint32_t uiRow = 0; uiRow < stGlyph.uiRows; ++uiRow)
        memcpy(pucBits + static_cast<size_t>(uiRow) * uiRowBytes,
               stGlyph.pucBits + static_cast<ptrdiff_t>(uiRow) * stGlyph.iPitch, uiRowBytes);
    stRecord.stGlyph.pucBits = pucBits;
    stRecord.stGlyph.iPitch = static_cast<int32_t>(uiRowBytes);
}

void Store_Glyph(uint64_t ullKey, const FontGlyph &stGlyph)
{
    if (g_pstBlock == nullptr) return;
    const bool bBits = stGlyph.bMono && stGlyph.pucBits != nullptr;
    const uint32_t uiRowBytes = stGlyph.uiWidth / 8 + (stGlyph.uiWidth % 8 != 0 ? 1 : 0);
    const uint64_t ullBitsBytes = bBits ? static_cast<uint64_t>(uiRowBytes) * stGlyph.uiRows : 0;
    if (ullBitsBytes > MAX_BITS_BYTES) return;

    const uint32_t uiAlign = alignof(CachedGlyph);
    const uint32_t uiBytes =
        static_cast<uint32_t>(sizeof(CachedGlyph) + ullBitsBytes + uiAlign - 1) / uiAlign * uiAlign;
    if (g_pstBlock->uiGlyphNums >= MAX_GLYPHS ||
        uiBytes > sizeof(g_pstBlock->aucRecords) - g_pstBlock->uiUsedBytes)
        Clear_GlyphCache();

    uint32_t *puiSlot = Find_Slot(ullKey);
    if (*puiSlot != 0) return;
    *puiSlot = g_pstBlock->uiUsedBytes + 1;
    CachedGlyph &stRecord = *Get_Record(*puiSlot);
    stRecord = {ullKey, stGlyph};
    if (bBits)
        Copy_Bits(stRecord, stGlyph, uiRowBytes);
    else
        stRecord.stGlyph.pucBits = nullptr;
    g_pstBlock->uiUsedBytes += uiBytes;
    ++g_pstBlock->uiGlyphNums;
}

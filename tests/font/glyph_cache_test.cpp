#include "font/glyph_cache.h"

#include <gtest/gtest.h>

#include <vector>

/* A glyph whose measures and bits follow from its key. */
static FontGlyph Make_Glyph(uint64_t ullKey, std::vector<uint8_t> &vucBits, uint32_t uiWidth, uint32_t uiRows)
{
    const uint32_t uiPitch = (uiWidth + 15) / 16 * 2;
    vucBits.assign(size_t{uiPitch} * uiRows, static_cast<uint8_t>(ullKey * 7));
    return {static_cast<int32_t>(ullKey),
            0,
            0,
            uiWidth,
            uiRows,
            static_cast<int32_t>(uiPitch),
            vucBits.data(),
            true,
            true};
}

TEST(GlyphCache, WhatIsFoundIsWhatWasStored)
{
    std::vector<uint8_t> vucBits;
    uint32_t uiFound = 0;
    Open_GlyphCache();
    for (uint32_t uiRound = 0; uiRound < 20000; ++uiRound) {
        const uint64_t ullKey = uint64_t{uiRound} * uiRound % 5003 << (uiRound % 3 * 20); // many meet again
        const uint32_t uiWidth = 1 + static_cast<uint32_t>(ullKey % 70),
                       uiRows = 1 + static_cast<uint32_t>(ullKey % 40);
        const FontGlyph *pstGlyph = Find_Glyph(ullKey);
        if (pstGlyph == nullptr) {
            Store_Glyph(ullKey, Make_Glyph(ullKey, vucBits, uiWidth, uiRows));
            continue;
        }
        ++uiFound;
        ASSERT_EQ(pstGlyph->iAdvance, static_cast<int32_t>(ullKey));
        ASSERT_EQ(pstGlyph->uiRows, uiRows);
        ASSERT_EQ(pstGlyph->iPitch, static_cast<int32_t>((uiWidth + 7) / 8));
        for (int32_t iByte = 0; iByte < pstGlyph->iPitch * static_cast<int32_t>(uiRows); ++iByte)
            ASSERT_EQ(pstGlyph->pucBits[iByte], static_cast<uint8_t>(ullKey * 7));
    }
    EXPECT_GT(uiFound, 2000U);
    Close_GlyphCache();
    EXPECT_EQ(Find_Glyph(0), nullptr);
}

TEST(GlyphCache, AnEnormousGlyphIsNotKept)
{
    std::vector<uint8_t> vucBits;
    Open_GlyphCache();
    Store_Glyph(1, Make_Glyph(1, vucBits, 8, 8));
    for (const uint32_t uiWidth : {1024U, 4096U, 40000U}) {
        Store_Glyph(2, Make_Glyph(2, vucBits, uiWidth, 1024));
        EXPECT_EQ(Find_Glyph(2), nullptr);
        EXPECT_NE(Find_Glyph(1), nullptr);
    }
    Close_GlyphCache();
}

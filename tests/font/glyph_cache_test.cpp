#include "font/glyph_cache.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

/* A glyph's measures and bits follow from its key. At first all are small: slots are used up before bytes. */
TEST(GlyphCache, WhatIsFoundIsWhatWasStored)
{
    uint32_t uiFound = 0;
    Open_GlyphCache();
    for (uint32_t uiRound = 0; uiRound < 40000; ++uiRound) {
        const uint32_t uiMostRows = uiRound < 20000 ? 4 : 40;
        if (uiRound == 20000) Clear_GlyphCache();
        const uint64_t ullKey = uint64_t{uiRound} * uiRound % 5003 << (uiRound % 3 * 20); // many meet again
        const auto iAdvance = static_cast<int32_t>(ullKey);
        const auto uiWidth = static_cast<uint32_t>(1 + ullKey % 70),
                   uiRows = static_cast<uint32_t>(ullKey % uiMostRows);
        const std::vector<uint8_t> vucBits(400, static_cast<uint8_t>(ullKey * 7));
        const FontGlyph *pstFound = Find_Glyph(ullKey);
        if (pstFound == nullptr) {
            Store_Glyph(ullKey, {iAdvance, 0, 0, uiWidth, uiRows, 10, vucBits.data(), true, true});
            continue;
        }
        ++uiFound;
        ASSERT_EQ(pstFound->iAdvance, iAdvance);
        ASSERT_EQ(pstFound->uiRows, uiRows);
        ASSERT_EQ(pstFound->iPitch, static_cast<int32_t>((uiWidth + 7) / 8));
        const uint8_t *pucEnd = pstFound->pucBits + size_t{uiRows} * static_cast<uint32_t>(pstFound->iPitch);
        ASSERT_TRUE(std::equal(pstFound->pucBits, pucEnd, vucBits.begin()));
    }
    EXPECT_GT(uiFound, 2000U);
    Close_GlyphCache();
    EXPECT_EQ(Find_Glyph(0), nullptr);
}

TEST(GlyphCache, AnEnormousGlyphIsNotKept)
{
    const std::vector<uint8_t> vucBits(5000);
    Open_GlyphCache();
    Store_Glyph(1, {0, 0, 0, 8, 8, 2, vucBits.data(), true, true});
    for (const uint32_t uiWidth : {1024U, 4096U, 40000U}) {
        Store_Glyph(2,
                    {0, 0, 0, uiWidth, 1024, 0, vucBits.data(), true, true}); // the same row again and again
        EXPECT_EQ(Find_Glyph(2), nullptr);
        EXPECT_NE(Find_Glyph(1), nullptr);
    }
    Close_GlyphCache();
}

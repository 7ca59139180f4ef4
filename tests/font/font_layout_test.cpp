#include "renderer_kit.h"

#include "font/font_layout.h"

class FontLayout : public FontTest
{
protected:
    FontLayout()
    {
        EXPECT_EQ(zyr_font_init(), 0) << "no font " << FONT_FILE;
        zyr_font_setDirection(0, 0);
    }
    ~FontLayout() override { zyr_font_close(); }
};

/* The linker sends the layout's characters through here; each leaves its place, "x,y". */
static std::string s_strDrawn;
extern "C" int32_t __real_zyr_fontFT_drawChar(uint32_t uiAttr, uint32_t uiCode, uint32_t uiX, uint32_t uiY);
extern "C" int32_t __wrap_zyr_fontFT_drawChar(uint32_t uiAttr, uint32_t uiCode, uint32_t uiX, uint32_t uiY)
{
    s_strDrawn += (s_strDrawn.empty() ? "" : " ") + std::to_string(static_cast<int32_t>(uiX)) + "," +
                  std::to_string(uiY);
    return __real_zyr_fontFT_drawChar(uiAttr, uiCode, uiX, uiY);
}

/* Characters of 20 pixels and narrow ones, measured in a region and drawn into the measured box as the
 * display does it. */
TEST_F(FontLayout, StringsAreMeasuredAndDrawnLineByLine)
{
    static constexpr struct {
        const char16_t *pszText;
        int32_t iLength;
        uint32_t uiRegionWidth;
        const char *pszWidths, *pszDrawn; // widest and each line; the places of the characters
    } astCases[] = {
        {u"한한\n글", 4, 100, "40: 40 20", "0,0 20,0 10,20"},
        {u"한한\n", 3, 100, "40: 40", "0,0 20,0"},
        {u"\n\n글", 3, 100, "20: 0 0 20", "0,40"},
        {u"한한한", 2, 100, "40: 40", "0,0 20,0"},
        {u"한한\n글글", 3, 100, "40: 40 20", "0,0 20,0"}, // a newline does not end the walk
        {u"한한", 0, 100, "0:", ""},
        {u"한한", -5, 100, "0:", ""},
        {u"", 3, 100, "0:", ""},
        {u"한한\n글", 9, 100, "40: 40", "0,0 20,0 20,20"}, // the unfinished last line does not count
        /* A full line: the last unit ends a line of its own, a newline behind it belongs to the break. */
        {u"한한한한한", 5, 100, "100: 100 0", "0,0 20,0 40,0 60,0 80,0"},
        {u"한한한한한\n글", 6, 100, "100: 100 0", "0,0 20,0 40,0 60,0 80,0"},
        {u"한한한한한\n글", 7, 100, "100: 100 20", "0,0 20,0 40,0 60,0 80,0 40,20"},
        {u"한한한한한\n\n글", 8, 100, "100: 100 0 20", "0,0 20,0 40,0 60,0 80,0 40,40"},
        /* Tightened: the last character ends at the edge. The missing-glyph shape counts too. */
        {u"한한한한한한한", 7, 90, "90: 100 40", "0,0 17,0 35,0 52,0 70,0 25,20 45,20"},
        {u"한한한한한한한", 7, 99, "99: 100 40", "0,0 19,0 39,0 59,0 79,0 29,20 49,20"},
        {u"iWfjJ 한A.", 9, 60, "60: 65 17", "0,0 4,0 20,0 26,0 31,0 35,0 40,0 21,20 33,20"},
        {u"iWf\xE123jJ", 6, 60, "60: 60 0", "0,0 5,0 23,0 30,0 50,0 55,0"},
        /* Narrower than a character. */
        {u"i한\nii한\n한i", 9, 10, "10: 25 10 20 20 5", "0,0 -10,0 0,20 5,20 0,40 0,60 2,80"},
        {u"i.한i", 4, 19, "19: 30 5", "0,0 -1,0 -1,0 7,20"},
    };
    zyr_font_setFontSize(0, 20, 20, 0, 0);
    for (const auto &[pszText, iLength, uiRegionWidth, pszWidths, pszDrawn] : astCases) {
        const auto vusText = To_Units(pszText);
        Picture stRegion(uiRegionWidth, 80, uiRegionWidth);
        stRegion.Make_Destination();
        uint32_t auiLineWidth[60] = {}, uiWidth = 9, uiHeight = 9;
        zyr_font_calcRegion(vusText.data(), iLength, 20, &uiWidth, &uiHeight, auiLineWidth);
        std::string strWidths = std::to_string(uiWidth) + ":";
        for (uint32_t uiLine = 0; uiLine < uiHeight / 20; ++uiLine)
            strWidths += " " + std::to_string(auiLineWidth[uiLine]);
        EXPECT_EQ(strWidths, pszWidths) << "length " << iLength << " in " << uiRegionWidth;
        zyr_font_setDestRegion(uiWidth, uiHeight, uiWidth);
        s_strDrawn.clear();
        zyr_font_displayString(vusText.data(), iLength, auiLineWidth, 20);
        EXPECT_EQ(s_strDrawn, pszDrawn);
    }
}

/* Glyph size, offset and cell size of a 20 x 24 character with spacings 8 and 12: the six modes in horizontal
 * writing, then in vertical. */
static constexpr uint32_t CellCases[12][6] = {
    {20, 24, 4, 6, 28, 36},  {10, 24, 2, 6, 18, 36},  {10, 12, 2, 3, 18, 24}, {40, 24, 8, 6, 48, 36},
    {20, 48, 4, 18, 28, 72}, {40, 48, 8, 18, 48, 72}, {20, 24, 6, 4, 28, 36}, {20, 12, 6, 2, 28, 24},
    {10, 12, 3, 2, 18, 24},  {40, 24, 12, 4, 48, 36}, {20, 48, 6, 8, 28, 60}, {40, 48, 12, 8, 48, 60}};

TEST_F(FontLayout, CellsOfEveryModeDirectionAndAnchor)
{
    static constexpr uint32_t auiAttributes[] = {0, 0x0F, 0x20, 0x2A, 0x10, 0x35};
    static constexpr std::pair<uint32_t, uint32_t> astPlaces[] = {{60, 90}, {20, 7}, {240, 170}};
    zyr_font_setFontColor(0xFFFF, 1, 0x0F0F, 2);
    for (uint32_t uiCase = 0; uiCase < 12 * 4 * 6 * 3; ++uiCase) {
        SCOPED_TRACE(uiCase);
        const auto &[uiWidth, uiHeight, uiOffsetX, uiOffsetY, uiCellWidth, uiCellHeight] =
            CellCases[uiCase % 12];
        const uint32_t uiDirection = uiCase % 12 / 6 * 5, uiAlign = uiCase / 12 % 4;
        const uint32_t uiAttr = auiAttributes[uiCase / 48 % 6];
        auto [uiX, uiY] = astPlaces[uiCase / 288];
        const int32_t iAdvance = static_cast<int32_t>(uiDirection != 0 ? uiHeight : uiWidth);
        zyr_font_setDirection(uiDirection, uiAlign);
        ASSERT_EQ(zyr_font_setFontSize(uiCase % 6, 20, 24, 8, 12), 0);
        Picture stPicture(260, 180, 260), stJudge(260, 180, 260);
        stPicture.Make_Destination();
        ASSERT_EQ(zyr_font_clearChar(uiAttr, 100, 5), iAdvance);
        const int32_t iResult = zyr_font_displayChar(uiAttr, 0x300, 0xD55C, uiX, uiY);

        const uint32_t uiHalf = uiCellWidth / 2;
        stJudge.Fill(uiAlign == 1 ? 100 - uiHalf : 100, uiAlign == 2 ? 0 : 5, uiCellWidth, uiCellHeight,
                     0x0F0F);
        if (uiAlign == 1) uiX = std::max(uiX, uiHalf) - uiHalf;
        if (uiAlign == 2) uiY = std::max(uiY, uiCellHeight) - uiCellHeight;
        stJudge.Fill(uiX, uiY, uiCellWidth, uiCellHeight, 0x0F0F);
        stJudge.Make_Destination();
        zyr_fontFT_setFontSize(uiWidth, uiHeight);
        zyr_fontFT_drawChar(uiAttr, 0x300, uiX + uiOffsetX, uiY + uiOffsetY);
        const int32_t iDrawn = zyr_fontFT_drawChar(uiAttr, 0xD55C, uiX + uiOffsetX, uiY + uiOffsetY);
        ASSERT_EQ(iResult, iDrawn < 0 ? iDrawn : iAdvance);
        if (iDrawn >= 0) zyr_fontDraw_drawHighlighting(uiX, uiY + uiOffsetY, uiCellWidth, uiHeight, uiAttr);
        if (iDrawn >= 0 && (uiAttr & 0x20) != 0)
            stJudge.Fill(uiX, uiY + uiOffsetY + uiHeight - 1, uiCellWidth, 1, 0xFFFF);
        ASSERT_TRUE(stPicture == stJudge);
    }
}

TEST_F(FontLayout, RefusedSizes)
{
    static constexpr std::tuple<uint32_t, uint32_t, uint32_t, int32_t, const char *> astCases[] = {
        {0, 0, 5, -2, "6:Error Invalid Param(uiWidth:0, uiHeight:5)\n|"},
        {9, 5, 0, -2, "6:Error Invalid Param(uiWidth:5, uiHeight:0)\n|"},
        {6, 20, 20, -2, "6:Error Invalid Param(Size:6)\n|"},
        {1, 1, 20, -2, ""},          // half of 1 is 0
        {3, 0x80000000, 20, -2, ""}, // and twice this one too
        {0, 0xFFFFFFFF, 0xFFFFFFFF, -1, ""},
        {5, 2000, 20, -1, ""},
        {0, 4, 4, -1, ""},
        {0, 20, 20, 0, ""},
    };
    for (const auto &[uiMode, uiWidth, uiHeight, iResult, pszLog] : astCases)
        Expect(zyr_font_setFontSize(uiMode, uiWidth, uiHeight, ~0U, ~0U), iResult, pszLog);
}

TEST_F(FontLayout, MistakesDoNoHarm)
{
    static constexpr char szNoArea[] = "6:Error Invalid Area(puiDestBuf:0x00000000, W:0, H:0, P:0)\n|";
    const std::vector<uint16_t> vusLong(10000, 0xD55C);
    uint32_t auiLineWidth[60] = {}, uiWidth = 0, uiHeight = 0;
    zyr_font_setFontSize(0, 20, 20, 8, 8);
    Expect(zyr_font_displayChar(0x2F, 'x', 'A', 0, 0), -3, // no buffer
           std::string("6:Error zyr_fontDraw_clearFontBG(-2)\n|") + szNoArea +
               "6:Error zyr_fontFT_drawChar(non-space character -3)\n|" + szNoArea +
               "6:Error zyr_fontFT_drawChar(-3)\n|");
    zyr_font_calcRegion(vusLong.data(), 9999, 20, &uiWidth, &uiHeight, auiLineWidth);
    EXPECT_EQ(uiWidth, 0U); // a region without width: every character fills a line
    EXPECT_EQ(uiHeight, 60 * 20U);
    Expect(zyr_font_displayString(vusLong.data(), 9999, auiLineWidth, 20), 0, "", 60);

    Picture stPicture(300, 100, 300), stUntouched(300, 100, 300);
    stPicture.Make_Destination();
    EXPECT_EQ(zyr_font_calcRegion(vusLong.data(), 9999, 20, nullptr, nullptr, nullptr), 0);
    Expect(zyr_font_displayString(vusLong.data(), 0, auiLineWidth, 20), 0, "");
    Expect(zyr_font_displayString(vusLong.data(), 5, nullptr, 20), -2, "");
    Expect(zyr_font_displayString(nullptr, 5, auiLineWidth, 20), -2, "6:Error Invalid Param(pusString:0)\n|");
    Expect(zyr_font_calcRegion(nullptr, 5, 20, nullptr, nullptr, nullptr), -2,
           "6:Error Invalid Param(pusString:0)\n|");
    Expect(zyr_font_getDestRegion(nullptr, &uiWidth, &uiHeight), -3,
           "6:Error zyr_fontDraw_getDestRegion(err:-2)\n|");
    EXPECT_TRUE(stPicture == stUntouched);
    for (const uint32_t uiGarbage : {1U, 299U, 301U, 0x7FFFFFFFU, 0xFFFFFFFFU}) { // widths nobody measured
        std::fill(std::begin(auiLineWidth), std::end(auiLineWidth), uiGarbage);
        EXPECT_EQ(zyr_font_displayString(vusLong.data(), 9999, auiLineWidth, 0xFFFFFFFF), 0);
    }
}

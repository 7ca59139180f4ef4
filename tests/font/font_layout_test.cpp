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

struct JudgeLine {
    std::vector<uint16_t> vusUnits;
    uint32_t uiWidth;
};

/* The text cut into the lines that a region of this width gives. */
static std::vector<JudgeLine> Split_Lines(JudgeFont &stFont, const std::vector<uint16_t> &vusText,
                                          size_t uiLength, uint32_t uiRegionWidth)
{
    std::vector<JudgeLine> vstLines;
    JudgeLine stLine = {};
    bool bEnd = false; // the length counts behind characters, a newline goes on to the next one
    for (size_t uiUnit = 0; !bEnd && vusText[uiUnit] != 0; ++uiUnit) {
        const bool bBreak = vusText[uiUnit] == '\n';
        if (!bBreak) {
            stLine.vusUnits.push_back(vusText[uiUnit]);
            stLine.uiWidth += static_cast<uint32_t>(stFont.Get_Advance(vusText[uiUnit]));
        }
        const bool bFull = !bBreak && stLine.uiWidth >= uiRegionWidth;
        if (bBreak || bFull) vstLines.push_back(std::exchange(stLine, {}));
        if (bFull && vusText[uiUnit + 1] == '\n') ++uiUnit;
        bEnd = !bBreak && uiUnit + 1 >= uiLength;
    }
    if (bEnd) vstLines.push_back(stLine);
    if (vstLines.size() > 60) vstLines.resize(60);
    return vstLines;
}

static void Judge_Line(JudgeFont &stFont, Picture &stPicture, const JudgeLine &stLine, uint32_t uiY)
{
    const double dRoom = stPicture.uiWidth;
    const double dLast = stLine.vusUnits.empty() ? 0 : stFont.Get_Advance(stLine.vusUnits.back());
    uint32_t uiBefore = 0;
    for (const uint16_t usUnit : stLine.vusUnits) {
        double dX = std::floor((dRoom - stLine.uiWidth) / 2) + uiBefore;
        if (stLine.uiWidth > stPicture.uiWidth)
            dX = uiBefore == 0 ? 0 : std::floor(uiBefore * (dRoom - dLast) / (stLine.uiWidth - dLast));
        stFont.Draw(stPicture, usUnit, static_cast<int64_t>(dX), uiY, 0x8410);
        uiBefore += static_cast<uint32_t>(stFont.Get_Advance(usUnit));
    }
}

/* Narrow, wide, overhanging and missing characters, blanks and newlines. None of these is the last of the
 * length, though units may stand behind it: a newline does not end the walk, see the worked examples. */
static std::vector<uint16_t> Make_Text(Random &stRandom, size_t uiLength, size_t uiBehind)
{
    static constexpr char16_t Alphabet[] = u"iWfjJ \n\n한글뷁A.\xE123";
    std::u16string strText(uiLength + uiBehind, u'A');
    for (char16_t &cUnit : strText) cUnit = Alphabet[stRandom() % (std::size(Alphabet) - 1)];
    if (strText[uiLength - 1] == '\n') strText[uiLength - 1] = 'A';
    return To_Units(strText);
}

/* Regions from less than a character up to several lines; then drawn into the measured box as the display
 * does it. */
TEST_F(FontLayout, StringsAreMeasuredAndDrawnLineByLine)
{
    Random stRandom(3);
    for (uint32_t uiRound = 0; uiRound < 1500; ++uiRound) {
        SCOPED_TRACE(uiRound);
        const uint32_t uiSize = 12 + stRandom() % 30, uiLength = 1 + stRandom() % 90;
        const auto vusText = Make_Text(stRandom, uiLength, uiRound % 2 * stRandom() % 50);
        const auto iLength = static_cast<int32_t>(uiLength);
        ASSERT_EQ(zyr_font_setFontSize(0, uiSize, uiSize, 0, 0), stFont.Set_Size(uiSize, uiSize));
        zyr_font_setFontColor(0x8410, 0x8410, 0, 0);

        Picture stRegion(1 + stRandom() % 300, 1, 300);
        stRegion.Make_Destination();
        const auto vstLines = Split_Lines(stFont, vusText, uiLength, stRegion.uiWidth);
        uint32_t auiLineWidth[60] = {}, uiWidth = 0, uiHeight = 0, uiWidest = 0;
        ASSERT_EQ(zyr_font_calcRegion(vusText.data(), iLength, uiSize, &uiWidth, &uiHeight, auiLineWidth), 0);
        for (size_t uiLine = 0; uiLine < 60; ++uiLine) {
            const uint32_t uiExpected = uiLine < vstLines.size() ? vstLines[uiLine].uiWidth : 0;
            ASSERT_EQ(auiLineWidth[uiLine], uiExpected) << "line " << uiLine;
            uiWidest = std::max(uiWidest, std::min(uiExpected, stRegion.uiWidth));
        }
        ASSERT_EQ(uiWidth, uiWidest);
        ASSERT_EQ(uiHeight, vstLines.size() * uiSize);
        if (uiWidth == 0) continue;

        const uint32_t uiRows = uiHeight - stRandom() % 2 * uiSize / 2; // the last line may be cut
        Picture stPicture(uiWidth, uiRows, uiWidth), stJudge(uiWidth, uiRows, uiWidth);
        stPicture.Make_Destination();
        ASSERT_EQ(zyr_font_displayString(vusText.data(), iLength, auiLineWidth, uiSize), 0);
        for (size_t uiLine = 0; uiLine < vstLines.size(); ++uiLine)
            Judge_Line(stFont, stJudge, vstLines[uiLine], static_cast<uint32_t>(uiLine) * uiSize);
        ASSERT_TRUE(stPicture == stJudge);
    }
}

/* Characters of 20 pixels in a region of 100. */
TEST_F(FontLayout, LinesOfWorkedExamples)
{
    static constexpr std::tuple<const char16_t *, int32_t, const char *> astCases[] = {
        {u"한한\n", 3, "40 "},
        {u"한한\n글글", 3, "40 20 "}, // a newline does not end the walk
        {u"한한", 0, ""},
        {u"한한", -5, ""},
        {u"", 3, ""},
        {u"한한\n글", 9, "40 "},          // the unfinished last line does not count
        {u"한한한한한\n글", 6, "100 0 "}, // the newline belongs to the break, and an empty line ends
    };
    zyr_font_setFontSize(0, 20, 20, 0, 0);
    Picture stRegion(100, 1, 100);
    stRegion.Make_Destination();
    for (const auto &[pszText, iLength, pszWidths] : astCases) {
        uint32_t auiLineWidth[60] = {}, uiHeight = 9;
        zyr_font_calcRegion(To_Units(pszText).data(), iLength, 1, nullptr, &uiHeight, auiLineWidth);
        std::string strWidths;
        for (uint32_t uiLine = 0; uiLine < uiHeight; ++uiLine)
            strWidths += std::to_string(auiLineWidth[uiLine]) + " ";
        EXPECT_EQ(strWidths, pszWidths) << "length " << iLength;
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
    static constexpr std::pair<uint32_t, uint32_t> astPlaces[] = {{60, 90}, {5, 7}, {240, 170}};
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
    for (const auto &[uiMode, uiWidth, uiHeight, iResult, pszLog] : astCases) {
        EXPECT_EQ(zyr_font_setFontSize(uiMode, uiWidth, uiHeight, ~0U, ~0U), iResult);
        EXPECT_EQ(m_stLog.Take(), pszLog);
    }
}

TEST_F(FontLayout, MistakesDoNoHarm)
{
    static constexpr char szNoArea[] = "6:Error Invalid Area(puiDestBuf:0x00000000, W:0, H:0, P:0)\n|";
    const std::vector<uint16_t> vusLong(10000, 0xD55C);
    uint32_t auiLineWidth[60] = {}, uiWidth = 0, uiHeight = 0;
    zyr_font_setFontSize(0, 20, 20, 8, 8);
    EXPECT_EQ(zyr_font_displayChar(0x2F, 'x', 'A', 0, 0), -3); // no buffer
    EXPECT_EQ(m_stLog.Take(), std::string("6:Error zyr_fontDraw_clearFontBG(-2)\n|") + szNoArea +
                                  "6:Error zyr_fontFT_drawChar(non-space character -3)\n|" + szNoArea +
                                  "6:Error zyr_fontFT_drawChar(-3)\n|");
    zyr_font_calcRegion(vusLong.data(), 9999, 20, &uiWidth, &uiHeight, auiLineWidth);
    EXPECT_EQ(uiWidth, 0U); // a region without width: every character fills a line
    EXPECT_EQ(uiHeight, 60 * 20U);
    EXPECT_EQ(zyr_font_displayString(vusLong.data(), 9999, auiLineWidth, 20), 0);
    EXPECT_EQ(m_stLog.Take(60), "");

    Picture stPicture(300, 100, 300), stUntouched(300, 100, 300);
    stPicture.Make_Destination();
    EXPECT_EQ(zyr_font_calcRegion(vusLong.data(), 9999, 20, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(zyr_font_displayString(vusLong.data(), 0, auiLineWidth, 20), 0);
    EXPECT_EQ(zyr_font_displayString(vusLong.data(), 5, nullptr, 20), -2);
    EXPECT_EQ(zyr_font_getDestRegion(nullptr, &uiWidth, &uiHeight), -3);
    EXPECT_EQ(zyr_font_calcRegion(nullptr, 5, 20, &uiWidth, &uiHeight, auiLineWidth), -2);
    EXPECT_EQ(zyr_font_displayString(nullptr, 5, auiLineWidth, 20), -2);
    EXPECT_EQ(m_stLog.Take(),
              "6:Error zyr_fontDraw_getDestRegion(err:-2)\n|6:Error Invalid Param(pusString:0)\n|"
              "6:Error Invalid Param(pusString:0)\n|");
    EXPECT_TRUE(stPicture == stUntouched);
    for (const uint32_t uiGarbage : {1U, 299U, 301U, 0x7FFFFFFFU, 0xFFFFFFFFU}) { // widths nobody measured
        std::fill(std::begin(auiLineWidth), std::end(auiLineWidth), uiGarbage);
        EXPECT_EQ(zyr_font_displayString(vusLong.data(), 9999, auiLineWidth, 0xFFFFFFFF), 0);
    }
}

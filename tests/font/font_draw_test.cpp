#include "renderer_kit.h"

constexpr uint16_t FONT_COLOR = 0x8410;
constexpr uint16_t BACKGROUND = 0x1234;

/* The drawing calls, each beside an obvious form of itself. */
struct DrawCall {
    uint32_t uiX, uiY, uiWidth, uiHeight, uiFlags;
};

static void Judge_Box(Picture &stPicture, const DrawCall &stCall)
{
    const int64_t llX = static_cast<int32_t>(stCall.uiX), llY = static_cast<int32_t>(stCall.uiY);
    const int64_t llWidth = stCall.uiWidth, llHeight = stCall.uiHeight;
    if (llWidth < 3 || llHeight < 3) return;
    if ((stCall.uiFlags & 1) != 0) stPicture.Fill(llX, llY + llHeight - 3, llWidth, 1, FONT_COLOR);
    if ((stCall.uiFlags & 4) != 0) stPicture.Fill(llX, llY, llWidth, 1, FONT_COLOR);
    if ((stCall.uiFlags & 8) != 0) stPicture.Fill(llX, llY, 1, llHeight - 3, FONT_COLOR);
    if ((stCall.uiFlags & 2) == 0) return;
    stPicture.Fill(llX + llWidth - 3, llY, 3, 1, BACKGROUND);
    stPicture.Fill(llX + llWidth - 3, llY + llHeight - 3, 3, 1, BACKGROUND);
    stPicture.Fill(llX + llWidth - 3, llY, 1, llHeight - 2, FONT_COLOR);
}

/* Make one of the four calls and judge it. */
static void Draw_Both(uint32_t uiWhich, const DrawCall &stCall, Picture &stJudge)
{
    const auto &[uiX, uiY, uiWidth, uiHeight, uiFlags] = stCall;
    const int32_t iX = static_cast<int32_t>(uiX), iY = static_cast<int32_t>(uiY);
    int32_t iResult = 0, iExpected = uiWidth == 0 || uiHeight == 0 ? -2 : 0;
    if (uiWhich == 0) {
        iResult = zyr_fontDraw_clearFontBG(uiX, uiY, uiWidth, uiHeight);
        stJudge.Fill(iX, iY, uiWidth, uiHeight, BACKGROUND);
    } else if (uiWhich == 1) {
        iResult = zyr_fontDraw_drawUnderline(uiX, uiY, uiWidth, uiHeight);
        if (iExpected == 0) stJudge.Fill(iX, int64_t{iY} + uiHeight - 1, uiWidth, 1, FONT_COLOR);
    } else if (uiWhich == 2) {
        iResult = zyr_fontDraw_drawHighlighting(uiX, uiY, uiWidth, uiHeight, uiFlags);
        Judge_Box(stJudge, stCall);
    } else {
        static constexpr char szBits[] = "Forty-eight characters give some 380 bits of it.";
        const int32_t iPitch = uiFlags % 4 == 0 ? -1 : 1; // rows overlap, and the last may stand first
        const auto *pucBits = reinterpret_cast<const uint8_t *>(szBits) + 20;
        iResult = zyr_fontDraw_drawBitmapMono(iX, iY, uiWidth % 64, uiHeight % 20, iPitch, pucBits);
        iExpected = stJudge.Draw_Bits(iX, iY, uiWidth % 64, uiHeight % 20, iPitch, pucBits, FONT_COLOR);
    }
    ASSERT_EQ(iResult, iExpected);
}

/* Mostly around the region, at times far outside or absurdly large. */
static uint32_t Pick_Number(Random &stRandom, uint32_t uiUsual, uint32_t uiBelow)
{
    static constexpr uint32_t Extremes[] = {0, 1, 2, 3, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF0, 0xFFFFFFFF};
    if (stRandom() % 16 == 0) return Extremes[stRandom() % std::size(Extremes)];
    return stRandom() % uiUsual - uiBelow;
}

using FontDraw = HostTest;

TEST_F(FontDraw, AgreesWithSinglePixelsAndStaysInTheRegion)
{
    Random stRandom(1);
    for (uint32_t uiRound = 0; uiRound < 4000; ++uiRound) {
        SCOPED_TRACE(uiRound);
        const uint32_t uiWidth = 1 + stRandom() % 60, uiHeight = 1 + stRandom() % 40;
        const uint32_t uiPitch = std::max(1U, uiWidth + stRandom() % 5 - 1); // at times below the width
        Picture stPicture(uiWidth, uiHeight, uiPitch), stJudge(uiWidth, uiHeight, uiPitch);
        zyr_fontDraw_init();
        stPicture.Make_Destination();
        zyr_fontDraw_setFontColor(FONT_COLOR, 1, BACKGROUND, 2);
        const DrawCall stCall = {Pick_Number(stRandom, 2 * uiWidth, uiWidth / 2),
                                 Pick_Number(stRandom, 2 * uiHeight, uiHeight / 2),
                                 Pick_Number(stRandom, uiWidth + 9, 0),
                                 Pick_Number(stRandom, uiHeight + 9, 0), stRandom() % 16};
        Draw_Both(stRandom() % 4, stCall, stJudge);
        ASSERT_FALSE(HasFatalFailure());
        ASSERT_TRUE(stPicture == stJudge);
    }
}

TEST_F(FontDraw, RefusalsNameTheirReason)
{
    uint16_t usPixel = 7;
    const uint8_t ucBits = 0xFF;
    zyr_fontDraw_init();
    Expect(zyr_fontDraw_clearDestBuf(1), -1, "6:Error g_pusDestBuf is NULL\n|");
    Expect(zyr_fontDraw_setDestBuf(nullptr), -2, "6:Error Invalid Param(pBuf:0)\n|");
    Expect(zyr_fontDraw_clearFontBG(0, 0, 1, 1), -2, ""); // no buffer
    Expect(zyr_fontDraw_drawHighlighting(0, 0, 2, 2, 15), -2, "");
    Expect(zyr_fontDraw_setDestBuf(&usPixel), 0, "");
    Expect(zyr_fontDraw_clearDestBuf(9), 0, ""); // no region: nothing to fill
    Expect(zyr_fontDraw_setDestRegion(1, 1, 1), 0, "");
    Expect(zyr_fontDraw_setDestRegion(5, 0, 7), -2,
           "6:Error Invalid Param(uiWidth:5 uiHeight:0 uiPitch:7)\n|");
    Expect(zyr_fontDraw_drawBitmapMono(0, 0, 2, 1, 1, &ucBits), -5,
           "6:Error Invalid Area(X:0, W:2, DestW:1)\n|");
    Expect(zyr_fontDraw_drawBitmapMono(0, 0, 1, 1, 1, nullptr), -2, "");
    Expect(zyr_fontDraw_drawUnderline(0, 0, 0, 5), -2, "6:Error Invalid Param(W:0, H:5)\n|");
    EXPECT_EQ(usPixel, 7);
    Expect(zyr_fontDraw_clearDestBuf(9), 0, "");
    EXPECT_EQ(usPixel, 9);
}

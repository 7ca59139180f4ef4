#include "renderer_kit.h"

#include <array>

#include "zyr/zyr_font.h"

constexpr uint16_t FONT_COLOR = 0x8410;
constexpr uint16_t BACKGROUND = 0x1234;

/* The drawing calls, each beside an obvious form of itself that sets single pixels. */
struct DrawCall {
    uint32_t uiX, uiY, uiWidth, uiHeight, uiFlags;
};

static int64_t Signed(uint32_t uiValue)
{
    return static_cast<int32_t>(uiValue);
}

static void Judge_Box(Picture &stPicture, const DrawCall &stCall)
{
    const int64_t llX = Signed(stCall.uiX), llY = Signed(stCall.uiY);
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

static int32_t Judge_Bitmap(Picture &stPicture, const DrawCall &stCall, int32_t iPitch,
                            const uint8_t *pucBits)
{
    const int64_t llX = Signed(stCall.uiX);
    if (llX + stCall.uiWidth > stPicture.uiWidth) return -5;
    for (int64_t llRow = 0; llRow < stCall.uiHeight; ++llRow)
        for (int64_t llBit = 0; llBit < stCall.uiWidth; ++llBit)
            if ((pucBits[llRow * iPitch + llBit / 8] << llBit % 8 & 0x80) != 0)
                stPicture.Set(llX + llBit, Signed(stCall.uiY) + llRow, FONT_COLOR);
    return 0;
}

/* Mostly around the region, at times far outside or absurdly large. */
static uint32_t Pick_Number(Random &stRandom, uint32_t uiUsual, bool bSigned)
{
    static constexpr uint32_t Extremes[] = {0, 1, 2, 3, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF0, 0xFFFFFFFF};
    if (stRandom() % 16 == 0) return Extremes[stRandom() % std::size(Extremes)];
    return stRandom() % uiUsual - (bSigned ? uiUsual / 4 : 0);
}

TEST(FontDraw, AgreesWithSinglePixelsAndStaysInTheRegion)
{
    LogCapture stLog;
    Random stRandom(1);
    std::array<uint8_t, 4096> aucBits;
    for (uint8_t &ucBits : aucBits) ucBits = static_cast<uint8_t>(stRandom());
    for (uint32_t uiRound = 0; uiRound < 4000; ++uiRound) {
        SCOPED_TRACE(uiRound);
        const uint32_t uiWidth = 1 + stRandom() % 60, uiHeight = 1 + stRandom() % 40;
        const uint32_t uiPitch =
            std::max(1U, uiWidth + stRandom() % 5 - 1); // may be narrower than the region
        Picture stPicture(uiWidth, uiHeight, uiPitch), stJudge(uiWidth, uiHeight, uiPitch);
        zyr_fontDraw_init();
        stPicture.Make_Destination();
        zyr_fontDraw_setFontColor(FONT_COLOR, 1, BACKGROUND, 2);
        DrawCall stCall = {Pick_Number(stRandom, 2 * uiWidth, true),
                           Pick_Number(stRandom, 2 * uiHeight, true),
                           Pick_Number(stRandom, uiWidth + 9, false),
                           Pick_Number(stRandom, uiHeight + 9, false), stRandom() % 16};
        const int64_t llX = Signed(stCall.uiX), llY = Signed(stCall.uiY);
        int32_t iResult = 0, iExpected = stCall.uiWidth == 0 || stCall.uiHeight == 0 ? -2 : 0;
        switch (stRandom() % 4) {
        case 0:
            iResult = zyr_fontDraw_clearFontBG(stCall.uiX, stCall.uiY, stCall.uiWidth, stCall.uiHeight);
            stJudge.Fill(llX, llY, stCall.uiWidth, stCall.uiHeight, BACKGROUND);
            break;
        case 1:
            iResult = zyr_fontDraw_drawUnderline(stCall.uiX, stCall.uiY, stCall.uiWidth, stCall.uiHeight);
            if (iExpected == 0) stJudge.Fill(llX, llY + stCall.uiHeight - 1, stCall.uiWidth, 1, FONT_COLOR);
            break;
        case 2:
            iResult = zyr_fontDraw_drawHighlighting(stCall.uiX, stCall.uiY, stCall.uiWidth, stCall.uiHeight,
                                                    stCall.uiFlags);
            Judge_Box(stJudge, stCall);
            break;
        default: {
            stCall.uiWidth %= 64;
            stCall.uiHeight %= 64;
            const int32_t iPitch = stRandom() % 4 == 0 ? -8 : 8;
            const uint8_t *pucBits = aucBits.data() + 2048;
            iExpected = Judge_Bitmap(stJudge, stCall, iPitch, pucBits);
            iResult = zyr_fontDraw_drawBitmapMono(static_cast<int32_t>(stCall.uiX),
                                                  static_cast<int32_t>(stCall.uiY), stCall.uiWidth,
                                                  stCall.uiHeight, iPitch, pucBits);
        }
        }
        ASSERT_EQ(iResult, iExpected);
        ASSERT_TRUE(stPicture == stJudge);
    }
}

TEST(FontDraw, RefusalsNameTheirReason)
{
    LogCapture stLog;
    uint16_t usPixel = 7;
    const uint8_t ucBits = 0xFF;
    uint32_t uiValue = 0;
    const auto Expect = [&](int32_t iResult, int32_t iExpected, const char *pszLog) {
        EXPECT_EQ(iResult, iExpected);
        EXPECT_EQ(stLog.Take(), pszLog);
    };
    zyr_fontDraw_init();
    Expect(zyr_fontDraw_clearDestBuf(1), -1, "6:Error g_pusDestBuf is NULL\n|");
    Expect(zyr_fontDraw_drawBitmapMono(0, 0, 1, 1, 1, &ucBits), -3,
           "6:Error Invalid Area(puiDestBuf:0x00000000, W:0, H:0, P:0)\n|");
    Expect(zyr_fontDraw_setDestBuf(nullptr), -2, "6:Error Invalid Param(pBuf:0)\n|");
    Expect(zyr_fontDraw_clearFontBG(0, 0, 1, 1), -2, ""); // no buffer
    Expect(zyr_fontDraw_drawHighlighting(0, 0, 2, 2, 15), -2, "");
    Expect(zyr_fontDraw_setDestBuf(&usPixel), 0, "");
    Expect(zyr_fontDraw_clearDestBuf(9), 0, ""); // no region: nothing to fill
    Expect(zyr_fontDraw_setDestRegion(1, 1, 1), 0, "");
    Expect(zyr_fontDraw_setDestRegion(0, 10, 10), -2,
           "6:Error Invalid Param(uiWidth:0 uiHeight:10 uiPitch:10)\n|");
    Expect(zyr_fontDraw_getDestRegion(&uiValue, &uiValue, nullptr), -2, "");
    Expect(zyr_fontDraw_getDestRegion(&uiValue, &uiValue, &uiValue), 0, "");
    EXPECT_EQ(uiValue, 1U);
    Expect(zyr_fontDraw_drawBitmapMono(0, 0, 2, 1, 1, &ucBits), -5,
           "6:Error Invalid Area(X:0, W:2, DestW:1)\n|");
    Expect(zyr_fontDraw_drawBitmapMono(0, 0, 1, 1, 1, nullptr), -2, "");
    Expect(zyr_fontDraw_drawUnderline(0, 0, 0, 5), -2, "6:Error Invalid Param(W:0, H:5)\n|");
    EXPECT_EQ(usPixel, 7);
    Expect(zyr_fontDraw_clearDestBuf(9), 0, "");
    EXPECT_EQ(usPixel, 9);
    EXPECT_EQ(zyr_fontDraw_getDestBuf(), &usPixel);
    zyr_fontDraw_close();
    EXPECT_EQ(zyr_fontDraw_getDestBuf(), nullptr); // the memory may be gone
}

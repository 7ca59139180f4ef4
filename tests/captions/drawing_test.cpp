// Captions drawn for the box's outputs.
#include "captions_kit.h"

#include "zyr/zyr_host.h"

namespace
{

struct Screen {
    explicit Screen(const char *pszOutput, uint32_t uiFontSize = 0, int32_t iPosition = -1)
    {
        iResult = zyrCaptions_openScreen(pszOutput, uiFontSize, iPosition, &pstScreen);
        for (uint32_t uiOutput = 0; zyrCaptions_getOutput(uiOutput, &stOutput) == ZYR_CAPTIONS_OK; ++uiOutput)
            if (std::string(stOutput.pszName) == pszOutput) break;
        aucRgba.resize(size_t{stOutput.uiWidth} * stOutput.uiHeight * 4);
    }
    ~Screen() { zyrCaptions_closeScreen(pstScreen); }
    ZyrCaptionBox Draw(const char *pszText)
    {
        ZyrCaptionBox stBox;
        std::fill(aucRgba.begin(), aucRgba.end(), uint8_t{0});
        EXPECT_EQ(zyrCaptions_draw(pstScreen, pszText, aucRgba.data(), &stBox), ZYR_CAPTIONS_OK);
        return stBox;
    }
    // Pixels with a mark: inside a box, and all of them.
    std::pair<size_t, size_t> Count_Marks(const ZyrCaptionBox &stBox) const
    {
        size_t uiInside = 0, uiAll = 0;
        for (size_t uiPixel = 0; uiPixel < aucRgba.size() / 4; ++uiPixel) {
            const size_t uiX = uiPixel % stOutput.uiWidth - stBox.uiX;
            const size_t uiY = uiPixel / stOutput.uiWidth - stBox.uiY;
            const size_t uiMark = aucRgba[uiPixel * 4 + 3] != 0 ? 1 : 0;
            uiAll += uiMark;
            uiInside += uiX < stBox.uiWidth && uiY < stBox.uiHeight ? uiMark : 0;
        }
        return {uiInside, uiAll};
    }
    ZyrCaptionScreen *pstScreen = nullptr;
    ZyrCaptionOutput stOutput = {};
    int iResult = 0;
    std::vector<uint8_t> aucRgba;
};

} // namespace

TEST(CaptionDrawing, AllMarksStandInTheBox)
{
    ZyrCaptionOutput stOutput;
    uint32_t uiOutputs = 0;
    for (; zyrCaptions_getOutput(uiOutputs, &stOutput) == ZYR_CAPTIONS_OK; ++uiOutputs) {
        SCOPED_TRACE(stOutput.pszName);
        Screen stScreen(stOutput.pszName);
        ASSERT_EQ(stScreen.iResult, ZYR_CAPTIONS_OK);
        const ZyrCaptionBox stBox = stScreen.Draw("The lamp is lit\n등을 켭니다");
        const auto [uiInside, uiAll] = stScreen.Count_Marks(stBox);
        EXPECT_GT(uiAll, 100U);
        EXPECT_EQ(uiInside, uiAll);
        EXPECT_LT(stBox.uiWidth, stOutput.uiWidth);
        EXPECT_EQ(stBox.uiX, (stOutput.uiWidth - stBox.uiWidth) / 2);
        EXPECT_EQ(stBox.uiY + stBox.uiHeight, stOutput.uiHeight - 16);
        EXPECT_EQ(stScreen.Draw("").uiWidth, 0U);
        EXPECT_EQ(stScreen.Count_Marks({}).second, 0U);
    }
    EXPECT_EQ(uiOutputs, 12U);
}

TEST(CaptionDrawing, SizePositionAndTime)
{
    const ZyrCaptionBox stSmall = Screen("lcd").Draw("lamp");
    EXPECT_GT(Screen("lcd", 40).Draw("lamp").uiHeight, stSmall.uiHeight);
    EXPECT_EQ(Screen("lcd", 0, 100).Draw("lamp").uiY, stSmall.uiY - 84);
    Screen stScreen("lcd");
    const ListPtr pstList = Load(Sample("subrip-crlf.srt"));
    ZyrCaptionBox stBox;
    const ZyrCaptionBox stText = stScreen.Draw("The lamp is lit at dusk.");
    EXPECT_EQ(zyrCaptions_drawAt(stScreen.pstScreen, pstList.get(), ZYR_CAPTIONS_ALL, 1500, nullptr, &stBox),
              0);
    EXPECT_EQ(stBox.uiWidth, stText.uiWidth);
    EXPECT_EQ(zyrCaptions_drawAt(stScreen.pstScreen, pstList.get(), ZYR_CAPTIONS_ALL, 3700, nullptr, &stBox),
              0);
    EXPECT_EQ(stBox.uiWidth, 0U);
}

TEST(CaptionDrawing, OneScreenAndTheProgramsOwnSettings)
{
    zyr_host_setProperty("persist.sys.output_mode", "3");
    Screen stScreen("hdmi-720p");
    EXPECT_STREQ(zyr_host_getProperty("persist.sys.output_mode"), "3");
    EXPECT_EQ(zyr_host_getProperty("persist.sys.hdmi_resolution"), nullptr);
    EXPECT_EQ(Screen("lcd").iResult, ZYR_CAPTIONS_BUSY);
    EXPECT_EQ(zyrCaptions_count(Load(Sample("subrip-crlf.srt")).get()), 4U) << "loads go on beside it";
    EXPECT_EQ(Screen("no-such-output").iResult, ZYR_CAPTIONS_NO_SCREEN);
    EXPECT_EQ(zyrCaptions_draw(nullptr, "x", nullptr, nullptr), ZYR_CAPTIONS_BAD_ARGUMENT);
    zyr_host_setProperty("persist.sys.output_mode", nullptr);
}

TEST(CaptionDrawing, SaysWhatTheFontLacks)
{
    const Screen stScreen("lcd");
    uint32_t auiMissing[4];
    EXPECT_EQ(zyrCaptions_getMissing(stScreen.pstScreen, "Lamp 등\nok", auiMissing, 4), 0U);
    EXPECT_EQ(zyrCaptions_getMissing(stScreen.pstScreen, "🐋 a 🐋 \xEF\xBF\xBE!", auiMissing, 4), 2U);
    EXPECT_EQ(auiMissing[0], 0x1F40BU);
    EXPECT_EQ(auiMissing[1], 0xFFFEU);
    zyr_host_setFontFile("/nowhere.ttf");
    zyrCaptions_closeScreen(nullptr);
    zyr_host_reset();
}

TEST(CaptionDrawing, NoFontNoScreen)
{
    zyr_host_setFontFile("/nowhere.ttf");
    EXPECT_EQ(Screen("lcd").iResult, ZYR_CAPTIONS_NO_SCREEN);
    zyr_host_reset();
    EXPECT_EQ(Screen("lcd").iResult, ZYR_CAPTIONS_OK);
}

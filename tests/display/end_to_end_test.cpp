/* A movie's captions on their way from the file to the device, as a player takes them there. */

#include "platform/host_test.h"
#include "support/engine_fixture.h"

#include "zyr/zyr_display.h"

namespace
{

constexpr uint32_t LCD_WIDTH = 800;
constexpr uint32_t LCD_HEIGHT = 480;
constexpr uint32_t BUFFER_BYTES = 2095792; // the second drawing buffer stands behind the first

/* The requests of one shown caption: the clear buffer, then the caption's box and its buffer. */
constexpr char REQUESTS[] = "set 1 0 %*d %*d 32 32 0 32 32 1 0 0 0|on|show 4191584|"
                            "set 1 0 %u %u %u %u 0 %*u %*u 1 0 0 0|on|show %u|%n";

struct ShownFrame {
    uint32_t uiStream, uiBuffer; // the buffer shown last
    int32_t iStart;
    std::string strText; // as UTF-8
};

/** Show the next frame in the middle of the bottom. @return whether there was one */
bool Show_Next(Transcript *pstTrace, ShownFrame *pstFrame)
{
    uint32_t uiLines = 0, uiBytes = 0, uiX = 0, uiY = 0, uiWidth = 0, uiHeight = 0;
    int32_t iEnd = 0, iScanned = 0;
    uint8_t *pucText = nullptr;
    if (zyrSubtitle_getFrame(&pstFrame->uiStream, &pstFrame->iStart, &iEnd, &uiLines, &uiBytes, &pucText) !=
        0)
        return false;
    pstFrame->strText = To_Utf8({reinterpret_cast<const char *>(pucText), uiBytes}, E_OUTPUT_CHARSET_UTF16);
    std::vector<uint16_t> vecUnits(uiBytes / 2 + 1);
    memcpy(vecUnits.data(), pucText, uiBytes);
    EXPECT_EQ(zyr_display_displayString(vecUnits.data(), static_cast<int32_t>(uiBytes / 2)), 0);
    const std::string strTrace = pstTrace->Take();
    sscanf(strTrace.c_str(), REQUESTS, &uiX, &uiY, &uiWidth, &uiHeight, &pstFrame->uiBuffer, &iScanned);
    EXPECT_EQ(static_cast<size_t>(iScanned), strTrace.size()) << strTrace;
    EXPECT_EQ(uiX, (LCD_WIDTH - uiWidth) / 2);
    EXPECT_EQ(uiY, LCD_HEIGHT - uiHeight - 16);
    EXPECT_EQ(uiHeight, 32 * uiLines);
    return true;
}

/** @return pixels of the display that the caption covers. */
ptrdiff_t Count_Pixels()
{
    std::vector<uint32_t> vecRgba(size_t{LCD_WIDTH} * LCD_HEIGHT);
    EXPECT_EQ(zyr_host_composeCaption(reinterpret_cast<uint8_t *>(vecRgba.data()), LCD_WIDTH, LCD_HEIGHT), 0);
    return std::count_if(vecRgba.begin(), vecRgba.end(), [](uint32_t uiPixel) { return uiPixel != 0; });
}

using EndToEnd = EngineTest;

TEST_F(EndToEnd, ShowsSeeksAndSwitchesLanguage)
{
    Transcript stTrace;
    ShownFrame stFrame = {};
    std::ifstream stFile(ZYR_SAMPLES "/sami-interleaved.smi", std::ios::binary);
    const std::string strText((std::istreambuf_iterator<char>(stFile)), {});
    zyr_host_setProperty("ro.board.platform", "zyr72xx");    // nothing else is set: LCD
    ASSERT_EQ(Open(".smi", Encode(strText, E_UTF16LE)), 0u); // so the text is what the display takes
    ASSERT_EQ(zyr_display_open(), 0);
    zyr_host_setDeviceTrace(Transcript::Take_Step, &stTrace);

    std::vector<std::string> avecTexts[2]; // Korean, English
    for (uint32_t uiShown = 0; Show_Next(&stTrace, &stFrame); ++uiShown) {
        ASSERT_LT(uiShown, 100u) << "no end";
        EXPECT_EQ(stFrame.uiBuffer, uiShown % 2 * BUFFER_BYTES) << "never the buffer on screen";
        if (stFrame.strText.empty()) continue;
        EXPECT_GT(Count_Pixels(), 100) << stFrame.strText;
        avecTexts[stFrame.uiStream == 0 ? 0 : 1].push_back(stFrame.strText);
    }
    ASSERT_FALSE(avecTexts[0].empty() || avecTexts[1].empty());

    ASSERT_EQ(zyrSubtitle_seek(4000), 0u);
    ASSERT_TRUE(Show_Next(&stTrace, &stFrame));
    EXPECT_GE(stFrame.iStart, 4000) << "the next frame is the first that starts at or after the time";

    const uint32_t uiEnglish = 1;
    ASSERT_EQ(zyrSubtitle_selectClass(1, &uiEnglish), 0u);
    ASSERT_TRUE(Show_Next(&stTrace, &stFrame));
    EXPECT_EQ(stFrame.strText, avecTexts[1][0]) << "the chosen language begins at its first frame";
    EXPECT_EQ(stFrame.uiStream, 0u);

    EXPECT_EQ(zyr_display_clearString(), 0);
    EXPECT_TRUE(stTrace.Take().ends_with("|on|show 4191584|"));
    EXPECT_EQ(Count_Pixels(), 0);
    zyr_host_setDeviceTrace(nullptr, nullptr);
    zyr_display_close();
}

} // namespace

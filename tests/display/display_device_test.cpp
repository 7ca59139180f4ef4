#include "font/renderer_kit.h"

#include "display/display_device.h"

constexpr uint32_t BUFFER_PIXELS = 1047896;
constexpr uint32_t SQUARE_PIXELS = 32 * 32; // of the empty one that clears

class DisplayDevice : public FontTest
{
protected:
    /* Position and buffer turn outlive a close. */
    DisplayDevice()
    {
        zyr_host_setProperty("ro.board.platform", "zyr72xx");
        zyr_host_setDeviceTrace(Transcript::Take_Step, &m_stLog);
        Open("0");
        zyr_display_setPosition(16);
        while (Show(u"") == 0 && !m_stLog.Take().ends_with("show 2095792|")) {} // buffer 0 is next
        zyr_display_close();
        m_stLog.Take();
    }
    ~DisplayDevice() override
    {
        zyr_display_close();
        zyr_display_system_exit();
    }

    void Open(const char *pszOutput)
    {
        zyr_host_setProperty("persist.sys.output_mode", pszOutput);
        EXPECT_EQ(zyr_display_open(), 0) << "no font " << FONT_FILE;
        zyr_display_setFontSize(32);
        m_stLog.Take();
    }

    static int32_t Show(const std::u16string &strText)
    {
        return zyr_display_displayString(To_Units(strText).data(), static_cast<int32_t>(strText.size()));
    }

    static const uint16_t *Get_Buffer(uint32_t uiIndex)
    {
        return zyr_host_captionMemory(nullptr) + size_t{uiIndex} * BUFFER_PIXELS;
    }
};

/* A box and its buffer on the LCD, as the device is told. */
static std::string Box(int32_t iX, int32_t iY, int32_t iWidth, int32_t iHeight, uint32_t uiBuffer)
{
    char acText[128];
    snprintf(acText, sizeof(acText), "set 1 0 %d %d %d %d 0 %d %d 1 0 0 0|on|show %u|", iX, iY, iWidth,
             iHeight, iWidth, iHeight, uiBuffer * 2 * BUFFER_PIXELS);
    return acText;
}

TEST_F(DisplayDevice, ACaptionFromOpenToClose)
{
    const std::string strShown = "3:zyr_display_displayString(4)\n|";        // the clear buffer comes first
    Expect(zyr_display_open(), 0, "open|region overlay1|map 4194304 0|", 3); // behind the settings
    Expect(zyr_display_setFontSize(30), 0, "");
    stFont.Set_Size(24, 24);
    Expect(Show(u"한\n한한"), 0, strShown + Box(0, 0, 32, 32, 2) + Box(376, 416, 48, 48, 0));
    Picture stJudge(48, 48, 48);
    stJudge.Fill(0, 0, 48, 48, 0);
    for (const auto &[iX, iY] : {std::pair{12, 0}, {0, 24}, {24, 24}})
        stFont.Draw(stJudge, 0xD55C, iX, iY, 0x8410);
    EXPECT_TRUE(stJudge.Has_Pixels(Get_Buffer(0)));

    Expect(zyr_display_setPosition(100), 0, Box(376, 332, 48, 48, 0));
    Expect(Show(u"한한한한"), 0,
           strShown + Box(376, 332, 32, 32, 2) + Box(352, 356, 96, 24, 1)); // the new place
    EXPECT_TRUE(stJudge.Has_Pixels(Get_Buffer(0)));                         // the other buffer
    Expect(zyr_display_setOnoff(0), 0, "off|");
    Expect(zyr_display_setOnoff(-3), 0, "on|");
    Expect(zyr_display_clearString(), 0, Box(352, 356, 32, 32, 2));
    Expect(zyr_display_close(), 0, "off|close|unmap|");
    EXPECT_EQ(zyr_fontDraw_getDestBuf(), nullptr);
    Expect(zyr_display_open(), 0, "", 6);
    Expect(zyr_display_setPosition(16), 0, Box(400, 464, 0, 0, 1)); // the buffers keep their turn
    EXPECT_EQ(zyr_display_open(), 0);
    EXPECT_EQ(m_stLog.Take().find("off|close|unmap|3:"), 0U); // closes first
}

TEST_F(DisplayDevice, FailedOpensLeaveNothingOpen)
{
    const std::string strNowhere(2 * sizeof(void *), 'f');
    /* The failing step of the device, 0 for no such font, -1 for no such chip; result; log behind the
     * settings. */
    const std::tuple<int, int32_t, std::string> astCases[] = {
        {-1, -1, "6:[zyr_display_open] Error zyr_display_system_init(-1)|"},
        {1, -7,
         "open|6:[zyr_display_openCCFB] Error can't open /dev/ccfb|"
         "6:[zyr_display_open] Error zyr_display_openCCFB(-7)|"},
        {2, -4,
         "open|region overlay1|6:[zyr_display_openMemory] Error unknown region(overlay1)|"
         "6:[zyr_display_open] Error zyr_display_openMemory(-4)|close|"},
        {3, -4,
         "open|region overlay1|map 4194304 0|6:[zyr_display_openMemory] Error mmap failed.(0x" + strNowhere +
             ")\n|6:[zyr_display_open] Error zyr_display_openMemory(-4)|close|"},
        {0, -1,
         "open|region overlay1|map 4194304 0|6:Error zyr_fontFT_init(-1)\n|"
         "6:[zyr_display_open] Error zyr_font_init (-1)|close|unmap|"},
    };
    for (const auto &[iFailingStep, iResult, strLog] : astCases) {
        zyr_host_setProperty("ro.board.platform", iFailingStep == -1 ? "none" : "zyr72xx");
        zyr_host_setFontFile(iFailingStep == 0 ? "/nowhere/no.ttf" : FONT_FILE);
        zyr_host_failDevice(iFailingStep);
        Expect(zyr_display_open(), iResult, strLog, 3);
        EXPECT_EQ(zyr_display_setOnoff(1), -7);
        Expect(zyr_display_clearString(), -7, "6:[zyr_display_clearString] Error invalid handle|", 1);
    }
}

TEST_F(DisplayDevice, ClosedItRefusesEverything)
{
    const auto Refusal = [](const std::string &strStep) {
        return "6:[zyr_display_" + strStep + "] Error invalid handle|";
    };
    for (uint32_t uiRound = 0; uiRound < 2; ++uiRound) { // before open, after close
        Expect(zyr_display_setOnoff(1), -7, Refusal("setOnoff"));
        Expect(zyr_display_setPosition(1), -7, Refusal("setPosition"));
        Expect(zyr_display_clearString(), -7, Refusal("clearString"));
        Expect(zyr_display_displayString(nullptr, 1), -7, Refusal("displayString"));
        Expect(zyr_display_setCCFB(0, 0, 0, 0, 0, 0), -2, Refusal("setCCFB"));
        Expect(zyr_display_updateCCFB(0), -2, Refusal("updateCCFB"));
        Expect(zyr_display_close(), 0,
               Refusal("enableCCFB") + "6:Error zyr_fontFT_close(-1)\n|"
                                       "6:[zyr_display_close] Error zyr_font_close (-1)'|");
        Open("0");
        Expect(zyr_display_displayString(nullptr, 1), -2,
               "6:[zyr_display_displayString] Error Invaild param|");
        Expect(zyr_display_close(), 0, "off|close|unmap|");
    }
}

/* Twelve rows of 40 and 24 characters hold more pixels than a buffer: rows below its end are cut off, in
 * buffer 1 too, where the clear buffer and the end of the mapping are close behind. */
TEST_F(DisplayDevice, TheTallestCaptionEndsInsideItsBuffer)
{
    std::u16string strText;
    for (uint32_t uiLine = 0; uiLine < 6; ++uiLine) strText += std::u16string(64, u'뷁') + u'\n';
    strText.pop_back();
    std::fill_n(zyr_host_captionMemory(nullptr), PLANE_BYTES / 2, 0x1111);
    Open("1");
    EXPECT_EQ(std::count(Get_Buffer(0), Get_Buffer(2) + SQUARE_PIXELS, 0x1111), 0);
    std::fill_n(zyr_host_captionMemory(nullptr), PLANE_BYTES / 2, 0x1111); // old captions
    zyr_display_setFontSize(40);
    stFont.Set_Size(48, 48);
    Picture stJudge(1920, 545, 1920);
    stJudge.Fill(0, 0, 1920, 545, 0);
    for (uint32_t uiChar = 0; uiChar < 6 * 64; ++uiChar) {
        const uint32_t uiRow = uiChar / 64 * 2 + uiChar % 64 / 40, uiColumn = uiChar % 64 % 40;
        stFont.Draw(stJudge, u'뷁', uiColumn * 48 + uiRow % 2 * 384, int64_t{uiRow} * 48, 0x8410);
    }
    for (uint32_t uiBuffer = 0; uiBuffer < 2; ++uiBuffer) {
        const std::string strShow = "show " + std::to_string(uiBuffer * 2 * BUFFER_PIXELS) + "|";
        Expect(Show(strText), 0, "set 0 0 0 519 1920 545 0 1920 545 1 0 0 0|on|" + strShow, 4);
        EXPECT_TRUE(stJudge.Has_Pixels(Get_Buffer(uiBuffer)));
    }
    const uint16_t *pusEnd = Get_Buffer(0) + PLANE_BYTES / 2;
    EXPECT_EQ(std::count(Get_Buffer(2), pusEnd, 0x1111), pusEnd - Get_Buffer(2));
}

TEST_F(DisplayDevice, BoxesWithoutSize)
{
    Open("0");
    Expect(Show(u""), 0, // keeps the region of the output
           "6:Error Invalid Param(uiWidth:0 uiHeight:0 uiPitch:0)\n|" + Box(400, 464, 0, 0, 0), 4);
    Expect(zyr_display_setPosition(16), 0, Box(0, -16, 800, 480, 0));

    zyr_host_setProperty("persist.sys.composite_mode", "7"); // an output of unknown size
    Open("2");
    for (const uint32_t uiSide : {5000U, 0xFFFFFFFFU}) { // a player's own region, larger than the buffer
        zyr_font_setDestRegion(uiSide, uiSide, uiSide);
        EXPECT_EQ(Show(std::u16string(500, u'뷁')), 0);
        zyr_font_setDestRegion(uiSide, uiSide, uiSide);
        for (uint32_t uiBuffer = 0; uiBuffer < 2; ++uiBuffer) EXPECT_EQ(Show(u""), 0);
    }
}

/* Sizes out of the ordinary, long and short lengths, every output: calls answer and stay in the mapping. */
TEST_F(DisplayDevice, HostileStrings)
{
    Random stRandom(9);
    std::vector<uint16_t> vusLong(10001, 0);
    for (size_t uiUnit = 0; uiUnit < 10000; ++uiUnit)
        vusLong[uiUnit] = static_cast<uint16_t>(stRandom() % 9 == 0 ? '\n' : 1 + stRandom() % 0xFFFF);
    zyr_display_setFontSize(28); // while closed: a size of 4, which the font refuses
    for (const char *pszOutput : {"0", "1", "2", "3"}) {
        zyr_host_setProperty("persist.sys.output_mode", pszOutput);
        EXPECT_EQ(zyr_display_open(), 0);
        for (const int32_t iLength : {INT32_MIN, -1, 0, 1, 60, 5000, 10000, INT32_MAX}) {
            EXPECT_EQ(zyr_display_displayString(vusLong.data(), iLength), 0);
            EXPECT_EQ(zyr_display_setPosition(static_cast<uint32_t>(iLength)), 0);
        }
        zyr_display_close();
        zyr_display_setFontSize(0); // and of 0
    }
}

TEST_F(DisplayDevice, FontSizeSteps)
{
    static constexpr uint32_t aauiSteps[][2] = {{28, 36}, {32, 40}, {36, 44}, {40, 48}, {30, 32}, {0, 32}};
    uint32_t uiWidth = 0, uiHeight = 0, uiPitch = 0;
    Open("1");
    for (const auto &[uiStep, uiPixels] : aauiSteps) {
        EXPECT_EQ(zyr_display_setFontSize(uiStep) + Show(u"x"), 0);
        zyr_font_getDestRegion(&uiWidth, &uiHeight, &uiPitch);
        EXPECT_EQ(uiHeight, uiPixels);
    }
}

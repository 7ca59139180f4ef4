#include "renderer_kit.h"

#include <cstring>

#include "display/display_device.h"
#include "zyr/zyr_font.h"
#include "zyr/zyr_host.h"

constexpr uint32_t PHYS_BASE = 0x9C000000;
constexpr uint32_t BUFFER_PIXELS = 1047896;

class DisplayDevice : public testing::Test
{
protected:
    DisplayDevice()
    {
        zyr_host_setFontFile(FONT_FILE);
        zyr_host_setProperty("ro.board.platform", "zyr72xx");
        zyr_host_setDeviceTrace(
            [](uint32_t uiStep, const void *pvArgument, uint32_t uiBytes, void *pContext) {
                static_cast<LogCapture *>(pContext)->Add(Describe(uiStep, pvArgument, uiBytes));
            },
            &stLog);
    }

    /* Position and buffer turn outlive a close. */
    void SetUp() override
    {
        Open();
        zyr_display_setPosition(16);
        while (Show(u"") == 0 && !stLog.Take().ends_with("show 2095792|")) {} // buffer 0 is next
        zyr_display_close();
        stLog.Take();
    }

    ~DisplayDevice() override
    {
        zyr_display_close();
        zyr_host_reset();
        zyr_display_system_exit();
    }

    /* Buffer addresses count from the physical base. */
    static std::string Describe(uint32_t uiStep, const void *pvArgument, uint32_t uiBytes)
    {
        uint32_t auiWords[13] = {};
        if (uiStep != 2 && uiBytes <= sizeof(auiWords) && uiBytes != 0) memcpy(auiWords, pvArgument, uiBytes);
        std::string strText;
        switch (uiStep) {
        case 1: return "open";
        case 2: return strText.append("region ").append(static_cast<const char *>(pvArgument), uiBytes);
        case 3:
            return strText.append("map ") + std::to_string(auiWords[0]) + " " +
                   std::to_string(auiWords[1] - PHYS_BASE);
        case 4: return "unmap";
        case 5: return "close";
        case 0x103: strText = "set"; break;
        case 0x104: return strText.append("show ").append(std::to_string(auiWords[0] - PHYS_BASE));
        default: return uiBytes != 0 ? "unexpected argument" : uiStep == 0x105 ? "on" : "off";
        }
        for (uint32_t uiWord = 0; uiWord < uiBytes / 4; ++uiWord)
            strText.append(" ").append(std::to_string(static_cast<int32_t>(auiWords[uiWord])));
        return strText;
    }

    void Open(const char *pszOutput = "0")
    {
        zyr_host_setProperty("persist.sys.output_mode", pszOutput);
        ASSERT_EQ(zyr_display_open(), 0) << "no font " << FONT_FILE;
        ASSERT_EQ(zyr_display_setFontSize(32), 0);
        stLog.Take();
    }

    static int32_t Show(const std::u16string &strText)
    {
        return zyr_display_displayString(To_Units(strText.c_str()).data(),
                                         static_cast<int32_t>(strText.size()));
    }

    static const uint16_t *Get_Buffer(uint32_t uiIndex)
    {
        return zyr_host_captionMemory(nullptr) + size_t{uiIndex} * BUFFER_PIXELS;
    }

    LogCapture stLog;
    JudgeFont stFont;
};

static std::string Set_Words(int32_t iX, int32_t iY, uint32_t uiWidth, uint32_t uiHeight)
{
    char acText[128];
    snprintf(acText, sizeof(acText), "set 1 0 %d %d %u %u 0 %u %u 1 0 0 0|on|", iX, iY, uiWidth, uiHeight,
             uiWidth, uiHeight);
    return acText;
}

TEST_F(DisplayDevice, ACaptionFromOpenToClose)
{
    EXPECT_EQ(zyr_display_open(), 0);
    EXPECT_EQ(stLog.Take(3), "open|region overlay1|map 4194304 0|"); // behind the settings
    EXPECT_EQ(zyr_display_setFontSize(30), 0);
    stFont.Set_Size(24, 24);
    EXPECT_EQ(Show(u"한\n한한"), 0);
    EXPECT_EQ(stLog.Take(), "3:zyr_display_displayString(4)\n|" + Set_Words(0, 0, 32, 32) + "show 4191584|" +
                                Set_Words(376, 416, 48, 48) + "show 0|");
    Picture stJudge(48, 48, 48);
    stJudge.Fill(0, 0, 48, 48, 0);
    stFont.Draw(stJudge, 0xD55C, 12, 0, 0x8410);
    stFont.Draw(stJudge, 0xD55C, 0, 24, 0x8410);
    stFont.Draw(stJudge, 0xD55C, 24, 24, 0x8410);
    EXPECT_TRUE(stJudge.Has_Pixels(Get_Buffer(0)));

    EXPECT_EQ(zyr_display_setPosition(100), 0);
    EXPECT_EQ(stLog.Take(), Set_Words(376, 332, 48, 48) + "show 0|");
    EXPECT_EQ(Show(u"한한"), 0); // the other buffer, the new place
    EXPECT_EQ(stLog.Take(), "3:zyr_display_displayString(2)\n|" + Set_Words(376, 332, 32, 32) +
                                "show 4191584|" + Set_Words(376, 356, 48, 24) + "show 2095792|");
    EXPECT_TRUE(stJudge.Has_Pixels(Get_Buffer(0)));
    EXPECT_EQ(zyr_display_setOnoff(0), 0);
    EXPECT_EQ(zyr_display_setOnoff(-3), 0);
    EXPECT_EQ(zyr_display_clearString(), 0);
    EXPECT_EQ(zyr_display_close(), 0);
    EXPECT_EQ(stLog.Take(), "off|on|" + Set_Words(376, 356, 32, 32) + "show 4191584|off|close|unmap|");
    EXPECT_EQ(zyr_fontDraw_getDestBuf(), nullptr);
    EXPECT_EQ(zyr_display_open(), 0);
    EXPECT_EQ(zyr_display_setPosition(16), 0);
    EXPECT_EQ(stLog.Take(6), Set_Words(400, 464, 0, 0) + "show 2095792|"); // the buffers keep their turn
    EXPECT_EQ(zyr_display_open(), 0);
    EXPECT_EQ(stLog.Take().find("off|close|unmap|3:"), 0U); // closes first
}

TEST_F(DisplayDevice, FailedOpensLeaveNothingOpen)
{
    const std::string strNotMapped =
        "open|region overlay1|map 4194304 0|6:[zyr_display_openMemory] Error mmap failed.(0x" +
        std::string(2 * sizeof(void *), 'f') +
        ")\n|6:[zyr_display_open] Error zyr_display_openMemory(-4)|close|";
    const struct {
        int iFailingStep; // of the device; 0 none, negative: no such chip, or no such font
        int32_t iResult;
        const char *pszLog; // behind the three of the settings
    } astCases[] = {
        {-1, -1, "6:[zyr_display_open] Error zyr_display_system_init(-1)|"},
        {1, -7,
         "open|6:[zyr_display_openCCFB] Error can't open /dev/ccfb|"
         "6:[zyr_display_open] Error zyr_display_openCCFB(-7)|"},
        {2, -4,
         "open|region overlay1|6:[zyr_display_openMemory] Error unknown region(overlay1)|"
         "6:[zyr_display_open] Error zyr_display_openMemory(-4)|close|"},
        {3, -4, strNotMapped.c_str()},
        {-2, -1,
         "open|region overlay1|map 4194304 0|6:Error zyr_fontFT_init(-1)\n|"
         "6:[zyr_display_open] Error zyr_font_init (-1)|close|unmap|"},
    };
    for (const auto &stCase : astCases) {
        zyr_host_setProperty("ro.board.platform", stCase.iFailingStep == -1 ? "none" : "zyr72xx");
        zyr_host_setFontFile(stCase.iFailingStep == -2 ? "/nowhere/no.ttf" : FONT_FILE);
        zyr_host_failDevice(stCase.iFailingStep);
        EXPECT_EQ(zyr_display_open(), stCase.iResult);
        EXPECT_EQ(stLog.Take(3), stCase.pszLog);
        EXPECT_EQ(zyr_display_setOnoff(1), -7);
        EXPECT_EQ(zyr_display_clearString(), -7);
        stLog.Take();
    }
}

TEST_F(DisplayDevice, ClosedItRefusesEverything)
{
    const auto vusText = To_Units(u"x");
    for (uint32_t uiRound = 0; uiRound < 2; ++uiRound) { // before open, after close
        EXPECT_EQ(zyr_display_setOnoff(1), -7);
        EXPECT_EQ(zyr_display_setPosition(1), -7);
        EXPECT_EQ(zyr_display_clearString(), -7);
        EXPECT_EQ(zyr_display_displayString(nullptr, 1), -7);
        EXPECT_EQ(zyr_display_setCCFB(0, 0, 0, 0, 0, 0), -2);
        EXPECT_EQ(zyr_display_updateCCFB(0), -2);
        EXPECT_EQ(zyr_display_close(), 0);
        std::string strExpected;
        for (const char *pszStep : {"setOnoff", "setPosition", "clearString", "displayString", "setCCFB",
                                    "updateCCFB", "enableCCFB"})
            strExpected.append("6:[zyr_display_").append(pszStep).append("] Error invalid handle|");
        EXPECT_EQ(stLog.Take(), strExpected + "6:Error zyr_fontFT_close(-1)\n|"
                                              "6:[zyr_display_close] Error zyr_font_close (-1)'|");
        Open();
        EXPECT_EQ(zyr_display_displayString(nullptr, 1), -2);
        EXPECT_EQ(stLog.Take(), "6:[zyr_display_displayString] Error Invaild param|");
        zyr_display_close();
        stLog.Take();
    }
}

/* Twelve rows of 40 and 24 characters hold more pixels than a buffer: rows below its end are cut off, in
 * buffer 1 too, where the clear buffer and the end of the mapping are close behind. */
TEST_F(DisplayDevice, TheTallestCaptionEndsInsideItsBuffer)
{
    std::u16string strText;
    for (uint32_t uiLine = 0; uiLine < 6; ++uiLine) strText += std::u16string(64, u'뷁') + u'\n';
    strText.pop_back();
    Open("1");
    zyr_display_setFontSize(40);
    stFont.Set_Size(48, 48);
    for (uint32_t uiBuffer = 0; uiBuffer < 2; ++uiBuffer) {
        EXPECT_EQ(Show(strText), 0);
        Picture stJudge(1920, 545, 1920);
        stJudge.Fill(0, 0, 1920, 545, 0);
        for (uint32_t uiChar = 0; uiChar < 6 * 64; ++uiChar) {
            const uint32_t uiRow = uiChar / 64 * 2 + uiChar % 64 / 40, uiColumn = uiChar % 64 % 40;
            stFont.Draw(stJudge, u'뷁', uiColumn * 48 + uiRow % 2 * 384, int64_t{uiRow} * 48, 0x8410);
        }
        EXPECT_TRUE(stJudge.Has_Pixels(Get_Buffer(uiBuffer)));
        EXPECT_EQ(stLog.Take(4).find("set 0 0 0 519 1920 545 0 1920 545 1 0 0 0|"), 0U);
    }
    for (uint32_t uiPixel = 2 * BUFFER_PIXELS; uiPixel < 2097152; ++uiPixel)
        ASSERT_EQ(zyr_host_captionMemory(nullptr)[uiPixel], 0) << uiPixel;
}

TEST_F(DisplayDevice, BoxesWithoutSize)
{
    Open();
    EXPECT_EQ(Show(u""), 0); // keeps the region of the output
    EXPECT_EQ(stLog.Take(4), "6:Error Invalid Param(uiWidth:0 uiHeight:0 uiPitch:0)\n|" +
                                 Set_Words(400, 464, 0, 0) + "show 0|");
    EXPECT_EQ(zyr_display_setPosition(16), 0);
    EXPECT_EQ(stLog.Take(), Set_Words(0, -16, 800, 480) + "show 0|");

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
    std::vector<uint16_t> vusLong(10001, 0);
    Random stRandom(9);
    for (size_t uiUnit = 0; uiUnit < 10000; ++uiUnit)
        vusLong[uiUnit] = static_cast<uint16_t>(stRandom() % 9 == 0 ? '\n' : 1 + stRandom() % 0xFFFF);
    zyr_display_setFontSize(28); // while closed: a size of 4, which the font refuses
    for (const char *pszOutput : {"0", "1", "2", "3"}) {
        zyr_host_setProperty("persist.sys.output_mode", pszOutput);
        ASSERT_EQ(zyr_display_open(), 0);
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
    Open("1");
    for (const auto &auiStep : aauiSteps) {
        EXPECT_EQ(zyr_display_setFontSize(auiStep[0]), 0);
        EXPECT_EQ(Show(u"x"), 0);
        uint32_t uiWidth = 0, uiHeight = 0, uiPitch = 0;
        zyr_font_getDestRegion(&uiWidth, &uiHeight, &uiPitch);
        EXPECT_EQ(uiHeight, auiStep[1]);
    }
}

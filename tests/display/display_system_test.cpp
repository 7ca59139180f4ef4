#include "font/renderer_kit.h"

#include <sstream>

#include "zyr/zyr_display.h"

class DisplaySystem : public HostTest
{
protected:
    ~DisplaySystem() override { zyr_display_system_exit(); }

    /* Settings as "platform stb output hdmi detected composite component"; "-" leaves the rest unset. */
    static int32_t Start(const std::string &strSettings)
    {
        static constexpr const char *apszKeys[] = {
            "ro.board.platform",           "zyr.display.output.stb",        "persist.sys.output_mode",
            "persist.sys.hdmi_resolution", "persist.sys.hdmi_detected_res", "persist.sys.composite_mode",
            "persist.sys.component_mode"};
        std::istringstream stWords(strSettings);
        for (const char *pszKey : apszKeys) {
            std::string strValue = "-";
            stWords >> strValue;
            zyr_host_setProperty(pszKey, strValue == "-" ? nullptr : strValue.c_str());
        }
        return zyr_display_system_init();
    }

    /* "controller display sub font" */
    static std::string Get_Region()
    {
        uint32_t uiLcdc = 9, uiDispWidth = 9, uiDispHeight = 9, uiSubWidth = 9, uiSubHeight = 9;
        zyr_display_system_getRegion(&uiLcdc, &uiDispWidth, &uiDispHeight, &uiSubWidth, &uiSubHeight);
        char acText[80];
        snprintf(acText, sizeof(acText), "%u %ux%u %ux%u %u", uiLcdc, uiDispWidth, uiDispHeight, uiSubWidth,
                 uiSubHeight, zyr_display_system_getFontSize());
        return acText;
    }
};

TEST_F(DisplaySystem, RegionOfEveryOutput)
{
    static constexpr struct {
        const char *pszSettings;
        int32_t iResult;
        const char *pszRegion;
        const char *pszError = ""; // logged besides, behind the step's family
    } astCases[] = {
        {"zyr72xx", 0, "1 800x480 800x480 24"},
        {"zyr71xx - 1 3", 0, "1 800x480 800x480 24"},
        {"zyr71xx - 7", -1, "1 0x0 0x0 0", "init] unknown output_mode(7)"},
        {"zyr72xx - 1 125 2", 0, "0 1280x720 1280x720 28"},
        {"zyr73xx - 1 125 125", 0, "0 0x0 0x0 0", "getHDMIInfo] Invalid hdmi_mode found (125)"},
        {"zyr73xx 1 1 0", 0, "0 1920x1080 1920x545 32"},
        {"zyr741x 1 1 0", 0, "1 1920x1080 1920x545 32"},
        {"zyr741x 0 1 16", 0, "0 720x576 720x576 24"},
        {"zyr741x - 2 - - 1", 0, "1 720x576 720x576 24"},
        {"zyr72xx - 2 - - 1", 0, "1 720x288 720x576 24"},
        {"zyr72xx - 2", 0, "1 720x240 720x480 24"},
        {"zyr72xx - 2 - - 2", 0, "1 0x0 0x0 0", "getCompositeInfo] Invalid composite_mode found (2)"},
        {"zyr72xx - 3", 0, "1 1280x720 1280x720 28"},
        {"zyr72xx - 3 - - - 1", 0, "1 1920x1080 1920x545 32"},
        {"zyr72xx - 3 - - - -1", 0, "1 0x0 0x0 0", "getComponentInfo] Invalid component_mode found (-1)"},
        {"zyr741x 1 -1", -1, "0 0x0 0x0 0", "init] unknown output_mode(-1)"},
        {"zyr72xxx", -1, "0 800x480 800x480 24", "init] unknown arch(0)"},
        {"- - 3", -1, "0 1280x720 1280x720 28", "init] unknown arch(0)"},
        {"zyr72xx x7 1garbage 21", 0, "0 0x0 0x0 0", "getHDMIInfo] Invalid hdmi_mode found (21)"},
        {"zyr72xx - \x7F\xFF% -9 99999999999999999999", 0, "1 800x480 800x480 24"},
    };
    for (const auto &[pszSettings, iResult, pszRegion, pszError] : astCases) {
        SCOPED_TRACE(pszSettings);
        EXPECT_EQ(Start(pszSettings), iResult);
        EXPECT_EQ(Get_Region(), pszRegion);
        const std::string strLog = m_stLog.Take(1),
                          strError = "6:[zyr_display_system_" + std::string(pszError);
        EXPECT_TRUE(pszError[0] == '\0' || strLog.starts_with(strError + "\n|")) << strLog;
        EXPECT_EQ(zyr_display_system_exit(), 0);
        EXPECT_EQ(Get_Region(), "0 0x0 0x0 0");
    }
    EXPECT_EQ(zyr_display_system_getRegion(nullptr, nullptr, nullptr, nullptr, nullptr), 0);
}

/* By their numbers, as the log tells them. A panel shows them all in its own size. */
TEST_F(DisplaySystem, HdmiResolutions)
{
    std::string strSizes;
    for (uint32_t uiMode = 0; uiMode < 21; ++uiMode) {
        const std::string strMode = std::to_string(uiMode);
        const std::string strLog = "3:[zyr_display_system_getHDMIInfo] mode:" + strMode + ", res:";
        EXPECT_EQ(Start("zyr72xx - 1 " + strMode), 0);
        const std::string strWhole = m_stLog.Take(1), strSize = strWhole.substr(strLog.size(), 10);
        EXPECT_TRUE(strWhole.starts_with(strLog));
        strSizes += strSize.substr(0, strSize.find('\n')) + " ";
        EXPECT_EQ(Start("zyr71xx - 1 " + strMode), 0);
        EXPECT_TRUE(m_stLog.Take(1).starts_with(strLog + "800x480" + strSizes.end()[-2] + "\n|"));
    }
    EXPECT_EQ(strSizes, "1920x1080p 1920x1080i 1280x720p 720x480p 640x480p 1920x1080p 1920x1080i 1920x1080p "
                        "1920x1080i 1920x1080p 1920x1080p 1920x1080p 1920x1080p 1280x720p 1280x720p "
                        "720x576p 720x576i 640x480p 640x480i 640x480p 1920x1080p ");
}

TEST_F(DisplaySystem, TheLogTellsTheSettings)
{
    Start("zyr73xx 2 3 4 5 1 1");
    EXPECT_EQ(m_stLog.Take(),
              "3:[zyr_display_system_init] arch:3, mode(2/3/4/1/1)\n|"
              "3:[zyr_display_system_getComponentInfo] disp(0,0,1920,1080), sub(1920,545), "
              "ratio(1.000000,1.981651), m(0x0)\n|"
              "3:[zyr_display_system_init] lcdc:1, disp[0:0:1920:1080:0], sub_buf[1920,545]\n|");
    Start("- - 2"); // an unknown chip's output is measured all the same
    EXPECT_EQ(m_stLog.Take(2), "3:[zyr_display_system_getCompositeInfo] disp(0,0,720,240), sub(720,480), "
                               "ratio(1.000000,0.500000), m(0x0)\n|");
    Start("zyr741x - 1 21");
    EXPECT_EQ(m_stLog.Take(2), "3:[zyr_display_system_init] lcdc:0, disp[0:0:0:0:0], sub_buf[0,0]\n|");
}

/* On 800 x 480. A line takes a further character as long as it is not wider than the display. */
TEST_F(DisplaySystem, SquaresAreEstimated)
{
    const std::u16string strLong(45, u'x');
    const std::tuple<std::u16string, int32_t, std::string> astCases[] = {
        {u"abc", 20, "X:370, Y:460, W:60, H:20"},        {u"", 20, "X:400, Y:460, W:0, H:20"},
        {u"ab\ncde\nf", 20, "X:370, Y:420, W:60, H:60"}, {u"\n\n", 20, "X:400, Y:420, W:0, H:60"},
        {u"\nab", 20, "X:380, Y:440, W:40, H:40"},       {u"a\nb", 480, "X:160, Y:0, W:480, H:480"},
        {strLong, 20, "X:-10, Y:440, W:820, H:40"}, // rounded toward 0
        {strLong, 480, "X:-80, Y:0, W:960, H:480"}, // no higher than the display
    };
    const auto vusText = To_Units(u"abc");
    int32_t iX = 9, iY = 9, iWidth = 9, iHeight = 9;
    Start("zyr72xx");
    m_stLog.Take();
    for (const auto &[strText, iFontSize, strBox] : astCases) {
        zyr_display_system_calcRegion(To_Units(strText).data(), 1, iFontSize, &iX, &iY, &iWidth, &iHeight);
        EXPECT_EQ(m_stLog.Take(), "3:[zyr_display_system_calcRegion] " + strBox + "|");
        char acBox[80];
        snprintf(acBox, sizeof(acBox), "X:%d, Y:%d, W:%d, H:%d", iX, iY, iWidth, iHeight);
        EXPECT_EQ(acBox, strBox);
    }
    EXPECT_EQ(zyr_display_system_calcRegion(vusText.data(), 3, 20, nullptr, nullptr, nullptr, nullptr), 0);
    const std::string strRefused = "6:[zyr_display_system_calcRegion] Error Invalid Param(";
    Expect(zyr_display_system_calcRegion(nullptr, 3, 20, &iX, &iY, &iWidth, &iHeight), -1,
           strRefused + "pusString:NULL)|", 1);
    EXPECT_TRUE(iX == 0 && iY == 0 && iWidth == 0 && iHeight == 0);
    Expect(zyr_display_system_calcRegion(vusText.data(), 0, 20, &iX, &iY, &iWidth, &iHeight), -1,
           strRefused + "pusString:NULL)|");
    for (const int32_t iFontSize : {0, -1, INT32_MIN, 481, INT32_MAX})
        Expect(zyr_display_system_calcRegion(vusText.data(), 3, iFontSize, &iX, &iY, &iWidth, &iHeight), -1,
               strRefused + "iFontSize:" + std::to_string(iFontSize) + ")|");
}

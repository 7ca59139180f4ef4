/* A movie's captions on their way from the file to the device, as a player takes them there. */

#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/engine_fixture.h"

#include "zyr/zyr_display.h"
#include "zyr_ccfb.h"

namespace
{

constexpr uint32_t LCD_WIDTH = 800;
constexpr uint32_t LCD_HEIGHT = 480;
constexpr uint32_t BUFFER_BYTES = 2095792; // the second drawing buffer stands behind the first

/** What one shown caption makes of the device. */
struct ShownCaption {
    std::string strRequests; // one letter each: set, enable, update
    uint32_t uiX, uiY, uiWidth, uiHeight;
    uint32_t uiBuffer; // physical address of the buffer shown last
};

class EndToEnd : public EngineTest
{
protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        zyr_host_setProperty("ro.board.platform", "zyr72xx"); // nothing else is set: LCD
        zyr_host_setDeviceTrace(Take_Request, &m_stShown);
        std::ifstream stFile(ZYR_SAMPLES "/sami-interleaved.smi", std::ios::binary);
        std::stringstream stText;
        stText << stFile.rdbuf();
        ASSERT_EQ(Open(".smi", Encode(stText.str(), E_UTF16LE)), 0u); // so the text is what the display takes
        ASSERT_EQ(zyr_display_open(), 0);
    }

    void TearDown() override
    {
        zyr_display_close();
        EngineTest::TearDown();
    }

    /** Show the next frame. @return its text as UTF-8, empty at the end. */
    std::string Show_Next(uint32_t *puiStream)
    {
        uint32_t uiLines = 0, uiBytes = 0;
        int32_t iEnd = 0;
        uint8_t *pucText = nullptr;
        if (zyrSubtitle_getFrame(puiStream, &m_iStart, &iEnd, &uiLines, &uiBytes, &pucText) != 0) return "";
        std::vector<uint16_t> vecUnits(uiBytes / 2 + 1);
        std::memcpy(vecUnits.data(), pucText, uiBytes);
        m_stShown = {};
        EXPECT_EQ(zyr_display_displayString(vecUnits.data(), static_cast<int32_t>(uiBytes / 2)), 0);
        EXPECT_EQ(m_stShown.strRequests, "seuseu") << "the clear buffer comes first, then the caption";
        EXPECT_EQ(m_stShown.uiX, (LCD_WIDTH - m_stShown.uiWidth) / 2);
        EXPECT_EQ(m_stShown.uiY, LCD_HEIGHT - m_stShown.uiHeight - 16);
        EXPECT_EQ(m_stShown.uiHeight, 32 * uiLines);
        return To_Utf8({reinterpret_cast<const char *>(pucText), uiBytes}, E_OUTPUT_CHARSET_UTF16);
    }

    /** @return pixels of the display that the caption covers. */
    static size_t Count_Pixels()
    {
        std::vector<uint8_t> vecRgba(size_t{LCD_WIDTH} * LCD_HEIGHT * 4);
        EXPECT_EQ(zyr_host_composeCaption(vecRgba.data(), LCD_WIDTH, LCD_HEIGHT), 0);
        size_t uiPixels = 0;
        for (size_t uiByte = 0; uiByte < vecRgba.size(); uiByte += 4)
            uiPixels += vecRgba[uiByte] != 0 ? 1 : 0;
        return uiPixels;
    }

    ShownCaption m_stShown = {};
    int32_t m_iStart = 0;

private:
    static void Take_Request(uint32_t uiStep, const void *pvArgument, uint32_t /*uiBytes*/, void *pvShown)
    {
        ShownCaption &stShown = *static_cast<ShownCaption *>(pvShown);
        const uint32_t *const puiWords = static_cast<const uint32_t *>(pvArgument);
        if (uiStep == ZYR_CCFB_SET) {
            stShown.strRequests += 's';
            stShown.uiX = puiWords[2];
            stShown.uiY = puiWords[3];
            stShown.uiWidth = puiWords[4];
            stShown.uiHeight = puiWords[5];
        } else if (uiStep == ZYR_CCFB_UPDATE) {
            stShown.strRequests += 'u';
            stShown.uiBuffer = puiWords[0];
        } else if (uiStep == ZYR_CCFB_ENABLE || uiStep == ZYR_CCFB_DISABLE) {
            stShown.strRequests += uiStep == ZYR_CCFB_ENABLE ? 'e' : 'd';
        }
    }
};

TEST_F(EndToEnd, ShowsSeeksAndSwitchesLanguage)
{
    uint32_t uiPhysBase = 0;
    zyr_host_captionMemory(&uiPhysBase);
    uint32_t uiStream = 9;
    std::vector<std::string> vecKorean, vecEnglish;
    for (uint32_t uiShown = 0;; ++uiShown) {
        const std::string strText = Show_Next(&uiStream);
        if (m_stShown.strRequests.empty()) break;
        EXPECT_EQ(m_stShown.uiBuffer, uiPhysBase + uiShown % 2 * BUFFER_BYTES)
            << "never the buffer on screen";
        if (!strText.empty()) {
            EXPECT_GT(Count_Pixels(), 100u) << strText;
            (uiStream == 0 ? vecKorean : vecEnglish).push_back(strText);
        }
        m_stShown = {};
        if (uiShown > 100) FAIL() << "no end";
    }
    ASSERT_FALSE(vecKorean.empty());
    ASSERT_FALSE(vecEnglish.empty());

    ASSERT_EQ(zyrSubtitle_seek(4000), 0u);
    Show_Next(&uiStream);
    EXPECT_GE(m_iStart, 4000) << "the next frame is the first that starts at or after the time";

    const uint32_t uiEnglish = 1;
    ASSERT_EQ(zyrSubtitle_selectClass(1, &uiEnglish), 0u);
    EXPECT_EQ(Show_Next(&uiStream), vecEnglish[0]) << "the chosen language begins at its first frame";
    EXPECT_EQ(uiStream, 0u);

    m_stShown = {};
    EXPECT_EQ(zyr_display_clearString(), 0);
    EXPECT_EQ(m_stShown.strRequests, "seu");
    EXPECT_EQ(Count_Pixels(), 0u);
}

} // namespace

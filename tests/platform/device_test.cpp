#include "host_test.h"
#include "zyr_ccfb.h"
#include "zyr_pmap.h"

#include <algorithm>
#include <array>
#include <vector>

namespace
{

class Device : public HostTest
{
protected:
    ~Device() override { zyr_ccfb_close(m_iDevice); }
    template <typename... Words>
    int32_t Request(uint32_t uiRequest, Words... uiArgument) const
    {
        const std::array<uint32_t, sizeof...(Words)> auiWords = {static_cast<uint32_t>(uiArgument)...};
        return zyr_ccfb_request(m_iDevice, uiRequest, auiWords.empty() ? nullptr : auiWords.data(),
                                uint32_t{sizeof(uint32_t)} * sizeof...(Words));
    }
    void Show(int32_t iX, int32_t iY, uint32_t uiWidth, uint32_t uiHeight, uint32_t uiPitch,
              uint32_t uiAddress) const
    {
        EXPECT_EQ(Request(ZYR_CCFB_SET, 0, 0, iX, iY, uiWidth, uiHeight, 0, uiPitch, uiHeight, 1, 0, 0, 0),
                  0);
        EXPECT_EQ(Request(ZYR_CCFB_ENABLE), 0);
        EXPECT_EQ(Request(ZYR_CCFB_UPDATE, uiAddress), 0);
    }
    const int32_t m_iDevice = zyr_ccfb_open("/dev/ccfb");
};

TEST_F(Device, RefusesWhatItDoesNotHave)
{
    ZyrPmapRecord stRecord = {77, {}};
    for (const char *pszName : {"overlay2", "/dev/fb0", static_cast<const char *>(nullptr)}) {
        EXPECT_EQ(pmap_get_info(pszName, &stRecord), -1);
        EXPECT_EQ(zyr_ccfb_open(pszName), -1);
    }
    EXPECT_EQ(stRecord.uiBase, 77u);
    static constexpr std::tuple<uint32_t, uint32_t, bool> astMaps[] = {
        {PLANE_BYTES, PLANE_PHYS, true},        {PLANE_BYTES + 1, PLANE_PHYS, false},
        {4096, PLANE_PHYS + 4096, true},        {PLANE_BYTES, PLANE_PHYS + 4096, false},
        {4096, PLANE_PHYS + 1, false},          {0, PLANE_PHYS, false},
        {4096, PLANE_PHYS - 4096, false},       {4096, PLANE_PHYS + PLANE_BYTES, false},
        {0xFFFFFFFF, PLANE_PHYS + 4096, false}, {4096, 0, false},
    };
    for (const auto &[uiBytes, uiPhysBase, bMapped] : astMaps)
        EXPECT_EQ(zyr_ccfb_map(m_iDevice, uiBytes, uiPhysBase) != nullptr, bMapped)
            << std::hex << uiBytes << " at " << uiPhysBase;
    for (const int32_t iDevice : {m_iDevice + 1, 0, -1, 1000}) {
        EXPECT_EQ(zyr_ccfb_map(iDevice, 4096, PLANE_PHYS), nullptr) << iDevice;
        EXPECT_LT(zyr_ccfb_request(iDevice, ZYR_CCFB_ENABLE, nullptr, 0), 0) << iDevice;
    }
    EXPECT_LT(Request(ZYR_CCFB_SET, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0), 0); // twelve words, not thirteen
    EXPECT_LT(Request(ZYR_CCFB_UPDATE), 0);
    EXPECT_LT(Request(0x107), 0);
}

// The picture as text, by what is 255 in an opaque pixel: red, green or blue; '.' is a pixel left alone.
std::string Describe_Picture(const std::vector<uint8_t> &aucRgba)
{
    std::string strText;
    for (auto itPixel = aucRgba.begin(); itPixel != aucRgba.end(); itPixel += 4) {
        const auto itFull = std::find(itPixel, itPixel + 3, 255);
        strText += itPixel[3] == 255 ? "rgb?"[itFull - itPixel] : '.';
    }
    return strText;
}

// Rows of four pixels "rgb." and "bbr." at the start of the memory, "gr" in its last two pixels.
TEST_F(Device, ComposeClipsToPictureAndMemory)
{
    static constexpr uint16_t R = 0xF800, G = 0x07E0, B = 0x001F;
    static constexpr uint32_t HUGE = 0xFFFFFFFF, PLANE_END = PLANE_PHYS + PLANE_BYTES;
    static constexpr struct {
        int32_t iX, iY;
        uint32_t uiWidth, uiHeight, uiPitch, uiAddress;
        const char *pszPicture; // 4 x 3
    } astCases[] = {
        {0, 0, 3, 2, 4, PLANE_PHYS, "rgb.bbr....."},
        {1, 1, 3, 2, 4, PLANE_PHYS, ".....rgb.bbr"},
        {-1, 0, 3, 2, 4, PLANE_PHYS, "gb..br......"},
        {0, -1, 3, 2, 4, PLANE_PHYS, "bbr........."},
        {3, 2, 3, 2, 4, PLANE_PHYS, "...........r"},
        {4, 0, 3, 2, 4, PLANE_PHYS, "............"},
        {-3, 0, 3, 2, 4, PLANE_PHYS, "............"},
        {INT32_MIN, INT32_MIN, HUGE, HUGE, HUGE, PLANE_PHYS, "............"},
        {INT32_MAX, INT32_MAX, HUGE, HUGE, 4, PLANE_PHYS, "............"},
        {0, 0, HUGE, HUGE, HUGE, PLANE_PHYS, "rgb........."},
        {0, 0, 3, 3, 0, PLANE_PHYS, "rgb.rgb.rgb."},
        {0, 0, 4, 3, 2, PLANE_PHYS + 2, "gb.b.bbrbr.."},
        {0, 0, 4, 3, 4, PLANE_END - 4, "gr.........."},
        {0, 0, 4, 3, 4, PLANE_END - 1, "............"},
        {0, 0, 4, 3, 4, PLANE_END, "............"},
        {0, 0, 4, 3, 4, PLANE_PHYS - 2, "............"},
        {0, 0, 4, 3, 4, HUGE, "............"},
    };
    uint16_t *pusMemory = zyr_host_captionMemory(nullptr);
    static constexpr uint16_t ausStart[] = {R, G, B, 0, B, B, R, 0}, ausEnd[] = {G, R};
    std::copy(std::begin(ausStart), std::end(ausStart), pusMemory);
    std::copy(std::begin(ausEnd), std::end(ausEnd), pusMemory + PLANE_BYTES / 2 - 2);
    for (const auto &[iX, iY, uiWidth, uiHeight, uiPitch, uiAddress, pszPicture] : astCases) {
        Show(iX, iY, uiWidth, uiHeight, uiPitch, uiAddress);
        std::vector<uint8_t> aucRgba(48, 9);
        EXPECT_EQ(zyr_host_composeCaption(aucRgba.data(), 4, 3), 0);
        EXPECT_EQ(Describe_Picture(aucRgba), pszPicture) << uiWidth << " x " << uiHeight << " at " << iX
                                                         << ", " << iY << " from " << std::hex << uiAddress;
    }
    EXPECT_EQ(zyr_host_composeCaption(nullptr, 4, 3), -1);
}

// Five and six bits widen to eight so that all ones stay all ones.
TEST_F(Device, ComposeColours)
{
    static constexpr std::pair<uint16_t, std::array<uint8_t, 4>> astCases[] = {
        {0xFFFF, {255, 255, 255, 255}}, {0x8410, {132, 130, 132, 255}}, {0x0001, {0, 0, 8, 255}},
        {0x0020, {0, 4, 0, 255}},       {0x0800, {8, 0, 0, 255}},       {0x0000, {9, 9, 9, 9}}};
    Show(0, 0, 1, 1, 1, PLANE_PHYS);
    for (const auto &[usPixel, aucExpected] : astCases) {
        zyr_host_captionMemory(nullptr)[0] = usPixel;
        std::array<uint8_t, 4> aucRgba = {9, 9, 9, 9};
        zyr_host_composeCaption(aucRgba.data(), 1, 1);
        EXPECT_EQ(aucRgba, aucExpected) << std::hex << usPixel;
    }
}

TEST_F(Device, TracedAndShownWhenConfiguredUpdatedAndEnabledAlsoAfterClose)
{
    std::array<uint8_t, 4> aucRgba = {};
    uint32_t uiPhysBase = 0;
    const auto Is_Shown = [&aucRgba] { return zyr_host_composeCaption(aucRgba.data(), 1, 1) == 0; };
    zyr_host_setDeviceTrace(Transcript::Take_Step, &m_stLog);
    EXPECT_FALSE(Is_Shown());
    Request(ZYR_CCFB_ENABLE);
    Request(ZYR_CCFB_UPDATE, PLANE_PHYS);
    EXPECT_FALSE(Is_Shown());
    Show(0, 0, 1, 1, 1, PLANE_PHYS);
    EXPECT_TRUE(Is_Shown());
    EXPECT_EQ(Request(ZYR_CCFB_DISABLE), 0);
    EXPECT_FALSE(Is_Shown());
    Request(ZYR_CCFB_ENABLE);
    auto *pusMapped = static_cast<uint16_t *>(zyr_ccfb_map(m_iDevice, PLANE_BYTES, PLANE_PHYS));
    pusMapped[PLANE_BYTES / 2 - 1] = 0x1234;
    zyr_ccfb_close(m_iDevice);
    zyr_ccfb_unmap(pusMapped, PLANE_BYTES);
    EXPECT_LT(Request(ZYR_CCFB_DISABLE), 0); // closed
    EXPECT_TRUE(Is_Shown());
    const uint16_t *pusMemory = zyr_host_captionMemory(&uiPhysBase);
    EXPECT_EQ(uiPhysBase, PLANE_PHYS);
    EXPECT_EQ(pusMemory[PLANE_BYTES / 2 - 1], 0x1234);
    zyr_host_failDevice(1);
    zyr_host_reset();
    EXPECT_EQ(pusMemory[PLANE_BYTES / 2 - 1], 0);
    EXPECT_FALSE(Is_Shown());
    EXPECT_GT(zyr_ccfb_open("/dev/ccfb"), 0); // fails no more
    Request(ZYR_CCFB_ENABLE);                 // not traced any more
    EXPECT_EQ(m_stLog.Take(), "on|show 0|set 0 0 0 0 1 1 0 1 1 1 0 0 0|on|show 0|off|on|map 4194304 0|"
                              "close|unmap|off|");
}

} // namespace

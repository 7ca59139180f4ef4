#include "platform/host_test.h"

#include <fcntl.h>
#include <sys/resource.h>

#include "zyr/zyr_display.h"
#include "zyr_ccfb.h"
#include "zyr_pmap.h"

/* The box's region map; no desktop has one. */
int pmap_get_info(const char *, void *)
{
    return -1;
}

using TargetDevice = HostTest;

TEST_F(TargetDevice, WithoutTheDeviceTheDisplayStaysClosed)
{
    ASSERT_NE(access("/dev/ccfb", F_OK), 0) << "this machine has a caption device";
    zyr_host_setProperty("ro.board.platform", "zyr72xx");
    EXPECT_EQ(zyr_display_open(), -7);
    EXPECT_EQ(zyr_display_clearString(), -7);
    EXPECT_EQ(zyr_ccfb_open(nullptr), -1);
    EXPECT_STREQ(zyr_platform_fontPath(), "/system/fonts/DroidSansFallback.ttf");
}

/* A sparse file stands in for the device: what is written to the mapping is found at the physical address,
 * also beyond 2 GiB. It knows no requests. */
TEST_F(TargetDevice, MapsAFileAtAPhysicalAddress)
{
    constexpr uint32_t BYTES = 65536;
    const TempFile stFile("");
    ASSERT_EQ(truncate(stFile.Path(), off_t{PLANE_PHYS} + BYTES), 0);
    const int32_t iDevice = zyr_ccfb_open(stFile.Path());
    ASSERT_GT(iDevice, 0);
    char *pcMemory = static_cast<char *>(zyr_ccfb_map(iDevice, BYTES, PLANE_PHYS));
    ASSERT_NE(pcMemory, nullptr);
    pcMemory[BYTES - 1] = 'z';
    char cRead = 0;
    EXPECT_EQ(pread(iDevice, &cRead, 1, off_t{PLANE_PHYS} + BYTES - 1), 1);
    EXPECT_EQ(cRead, 'z');
    EXPECT_EQ(zyr_ccfb_map(iDevice, BYTES, PLANE_PHYS + 1), nullptr); // not on a page
    EXPECT_EQ(zyr_ccfb_request(iDevice, ZYR_CCFB_ENABLE, nullptr, 0), -1);
    zyr_ccfb_unmap(pcMemory, BYTES);
    zyr_ccfb_close(iDevice);
}

TEST_F(TargetDevice, DescriptorZeroMovesUp)
{
    const int iInput = dup(0);
    close(0);
    const int32_t iDevice = zyr_ccfb_open("/dev/null");
    EXPECT_GT(iDevice, 0);
    EXPECT_EQ(fcntl(0, F_GETFD), -1); // free again
    zyr_ccfb_close(iDevice);

    rlimit stLimit = {};
    getrlimit(RLIMIT_NOFILE, &stLimit);
    const rlimit stOnlyZero = {1, stLimit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &stOnlyZero);
    EXPECT_EQ(zyr_ccfb_open("/dev/null"), -1); // no number above 0 is left
    setrlimit(RLIMIT_NOFILE, &stLimit);
    EXPECT_EQ(fcntl(0, F_GETFD), -1);
    if (iInput < 0) return;
    dup2(iInput, 0);
    close(iInput);
}

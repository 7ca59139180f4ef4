#include "zyr_ccfb.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

static_assert(sizeof(off_t) == 8, "a physical address must fit a file offset");

int32_t zyr_ccfb_open(const char *pszDevice)
{
    if (pszDevice == nullptr) return -1;
    const int iDevice = open(pszDevice, O_RDWR);
    if (iDevice != 0) return iDevice;

    /* A process without standard input gets descriptor 0, which the caller takes for a closed device. */
    const int iMoved = fcntl(iDevice, F_DUPFD, 1);
    close(iDevice);
    return iMoved;
}

void *zyr_ccfb_map(int32_t iDevice, uint32_t uiBytes, uint32_t uiPhysBase)
{
    void *pvMemory =
        mmap(nullptr, uiBytes, PROT_READ | PROT_WRITE, MAP_SHARED, iDevice, static_cast<off_t>(uiPhysBase));
    return pvMemory == MAP_FAILED ? nullptr : pvMemory;
}

/* The driver knows the length of each request's argument. */
int32_t zyr_ccfb_request(int32_t iDevice, uint32_t uiRequest, const void *pvArgument, uint32_t)
{
    return ioctl(iDevice, uiRequest, pvArgument) < 0 ? -1 : 0;
}

void zyr_ccfb_unmap(void *pvMemory, uint32_t uiBytes)
{
    munmap(pvMemory, uiBytes);
}

void zyr_ccfb_close(int32_t iDevice)
{
    close(iDevice);
}

const char *zyr_platform_fontPath(void)
{
    return "/system/fonts/DroidSansFallback.ttf";
}

// The virtual caption device: what it has been told, and the memory it shows.
#ifndef ZYR_PLATFORM_HOST_DEVICE_H
#define ZYR_PLATFORM_HOST_DEVICE_H

#include <cstdint>

constexpr uint32_t HOST_PLANE_BYTES = 4 * 1024 * 1024;
constexpr uint32_t HOST_PLANE_PHYS = 0x9C000000; // high bit set: physical addresses are unsigned

// Argument of the request "set", word by word.
struct HostPlaneConfig {
    uint32_t uiLcdc;
    uint32_t uiWord1;
    int32_t iX; // of the box on the display, pixels
    int32_t iY;
    uint32_t uiWidth; // of the box, pixels
    uint32_t uiHeight;
    uint32_t uiWord6;
    uint32_t uiSourceWidth; // pixels from one row of the buffer to the next
    uint32_t uiSourceHeight;
    uint32_t auiWords9[4];
};
static_assert(sizeof(HostPlaneConfig) == 52);

struct HostPlane {
    HostPlaneConfig stConfig;
    uint32_t uiShownPhys; // buffer of the last update
    bool bConfigured;
    bool bUpdated;
    bool bEnabled;
};

/** @return what the device has been told; valid to the end of the program. */
const HostPlane *Get_HostPlane();

/** @return the plane's HOST_PLANE_BYTES bytes of memory, whether the device was opened or not. */
const uint8_t *Get_HostPlaneMemory();

#endif

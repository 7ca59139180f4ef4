#include "host_device.h"

#include "host_parts.h"
#include "zyr/zyr_host.h"
#include "zyr_ccfb.h"
#include "zyr_pmap.h"

#include <bit>
#include <cstring>

namespace
{

constexpr const char *DEVICE_NAME = "/dev/ccfb";
constexpr const char *REGION_NAME = "overlay1";
constexpr uint32_t PAGE_BYTES = 4096; // a mapping begins at a multiple of it
constexpr int32_t DESCRIPTOR_NUMS = 32;

alignas(PAGE_BYTES) uint16_t s_ausMemory[HOST_PLANE_BYTES / sizeof(uint16_t)];
bool s_bMemoryShown;   // the device has been opened once
uint32_t s_uiOpenBits; // bit n: descriptor n + 1 is open
HostPlane s_stPlane;
int s_iFailingStep;
ZyrHostDeviceTrace s_pfTrace;
void *s_pvTraceContext;

void Trace_Step(uint32_t uiStep, const void *pvArgument, uint32_t uiBytes)
{
    if (s_pfTrace != nullptr) s_pfTrace(uiStep, pvArgument, uiBytes, s_pvTraceContext);
}

bool Is_Open(int32_t iDevice)
{
    return iDevice >= 1 && iDevice <= DESCRIPTOR_NUMS && ((s_uiOpenBits >> (iDevice - 1)) & 1) != 0;
}

int32_t Set_Plane(const void *pvArgument, uint32_t uiBytes)
{
    if (pvArgument == nullptr || uiBytes != sizeof(HostPlaneConfig)) return -1;
    memcpy(&s_stPlane.stConfig, pvArgument, sizeof(HostPlaneConfig));
    s_stPlane.bConfigured = true;
    return 0;
}

int32_t Update_Plane(const void *pvArgument, uint32_t uiBytes)
{
    if (pvArgument == nullptr || uiBytes != sizeof(uint32_t)) return -1;
    memcpy(&s_stPlane.uiShownPhys, pvArgument, sizeof(uint32_t));
    s_stPlane.bUpdated = true;
    return 0;
}

int32_t Enable_Plane(bool bOn)
{
    s_stPlane.bEnabled = bOn;
    return 0;
}

} // namespace

const HostPlane *Get_HostPlane()
{
    return &s_stPlane;
}

const uint8_t *Get_HostPlaneMemory()
{
    return reinterpret_cast<const uint8_t *>(s_ausMemory);
}

int32_t zyr_ccfb_open(const char *pszDevice)
{
    Trace_Step(ZYR_HOST_STEP_OPEN, nullptr, 0);
    if (s_iFailingStep == 1 || pszDevice == nullptr || strcmp(pszDevice, DEVICE_NAME) != 0) return -1;
    const int iFree = std::countr_one(s_uiOpenBits);
    if (iFree >= DESCRIPTOR_NUMS) return -1;
    s_uiOpenBits |= uint32_t{1} << iFree;
    s_bMemoryShown = true;
    return iFree + 1;
}

int pmap_get_info(const char *pszName, void *pvRecord)
{
    Trace_Step(ZYR_HOST_STEP_REGION, pszName,
               pszName != nullptr ? static_cast<uint32_t>(strlen(pszName)) : 0);
    if (s_iFailingStep == 2 || pszName == nullptr || pvRecord == nullptr || strcmp(pszName, REGION_NAME) != 0)
        return -1;
    memcpy(pvRecord, &HOST_PLANE_PHYS, sizeof(HOST_PLANE_PHYS));
    return 0;
}

void *zyr_ccfb_map(int32_t iDevice, uint32_t uiBytes, uint32_t uiPhysBase)
{
    const uint32_t auiArgument[2] = {uiBytes, uiPhysBase};
    Trace_Step(ZYR_HOST_STEP_MAP, auiArgument, sizeof(auiArgument));
    const uint32_t uiOffset = uiPhysBase - HOST_PLANE_PHYS;
    if (s_iFailingStep == 3 || !Is_Open(iDevice) || uiBytes == 0) return nullptr;
    if (uiOffset % PAGE_BYTES != 0 || uiOffset >= HOST_PLANE_BYTES || uiBytes > HOST_PLANE_BYTES - uiOffset)
        return nullptr;
    return s_ausMemory + uiOffset / sizeof(uint16_t);
}

int32_t zyr_ccfb_request(int32_t iDevice, uint32_t uiRequest, const void *pvArgument, uint32_t uiBytes)
{
    Trace_Step(uiRequest, pvArgument, uiBytes);
    if (!Is_Open(iDevice)) return -1;
    switch (uiRequest) {
    case ZYR_CCFB_SET: return Set_Plane(pvArgument, uiBytes);
    case ZYR_CCFB_UPDATE: return Update_Plane(pvArgument, uiBytes);
    case ZYR_CCFB_ENABLE: return Enable_Plane(true);
    case ZYR_CCFB_DISABLE: return Enable_Plane(false);
    default: return -1;
    }
}

// The memory stays: a program may look at it after the mapping is gone.
void zyr_ccfb_unmap(void * /*pvMemory*/, uint32_t /*uiBytes*/)
{
    Trace_Step(ZYR_HOST_STEP_UNMAP, nullptr, 0);
}

void zyr_ccfb_close(int32_t iDevice)
{
    Trace_Step(ZYR_HOST_STEP_CLOSE, nullptr, 0);
    if (Is_Open(iDevice)) s_uiOpenBits &= ~(uint32_t{1} << (iDevice - 1));
}

void zyr_host_failDevice(int iStep)
{
    s_iFailingStep = iStep;
}

void zyr_host_setDeviceTrace(ZyrHostDeviceTrace pfTrace, void *pContext)
{
    s_pfTrace = pfTrace;
    s_pvTraceContext = pContext;
}

uint16_t *zyr_host_captionMemory(uint32_t *puiPhysBase)
{
    if (!s_bMemoryShown) return nullptr;
    if (puiPhysBase != nullptr) *puiPhysBase = HOST_PLANE_PHYS;
    return s_ausMemory;
}

void Reset_HostDevice()
{
    // Not before the first open: clearing would bring in 4 MiB that nobody has used.
    if (s_bMemoryShown) memset(s_ausMemory, 0, sizeof(s_ausMemory));
    s_stPlane = {};
    s_iFailingStep = 0;
    zyr_host_setDeviceTrace(nullptr, nullptr);
}

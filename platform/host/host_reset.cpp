#include "host_parts.h"
#include "zyr/zyr_host.h"

void zyr_host_reset(void)
{
    Reset_HostLog();
    Reset_HostMemory();
    Reset_HostNames();
    Reset_HostFiles();
    Reset_HostProperties();
    if (Reset_HostDevice != nullptr) Reset_HostDevice();
    if (Reset_HostFont != nullptr) Reset_HostFont();
}

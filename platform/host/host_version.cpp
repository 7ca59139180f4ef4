#include "zyr/zyr_host.h"

uint32_t zyr_host_version(void)
{
    return ZYR_HOST_VERSION;
}

/* A program in strict C99 that finds the properties of ZYR_PROPERTIES there from its first line on. */
#include "zyr/zyr_host.h"
#include "zyr_properties.h"

#include <string.h>

int main(void)
{
    char acValue[ZYR_PROPERTY_VALUE_MAX];
    const int iLength = property_get("persist.sys.output_mode", acValue, "unset");
    zyr_host_reset();
    return iLength == 1 && strcmp(acValue, "1") == 0 && zyr_host_openFiles() == 0 ? 0 : 1;
}

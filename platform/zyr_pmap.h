/* The map of physical memory regions that the kernel keeps free for devices. */
#ifndef ZYR_PLATFORM_PMAP_H
#define ZYR_PLATFORM_PMAP_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** A region's record. Only the first word is known; the rest leaves room for what the service may write. */
typedef struct ZyrPmapRecord {
    uint32_t uiBase; /* physical address of the region's first byte */
    uint8_t aucRest[252];
} ZyrPmapRecord;

/** Look a region up by name and fill pvRecord (a ZyrPmapRecord). @return not looked at: an unknown region
 * leaves the record as it was. */
int pmap_get_info(const char *pszName, void *pvRecord);

#ifdef __cplusplus
}
#endif

#endif

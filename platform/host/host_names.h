// Names that open another file, or bytes in memory, instead of the file of that name.
#ifndef ZYR_PLATFORM_HOST_NAMES_H
#define ZYR_PLATFORM_HOST_NAMES_H

#include <cstdint>

struct HostSource {
    const char *pszPath; // file to open; nullptr = the bytes below
    const uint8_t *pucData;
    uint32_t uiBytes;
};

/** Find what a name opens. pstSource stays valid until the name is mapped anew. @return false when nothing.
 */
bool Find_HostSource(const char *pszName, HostSource *pstSource);

#endif

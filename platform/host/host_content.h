// What an open file holds, read by position: bytes of a file, bytes in memory, or text made from either.
#ifndef ZYR_PLATFORM_HOST_CONTENT_H
#define ZYR_PLATFORM_HOST_CONTENT_H

#include "host_names.h"

#include <cstddef>
#include <cstdint>

struct HostContent {
    int iDescriptor;          // -1 = there is nothing but the memory below
    const uint8_t *pucMemory; // the first llMemoryBytes bytes, or nullptr
    int64_t llMemoryBytes;
    uint8_t *pucOwned;    // pucMemory when it is ours to free, else nullptr
    int64_t llSizeAtOpen; // of the file behind iDescriptor
    int64_t llLastEnd;    // where the last read ended
    uint32_t uiScattered; // small reads that did not begin there
    uint32_t uiLoadAfter; // as many make it worth having the whole file in memory
};

/** Open a source, with its line ends made CR LF on request. Only regular files open. @return success */
bool Open_HostContent(const HostSource &stSource, bool bCrLf, HostContent *pstContent);

void Close_HostContent(HostContent *pstContent);

/** Read up to uiBytes bytes from llPos on. @return bytes read, 0 at or past the end, -1 on an error */
int64_t Read_HostContent(HostContent *pstContent, int64_t llPos, uint8_t *pucBuffer, size_t uiBytes);

/** @return bytes that there are now, -1 on an error */
int64_t Get_HostContentSize(const HostContent *pstContent);

#endif

// A failure that is due at the nth call from now, once or from then on.
#ifndef ZYR_PLATFORM_HOST_FAULT_H
#define ZYR_PLATFORM_HOST_FAULT_H

#include <cstdint>

struct HostFault {
    uint32_t uiNth;   // calls up to and including the failing one; 0 = none fails
    bool bFromThenOn; // every call fails from that one on
};

/** Count one call. @return whether it fails. */
inline bool Is_FaultDue(HostFault *pstFault)
{
    if (pstFault->uiNth == 0) return false;
    if (pstFault->uiNth > 1) {
        --pstFault->uiNth;
        return false;
    }
    if (!pstFault->bFromThenOn) pstFault->uiNth = 0;
    return true;
}

#endif

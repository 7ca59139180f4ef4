#include "host_fault.h"
#include "host_parts.h"
#include "zyr/zyr_host.h"
#include "zyr_base.h"

#include <cstddef>
#include <cstdlib>

namespace
{

// Stands in front of every block and keeps it aligned for every type.
struct alignas(std::max_align_t) BlockHeader {
    uint32_t uiBytes; // as asked for
};

HostFault s_stFault;
uint32_t s_uiAllocations;
uint64_t s_ullLiveBytes;

} // namespace

void *ZYR_malloc(uint32_t uiBytes)
{
    ++s_uiAllocations;
    const uint64_t ullBytes = sizeof(BlockHeader) + uint64_t{uiBytes};
    if (Is_FaultDue(&s_stFault) || ullBytes > PTRDIFF_MAX) return nullptr;
    auto *pstHeader = static_cast<BlockHeader *>(malloc(static_cast<size_t>(ullBytes)));
    if (pstHeader == nullptr) return nullptr;
    pstHeader->uiBytes = uiBytes;
    s_ullLiveBytes += uiBytes;
    return pstHeader + 1;
}

void ZYR_free(void *pvBlock)
{
    if (pvBlock == nullptr) return;
    BlockHeader *pstHeader = static_cast<BlockHeader *>(pvBlock) - 1;
    s_ullLiveBytes -= pstHeader->uiBytes;
    free(pstHeader);
}

void zyr_host_failAllocation(uint32_t uiNth, int iFromThenOn)
{
    s_stFault = {uiNth, iFromThenOn != 0};
}

uint32_t zyr_host_allocations(void)
{
    return s_uiAllocations;
}

uint64_t zyr_host_liveBytes(void)
{
    return s_ullLiveBytes;
}

void Reset_HostMemory()
{
    s_stFault = {};
    s_uiAllocations = 0;
}

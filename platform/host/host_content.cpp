#include "host_content.h"

#include "host_text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

// A reader that jumps about pays a system call for each small read. Loading the file costs as much as one
// such read for every 2 KiB or so; it is done once a reader has shown that it goes on jumping, well before it
// has paid as much.
constexpr size_t SMALL_READ_BYTES = size_t{16} << 10;
constexpr int64_t LOAD_MAX_BYTES = int64_t{64} << 20;
constexpr uint32_t LOAD_AFTER_LEAST = 32;
constexpr int64_t LOAD_BYTES_PER_READ = int64_t{8} << 10;
constexpr uint32_t LOAD_NEVER = std::numeric_limits<uint32_t>::max();

constexpr size_t PIECE_BYTES = size_t{64} << 10; // of a file at a time while its text is made

int64_t Get_FileSize(int iDescriptor)
{
    struct stat stStatus;
    return fstat(iDescriptor, &stStatus) == 0 && S_ISREG(stStatus.st_mode) ? int64_t{stStatus.st_size} : -1;
}

// Without O_NONBLOCK the open of a pipe would wait for its writer; regular files do not mind.
bool Open_RegularFile(const char *pszPath, HostContent *pstContent)
{
    pstContent->iDescriptor = open(pszPath, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (pstContent->iDescriptor < 0) return false;
    const int64_t llSize = Get_FileSize(pstContent->iDescriptor);
    if (llSize < 0) {
        Close_HostContent(pstContent);
        return false;
    }
    pstContent->llSizeAtOpen = llSize;
    pstContent->uiLoadAfter = llSize > LOAD_MAX_BYTES
                                  ? LOAD_NEVER
                                  : LOAD_AFTER_LEAST + static_cast<uint32_t>(llSize / LOAD_BYTES_PER_READ);
    return true;
}

// Stops at a short read where the file ended when it was opened: that saves the read that would give 0.
int64_t Read_Descriptor(const HostContent *pstContent, int64_t llPos, uint8_t *pucBuffer, size_t uiBytes)
{
    size_t uiDone = 0;
    while (uiDone < uiBytes) {
        const int64_t llNow = llPos + static_cast<int64_t>(uiDone);
        const ssize_t iGot = pread(pstContent->iDescriptor, pucBuffer + uiDone, uiBytes - uiDone, llNow);
        if (iGot < 0 && errno == EINTR) continue;
        if (iGot < 0 && uiDone == 0) return -1;
        if (iGot <= 0) break;
        uiDone += static_cast<size_t>(iGot);
        if (llNow + iGot == pstContent->llSizeAtOpen) break;
    }
    return static_cast<int64_t>(uiDone);
}

int64_t Read_Memory(const HostContent *pstContent, int64_t llPos, uint8_t *pucBuffer, size_t uiBytes)
{
    if (llPos >= pstContent->llMemoryBytes) return 0;
    const auto uiLeft = static_cast<size_t>(pstContent->llMemoryBytes - llPos);
    const size_t uiTaken = std::min(uiBytes, uiLeft);
    memcpy(pucBuffer, pstContent->pucMemory + llPos, uiTaken);
    return static_cast<int64_t>(uiTaken);
}

void Own_Memory(HostContent *pstContent, uint8_t *pucData, int64_t llBytes)
{
    pstContent->pucOwned = pucData;
    pstContent->pucMemory = pucData;
    pstContent->llMemoryBytes = llBytes;
}

// A private copy and no mapping: a mapped file that shrinks would end the program. The descriptor stays open
// for what the file may still grow by. Without memory everything goes on as before.
void Load_File(HostContent *pstContent)
{
    pstContent->uiLoadAfter = LOAD_NEVER;
    const auto uiBytes = static_cast<size_t>(pstContent->llSizeAtOpen);
    auto *pucData = uiBytes > 0 ? static_cast<uint8_t *>(malloc(uiBytes)) : nullptr;
    if (pucData == nullptr) return;
    const int64_t llGot = Read_Descriptor(pstContent, 0, pucData, uiBytes);
    if (llGot > 0) {
        Own_Memory(pstContent, pucData, llGot);
    } else {
        free(pucData);
    }
}

void Note_Access(HostContent *pstContent, int64_t llPos, size_t uiBytes)
{
    if (llPos == pstContent->llLastEnd || uiBytes >= SMALL_READ_BYTES) return;
    if (++pstContent->uiScattered >= pstContent->uiLoadAfter) Load_File(pstContent);
}

bool Convert_Memory(const HostSource &stSource, HostText *pstText)
{
    size_t uiDone = 0;
    do {
        const size_t uiLeft = stSource.uiBytes - uiDone;
        size_t uiTaken = 0;
        if (!Append_HostText(pstText, stSource.pucData + uiDone, std::min(uiLeft, PIECE_BYTES),
                             uiLeft <= PIECE_BYTES, &uiTaken)) {
            return false;
        }
        uiDone += uiTaken;
    } while (uiDone < stSource.uiBytes);
    return true;
}

bool Convert_File(const HostContent *pstContent, HostText *pstText)
{
    uint8_t aucPiece[HOST_TEXT_REST_MAX + PIECE_BYTES];
    size_t uiRest = 0;
    for (int64_t llPos = 0;;) {
        const int64_t llGot = Read_Descriptor(pstContent, llPos, aucPiece + uiRest, PIECE_BYTES);
        if (llGot < 0) return false;
        llPos += llGot;
        const bool bLast = llGot < static_cast<int64_t>(PIECE_BYTES);
        const size_t uiBytes = uiRest + static_cast<size_t>(llGot);
        size_t uiTaken = 0;
        if (!Append_HostText(pstText, aucPiece, uiBytes, bLast, &uiTaken)) return false;
        if (bLast) return true;
        uiRest = uiBytes - uiTaken;
        memmove(aucPiece, aucPiece + uiTaken, uiRest);
    }
}

// Replaces what has been opened by its text in memory.
bool Present_CrLf(const HostSource &stSource, HostContent *pstContent)
{
    HostText stText = {};
    const int64_t llSize = stSource.pucData != nullptr ? int64_t{stSource.uiBytes} : pstContent->llSizeAtOpen;
    // Twice the file when it is one piece; else most grow by a byte a line if at all, and memory that stays
    // unused is not touched, and given back below.
    const auto uiSize = static_cast<size_t>(std::min<int64_t>(llSize, INT32_MAX));
    stText.uiRoom = uiSize < PIECE_BYTES ? 2 * uiSize + 64 : uiSize / 8 * 9 + 2 * PIECE_BYTES + 64;
    stText.pucData = llSize <= INT32_MAX ? static_cast<uint8_t *>(malloc(stText.uiRoom)) : nullptr;
    const bool bDone =
        stText.pucData != nullptr &&
        (stSource.pucData != nullptr ? Convert_Memory(stSource, &stText) : Convert_File(pstContent, &stText));
    Close_HostContent(pstContent);
    if (!bDone) {
        free(stText.pucData);
        return false;
    }
    auto *pucShrunk = static_cast<uint8_t *>(realloc(stText.pucData, std::max(stText.uiBytes, size_t{1})));
    Own_Memory(pstContent, pucShrunk != nullptr ? pucShrunk : stText.pucData,
               static_cast<int64_t>(stText.uiBytes));
    return true;
}

} // namespace

bool Open_HostContent(const HostSource &stSource, bool bCrLf, HostContent *pstContent)
{
    *pstContent = {};
    pstContent->iDescriptor = -1;
    pstContent->uiLoadAfter = LOAD_NEVER;
    if (stSource.pucData != nullptr) {
        pstContent->pucMemory = stSource.pucData;
        pstContent->llMemoryBytes = stSource.uiBytes;
    } else if (!Open_RegularFile(stSource.pszPath, pstContent)) {
        return false;
    }
    return !bCrLf || Present_CrLf(stSource, pstContent);
}

void Close_HostContent(HostContent *pstContent)
{
    if (pstContent->iDescriptor >= 0) close(pstContent->iDescriptor);
    free(pstContent->pucOwned);
    *pstContent = {};
    pstContent->iDescriptor = -1;
    pstContent->uiLoadAfter = LOAD_NEVER;
}

int64_t Read_HostContent(HostContent *pstContent, int64_t llPos, uint8_t *pucBuffer, size_t uiBytes)
{
    if (pstContent->uiLoadAfter != LOAD_NEVER) Note_Access(pstContent, llPos, uiBytes);
    int64_t llGot = Read_Memory(pstContent, llPos, pucBuffer, uiBytes);
    if (pstContent->iDescriptor >= 0 && llGot < static_cast<int64_t>(uiBytes)) {
        const int64_t llMore = Read_Descriptor(pstContent, llPos + llGot, pucBuffer + llGot,
                                               uiBytes - static_cast<size_t>(llGot));
        if (llMore < 0 && llGot == 0) return -1;
        llGot += std::max<int64_t>(llMore, 0);
    }
    pstContent->llLastEnd = llPos + llGot;
    return llGot;
}

int64_t Get_HostContentSize(const HostContent *pstContent)
{
    return pstContent->iDescriptor < 0 ? pstContent->llMemoryBytes : Get_FileSize(pstContent->iDescriptor);
}

#include "host_content.h"
#include "host_fault.h"
#include "host_names.h"
#include "host_parts.h"
#include "zyr/zyr_host.h"
#include "zyr_base.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace
{

constexpr int FILE_CALL_NUMS = 4; // ZYR_HOST_OPEN to ZYR_HOST_TELL

// The position is kept here and handed along with each read, so that seeks and tells cost no system call.
struct HostFile {
    HostContent stContent;
    int64_t llPos; // bytes from the start, never below 0, possibly past the end
};

struct FileCall {
    uint32_t uiCalls;
    HostFault stFault;
    int32_t iFaultResult;
};

FileCall s_astCalls[FILE_CALL_NUMS];
ZyrHostFileHook s_pfHook;
void *s_pvHookContext;
bool s_bCrLf;
uint32_t s_uiOpenFiles;

bool Is_FileCall(int iCall)
{
    return iCall >= 0 && iCall < FILE_CALL_NUMS;
}

// Counts a call. @return whether it is due to fail
bool Count_Call(int iCall)
{
    ++s_astCalls[iCall].uiCalls;
    return Is_FaultDue(&s_astCalls[iCall].stFault);
}

int32_t Ask_Hook(int iCall, uint32_t uiAsked, int32_t iReal)
{
    return s_pfHook != nullptr ? s_pfHook(iCall, uiAsked, iReal, s_pvHookContext) : iReal;
}

bool Is_ReadMode(const char *pszMode)
{
    return pszMode != nullptr && pszMode[0] == 'r' &&
           (pszMode[1] == '\0' || (pszMode[1] == 'b' && pszMode[2] == '\0'));
}

HostFile *Open_File(const char *pszPath, const char *pszMode)
{
    HostSource stSource;
    if (pszPath == nullptr || !Is_ReadMode(pszMode) || !Find_HostSource(pszPath, &stSource)) return nullptr;
    HostContent stContent;
    if (!Open_HostContent(stSource, s_bCrLf, &stContent)) return nullptr;
    auto *pstFile = static_cast<HostFile *>(malloc(sizeof(HostFile)));
    if (pstFile == nullptr) {
        Close_HostContent(&stContent);
        return nullptr;
    }
    *pstFile = {stContent, 0};
    ++s_uiOpenFiles;
    return pstFile;
}

void Close_File(HostFile *pstFile)
{
    Close_HostContent(&pstFile->stContent);
    free(pstFile);
    --s_uiOpenFiles;
}

// As fread() does, a last element that is not complete moves the position but is not counted.
int32_t Read_Elements(HostFile *pstFile, void *pvBuffer, uint32_t uiSize, uint32_t uiCount)
{
    if (pstFile == nullptr || pvBuffer == nullptr) return -1;
    if (uiSize == 0) return 0;
    const uint64_t ullBytes = uint64_t{uiSize} * std::min<uint32_t>(uiCount, INT32_MAX);
    const auto uiBytes = static_cast<size_t>(std::min<uint64_t>(ullBytes, PTRDIFF_MAX));
    const int64_t llGot =
        Read_HostContent(&pstFile->stContent, pstFile->llPos, static_cast<uint8_t *>(pvBuffer), uiBytes);
    if (llGot < 0) return -1;
    pstFile->llPos += llGot;
    return static_cast<int32_t>(llGot / uiSize);
}

int32_t Seek_File(HostFile *pstFile, int32_t iOffset, int32_t iOrigin)
{
    if (pstFile == nullptr) return -1;
    int64_t llOrigin = -1;
    if (iOrigin == 0) llOrigin = 0;
    if (iOrigin == 1) llOrigin = pstFile->llPos;
    if (iOrigin == 2) llOrigin = Get_HostContentSize(&pstFile->stContent);
    if (llOrigin < 0 || llOrigin + iOffset < 0) return -1;
    pstFile->llPos = llOrigin + iOffset;
    return 0;
}

int32_t Tell_File(const HostFile *pstFile)
{
    return pstFile != nullptr && pstFile->llPos <= INT32_MAX ? static_cast<int32_t>(pstFile->llPos) : -1;
}

} // namespace

void *ZYR_fopen(const char *pszPath, const char *pszMode)
{
    if (Count_Call(ZYR_HOST_OPEN)) return nullptr;
    HostFile *pstFile = Open_File(pszPath, pszMode);
    const bool bTold = Ask_Hook(ZYR_HOST_OPEN, 0, pstFile != nullptr ? 1 : 0) != 0;
    if (pstFile != nullptr && !bTold) {
        Close_File(pstFile);
        return nullptr;
    }
    return pstFile;
}

int32_t ZYR_fread(void *pvBuffer, uint32_t uiSize, uint32_t uiCount, void *hFile)
{
    auto *pstFile = static_cast<HostFile *>(hFile);
    if (Count_Call(ZYR_HOST_READ)) {
        const int32_t iResult = s_astCalls[ZYR_HOST_READ].iFaultResult;
        if (iResult <= 0) return iResult;
        return Read_Elements(pstFile, pvBuffer, uiSize, std::min(uiCount, static_cast<uint32_t>(iResult)));
    }
    if (s_pfHook == nullptr) return Read_Elements(pstFile, pvBuffer, uiSize, uiCount);
    const int32_t iTold =
        Ask_Hook(ZYR_HOST_READ, uiCount, static_cast<int32_t>(std::min<uint32_t>(uiCount, INT32_MAX)));
    const bool bAllowed = iTold >= 0 && static_cast<uint32_t>(iTold) <= uiCount;
    const int32_t iRead =
        Read_Elements(pstFile, pvBuffer, uiSize, bAllowed ? static_cast<uint32_t>(iTold) : uiCount);
    return bAllowed ? iRead : iTold;
}

int32_t ZYR_fseek(void *hFile, int32_t iOffset, int32_t iOrigin)
{
    if (Count_Call(ZYR_HOST_SEEK)) return s_astCalls[ZYR_HOST_SEEK].iFaultResult;
    return Ask_Hook(ZYR_HOST_SEEK, static_cast<uint32_t>(iOffset),
                    Seek_File(static_cast<HostFile *>(hFile), iOffset, iOrigin));
}

int32_t ZYR_ftell(void *hFile)
{
    if (Count_Call(ZYR_HOST_TELL)) return s_astCalls[ZYR_HOST_TELL].iFaultResult;
    return Ask_Hook(ZYR_HOST_TELL, 0, Tell_File(static_cast<const HostFile *>(hFile)));
}

int32_t ZYR_fclose(void *hFile)
{
    if (hFile != nullptr) Close_File(static_cast<HostFile *>(hFile));
    return 0;
}

void zyr_host_setLineEnds(int iMode)
{
    s_bCrLf = iMode == 1;
}

int zyr_host_getLineEnds(void)
{
    return s_bCrLf ? 1 : 0;
}

uint32_t zyr_host_openFiles(void)
{
    return s_uiOpenFiles;
}

void zyr_host_failFile(int iCall, uint32_t uiNth, int32_t iResult, int iFromThenOn)
{
    if (!Is_FileCall(iCall)) return;
    s_astCalls[iCall].stFault = {uiNth, iFromThenOn != 0};
    s_astCalls[iCall].iFaultResult = iResult;
}

uint32_t zyr_host_fileCalls(int iCall)
{
    return Is_FileCall(iCall) ? s_astCalls[iCall].uiCalls : 0;
}

void zyr_host_setFileHook(ZyrHostFileHook pfHook, void *pContext)
{
    s_pfHook = pfHook;
    s_pvHookContext = pContext;
}

void Reset_HostFiles()
{
    for (FileCall &stCall : s_astCalls) stCall = {};
    zyr_host_setFileHook(nullptr, nullptr);
    zyr_host_setLineEnds(0);
}

#include "record/host_callbacks.h"

#include <cstring>

#include "record/engine_log.h"
#include "record/parser_state.h"
#include "zyr_base.h"

void *QUIBCAPTCB_Allocate_Aligned_Memory(uint32_t uiSize, uint32_t /*uiAlignment*/)
{
    void *const pvBlock = ZYR_malloc(uiSize); // aligned for every type, so for the asked alignment too
    if (pvBlock == nullptr) LOG_CALL("Aligned Memory Allocation Failed!\n");
    return pvBlock;
}

void *QUIBCAPTCB_Allocate_Memory(uint32_t uiSize)
{
    void *const pvBlock = ZYR_malloc(uiSize);
    if (pvBlock == nullptr) LOG_CALL("Memory Allocation Failed!\n");
    return pvBlock;
}

void QUIBCAPTCB_Deallocate_Memory(void *pvBlock)
{
    ZYR_free(pvBlock);
}

void *QUIBCAPTCB_GetFileHandleOfSubtitle(void)
{
    if (s_hSubtitleFile == nullptr) LOG_CALL("Error Caption File Handle! FileHandle = [%d]\n", 0);
    return s_hSubtitleFile;
}

int32_t QUIBCAPTCB_FileRead(void *hFile, uint8_t *pucBuffer, uint32_t uiBytes)
{
    int32_t iRead = hFile == nullptr || pucBuffer == nullptr ? -1 : ZYR_fread(pucBuffer, 1, uiBytes, hFile);
    if (iRead > 0 && static_cast<uint32_t>(iRead) > uiBytes)
        iRead = -1; // more than was asked for: not to be trusted
    if (iRead < 0) LOG_CALL("Error FileRead! ReadBytes = [%d]\n", iRead);
    return iRead;
}

int64_t QUIBCAPTCB_FileSeek(void *hFile, int64_t llOffset, int32_t iOrigin)
{
    if (iOrigin < 0 || iOrigin > 2) {
        LOG_CALL("Bad FileOrigin! FileOrigin = [%d]\n", iOrigin);
        return -1;
    }
    const int32_t iResult = hFile == nullptr ? -1 : ZYR_fseek(hFile, static_cast<int32_t>(llOffset), iOrigin);
    if (iResult != 0) {
        LOG_CALL("Error FileSeek! SeekPos = [%d]\n", iResult);
        return -2;
    }
    return ZYR_ftell(hFile);
}

int64_t QUIBCAPTCB_FileTell(void *hFile)
{
    const int32_t iPos = hFile == nullptr ? -1 : ZYR_ftell(hFile);
    if (iPos < 0) LOG_CALL("Error FileTell! CurPos = [%d]\n", iPos);
    return iPos;
}

int32_t QUIBCAPTCB_ConvertANSI2Unicode(const uint8_t *pucSource, uint16_t *pusTarget)
{
    if (pucSource == nullptr || pusTarget == nullptr) return 0;
    std::memcpy(pusTarget, pucSource, 2);
    return 2;
}

void TRACK_SetFileHandleOfSubtitleData(void *hFile)
{
    s_hSubtitleFile = hFile;
}

void *TRACK_GetFileHandleOfSubtitleData(void)
{
    return s_hSubtitleFile;
}

void Close_SubtitleFile()
{
    if (s_hOpenedFile != nullptr) ZYR_fclose(s_hOpenedFile);
    s_hOpenedFile = nullptr;
    s_hSubtitleFile = nullptr;
}

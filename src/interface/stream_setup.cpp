#include "interface/stream_setup.h"

#include <cstring>

#include "record/engine_log.h"
#include "record/host_callbacks.h"
#include "record/parser_state.h"

void Point_Stream(uint32_t uiStream, uint32_t uiClass)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    CaptionStreamState &stState = stInfo.astStreamState[uiStream];
    stState.uiClassIndex = uiClass;
    stState.llStartFilePos = stInfo.astClassInfo[uiClass].llFirstFramePos;
    stState.llCurrFilePos = stState.llStartFilePos;
    stState.iCurrPTS = -1;
}

bool Allocate_LineBuffer(uint32_t uiStream)
{
    CaptionLineTable &stTable = s_astLineTable[uiStream];
    if (stTable.pusTextBuf == nullptr)
        stTable.pusTextBuf = static_cast<uint16_t *>(ZYR_malloc(TEXT_BUF_UNITS * sizeof(uint16_t)));
    if (stTable.pusTextBuf != nullptr) {
        // The record's line lengths may still be those of another stream's frame when a host asks for output.
        std::memset(stTable.pusTextBuf, 0, TEXT_BUF_UNITS * sizeof(uint16_t));
        return true;
    }
    LOG_HANDLER("QUIB_CAPTION_Open() - Line Bitmap Buffer Memory allocation Error!\n");
    return false;
}

bool Allocate_ReadBuffer(uint32_t uiStream)
{
    CaptionStreamInfo &stStream = pstQuibCaptionParserInfo->astStreamInfo[uiStream];
    if (stStream.pucStreamBuf == nullptr)
        stStream.pucStreamBuf = static_cast<uint8_t *>(ZYR_malloc(STREAM_BUF_ROOM));
    stStream.iStreamDataSize = 0;
    stStream.iStreamBufIndex = 0;
    if (stStream.pucStreamBuf != nullptr) return true;
    LOG_HANDLER("QUIB_CAPTION_Open() - Stream Buffer Memory allocation Error!\n");
    return false;
}

void Release_Stream(uint32_t uiStream)
{
    CaptionStreamInfo &stStream = pstQuibCaptionParserInfo->astStreamInfo[uiStream];
    Free_And_Clear(stStream.pucStreamBuf);
    Free_And_Clear(s_astLineTable[uiStream].pusTextBuf);
    stStream = {};
    s_astLineTable[uiStream] = {};
}

#include "pump/frame_pump.h"

#include <cstring>

#include "format/seek_index.h"
#include "lines/line_output.h"
#include "pump/parser_table.h"
#include "record/engine_log.h"
#include "record/host_callbacks.h"
#include "record/parser_state.h"
#include "text/char_reader.h"
#include "zyr_base.h"

namespace
{

constexpr int32_t FRAME_READY = 2;
constexpr int32_t NO_FRAME = -2;
constexpr int32_t PARSED_FRAME = 1;
constexpr int32_t PARSED_LAST_FRAME = -6;

#define LOG_SEEK(szText)                                                                                     \
    __android_log_print(ZYR_LOG_ERROR, HANDLER_LOG_TAG, "[Caption][%d] " szText, __LINE__)

constexpr uint32_t LINE_LENGTH_BYTES = ZYR_LINE_MAX * sizeof(uint32_t);

void Log_ParsingFailed()
{
    LOG_HANDLER("Failed in caption file parsing!\n");
}

void Reset_FrameStyle()
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    stInfo.uiLineIndex = 0;
    stInfo.uiDisplayMode = 0;
    stInfo.uiFontSize = s_uiFontHeight;
    stInfo.usFontColor = static_cast<uint16_t>(s_uiFontColor);
    stInfo.usOutlineColor = 0;
    stInfo.uiHighlight = 0;
    stInfo.ucPrevBlank = 0;
    stInfo.uiConvLength = 0;
    stInfo.uiBreakLength = 0;
    stInfo.uiWordUnits = 0;
    stInfo.uiWordUnitsAtBreak = 0;
    std::memset(stInfo.puiLineLength, 0, LINE_LENGTH_BYTES);
}

void Load_Stream(uint32_t uiStream)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    const CaptionStreamState &stState = stInfo.astStreamState[uiStream];
    stInfo.llStartFilePos = stState.llStartFilePos;
    stInfo.llCurrFilePos = stState.llCurrFilePos;
    stInfo.iCurrPTS = stState.iCurrPTS;
    stInfo.uiCurrClass = stState.uiClassIndex;
}

/** Make the style ready for parsing a frame, and the stream that comes next. */
void Prepare_Stream()
{
    Reset_FrameStyle();
    pstQuibCaptionParserInfo->uiCurrStream = 0;
    if (const auto pfChoose = Get_FormatHooks().pfChooseStream) pfChoose();
    Load_Stream(pstQuibCaptionParserInfo->uiCurrStream);
}

/** @return whether frames come from several streams, in the order of their times. */
bool Has_SeveralStreams()
{
    return Get_FormatHooks().pfChooseStream != nullptr;
}

void Copy_Back()
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    CaptionStreamState &stState = pstQuibCaptionParserInfo->astStreamState[stInfo.uiCurrStream];
    stState.iCurrPTS = stInfo.iCurrPTS;
    stState.llCurrFilePos = stInfo.llCurrFilePos;
    stState.iStartPTS = stInfo.iStartPTS;
    stState.iEndPTS = stInfo.iEndPTS;
}

bool Is_Frame(int32_t iResult)
{
    return iResult == PARSED_FRAME || iResult == PARSED_LAST_FRAME;
}

/** @return the open format's parsers; NULL when nothing is open, or (logged) without a frame parser. */
const CaptionParser *Get_FrameParser()
{
    if (pstQuibCaptionParserInfo == nullptr || s_eCaptionFormat >= E_CAPTION_FORMAT_NONE) return nullptr;
    const CaptionParser *const pstParser = &CaptionParserTable[s_eCaptionFormat];
    if (pstParser->pfFrameParser != nullptr) return pstParser;
    LOG_HANDLER("It does not exist the frame parser!\n");
    return nullptr;
}

/** Parse one of several frames. @return whether there is one; a failure is logged. */
bool Take_OneOfSeveral(const CaptionParser *pstParser)
{
    if (!Is_Frame(pstParser->pfFrameParser())) {
        Log_ParsingFailed();
        return false;
    }
    Finish_CaptionLines(pstQuibCaptionParserInfo->uiCurrStream);
    Copy_Back();
    return true;
}

/** Make the record, its buffers and the first stream's. @return false without memory (logged). */
bool Make_Record()
{
    auto *const pstInfo = static_cast<QuibCaptionParserInfo *>(ZYR_malloc(sizeof(QuibCaptionParserInfo)));
    pstQuibCaptionParserInfo = pstInfo;
    if (pstInfo != nullptr) {
        *pstInfo = {};
        pstInfo->pusConvBuf = static_cast<uint16_t *>(ZYR_malloc(CONV_BUF_UNITS * sizeof(uint16_t)));
    }
    if (pstInfo != nullptr && pstInfo->pusConvBuf != nullptr)
        pstInfo->puiLineLength = static_cast<uint32_t *>(ZYR_malloc(LINE_LENGTH_BYTES));
    if (pstInfo == nullptr || pstInfo->puiLineLength == nullptr) {
        LOG_HANDLER("QUIB_CAPTION_Open() - Convert Buffer Memory allocation Error!\n");
        return false;
    }
    std::memset(pstInfo->puiLineLength, 0, LINE_LENGTH_BYTES);
    pstInfo->astStreamInfo[0].pucStreamBuf = static_cast<uint8_t *>(ZYR_malloc(STREAM_BUF_ROOM));
    if (pstInfo->astStreamInfo[0].pucStreamBuf != nullptr) return true;
    LOG_HANDLER("QUIB_CAPTION_Open() - Stream Buffer Memory allocation Error!\n");
    return false;
}

/** Seek one stream. @return whether it worked; a missing seek function leaves the stream where it is. */
bool Seek_Stream(uint32_t uiStream, uint32_t uiTargetMs)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    CaptionStreamState &stState = stInfo.astStreamState[uiStream];
    stInfo.uiCurrStream = uiStream; // whose read buffer the seek repositions
    Load_Stream(uiStream);
    const auto pfSeek = CaptionParserTable[s_eCaptionFormat].pfSeek;
    if (pfSeek == nullptr) {
        LOG_SEEK("QUIB_CAPTION_SeekCaptionFrame() - It is NOT a seek function!\n");
        return true;
    }
    const bool bBackward = static_cast<uint32_t>(stState.iCurrPTS) >= uiTargetMs;
    if (pfSeek(uiTargetMs, bBackward ? E_SEEK_BACKWARD : E_SEEK_FORWARD, stState.iCurrPTS, &stInfo) != 1) {
        LOG_SEEK("QUIB_CAPTION_SeekCaptionFrame() is failed!\n");
        return false;
    }
    stState.iCurrPTS = stInfo.iCurrPTS;
    stState.llCurrFilePos = stInfo.llCurrFilePos;
    stState.iStartPTS = 0;
    stState.iEndPTS = 0;
    return true;
}

} // namespace

int32_t QUIB_CAPTION_Open(void)
{
    if (pstQuibCaptionParserInfo != nullptr) {
        QUIB_CAPTION_Close();
        Close_SubtitleFile();
        s_eCaptionFormat = E_CAPTION_FORMAT_NONE;
    }
    if (!Make_Record() ||
        QuibCaptionParser_Create_MemoryBuffers(CONV_BUF_UNITS, ZYR_LINE_MAX, STREAM_BUF_BYTES) != 1)
        return -1;
    std::memset(s_astLineTable, 0, sizeof(s_astLineTable));
    Forget_StreamBuffers();
    return 1;
}

void QUIB_CAPTION_Close(void)
{
    if (QuibCaptionParserInfo *const pstInfo = pstQuibCaptionParserInfo) {
        Free_And_Clear(pstInfo->pusConvBuf);
        Free_And_Clear(pstInfo->puiLineLength);
        for (CaptionStreamInfo &stStream : pstInfo->astStreamInfo) Free_And_Clear(stStream.pucStreamBuf);
        Forget_Formats();
        Free_And_Clear(pstQuibCaptionParserInfo);
    }
    QuibCaptionParser_Destroy_MemoryBuffers();
    for (CaptionLineTable &stTable : s_astLineTable) Free_And_Clear(stTable.pusTextBuf);
    Forget_SeekPlaces();
    Forget_StreamBuffers();
}

void Prepare_CaptionFrame()
{
    Prepare_Stream();
    Clear_OutputBlock();
    Clear_LineTable(pstQuibCaptionParserInfo->uiCurrStream);
}

int32_t QUIB_CAPTION_ParsingProcess(void)
{
    const CaptionParser *const pstParser = Get_FrameParser();
    if (pstParser == nullptr || pstQuibCaptionParserInfo->uiStreamNums == 0) return NO_FRAME;
    Prepare_Stream();
    Clear_LineTable(pstQuibCaptionParserInfo->uiCurrStream);
    if (Is_Frame(pstParser->pfFrameParser())) {
        Copy_Back();
        Show_StreamLines();
        return FRAME_READY;
    }
    Clear_OutputBlock();
    if (Get_StreamInfo().iStreamDataSize >= 0) Log_ParsingFailed(); // else the data is exhausted: no failure
    return NO_FRAME;
}

int32_t QUIB_CAPTION_ParsingProcessEx(void)
{
    const CaptionParser *const pstParser = Get_FrameParser();
    if (pstParser == nullptr) return NO_FRAME;
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    if (stInfo.uiStreamNums == 0) {
        Log_ParsingFailed();
        return NO_FRAME;
    }
    int32_t iBestPTS = NO_NEXT_PTS;
    uint32_t uiPrevStream = ZYR_STREAM_MAX;
    for (uint32_t uiFrames = 0; uiFrames < stInfo.uiStreamNums; ++uiFrames) {
        Prepare_Stream(); // a stream whose turn has not come keeps its lines
        Clear_OutputBlock();
        if (Has_SeveralStreams()) {
            if (stInfo.iNextPTS > iBestPTS) break; // the other streams' frames come later
            iBestPTS = stInfo.iNextPTS;
        }
        if (stInfo.uiCurrStream == uiPrevStream) break;
        Clear_LineTable(stInfo.uiCurrStream);
        if (!Take_OneOfSeveral(pstParser)) {
            if (uiFrames > 0)
                Display_LineBitmapDataToDisplayBufferEx();
            else
                Log_ParsingFailed(); // the moment as a whole has failed, too
            return NO_FRAME;
        }
        uiPrevStream = stInfo.uiCurrStream;
    }
    Display_LineBitmapDataToDisplayBufferEx();
    return FRAME_READY;
}

int32_t QUIB_CAPTION_PreParsingProcessEx(int32_t iTargetMs)
{
    const CaptionParser *const pstParser = Get_FrameParser();
    if (pstParser == nullptr) return NO_FRAME;
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    uint32_t uiPrevStream = ZYR_STREAM_MAX;
    for (uint32_t uiFrames = 0; uiFrames < stInfo.uiStreamNums; ++uiFrames) {
        Prepare_CaptionFrame();
        if (Has_SeveralStreams() && stInfo.iNextPTS >= iTargetMs) break;
        if (stInfo.uiCurrStream == uiPrevStream) break;
        if (!Take_OneOfSeveral(pstParser)) return NO_FRAME;
        uiPrevStream = stInfo.uiCurrStream;
    }
    return FRAME_READY;
}

int32_t QUIB_CAPTION_SeekCaptionFrame(uint32_t uiTargetMs)
{
    if (pstQuibCaptionParserInfo == nullptr || s_eCaptionFormat >= E_CAPTION_FORMAT_NONE) return 1;
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    stInfo.uiCurrStream = 0;
    for (uint32_t uiStream = 0; uiStream < stInfo.uiStreamNums; ++uiStream)
        if (!Seek_Stream(uiStream, uiTargetMs)) return -1;
    for (uint32_t uiStream = 0; uiStream < stInfo.uiStreamNums; ++uiStream)
        s_astLineTable[uiStream].uiLineNums = 0;
    if (!Has_SeveralStreams()) return 1;
    if (QUIB_CAPTION_PreParsingProcessEx(static_cast<int32_t>(uiTargetMs)) == FRAME_READY) return 1;
    __android_log_print(ZYR_LOG_ERROR, HANDLER_LOG_TAG,
                        " [CAPTION][%d] QUIB_CAPTION_PreParsingProcessEx() Failed!\n", __LINE__);
    return -1;
}

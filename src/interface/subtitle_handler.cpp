// Finding and opening the subtitle file of a movie, and what the player is told of it.

#include <algorithm>
#include <cstring>
#include <ctime>

#include "interface/stream_setup.h"
#include "pump/parser_table.h"
#include "record/engine_log.h"
#include "record/host_callbacks.h"
#include "record/parser_state.h"
#include "text/char_reader.h"
#include "zyr/zyr_subtitle.h"
#include "zyr_base.h"

namespace
{

constexpr uint32_t SUCCESS = 0;
constexpr uint32_t FAILURE = 1;
constexpr uint32_t BAD_ARGUMENT = 2;

constexpr size_t LONGEST_EXTENSION = 5;
constexpr size_t BASE_NAME_MAX = ZYR_FILE_NAME_BYTES - LONGEST_EXTENSION - 1;

/** Copy the movie name up to its last dot. @return its length, or more than BASE_NAME_MAX when it is too
 * long. */
size_t Copy_BaseName(const char *pszMovieFileName)
{
    const char *const pszDot = std::strrchr(pszMovieFileName, '.');
    const size_t uiLen =
        pszDot == nullptr ? std::strlen(pszMovieFileName) : static_cast<size_t>(pszDot - pszMovieFileName);
    char *const szName = pstQuibCaptionParserInfo->szSubtitleFileName;
    std::memset(szName, 0, ZYR_FILE_NAME_BYTES);
    if (uiLen <= BASE_NAME_MAX) std::copy_n(pszMovieFileName, uiLen, szName);
    return uiLen;
}

/** Open the first file that exists. @return its handle, or NULL. */
void *Open_FirstFile(size_t uiBaseLen)
{
    char *const szName = pstQuibCaptionParserInfo->szSubtitleFileName;
    for (uint32_t eFormat = 0; eFormat < E_CAPTION_FORMAT_NONE; ++eFormat)
        for (const char *const pszEnding : FormatHookTable[eFormat].apszEnding) {
            if (pszEnding == nullptr) break;
            std::memcpy(szName + uiBaseLen, pszEnding, std::strlen(pszEnding) + 1);
            void *const hFile = ZYR_fopen(szName, "rb");
            if (hFile == nullptr) continue;
            s_eCaptionFormat = eFormat;
            return hFile;
        }
    return nullptr;
}

/** Name, open and examine the subtitle file. @return whether it can be read. */
bool _zyrSubtitleHandler_openExternalSubtitle(const char *pszMovieFileName)
{
    const size_t uiBaseLen = Copy_BaseName(pszMovieFileName);
    if (uiBaseLen > BASE_NAME_MAX) {
        LOG_HANDLER("The subtitle file name is too long!\n");
        return false;
    }
    s_hOpenedFile = Open_FirstFile(uiBaseLen);
    if (s_hOpenedFile == nullptr) return false;
    __android_log_print(ZYR_LOG_ERROR, HANDLER_LOG_TAG, "[%s][%d] subtitle filename = %s\n",
                        "_zyrSubtitleHandler_openExternalSubtitle", __LINE__,
                        pstQuibCaptionParserInfo->szSubtitleFileName);
    if (QuibCaptionParser_Init_CaptionStreamVariables(s_hOpenedFile) == 1) return true;
    LOG_HANDLER("Failed to initialize the stream variables!\n");
    return false;
}

/** Run the format's header parser. @return whether the file has at least one class to read. */
bool Parse_Header()
{
    const auto pfHeaderParser = CaptionParserTable[s_eCaptionFormat].pfHeaderParser;
    if (pfHeaderParser == nullptr) {
        LOG_HANDLER("zyrSubtitleHandler_searchExternalSubtitle() - It does not exist the header parser!\n");
        return false;
    }
    const std::clock_t llStart = std::clock();
    const int32_t iResult = pfHeaderParser(s_hOpenedFile);
    const std::clock_t llEnd = std::clock();
    __android_log_print(ZYR_LOG_ERROR, HANDLER_LOG_TAG,
                        "@@@@@   Result = [%d], Header Parsing Time = [%d] ms   @@@@@", iResult,
                        static_cast<int32_t>((llEnd - llStart) / 1000));
    if (iResult != 1) {
        LOG_HANDLER("zyrSubtitleHandler_searchExternalSubtitle() - Failed in reading a header information of "
                    "caption file!\n");
        return false;
    }
    if (pstQuibCaptionParserInfo->uiClassNums != 0) return true;
    LOG_HANDLER("zyrSubtitleHandler_searchExternalSubtitle() - The numbers of class name is 0!\n");
    return false;
}

/** Set up the one stream of a file with one class. */
bool Setup_OneStream()
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    stInfo.uiStreamNums = 1;
    stInfo.uiCurrStream = 0;
    stInfo.uiCurrClass = 0;
    Point_Stream(0, 0);
    if (!Allocate_LineBuffer(0)) return false;
    // A file without a first frame cannot be moved there: the callback says so, and the frame parser will
    // too.
    if (Move_ReadPosition(s_hOpenedFile, stInfo.astStreamState[0].llStartFilePos, E_READ_AHEAD_FULL) < 0) {
        stInfo.astStreamInfo[0].iStreamDataSize = 0;
        stInfo.astStreamInfo[0].iStreamBufIndex = 0;
    }
    return true;
}

/** Set up a stream for each of the first classes. */
bool Setup_SeveralStreams()
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    bool bDone = true;
    stInfo.uiStreamNums =
        stInfo.uiClassNums < ZYR_STREAM_MAX ? stInfo.uiClassNums : static_cast<uint32_t>(ZYR_STREAM_MAX);
    for (uint32_t uiStream = 0; uiStream < stInfo.uiStreamNums && bDone; ++uiStream) {
        Point_Stream(uiStream, uiStream);
        bDone = Allocate_LineBuffer(uiStream) && Allocate_ReadBuffer(uiStream);
    }
    stInfo.uiCurrStream = ZYR_STREAM_MAX; // the frame pump chooses one per frame
    stInfo.uiCurrClass = 0;
    return bDone;
}

/** Let go of the file and of what was read of it. */
void Give_Up_Open()
{
    Close_SubtitleFile();
    s_eCaptionFormat = E_CAPTION_FORMAT_NONE;
    if (pstQuibCaptionParserInfo == nullptr) return;
    Forget_Formats();
    pstQuibCaptionParserInfo->uiStreamNums = 0;
    pstQuibCaptionParserInfo->uiCurrStream = 0;
}

} // namespace

int32_t zyrSubtitleHandler_searchExternalSubtitle(const char *pszMovieFileName, int32_t iOpenOption)
{
    QUIBCAPTPARS_Set_ParsingOption(iOpenOption == 1 ? E_PARSING_OPTION_SINGLE_BYTE : 0u);
    Give_Up_Open(); // a file that an earlier call left open
    if (pszMovieFileName == nullptr || pstQuibCaptionParserInfo == nullptr) return FAILURE;
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    if (!_zyrSubtitleHandler_openExternalSubtitle(pszMovieFileName) || !Parse_Header()) {
        Give_Up_Open();
        return FAILURE;
    }
    if (const auto pfAfterHeader = Get_FormatHooks().pfAfterHeader) pfAfterHeader();
    const bool bOneStream = stInfo.uiClassNums < 2;
    if (!(bOneStream ? Setup_OneStream() : Setup_SeveralStreams())) {
        Give_Up_Open();
        return bOneStream ? -1 : static_cast<int32_t>(FAILURE);
    }
    s_hSubtitleFile = s_hOpenedFile;
    return SUCCESS;
}

uint32_t zyrSubtitleHandler_getFrameInfo(uint32_t *puiStreamIndex, int32_t *piStartTime, int32_t *piEndTime,
                                         uint32_t *puiLineNums, uint32_t *puiTextLength, uint8_t **ppucText)
{
    if (piStartTime == nullptr || piEndTime == nullptr || puiLineNums == nullptr ||
        puiTextLength == nullptr || ppucText == nullptr)
        return BAD_ARGUMENT;
    QuibCaptionParserInfo *const pstInfo = pstQuibCaptionParserInfo;
    if (pstInfo == nullptr) return FAILURE;
    if (puiStreamIndex != nullptr) *puiStreamIndex = pstInfo->uiOutStreamIndex;
    *piStartTime = pstInfo->iOutStartPTS;
    *piEndTime = pstInfo->iOutEndPTS;
    *puiLineNums = pstInfo->uiOutLineNums;
    *puiTextLength = pstInfo->uiOutTextLength;
    *ppucText = pstInfo->aucOutText;
    return SUCCESS;
}

uint32_t zyrSubtitleHandler_getOutputTextCharacterSet(void)
{
    return pstQuibCaptionParserInfo == nullptr ? 0u : pstQuibCaptionParserInfo->uiOutputTextCharacterSet;
}

// The calls of a media player: argument checks, and the handler's results as the interface's.

#include "zyr/zyr_subtitle.h"

#include "record/host_callbacks.h"
#include "record/parser_state.h"
#include "zyr_log.h"

namespace
{

constexpr uint32_t SUCCESS = 0;
constexpr uint32_t FAILURE = 1;
constexpr uint32_t BAD_ARGUMENT = 2;

} // namespace

uint32_t zyrSubtitle_open(const char *pszMovieFileName, int32_t iOpenOption)
{
    if (pszMovieFileName == nullptr) {
        __android_log_print(ZYR_LOG_ERROR, "ZYR_SUBTITLE_INTERFACE",
                            "[%s()][%5d] Moving Picture Filename is NULL!\n", "zyrSubtitle_open", __LINE__);
        return BAD_ARGUMENT;
    }
    if (QUIB_CAPTION_Open() == 1 &&
        zyrSubtitleHandler_searchExternalSubtitle(pszMovieFileName, iOpenOption) == 0)
        return SUCCESS;
    zyrSubtitle_close();
    return FAILURE;
}

uint32_t zyrSubtitle_close(void)
{
    QUIB_CAPTION_Close();
    Close_SubtitleFile();
    s_eCaptionFormat = E_CAPTION_FORMAT_NONE;
    return SUCCESS;
}

uint32_t zyrSubtitle_getFrame(uint32_t *puiStreamIndex, int32_t *piStartTime, int32_t *piEndTime,
                              uint32_t *puiLineNums, uint32_t *puiTextLength, uint8_t **ppucText)
{
    if (piStartTime == nullptr || piEndTime == nullptr || puiLineNums == nullptr ||
        puiTextLength == nullptr || ppucText == nullptr)
        return BAD_ARGUMENT;
    if (QUIB_CAPTION_ParsingProcess() != 2) return FAILURE;
    return zyrSubtitleHandler_getFrameInfo(puiStreamIndex, piStartTime, piEndTime, puiLineNums, puiTextLength,
                                           ppucText) == 0
               ? SUCCESS
               : FAILURE;
}

uint32_t zyrSubtitle_seek(uint32_t uiTimeMs)
{
    return QUIB_CAPTION_SeekCaptionFrame(uiTimeMs) == 1 ? SUCCESS : FAILURE;
}

uint32_t zyrSubtitle_getOutputTextCharacterSet(void)
{
    return zyrSubtitleHandler_getOutputTextCharacterSet();
}

uint32_t zyrSubtitle_getClassNums(uint32_t *puiClassNums)
{
    if (puiClassNums == nullptr) return BAD_ARGUMENT;
    const uint32_t uiNums = zyrSubtitleHandler_getClassNums();
    if (uiNums < 1) return FAILURE;
    *puiClassNums = uiNums;
    return SUCCESS;
}

uint32_t zyrSubtitle_getClassName(uint32_t uiClassIndex, char **ppszClassName)
{
    if (ppszClassName == nullptr) return BAD_ARGUMENT;
    return zyrSubtitleHandler_getClassName(uiClassIndex, ppszClassName) == 0 ? SUCCESS : FAILURE;
}

uint32_t zyrSubtitle_selectClass(int32_t iClassCount, const uint32_t *puiClassIndexes)
{
    if (iClassCount < 1 || puiClassIndexes == nullptr) return BAD_ARGUMENT;
    return zyrSubtitleHandler_selectClass(iClassCount, puiClassIndexes) == 0 ? SUCCESS : FAILURE;
}

#include "record/parser_state.h"

#include "format/ssa/style_list.h"
#include "zyr_log.h"

QuibCaptionParserInfo *pstQuibCaptionParserInfo = nullptr;

uint32_t s_uiFontColor = 0xFFFF;
uint32_t s_uiFontEdgeColor = 0;
uint32_t s_uiFontHeight = 16;
uint32_t s_eCaptionFormat = E_CAPTION_FORMAT_NONE;
CaptionLineTable s_astLineTable[ZYR_STREAM_MAX] = {};
void *s_hSubtitleFile = nullptr;
void *s_hOpenedFile = nullptr;
uint32_t s_uiParsingOption = 0;
uint32_t s_uiTextEncoding = E_TEXT_ENCODING_ANSI;
uint32_t s_uiConvBufSize = 0;
TagControlInfo *s_pstTagControlInfo = nullptr;
uint32_t s_uiMaxLineNums = 0;
uint32_t s_uiStreamBufSize = 0;
int64_t s_llCaptionFileSize = 0;
SamiFrameInfo *s_pstFrameInfoArray = nullptr;
uint32_t s_uiFrameInfoMax = 0;
uint32_t s_uiFrameInfoNums = 0;
uint32_t *s_puiSyncPlaces = nullptr;
uint32_t s_auiClassFrameCursor[ZYR_CLASS_MAX] = {};

namespace
{

constexpr uint32_t PARSER_VERSION = 36;

} // namespace

bool Is_HeaderReady()
{
    const QuibCaptionParserInfo *const pstInfo = pstQuibCaptionParserInfo;
    return pstInfo != nullptr && s_pstTagControlInfo != nullptr && pstInfo->pusConvBuf != nullptr &&
           pstInfo->puiLineLength != nullptr && pstInfo->uiCurrStream < ZYR_STREAM_MAX &&
           Get_StreamInfo().pucStreamBuf != nullptr;
}

bool Is_StreamReady()
{
    return Is_HeaderReady() && s_astLineTable[pstQuibCaptionParserInfo->uiCurrStream].pusTextBuf != nullptr;
}

uint32_t QUIBCAPTPARS_Get_VerInfo(void)
{
    return PARSER_VERSION;
}

void QUIBCAPTPARS_Set_ParsingOption(uint32_t uiOption)
{
    s_uiParsingOption = uiOption;
}

int32_t QuibCaptionParser_Create_MemoryBuffers(uint32_t uiConvUnits, uint32_t uiMaxLines,
                                               uint32_t uiStreamBytes)
{
    if (uiConvUnits == 0 || uiMaxLines == 0 || uiStreamBytes == 0) return -1;
    if (s_pstTagControlInfo == nullptr)
        s_pstTagControlInfo =
            static_cast<TagControlInfo *>(QUIBCAPTCB_Allocate_Aligned_Memory(sizeof(TagControlInfo), 4));
    if (s_pstTagControlInfo == nullptr) {
        __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG,
                            " [%d] QuibCaptionParser_Create_MemoryBuffers() - Tag Control Info allocation "
                            "Error!\n",
                            __LINE__);
        return -1;
    }
    *s_pstTagControlInfo = {};
    // The buffers themselves are as large as the constants say: a caller may ask for less, never for more.
    s_uiConvBufSize = uiConvUnits < CONV_BUF_UNITS ? uiConvUnits : CONV_BUF_UNITS;
    s_uiMaxLineNums = uiMaxLines < ZYR_LINE_MAX ? uiMaxLines : static_cast<uint32_t>(ZYR_LINE_MAX);
    s_uiStreamBufSize = uiStreamBytes < STREAM_BUF_BYTES ? uiStreamBytes : STREAM_BUF_BYTES;
    return Create_CaptionFrameList();
}

void QuibCaptionParser_Destroy_MemoryBuffers(void)
{
    if (s_pstTagControlInfo != nullptr) QUIBCAPTCB_Deallocate_Memory(s_pstTagControlInfo);
    s_pstTagControlInfo = nullptr;
    s_uiConvBufSize = 0;
    s_uiStreamBufSize = 0;
    s_uiMaxLineNums = 0;
    Destroy_CaptionFrameList();
    if (s_pstFrameInfoArray != nullptr) QUIBCAPTCB_Deallocate_Memory(s_pstFrameInfoArray);
    s_pstFrameInfoArray = nullptr;
    if (s_puiSyncPlaces != nullptr) QUIBCAPTCB_Deallocate_Memory(s_puiSyncPlaces);
    s_puiSyncPlaces = nullptr;
    s_llCaptionFileSize = 0;
    s_uiFrameInfoMax = 0;
    s_uiFrameInfoNums = 0;
}

void QuibCaptionParser_Destroy_SSA_MemoryBuffers(void)
{
    Destroy_Styles();
    if (pstQuibCaptionParserInfo == nullptr) return;
    pstQuibCaptionParserInfo->pstSSAStyleList = nullptr;
    pstQuibCaptionParserInfo->stSSAFrameInfo.pstStyle = nullptr;
}

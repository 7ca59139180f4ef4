// The parser's buffers beside the record, those of each format included: they are declared in zyr/quib_caption.h.

#include "pump/parser_table.h"
#include "record/engine_log.h"
#include "record/host_callbacks.h"
#include "record/parser_state.h"

int32_t QuibCaptionParser_Create_MemoryBuffers(uint32_t uiConvUnits, uint32_t uiMaxLines,
                                               uint32_t uiStreamBytes)
{
    if (uiConvUnits == 0 || uiMaxLines == 0 || uiStreamBytes == 0) return -1;
    if (s_pstTagControlInfo == nullptr)
        s_pstTagControlInfo =
            static_cast<TagControlInfo *>(QUIBCAPTCB_Allocate_Aligned_Memory(sizeof(TagControlInfo), 4));
    if (s_pstTagControlInfo == nullptr) {
        LOG_PARSER("QuibCaptionParser_Create_MemoryBuffers() - Tag Control Info allocation Error!\n");
        return -1;
    }
    *s_pstTagControlInfo = {};
    // The buffers themselves are as large as the constants say: a caller may ask for less, never for more.
    s_uiConvBufSize = uiConvUnits < CONV_BUF_UNITS ? uiConvUnits : CONV_BUF_UNITS;
    s_uiMaxLineNums = uiMaxLines < ZYR_LINE_MAX ? uiMaxLines : static_cast<uint32_t>(ZYR_LINE_MAX);
    s_uiStreamBufSize = uiStreamBytes < STREAM_BUF_BYTES ? uiStreamBytes : STREAM_BUF_BYTES;
    for (const FormatHooks &stHooks : FormatHookTable)
        if (stHooks.pfCreate != nullptr && stHooks.pfCreate() != 1) return -1;
    return 1;
}

void QuibCaptionParser_Destroy_MemoryBuffers(void)
{
    Free_And_Clear(s_pstTagControlInfo);
    s_uiConvBufSize = 0;
    s_uiStreamBufSize = 0;
    s_uiMaxLineNums = 0;
    s_llCaptionFileSize = 0;
    for (const FormatHooks &stHooks : FormatHookTable)
        if (stHooks.pfDestroy != nullptr) stHooks.pfDestroy();
}

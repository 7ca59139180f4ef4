#include "record/parser_state.h"

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

#include "pump/parser_table.h"

#include "format/ssa/frame_list.h"

const CaptionParser CaptionParserTable[E_CAPTION_FORMAT_NONE] = {
    {HeaderParser_SAMI, FrameParser_SAMI, Seek_SAMI},
    {HeaderParser_SubRip, FrameParser_SubRip, Seek_SubRip},
    {HeaderParser_SubViewer, FrameParser_SubViewer, Seek_SubViewer},
    {HeaderParser_SSA, FrameParser_SSA, Seek_SSA},
};

const FormatHooks FormatHookTable[E_CAPTION_FORMAT_NONE] = {
    {nullptr, nullptr, nullptr},
    {nullptr, nullptr, nullptr},
    {nullptr, nullptr, nullptr},
    {Create_CaptionFrameList, Destroy_CaptionFrameList, QuibCaptionParser_Destroy_SSA_MemoryBuffers},
};

void Forget_Formats()
{
    for (const FormatHooks &stHooks : FormatHookTable)
        if (stHooks.pfForget != nullptr) stHooks.pfForget();
}

#include "pump/parser_table.h"

#include "format/sami/sami_classes.h"
#include "format/ssa/frame_list.h"
#include "record/parser_state.h"

const CaptionParser CaptionParserTable[E_CAPTION_FORMAT_NONE] = {
    {HeaderParser_SAMI, FrameParser_SAMI, Seek_SAMI},
    {HeaderParser_SubRip, FrameParser_SubRip, Seek_SubRip},
    {HeaderParser_SubViewer, FrameParser_SubViewer, Seek_SubViewer},
    {HeaderParser_SSA, FrameParser_SSA, Seek_SSA},
};

const FormatHooks FormatHookTable[E_CAPTION_FORMAT_NONE + 1] = {
    {.apszEnding = {".SMI", ".smi", ".SAMI", ".sami"},
     .pfDestroy = Destroy_SamiBuffers,
     .pfAfterHeader = Clean_SamiClasses,
     .pfRewindClass = Rewind_ClassCursor,
     .pfChooseStream = Choose_EarliestStream},
    {.apszEnding = {".SRT", ".srt"}},
    {.apszEnding = {".SUB", ".sub"}},
    {.apszEnding = {".SSA", ".ssa"},
     .pfCreate = Create_CaptionFrameList,
     .pfDestroy = Destroy_CaptionFrameList,
     .pfForget = QuibCaptionParser_Destroy_SSA_MemoryBuffers},
    {},
};

const FormatHooks &Get_FormatHooks()
{
    return FormatHookTable[s_eCaptionFormat];
}

void Forget_Formats()
{
    for (const FormatHooks &stHooks : FormatHookTable)
        if (stHooks.pfForget != nullptr) stHooks.pfForget();
}

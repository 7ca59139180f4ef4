#include "pump/parser_table.h"

const CaptionParser CaptionParserTable[E_CAPTION_FORMAT_NONE] = {
    {HeaderParser_SAMI, FrameParser_SAMI, Seek_SAMI},
    {HeaderParser_SubRip, FrameParser_SubRip, Seek_SubRip},
    {HeaderParser_SubViewer, FrameParser_SubViewer, Seek_SubViewer},
    {HeaderParser_SSA, FrameParser_SSA, Seek_SSA},
};

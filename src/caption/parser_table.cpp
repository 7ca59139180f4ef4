#include "caption/parser_table.h"

const CaptionParser CaptionParserTable[E_CAPTION_FORMAT_NONE] = {
    {nullptr, nullptr, nullptr}, // SAMI
    {HeaderParser_SubRip, FrameParser_SubRip, Seek_SubRip},
    {nullptr, nullptr, nullptr}, // SubViewer
    {HeaderParser_SSA, FrameParser_SSA, Seek_SSA},
};

// How a file's lines end, and what a box makes of that.
#ifndef ZYRSUB_LINE_ENDS_H
#define ZYRSUB_LINE_ENDS_H

#include "caption_file.h"

struct LineEnds {
    size_t uiCrLf = 0;
    size_t uiLf = 0;            // alone
    size_t uiCr = 0;            // alone
    uint32_t uiBoxCaptions = 0; // that the box reads, which knows only CR LF
};

LineEnds Find_LineEnds(const CaptionFile &stFile, SourceOptions stOptions);

// "LF 19; the box, which reads only CR LF, gets 0 of 4 captions"
std::string Describe_LineEnds(const LineEnds &stEnds, uint32_t uiCaptions);

#endif

/* The formats, as pump and interface know them. */
#pragma once

#include "zyr/quib_caption.h"

/** One row per CaptionFormat, in its order. */
extern const CaptionParser CaptionParserTable[E_CAPTION_FORMAT_NONE];

/** What a format keeps beside the record; NULL = nothing. */
struct FormatHooks {
    int32_t (*pfCreate)(); // make what is there as long as the buffers are. Returns 1, or -1 without memory
    void (*pfDestroy)();   // free that
    void (*pfForget)();    // free what was read of a file
};

/** One row per CaptionFormat, in its order. */
extern const FormatHooks FormatHookTable[E_CAPTION_FORMAT_NONE];

/** Let every format forget what it has read of a file. */
void Forget_Formats();

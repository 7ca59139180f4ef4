/* The formats, as pump and interface know them. */
#pragma once

#include <cstdint>

#include "zyr/quib_caption.h"

/** One row per CaptionFormat, in its order. */
extern const CaptionParser CaptionParserTable[E_CAPTION_FORMAT_NONE];

/** What else a format does in its own way; NULL = nothing. */
struct FormatHooks {
    const char *apszEnding[4] = {}; // of the files that are looked for, in this order
    /** Make what is there as long as the buffers are. @return 1, or -1 without memory */
    int32_t (*pfCreate)() = nullptr;
    /** Free that. */
    void (*pfDestroy)() = nullptr;
    /** Free what was read of a file. */
    void (*pfForget)() = nullptr;
    /** The header has been read: clean up what it has found before streams are made. */
    void (*pfAfterHeader)() = nullptr;
    /** Begin again with the first frame of a class; NULL: there is one class only. */
    void (*pfRewindClass)(uint32_t uiClass) = nullptr;
    /** Make the stream whose frame comes next the current one, and iNextPTS its time; NULL: it is always stream 0. */
    void (*pfChooseStream)() = nullptr;
};

/** One row per CaptionFormat, in its order, and an empty one for E_CAPTION_FORMAT_NONE. */
extern const FormatHooks FormatHookTable[E_CAPTION_FORMAT_NONE + 1];

/** @return the hooks of the open format. */
const FormatHooks &Get_FormatHooks();

/** Let every format forget what it has read of a file. */
void Forget_Formats();

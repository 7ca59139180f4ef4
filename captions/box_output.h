// The outputs of the box that captions can be drawn for.
#pragma once

#include <span>

#include "zyr/zyr_captions.h"

// Settings as the box's own settings program would leave them, and the display's size that follows.
struct BoxOutput {
    ZyrCaptionOutput stOutput;
    const char *pszPlatform;   // ro.board.platform
    const char *pszMode;       // persist.sys.output_mode
    const char *pszSubModeKey; // the property that picks the resolution; NULL when there is no choice
    const char *pszSubMode;    // its value
};

std::span<const BoxOutput> List_BoxOutputs();

// NULL when there is no such output.
const BoxOutput *Find_BoxOutput(const char *pszName);

// The display outputs that captions can be drawn for.
#ifndef ZYRSUB_OUTPUT_MODE_H
#define ZYRSUB_OUTPUT_MODE_H

#include <cstdint>
#include <span>
#include <string>

// Settings as the box's own settings program would leave them, and the display's size that follows.
struct OutputMode {
    const char *pszName;
    const char *pszPlatform;   // ro.board.platform
    const char *pszMode;       // persist.sys.output_mode
    const char *pszSubModeKey; // the property that picks the resolution; NULL when there is no choice
    const char *pszSubMode;    // its value
    uint32_t uiWidth;          // pixels
    uint32_t uiHeight;         // pixels
};

std::span<const OutputMode> List_OutputModes();

// NULL when there is no such output.
const OutputMode *Find_OutputMode(const std::string &strName);

#endif

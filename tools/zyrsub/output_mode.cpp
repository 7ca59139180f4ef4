#include "output_mode.h"

static constexpr const char *HDMI = "persist.sys.hdmi_resolution";
static constexpr const char *COMPOSITE = "persist.sys.composite_mode";
static constexpr const char *COMPONENT = "persist.sys.component_mode";

// Composite is drawn as on the family that shows all its lines; the others show every second one.
// clang-format off
static constexpr OutputMode OUTPUT_MODES[] = {
    // name             platform   mode  property   value  width  height
    {"lcd",             "zyr72xx", "0",  nullptr,   "",    800,   480},
    {"hdmi-1080p",      "zyr72xx", "1",  HDMI,      "0",   1920,  1080},
    {"hdmi-1080i",      "zyr72xx", "1",  HDMI,      "1",   1920,  1080},
    {"hdmi-720p",       "zyr72xx", "1",  HDMI,      "2",   1280,  720},
    {"hdmi-576p",       "zyr72xx", "1",  HDMI,      "15",  720,   576},
    {"hdmi-576i",       "zyr72xx", "1",  HDMI,      "16",  720,   576},
    {"hdmi-480p",       "zyr72xx", "1",  HDMI,      "3",   720,   480},
    {"hdmi-vga",        "zyr72xx", "1",  HDMI,      "4",   640,   480},
    {"composite-ntsc",  "zyr741x", "2",  COMPOSITE, "0",   720,   480},
    {"composite-pal",   "zyr741x", "2",  COMPOSITE, "1",   720,   576},
    {"component-720",   "zyr72xx", "3",  COMPONENT, "0",   1280,  720},
    {"component-1080",  "zyr72xx", "3",  COMPONENT, "1",   1920,  1080},
};
// clang-format on

std::span<const OutputMode> List_OutputModes()
{
    return OUTPUT_MODES;
}

const OutputMode *Find_OutputMode(const std::string &strName)
{
    for (const OutputMode &stMode : OUTPUT_MODES)
        if (strName == stMode.pszName) return &stMode;
    return nullptr;
}

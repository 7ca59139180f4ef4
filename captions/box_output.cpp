#include "box_output.h"

#include <string_view>

namespace
{

constexpr const char *HDMI = "persist.sys.hdmi_resolution";
constexpr const char *COMPOSITE = "persist.sys.composite_mode";
constexpr const char *COMPONENT = "persist.sys.component_mode";

// Composite is drawn as on the family that shows all its lines; the others show every second one.
// clang-format off
constexpr BoxOutput OUTPUTS[] = {
    //name             width  height   platform   mode  property   value
    {{"lcd",             800,  480},  "zyr72xx",  "0",  nullptr,   ""},
    {{"hdmi-1080p",     1920, 1080},  "zyr72xx",  "1",  HDMI,      "0"},
    {{"hdmi-1080i",     1920, 1080},  "zyr72xx",  "1",  HDMI,      "1"},
    {{"hdmi-720p",      1280,  720},  "zyr72xx",  "1",  HDMI,      "2"},
    {{"hdmi-576p",       720,  576},  "zyr72xx",  "1",  HDMI,      "15"},
    {{"hdmi-576i",       720,  576},  "zyr72xx",  "1",  HDMI,      "16"},
    {{"hdmi-480p",       720,  480},  "zyr72xx",  "1",  HDMI,      "3"},
    {{"hdmi-vga",        640,  480},  "zyr72xx",  "1",  HDMI,      "4"},
    {{"composite-ntsc",  720,  480},  "zyr741x",  "2",  COMPOSITE, "0"},
    {{"composite-pal",   720,  576},  "zyr741x",  "2",  COMPOSITE, "1"},
    {{"component-720",  1280,  720},  "zyr72xx",  "3",  COMPONENT, "0"},
    {{"component-1080", 1920, 1080},  "zyr72xx",  "3",  COMPONENT, "1"},
};
// clang-format on

} // namespace

std::span<const BoxOutput> List_BoxOutputs()
{
    return OUTPUTS;
}

const BoxOutput *Find_BoxOutput(const char *pszName)
{
    const std::string_view strName = pszName;
    for (const BoxOutput &stOutput : OUTPUTS)
        if (strName == stOutput.stOutput.pszName) return &stOutput;
    return nullptr;
}

int zyrCaptions_getOutput(uint32_t uiIndex, ZyrCaptionOutput *pstOutput)
{
    if (pstOutput == nullptr) return ZYR_CAPTIONS_BAD_ARGUMENT;
    *pstOutput = {};
    if (uiIndex >= std::size(OUTPUTS)) return ZYR_CAPTIONS_BAD_ARGUMENT;
    *pstOutput = OUTPUTS[uiIndex].stOutput;
    return ZYR_CAPTIONS_OK;
}

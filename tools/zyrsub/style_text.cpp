#include "style_text.h"

#include <cstdio>

struct DisplayModeRow {
    uint32_t uiBit;
    const char *pszName;
};
static constexpr DisplayModeRow DISPLAY_MODES[] = {
    {0x0002, "underline"}, {0x0004, "bold"}, {0x0008, "italic"}, {0x0010, "left"},   {0x0020, "center"},
    {0x0040, "right"},     {0x0080, "h1"},   {0x0100, "h2"},     {0x0200, "h3"},     {0x0400, "h4"},
    {0x0800, "h5"},        {0x1000, "h6"},   {0x2000, "top"},    {0x4000, "middle"},
};

std::vector<std::string> List_DisplayModes(uint32_t uiDisplayMode)
{
    std::vector<std::string> astrNames;
    for (const DisplayModeRow &stRow : DISPLAY_MODES)
        if ((uiDisplayMode & stRow.uiBit) != 0) astrNames.emplace_back(stRow.pszName);
    return astrNames;
}

std::string Format_Color24(uint32_t uiColor)
{
    char szColor[16];
    std::snprintf(szColor, sizeof szColor, "#%06X", uiColor & 0xFFFFFFU);
    return szColor;
}

std::string Format_Color(uint16_t usColor)
{
    const uint32_t uiRed = usColor >> 11;
    const uint32_t uiGreen = (usColor >> 5) & 0x3FU;
    const uint32_t uiBlue = usColor & 0x1FU;
    return Format_Color24((uiRed << 3 | uiRed >> 2) << 16 | (uiGreen << 2 | uiGreen >> 4) << 8 |
                          (uiBlue << 3 | uiBlue >> 2));
}

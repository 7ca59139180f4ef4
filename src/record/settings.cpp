// Settings of the host: what every frame starts with.

#include "record/parser_state.h"

namespace
{

constexpr uint32_t ONLY_FONT_HEIGHT = 16;

} // namespace

int32_t QUIBCAPT_SetFontHeight(uint32_t uiHeight)
{
    if (uiHeight != ONLY_FONT_HEIGHT) return -3;
    s_uiFontHeight = uiHeight;
    return 1;
}

uint32_t QUIBCAPT_GetFontHeight(void)
{
    return s_uiFontHeight;
}

void QUIBCAPT_SetFontColor(uint32_t uiColor)
{
    s_uiFontColor = uiColor;
}

uint32_t QUIBCAPT_GetFontColor(void)
{
    return s_uiFontColor;
}

void QUIBCAPT_SetFontEdgeColor(uint32_t uiColor)
{
    s_uiFontEdgeColor = uiColor;
}

uint32_t QUIBCAPT_GetFontEdgeColor(void)
{
    return s_uiFontEdgeColor;
}

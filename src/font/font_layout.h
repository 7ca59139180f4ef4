/* What the layout shares with the display and with tests beside its public calls. */
#pragma once

#include "zyr/zyr_font.h"

/* Most lines of a string that are measured or drawn: entries of the caller's array of line widths. */
constexpr uint32_t MAX_LINE_NUMS = 60;

/** Turn the anchored position of a character cell into its top-left corner, not below 0. */
void zyr_font_getCharPosition(uint32_t *puiX, uint32_t *puiY);

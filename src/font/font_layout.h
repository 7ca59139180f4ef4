/* The cell geometry's internal side, and the limit that both string walks share. */
#ifndef ZYR_FONT_LAYOUT_H
#define ZYR_FONT_LAYOUT_H

#include "zyr/zyr_font.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Turn the anchored position of a character cell into its top-left corner, not below 0. */
void zyr_font_getCharPosition(uint32_t *puiX, uint32_t *puiY);

#ifdef __cplusplus
}
#endif

#endif

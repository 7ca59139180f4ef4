/* What the layout asks of the FreeType layer beside its public calls. */
#pragma once

#include "zyr/zyr_font.h"

/**
 * Measure a character as zyr_fontFT_drawChar() will draw it: a character that the face lacks is as wide as
 * the missing-glyph shape.
 *
 * @return the advance in whole pixels, 0 for a character that cannot be loaded
 */
uint32_t zyr_fontFT_measureChar(uint32_t uiCode);

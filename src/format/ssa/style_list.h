/*
 * The SSA styles: the list that the record heads, in file order, and a look-up by the beginning of a name.
 *
 * The nodes stand in one array, which moves as it grows: nobody keeps a style while some are added. The look-up
 * halves an index that is made once, when the header has been read; without one it walks the list.
 * QuibCaptionParser_Destroy_SSA_MemoryBuffers() frees all of it.
 */
#pragma once

#include <cstdint>

#include "zyr/quib_caption.h"

/** Put a copy of a style at the end of the record's list. @return 1, or -1: no memory, or 4,096 are
 * there. */
int32_t Add_SSAStyleInfo(const SSAStyleInfo *pstStyle);

/** Make the look-up index of all styles added so far. */
void Index_Styles();

/**
 * Find the first style, in file order, whose name begins with a text; case matters.
 *
 * @param[in] uiLen  units of the text; of more than ZYR_SSA_NAME_UNITS the rest is not looked at, and 0 is
 *                   the beginning of every name
 * @return the style, or NULL
 */
const SSAStyleInfo *Find_Style(const uint16_t *pusText, uint32_t uiLen);

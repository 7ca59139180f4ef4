/* The formats, as the frame pump knows them. */
#pragma once

#include "zyr/quib_caption.h"

/** One row per CaptionFormat, in its order. */
extern const CaptionParser CaptionParserTable[E_CAPTION_FORMAT_NONE];

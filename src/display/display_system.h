/* What the output system and the device agree on. */
#pragma once

#include "zyr/zyr_display.h"

/* Pixels of 16 bits that one drawing buffer holds; the caption box never has more. */
constexpr uint32_t CAPTION_BUFFER_PIXELS = 1047896;

/* The frame pump: QUIB_CAPTION_* are declared in zyr/quib_caption.h. */
#pragma once

/** Make everything ready for parsing a frame: style, lines, output block, and the stream that comes next. */
void Prepare_CaptionFrame();

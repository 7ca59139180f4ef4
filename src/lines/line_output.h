/* From decoded text to output lines, and from those to the output text. */
#pragma once

#include <cstdint>

/** Convert_CaptionStringToBitmap() while the stream is known to be ready. */
void Lay_Out_Text();

/** Display_LineBitmapDataToDisplayBuffer() while the stream is known to be ready. */
void Show_StreamLines();

/** Close the current output line, as a line break in the text does. An empty line is never closed. */
void Break_OutputLine();

/** Close the last line of a frame: its trailing blanks go, and it counts if anything is left. */
void Close_LastLine();

/** Fix the number and lengths of a stream's lines once its frame is complete. */
void Finish_CaptionLines(uint32_t uiStream);

/** Empty the output block but for its stream index. */
void Clear_OutputBlock();

/** Empty a stream's line table for the next frame. */
void Clear_LineTable(uint32_t uiStream);

/* Streams: which class each reads, and the buffers it needs for that. */
#pragma once

#include <cstdint>

/** Let a stream read a class from its first frame on. */
void Point_Stream(uint32_t uiStream, uint32_t uiClass);

/** Make a stream's line buffer. @return false without memory (logged). */
bool Allocate_LineBuffer(uint32_t uiStream);

/** Make a stream's read buffer, unless it has one. @return false without memory (logged). */
bool Allocate_ReadBuffer(uint32_t uiStream);

/** Free a stream's buffers. */
void Release_Stream(uint32_t uiStream);

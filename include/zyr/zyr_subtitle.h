/*
 * Subtitles beside a movie: what a media player calls.
 *
 *     zyrSubtitle_open()       find and open the subtitle file of a movie
 *     zyrSubtitle_getFrame()   the next caption, again and again, in time order
 *     zyrSubtitle_seek()       go on from another time
 *     zyrSubtitle_close()      done
 *
 * Rules for every call here:
 *
 *  1. One subtitle is open at a time, and one thread calls; the engine keeps no lock.
 *  2. Results are 0 for success, 1 for failure, 2 for a bad argument, unless a call says otherwise.
 *  3. After a failure the out pointers hold what they held before, unless a call says otherwise.
 *  4. Calls while nothing is open are harmless.
 *  5. Times are milliseconds from the start of the movie.
 */
#ifndef ZYR_SUBTITLE_H
#define ZYR_SUBTITLE_H

#include <stdint.h>

#include "zyr/zyr_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Open the subtitle file beside a movie: same folder and base name, with the first of the extensions .SMI,
 * .smi, .SAMI, .sami, .SRT, .srt, .SUB, .sub, .SSA, .ssa that exists. The movie itself is not touched and
 * need not exist. A subtitle that is open is closed first.
 *
 * @param[in] pszMovieFileName  the movie's path, up to 508 bytes before its last dot. What stands before that
 *                              dot is the base name; where the movie's own name has none, a dot in a folder's
 *                              name counts as the last: for a.b/film that is a. A path without dots counts whole
 * @param[in] iOpenOption       1: every byte of a code-page file is one character; any other value:
 *                              double-byte characters are recognised
 *
 * @return 0  open; close it with zyrSubtitle_close()
 *         1  no subtitle file, or one that cannot be read; nothing is open
 *         2  the name is NULL; what was open stays open
 */
ZYR_API uint32_t zyrSubtitle_open(const char *pszMovieFileName, int32_t iOpenOption);

/** Close the subtitle and free everything that belongs to it. @return 0. */
ZYR_API uint32_t zyrSubtitle_close(void);

/**
 * Deliver the next caption frame; with several streams, the earliest one pending.
 *
 * @param[out] puiStreamIndex  stream of the frame, 0..4; may be NULL
 * @param[out] piStartTime     shown from, ms
 * @param[out] piEndTime       shown until, ms; 0x7FFFFFFF when the file does not tell
 * @param[out] puiLineNums     number of text lines, 0..6
 * @param[out] puiTextLength   bytes of text, 0..2046; the closing zero bytes are not counted
 * @param[out] ppucText        the lines joined by newlines, in the character set that
 *                             zyrSubtitle_getOutputTextCharacterSet() tells, and at least two zero bytes
 *
 * @return 0  a frame was delivered
 *         1  no frame: end of the subtitle, parse error, or nothing open; nothing is written
 *         2  one of the last five pointers is NULL; nothing is parsed or written
 *
 * The end of the subtitle stays the end until a seek.
 *
 * Ownership: *ppucText belongs to the engine. It is valid until the next zyrSubtitle_getFrame() or
 * zyrSubtitle_close(); copy it to keep it, never free it.
 */
ZYR_API uint32_t zyrSubtitle_getFrame(uint32_t *puiStreamIndex, int32_t *piStartTime, int32_t *piEndTime,
                                      uint32_t *puiLineNums, uint32_t *puiTextLength, uint8_t **ppucText);

/**
 * Go on from another time. Which frame comes next differs by format: for SubRip and SubViewer the last one
 * that starts at or before the time, for SAMI the first that starts at or after it, for SSA the first after
 * it (forward) or the last before it (backward). A time of 0 is the start of the file everywhere.
 *
 * @param[in] uiTimeMs  the time, ms
 * @return 0  done, also when nothing is open
 *         1  the file could not be read there
 */
ZYR_API uint32_t zyrSubtitle_seek(uint32_t uiTimeMs);

/**
 * @return character set of the delivered text: 1 the file's own code page (a unit above 0xFF or with bit 7
 *         set is two bytes, high byte first), 2 UTF-16 in host byte order, 3 UTF-8; 0 when nothing is open
 */
ZYR_API uint32_t zyrSubtitle_getOutputTextCharacterSet(void);

/**
 * Tell how many language classes the file has: 1 for every format but SAMI.
 *
 * @param[out] puiClassNums  1..7
 * @return 0 told; 1 nothing is open; 2 the pointer is NULL
 */
ZYR_API uint32_t zyrSubtitle_getClassNums(uint32_t *puiClassNums);

/**
 * Tell the name of a language class, as the file writes it but in upper case.
 *
 * @param[in]  uiClassIndex   0 .. number of classes - 1
 * @param[out] ppszClassName  the name in UTF-8, up to 29 bytes; empty for the class of frames without a class
 * @return 0 told; 1 nothing is open, or no such class; 2 the pointer is NULL
 *
 * Ownership: *ppszClassName belongs to the engine and is valid until the next call of this function or the
 * close.
 */
ZYR_API uint32_t zyrSubtitle_getClassName(uint32_t uiClassIndex, char **ppszClassName);

/**
 * Choose the language classes to read, up to 5, each becoming a stream in the given order. After the open the
 * first five classes are chosen. The new streams begin at their classes' first frames.
 *
 * Indexes that name no class, and repeated ones, are passed over; when none is left, no frame is delivered
 * until another choice. With fewer than 2 classes in the file there is nothing to choose and nothing changes.
 *
 * @param[in] iClassCount      number of indexes, 1 or more
 * @param[in] puiClassIndexes  the indexes
 * @return 0  done
 *         1  nothing is open, or no memory: the streams set up so far can be read
 *         2  the count is 0 or negative, or the pointer is NULL; nothing changes
 */
ZYR_API uint32_t zyrSubtitle_selectClass(int32_t iClassCount, const uint32_t *puiClassIndexes);

/* ---- The handler behind the calls above, for hosts that drive the engine themselves
 * ------------------------- */

/** Open the subtitle beside a movie into the record of QUIB_CAPTION_Open(). @return 0; 1 failure; -1 no line
 * buffer. */
ZYR_API int32_t zyrSubtitleHandler_searchExternalSubtitle(const char *pszMovieFileName, int32_t iOpenOption);

/** Copy the output block out. @return 0; 1 nothing is open; 2 one of the last five pointers is NULL. */
ZYR_API uint32_t zyrSubtitleHandler_getFrameInfo(uint32_t *puiStreamIndex, int32_t *piStartTime,
                                                 int32_t *piEndTime, uint32_t *puiLineNums,
                                                 uint32_t *puiTextLength, uint8_t **ppucText);

/** @return as zyrSubtitle_getOutputTextCharacterSet(). */
ZYR_API uint32_t zyrSubtitleHandler_getOutputTextCharacterSet(void);

/** @return number of classes, 0 when nothing is open. */
ZYR_API uint32_t zyrSubtitleHandler_getClassNums(void);

/** @return 0; 1 nothing is open; 2 no such class, or the pointer is NULL. */
ZYR_API uint32_t zyrSubtitleHandler_getClassName(uint32_t uiClassIndex, char **ppszClassName);

/** @return 0; 1 nothing is open; 2 count below 1 or a NULL pointer; 3 no memory. */
ZYR_API uint32_t zyrSubtitleHandler_selectClass(int32_t iClassCount, const uint32_t *puiClassIndexes);

#ifdef __cplusplus
}
#endif

#endif

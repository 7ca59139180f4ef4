/* Captions on the display.
 *
 *  1. One caption layer, one player: every call comes from one thread at a time. Nothing here starts a thread
 *     or takes a lock.
 *  2. zyr_display_open() comes first, zyr_display_close() last. Calls on a closed display are refused with a
 *     code.
 *  3. Strings are UTF-16 units that end with a 0 unit. They are read during the call and never kept.
 *  4. Sizes and positions are pixels of the display; x runs to the right, y downwards.
 *  5. Results: 0 is success. -1 general failure, -2 invalid argument, -4 no caption memory, -7 no caption
 *     device. Every failure is also written to the system log, at priority 6 and without a tag.
 */
#ifndef ZYR_DISPLAY_H
#define ZYR_DISPLAY_H

#include <stdint.h>

#include "zyr/zyr_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Read the output settings, open the caption device, map its memory and load the font.
 *
 * The settings are read here and only here: a change of output takes effect at the next open. An open display
 * is closed first.
 *
 * @return 0   ready; nothing is shown yet
 *         -1  the chip family or the output mode is unknown, or the font cannot be loaded
 *         -4  the caption memory is unknown or cannot be mapped
 *         -7  the caption device cannot be opened
 * After a failure nothing stays open.
 */
ZYR_API int32_t zyr_display_open(void);

/**
 * Switch the caption layer off and give everything back. Closing what is not open does no harm; the log then
 * says what was missing.
 *
 * @return 0
 */
ZYR_API int32_t zyr_display_close(void);

/**
 * Show or hide the caption layer; its content stays.
 *
 * @param[in] iOn  0 hides, any other value shows
 *
 * @return 0   the device was told
 *         -7  not open
 */
ZYR_API int32_t zyr_display_setOnoff(int32_t iOn);

/**
 * Choose the size of the next strings, as a step above the default of the output in use: 24 pixels, 28 for
 * outputs of 1280 columns, 32 for 1920.
 *
 * @param[in] uiSize  28, 32, 36 or 40: 4, 8, 12 or 16 pixels above the default; any other value: the default
 *
 * @return 0
 *
 * Before the first call captions are 32 pixels high. Call it while the display is open: a closed one has a
 * default of 0, with which nothing can be drawn.
 */
ZYR_API int32_t zyr_display_setFontSize(uint32_t uiSize);

/**
 * Move the caption, also the one being shown, which keeps its buffer and size.
 *
 * @param[in] uiPosition  pixels from the display's bottom edge up to the caption's; 16 at first
 *
 * @return 0   the device was told
 *         -4  no caption memory
 *         -7  not open
 */
ZYR_API int32_t zyr_display_setPosition(uint32_t uiPosition);

/**
 * Show nothing: an empty square of 32 x 32 pixels takes the caption's place.
 *
 * @return 0   the device was told
 *         -4  no caption memory
 *         -7  not open
 */
ZYR_API int32_t zyr_display_clearString(void);

/**
 * Show a string in place of the one before, centred above the bottom of the display.
 *
 * Lines end at a newline, and after the character with which they reach the width of the output; such a line
 * is tightened to fit. There are at most 60 lines, and no more rows than a buffer of 1,047,896 pixels holds
 * at the string's width; what is below is cut off.
 *
 * @param[in] pusString  the text, ended by a 0 unit
 * @param[in] iLength    units to show, newlines included. More than the string has hides its last line unless
 *                       a newline ends that; 0 or less shows an empty box
 *
 * @return 0   shown
 *         -2  pusString is NULL; the display stays as it is
 *         -4  no caption memory
 *         -7  not open
 */
ZYR_API int32_t zyr_display_displayString(const uint16_t *pusString, int32_t iLength);

/**
 * Read the output settings and work out the display area, the caption buffer and the font size.
 * zyr_display_open() does this.
 *
 * @return 0   known; an invalid resolution of a known output leaves all sizes 0
 *         -1  unknown chip family or output mode
 */
ZYR_API int32_t zyr_display_system_init(void);

/** Forget the output settings: all sizes are 0 from now on. @return 0 */
ZYR_API int32_t zyr_display_system_exit(void);

/**
 * Tell the region of the output in use. Any pointer may be NULL: that value is not stored.
 *
 * @param[out] puiLcdc        display controller of the caption layer, 0 or 1
 * @param[out] puiDispWidth   area that captions are placed in, pixels
 * @param[out] puiDispHeight
 * @param[out] puiSubWidth    caption buffer, pixels
 * @param[out] puiSubHeight
 *
 * @return 0
 */
ZYR_API int32_t zyr_display_system_getRegion(uint32_t *puiLcdc, uint32_t *puiDispWidth,
                                             uint32_t *puiDispHeight, uint32_t *puiSubWidth,
                                             uint32_t *puiSubHeight);

/** @return default font size of the output in use, pixels: 24, 28, 32, or 0 when the sizes are not known */
ZYR_API uint32_t zyr_display_system_getFontSize(void);

/**
 * Estimate the box of a string, taking every character for a square.
 *
 * The result pointers may be NULL; after a failure the values are 0.
 *
 * @param[in]  pusString  the text, ended by a 0 unit
 * @param[in]  uiLength   0 is refused; beyond that the string's own end counts
 * @param[in]  iFontSize  side of the square in pixels, 1 up to the display's width and height
 * @param[out] piX        place of the box, centred at the bottom of the display, pixels
 * @param[out] piY
 * @param[out] piWidth    size of the box, pixels; not higher than the display
 * @param[out] piHeight
 *
 * @return 0   estimated
 *         -1  no string, or a font size that does not fit
 */
ZYR_API int32_t zyr_display_system_calcRegion(const uint16_t *pusString, uint32_t uiLength, int32_t iFontSize,
                                              int32_t *piX, int32_t *piY, int32_t *piWidth,
                                              int32_t *piHeight);

#ifdef __cplusplus
}
#endif

#endif

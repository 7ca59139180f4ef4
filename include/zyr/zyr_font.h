/* Text in a buffer of 16-bit pixels.
 *
 * Three families, each on top of the next: zyr_font_* lays out strings and character cells, zyr_fontFT_*
 * measures and renders single characters of the one font, zyr_fontDraw_* writes pixels. A program normally
 * uses zyr_font_* alone.
 *
 *  1. There is one font and one destination. Every call comes from one thread at a time.
 *  2. zyr_font_init() comes first and starts all three families; zyr_font_close() is last.
 *  3. Pixels are written as the 16-bit numbers given as colours, whatever they mean to the display.
 *  4. Pixel (x, y) of the destination is element y * pitch + x of the buffer; the pitch counts pixels, not
 *     bytes. Nothing is ever written outside the region of width x height pixels; what lies outside is cut
 *     off. Coordinates are taken as signed 32-bit numbers: 0xFFFFFFFF is the column left of the region.
 *  5. Buffers, strings and bitmaps belong to the caller. Only the destination buffer is kept, until
 *     zyr_fontDraw_close() or until another one is set.
 *  6. Results: 0 or a non-negative advance is success. -1 general failure, -2 invalid argument, -3 no region
 *     to read or draw in, -4 glyph not rendered, -5 glyph beyond the region's right edge. Failures of
 *     zyr_font_* and zyr_fontDraw_* are also written to the system log, at priority 6 and without a tag.
 */
#ifndef ZYR_FONT_H
#define ZYR_FONT_H

#include <stdint.h>

#include "zyr/zyr_export.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Open the font and reset the destination: no buffer, no region, colours 0.
 *
 * @return 0   ready; set buffer, region, colours and size before drawing
 *         -1  the font cannot be opened
 */
ZYR_API int32_t zyr_font_init(void);

/** Close the font and forget the buffer. @return 0, or -1 when the font was not open */
ZYR_API int32_t zyr_font_close(void);

/** Set the destination buffer. @return 0, or -2 for NULL (the buffer before stays) */
ZYR_API int32_t zyr_font_setDestBuf(uint16_t *pusBuf);

/** Set the destination region, all in pixels. @return 0, or -2 if any is 0 (the region before stays) */
ZYR_API int32_t zyr_font_setDestRegion(uint32_t uiWidth, uint32_t uiHeight, uint32_t uiPitch);

/** Tell the destination region, all in pixels; 0 before one is set. @return 0, or -3 if a pointer is NULL */
ZYR_API int32_t zyr_font_getDestRegion(uint32_t *puiWidth, uint32_t *puiHeight, uint32_t *puiPitch);

/** Fill pitch x height pixels with a colour. @return 0, or -1 without a buffer */
ZYR_API int32_t zyr_font_clearDestBuf(uint16_t usColor);

/**
 * Set the colours.
 *
 * @param[in] usFontColor    glyphs, underline and box lines
 * @param[in] usSecondColor  kept, not drawn
 * @param[in] usBGColor      background of character cells, and the trimmed corners of boxes
 * @param[in] usFourthColor  kept, not drawn
 *
 * @return 0
 */
ZYR_API int32_t zyr_font_setFontColor(uint16_t usFontColor, uint16_t usSecondColor, uint16_t usBGColor,
                                      uint16_t usFourthColor);

/**
 * Set how character cells are written. It counts for the next zyr_font_setFontSize() too.
 *
 * @param[in] uiDirection  0 horizontal, any other value vertical: spacings and advances swap axes
 * @param[in] uiAlign      what a cell's position means: 1 x is its horizontal centre, 2 y is its bottom,
 *                         any other value its top left corner
 *
 * @return 0
 */
ZYR_API int32_t zyr_font_setDirection(uint32_t uiDirection, uint32_t uiAlign);

/**
 * Set the size of glyphs and of the cells they stand in.
 *
 * @param[in] uiMode      0 normal, 1 half (width, or height in vertical writing), 2 quarter (both),
 *                        3 double width, 4 double height, 5 both doubled
 * @param[in] uiWidth     of a normal glyph, pixels
 * @param[in] uiHeight    of a normal glyph, pixels
 * @param[in] uiSpacingX  added to the cell's width, pixels; the glyph stands in the middle
 * @param[in] uiSpacingY  added to the cell's height, pixels
 *
 * @return 0   set
 *         -1  the font refuses the size
 *         -2  width or height 0, before or after the mode is applied, or an unknown mode
 */
ZYR_API int32_t zyr_font_setFontSize(uint32_t uiMode, uint32_t uiWidth, uint32_t uiHeight,
                                     uint32_t uiSpacingX, uint32_t uiSpacingY);

/**
 * Measure the lines that zyr_font_displayString() draws in a region as wide as the present one.
 *
 * A line ends at a newline, or after the character with which it reaches the region's width; a newline that
 * stands right there belongs to that break. The last unit ends the last line, which is an empty one if that
 * unit just filled a line. Measuring stops after 60 lines.
 *
 * @param[in]  pusString     the text, ended by a 0 unit
 * @param[in]  iLength       units to take, newlines included; 0 or less takes none. A newline does not end the
 *                           walk by itself: the unit behind it is still taken. Where the string ends before
 *                           the length, its last line counts only if a newline ends it
 * @param[in]  uiLineHeight  pixels
 * @param[out] puiWidth      widest line in pixels, at most the region's width; may be NULL
 * @param[out] puiHeight     lines x uiLineHeight; may be NULL
 * @param[out] puiLineWidth  room for 60 widths in pixels, one per line, as measured; entries past the last
 *                           line are not written; may be NULL
 *
 * @return 0   measured
 *         -2  pusString is NULL; nothing is written
 *         -3  the region cannot be read
 */
ZYR_API int32_t zyr_font_calcRegion(const uint16_t *pusString, int32_t iLength, uint32_t uiLineHeight,
                                    uint32_t *puiWidth, uint32_t *puiHeight, uint32_t *puiLineWidth);

/**
 * Draw measured lines, each centred in the region, from its top downwards.
 *
 * A line measured wider than the region is tightened evenly, so that its last character ends at the region's
 * edge. A character that cannot be drawn leaves a gap of its own width.
 *
 * @param[in] pusString     as for zyr_font_calcRegion()
 * @param[in] iLength       as for zyr_font_calcRegion()
 * @param[in] puiLineWidth  60 widths as zyr_font_calcRegion() stored them, the rest 0
 * @param[in] uiLineHeight  pixels from one line to the next
 *
 * @return 0   drawn
 *         -2  pusString or puiLineWidth is NULL
 *         -3  the region cannot be read
 */
ZYR_API int32_t zyr_font_displayString(const uint16_t *pusString, int32_t iLength,
                                       const uint32_t *puiLineWidth, uint32_t uiLineHeight);

/**
 * Draw one character cell: background, glyph, lines.
 *
 * @param[in] uiAttr        box lines 0x01 bottom, 0x02 right, 0x04 top, 0x08 left; 0x20 underline;
 *                          0x10 leaves the glyph out
 * @param[in] usNonSpacing  a character drawn beneath the other at the same place; 0 for none
 * @param[in] usChar        the character
 * @param[in] uiX           position of the cell, see zyr_font_setDirection()
 * @param[in] uiY
 *
 * @return the advance in pixels: the glyph's height in vertical writing, else its width, without spacing; or
 *         the negative result of zyr_fontFT_drawChar() for usChar, with the background drawn
 */
ZYR_API int32_t zyr_font_displayChar(uint32_t uiAttr, uint16_t usNonSpacing, uint16_t usChar, uint32_t uiX,
                                     uint32_t uiY);

/** Draw the background of one character cell; uiAttr is not used. @return as zyr_font_displayChar() */
ZYR_API int32_t zyr_font_clearChar(uint32_t uiAttr, uint32_t uiX, uint32_t uiY);

/** Open the font file; a font that is open is closed first. @return 0, or -1 when that fails */
ZYR_API int32_t zyr_fontFT_init(void);

/** Close the font. @return 0, or -1 when it was not open */
ZYR_API int32_t zyr_fontFT_close(void);

/**
 * Set the pixel size of the font and with it the baseline.
 *
 * @return 0   set
 *         -1  no font, a font without height, or a size that FreeType refuses: with equal sides, below 6 and
 *             above 2172 pixels. The size of before may be lost; the baseline stays
 *         -2  width or height is 0; the size before stays
 */
ZYR_API int32_t zyr_fontFT_setFontSize(uint32_t uiWidth, uint32_t uiHeight);

/** @return a character's advance in whole pixels, rounded down; -1 if the font lacks it or cannot load it */
ZYR_API int32_t zyr_FontFT_getAdvanceX(uint32_t uiCode);

/**
 * Tell the size in force.
 *
 * @param[in]  uiCode     a character that the font must have
 * @param[out] puiWidth   pixels per em, across; may be NULL
 * @param[out] puiHeight  pixels per em, down; may be NULL
 *
 * @return 0, or -1 (nothing is written) as for zyr_FontFT_getAdvanceX()
 */
ZYR_API int32_t zyr_FontFT_getRealFontSize(uint32_t uiCode, uint32_t *puiWidth, uint32_t *puiHeight);

/**
 * Draw one character; the font's missing-glyph shape stands in for one that it lacks.
 *
 * @param[in] uiAttr  0x10: nothing is drawn, only the advance is given; other bits are not used
 * @param[in] uiCode  UTF-16 unit, taken as a code point
 * @param[in] uiX     pen position in the destination, pixels
 * @param[in] uiY     top of the character's cell, pixels
 *
 * @return the advance in whole pixels; -4 if the glyph cannot be loaded or rendered; or a negative result of
 *         zyr_fontDraw_drawBitmapMono()
 */
ZYR_API int32_t zyr_fontFT_drawChar(uint32_t uiAttr, uint32_t uiCode, uint32_t uiX, uint32_t uiY);

/** Reset the destination: no buffer, no region, colours 0. @return 0 */
ZYR_API int32_t zyr_fontDraw_init(void);

/** Forget the buffer. @return 0 */
ZYR_API int32_t zyr_fontDraw_close(void);

/** As zyr_font_setDestBuf(). */
ZYR_API int32_t zyr_fontDraw_setDestBuf(uint16_t *pusBuf);

/** As zyr_font_setDestRegion(). */
ZYR_API int32_t zyr_fontDraw_setDestRegion(uint32_t uiWidth, uint32_t uiHeight, uint32_t uiPitch);

/** @return the destination buffer, NULL when there is none */
ZYR_API uint16_t *zyr_fontDraw_getDestBuf(void);

/** Tell the destination region, all in pixels; 0 before one is set. @return 0, or -2 if a pointer is NULL */
ZYR_API int32_t zyr_fontDraw_getDestRegion(uint32_t *puiWidth, uint32_t *puiHeight, uint32_t *puiPitch);

/** As zyr_font_setFontColor(). */
ZYR_API int32_t zyr_fontDraw_setFontColor(uint16_t usFontColor, uint16_t usSecondColor, uint16_t usBGColor,
                                          uint16_t usFourthColor);

/** As zyr_font_clearDestBuf(). */
ZYR_API int32_t zyr_fontDraw_clearDestBuf(uint16_t usColor);

/** Fill a rectangle with the background colour. @return 0, or -2 if a side is 0 or there is no buffer */
ZYR_API int32_t zyr_fontDraw_clearFontBG(uint32_t uiX, uint32_t uiY, uint32_t uiWidth, uint32_t uiHeight);

/**
 * Draw lines of a box in the font colour. The bottom line runs two rows above the rectangle's last row, the
 * right line two columns left of its last column; top and bottom line end at the right line.
 *
 * @param[in] uiFlags  0x01 bottom, 0x02 right, 0x04 top, 0x08 left
 *
 * @return 0   drawn; a box under 3 x 3 pixels has no lines
 *         -2  a side is 0, or there is no buffer
 */
ZYR_API int32_t zyr_fontDraw_drawHighlighting(uint32_t uiX, uint32_t uiY, uint32_t uiWidth, uint32_t uiHeight,
                                              uint32_t uiFlags);

/** Draw a rectangle's last row in the font colour. @return 0, or -2 if a side is 0 or there is no buffer */
ZYR_API int32_t zyr_fontDraw_drawUnderline(uint32_t uiX, uint32_t uiY, uint32_t uiWidth, uint32_t uiHeight);

/**
 * Draw a bitmap of 1 bit a pixel: set bits in the font colour, the pixels of clear bits stay as they are.
 *
 * @param[in] iX       column of the bitmap's left edge, may be negative
 * @param[in] iY       row of its top edge, may be negative
 * @param[in] uiWidth  pixels
 * @param[in] uiRows   pixels
 * @param[in] iPitch   bytes from one row of the bitmap to the next
 * @param[in] pucBits  the first row; the top bit of a byte is its leftmost pixel
 *
 * @return 0   drawn, as far as it is inside the region
 *         -2  there is something to draw, but pucBits is NULL
 *         -3  no buffer or no region
 *         -5  iX + uiWidth is beyond the region's right edge; nothing is drawn
 */
ZYR_API int32_t zyr_fontDraw_drawBitmapMono(int32_t iX, int32_t iY, uint32_t uiWidth, uint32_t uiRows,
                                            int32_t iPitch, const uint8_t *pucBits);

#ifdef __cplusplus
}
#endif

#endif

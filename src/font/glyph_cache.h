/* The glyphs seen before: what FreeType made of a character at a size, kept so that it is made only once.
 *
 * One block of memory, taken when the font opens and given back when it closes. A cache that is full starts
 * over empty: the caption on screen, its neighbours and both sizes in use fill a small part of it.
 */
#pragma once

#include <cstdint>

/* One character, measured and rendered. */
struct FontGlyph {
    int32_t iAdvance; // whole pixels
    int32_t iLeft;    // from the pen to the bitmap's first column, pixels
    int32_t iTop;     // from the baseline up to the bitmap's first row, pixels
    uint32_t uiWidth; // of the bitmap, pixels
    uint32_t uiRows;
    int32_t iPitch;         // bytes from one row to the next
    const uint8_t *pucBits; // 1 bit a pixel, first pixel in the top bit; not owned
    bool bInFace;           // false: the face lacks the character and its missing-glyph shape stands in
    bool bMono;             // a 1-bit bitmap; any other kind is not drawn and comes without pucBits
};

/** Take the memory. Without it nothing is kept and nothing is found. */
void Open_GlyphCache();

/** Forget every glyph and give the memory back. */
void Close_GlyphCache();

/** Forget every glyph. */
void Clear_GlyphCache();

/** @return the glyph stored under this key, valid until the next call that stores or clears; or NULL. */
const FontGlyph *Find_Glyph(uint64_t ullKey);

/** Keep a copy of a glyph, bits included, unless it is too large for the cache. */
void Store_Glyph(uint64_t ullKey, const FontGlyph &stGlyph);

#include "font/font_ft.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include "font/glyph_cache.h"
#include "zyr_ccfb.h"

constexpr uint32_t ATTR_GREY = 0x10; // render 8-bit grey, which is measured but not drawn

/* Glyphs of faces up to this size are kept; larger ones would soon push each other out. */
constexpr uint32_t MAX_CACHED_SIZE = 256;

static FT_Library g_ftLibrary;
static FT_Face g_ftFace;
static uint32_t g_uiBaseline; // pixels from the top of a cell down to the baseline

/* The pixel size that FreeType was last given, both 0 while it is not known for sure: before the first size,
 * and after a failed change, which may have left the face half-way. */
static uint32_t g_uiFaceWidth;
static uint32_t g_uiFaceHeight;

static void Forget_FaceSize()
{
    g_uiFaceWidth = g_uiFaceHeight = 0;
}

static int32_t Release_FreeType()
{
    const FT_Error iFaceError = FT_Done_Face(g_ftFace);
    const FT_Error iLibraryError = FT_Done_FreeType(g_ftLibrary);
    g_ftFace = nullptr;
    g_ftLibrary = nullptr;
    return iFaceError != 0 || iLibraryError != 0 ? -1 : 0;
}

int32_t zyr_fontFT_init(void)
{
    zyr_fontFT_close();
    if (FT_Init_FreeType(&g_ftLibrary) != 0 ||
        FT_New_Face(g_ftLibrary, zyr_platform_fontPath(), 0, &g_ftFace) != 0) {
        Release_FreeType();
        return -1;
    }
    g_uiBaseline = 0;
    Open_GlyphCache();
    return 0;
}

int32_t zyr_fontFT_close(void)
{
    Close_GlyphCache();
    Forget_FaceSize();
    return Release_FreeType();
}

/* FreeType's 26.6 numbers have 32 bits on the box; the same bits are passed everywhere. */
static FT_F26Dot6 To_26Dot6(uint32_t uiPixels)
{
    return static_cast<int32_t>(uiPixels * 64U);
}

/* The character size only decides whether FreeType accepts the numbers; the pixel sizes are what stays. */
static bool Set_FaceSize(uint32_t uiWidth, uint32_t uiHeight)
{
    if (uiWidth == g_uiFaceWidth && uiHeight == g_uiFaceHeight) return true;
    Forget_FaceSize();
    if (FT_Set_Char_Size(g_ftFace, To_26Dot6(uiWidth), To_26Dot6(uiHeight), uiWidth, uiHeight) != 0)
        return false;
    if (FT_Set_Pixel_Sizes(g_ftFace, uiWidth, uiHeight) != 0) return false;
    g_uiFaceWidth = uiWidth;
    g_uiFaceHeight = uiHeight;
    return true;
}

int32_t zyr_fontFT_setFontSize(uint32_t uiWidth, uint32_t uiHeight)
{
    if (uiWidth == 0 || uiHeight == 0) return -2;
    if (!Set_FaceSize(uiWidth, uiHeight)) return -1;

    const uint32_t uiAbove = static_cast<uint32_t>(g_ftFace->bbox.yMax);
    const uint32_t uiWhole = uiAbove - static_cast<uint32_t>(g_ftFace->bbox.yMin);
    if (uiWhole == 0) return -1;
    g_uiBaseline = (2U * uiAbove * uiHeight / uiWhole + 1U) / 2U;
    return 0;
}

/* Measure without rendering. */
static bool Load_Glyph(uint32_t uiCode, FontGlyph &stGlyph)
{
    const FT_UInt uiIndex = FT_Get_Char_Index(g_ftFace, uiCode);
    if (FT_Load_Glyph(g_ftFace, uiIndex, FT_LOAD_NO_BITMAP) != 0) return false;
    stGlyph = {};
    stGlyph.iAdvance = static_cast<int32_t>(g_ftFace->glyph->advance.x >> 6);
    stGlyph.bInFace = uiIndex != 0;
    return true;
}

/* The bits belong to the face and stay until it loads its next glyph. */
static bool Render_Glyph(uint32_t uiCode, bool bGrey, FontGlyph &stGlyph)
{
    if (!Load_Glyph(uiCode, stGlyph)) return false;
    const FT_GlyphSlot pstSlot = g_ftFace->glyph;
    if (FT_Render_Glyph(pstSlot, bGrey ? FT_RENDER_MODE_NORMAL : FT_RENDER_MODE_MONO) != 0) return false;
    stGlyph.iLeft = pstSlot->bitmap_left;
    stGlyph.iTop = pstSlot->bitmap_top;
    stGlyph.uiWidth = pstSlot->bitmap.width;
    stGlyph.uiRows = pstSlot->bitmap.rows;
    stGlyph.iPitch = pstSlot->bitmap.pitch;
    stGlyph.bMono = pstSlot->bitmap.pixel_mode == FT_PIXEL_MODE_MONO;
    stGlyph.pucBits = stGlyph.bMono ? pstSlot->bitmap.buffer : nullptr;
    return true;
}

static bool Is_Cacheable()
{
    return g_uiFaceWidth != 0 && g_uiFaceWidth <= MAX_CACHED_SIZE && g_uiFaceHeight <= MAX_CACHED_SIZE;
}

/* A failure is not kept: the same call may succeed once memory is free again. */
static bool Get_Glyph(uint32_t uiCode, bool bGrey, FontGlyph &stGlyph)
{
    if (!Is_Cacheable()) return Render_Glyph(uiCode, bGrey, stGlyph);

    const uint64_t ullKey = static_cast<uint64_t>(uiCode) | static_cast<uint64_t>(g_uiFaceWidth) << 32 |
                            static_cast<uint64_t>(g_uiFaceHeight) << 47 | static_cast<uint64_t>(bGrey) << 63;
    const FontGlyph *pstFound = Find_Glyph(ullKey);
    if (pstFound != nullptr) {
        stGlyph = *pstFound;
        return true;
    }
    if (!Render_Glyph(uiCode, bGrey, stGlyph)) return false;
    Store_Glyph(ullKey, stGlyph);
    return true;
}

/* A measured character is likely to be drawn next, so it is rendered at once where that can be kept. A glyph
 * that loads but does not render still has its advance. */
static bool Measure_Glyph(uint32_t uiCode, FontGlyph &stGlyph)
{
    return (Is_Cacheable() && Get_Glyph(uiCode, false, stGlyph)) || Load_Glyph(uiCode, stGlyph);
}

int32_t zyr_FontFT_getAdvanceX(uint32_t uiCode)
{
    FontGlyph stGlyph;
    return Measure_Glyph(uiCode, stGlyph) && stGlyph.bInFace ? stGlyph.iAdvance : -1;
}

uint32_t zyr_fontFT_measureChar(uint32_t uiCode)
{
    FontGlyph stGlyph;
    return Measure_Glyph(uiCode, stGlyph) && stGlyph.iAdvance > 0 ? static_cast<uint32_t>(stGlyph.iAdvance)
                                                                  : 0;
}

int32_t zyr_FontFT_getRealFontSize(uint32_t uiCode, uint32_t *puiWidth, uint32_t *puiHeight)
{
    FontGlyph stGlyph;
    if (!Measure_Glyph(uiCode, stGlyph) || !stGlyph.bInFace) return -1;
    if (puiWidth != nullptr) *puiWidth = g_ftFace->size->metrics.x_ppem;
    if (puiHeight != nullptr) *puiHeight = g_ftFace->size->metrics.y_ppem;
    return 0;
}

int32_t zyr_fontFT_drawChar(uint32_t uiAttr, uint32_t uiCode, uint32_t uiX, uint32_t uiY)
{
    FontGlyph stGlyph;
    if (!Get_Glyph(uiCode, (uiAttr & ATTR_GREY) != 0, stGlyph)) return -4;
    if (!stGlyph.bMono) return stGlyph.iAdvance;

    /* A glyph that reaches higher than the baseline's distance begins in the cell's first row. */
    if (stGlyph.iTop < static_cast<int32_t>(g_uiBaseline))
        uiY += g_uiBaseline - static_cast<uint32_t>(stGlyph.iTop);
    const int32_t iResult = zyr_fontDraw_drawBitmapMono(
        static_cast<int32_t>(uiX + static_cast<uint32_t>(stGlyph.iLeft)), static_cast<int32_t>(uiY),
        stGlyph.uiWidth, stGlyph.uiRows, stGlyph.iPitch, stGlyph.pucBits);
    return iResult != 0 ? iResult : stGlyph.iAdvance;
}

#include "font/font_layout.h"

#include "font/font_ft.h"
#include "font/renderer_log.h"

enum SizeMode : uint32_t {
    E_SIZE_NORMAL,
    E_SIZE_HALF,
    E_SIZE_QUARTER,
    E_SIZE_DOUBLE_WIDTH,
    E_SIZE_DOUBLE_HEIGHT,
    E_SIZE_DOUBLE,
    E_SIZE_MODE_NUMS
};

enum CellAnchor : uint32_t { E_ANCHOR_CENTER_X = 1, E_ANCHOR_BOTTOM = 2 };

constexpr uint32_t ATTR_BOX_LINES = 0x0F;
constexpr uint32_t ATTR_UNDERLINE = 0x20;

static uint32_t g_uiGlyphWidth;
static uint32_t g_uiGlyphHeight;
static uint32_t g_uiCellWidth; // glyph and spacing
static uint32_t g_uiCellHeight;
static uint32_t g_uiGlyphOffsetX; // of the glyph inside its cell
static uint32_t g_uiGlyphOffsetY;
static uint32_t g_uiSizeMode;
static uint32_t g_uiDirection; // 0 horizontal, else vertical
static uint32_t g_uiAlign;     // CellAnchor; any other value: top left

/* @return what a call of the layers below has given; one that failed is logged */
static int32_t Report(const char *pszCall, int32_t iResult)
{
    if (iResult != 0) LOG_RENDERER("Error %s(%d)\n", pszCall, iResult);
    return iResult;
}

int32_t zyr_font_init(void)
{
    if (Report("zyr_fontFT_init", zyr_fontFT_init()) != 0) return -1;
    return Report("zyr_fontDraw_init", zyr_fontDraw_init()) != 0 ? -1 : 0;
}

int32_t zyr_font_close(void)
{
    const int32_t iDrawResult = Report("zyr_fontDraw_close", zyr_fontDraw_close());
    const int32_t iFaceResult = Report("zyr_fontFT_close", zyr_fontFT_close());
    return iDrawResult != 0 || iFaceResult != 0 ? -1 : 0;
}

int32_t zyr_font_setDestBuf(uint16_t *pusBuf)
{
    return zyr_fontDraw_setDestBuf(pusBuf);
}

int32_t zyr_font_setDestRegion(uint32_t uiWidth, uint32_t uiHeight, uint32_t uiPitch)
{
    return zyr_fontDraw_setDestRegion(uiWidth, uiHeight, uiPitch);
}

int32_t zyr_font_getDestRegion(uint32_t *puiWidth, uint32_t *puiHeight, uint32_t *puiPitch)
{
    const int32_t iResult = zyr_fontDraw_getDestRegion(puiWidth, puiHeight, puiPitch);
    if (iResult == 0) return 0;
    LOG_RENDERER("Error zyr_fontDraw_getDestRegion(err:%d)\n", iResult);
    return -3;
}

int32_t zyr_font_clearDestBuf(uint16_t usColor)
{
    return zyr_fontDraw_clearDestBuf(usColor);
}

int32_t zyr_font_setFontColor(uint16_t usFontColor, uint16_t usSecondColor, uint16_t usBGColor,
                              uint16_t usFourthColor)
{
    return zyr_fontDraw_setFontColor(usFontColor, usSecondColor, usBGColor, usFourthColor);
}

int32_t zyr_font_setDirection(uint32_t uiDirection, uint32_t uiAlign)
{
    g_uiDirection = uiDirection;
    g_uiAlign = uiAlign;
    return 0;
}

static void Set_GlyphBox(uint32_t uiWidth, uint32_t uiHeight, uint32_t uiOffsetX, uint32_t uiOffsetY)
{
    g_uiGlyphWidth = uiWidth;
    g_uiGlyphHeight = uiHeight;
    g_uiGlyphOffsetX = uiOffsetX;
    g_uiGlyphOffsetY = uiOffsetY;
}

/* Vertical writing places the glyph by the other axis's spacing: uiAcross counts for its x, uiDown for its y.
 * In the two double heights of horizontal writing the spacing grows with the glyph. */
static void Set_GlyphGeometry(uint32_t uiMode, uint32_t uiWidth, uint32_t uiHeight, uint32_t uiAcross,
                              uint32_t uiDown)
{
    const bool bVertical = g_uiDirection != 0;
    const uint32_t uiTallOffsetY = bVertical ? uiDown : uiDown / 2 * 3;
    switch (uiMode) {
    case E_SIZE_NORMAL: Set_GlyphBox(uiWidth, uiHeight, uiAcross / 2, uiDown / 2); break;
    case E_SIZE_HALF:
        if (bVertical)
            Set_GlyphBox(uiWidth, uiHeight / 2, uiAcross / 2, uiDown / 4);
        else
            Set_GlyphBox(uiWidth / 2, uiHeight, uiAcross / 4, uiDown / 2);
        break;
    case E_SIZE_QUARTER: Set_GlyphBox(uiWidth / 2, uiHeight / 2, uiAcross / 4, uiDown / 4); break;
    case E_SIZE_DOUBLE_WIDTH: Set_GlyphBox(uiWidth * 2, uiHeight, uiAcross, uiDown / 2); break;
    case E_SIZE_DOUBLE_HEIGHT: Set_GlyphBox(uiWidth, uiHeight * 2, uiAcross / 2, uiTallOffsetY); break;
    default: Set_GlyphBox(uiWidth * 2, uiHeight * 2, uiAcross, uiTallOffsetY); break;
    }
}

int32_t zyr_font_setFontSize(uint32_t uiMode, uint32_t uiWidth, uint32_t uiHeight, uint32_t uiSpacingX,
                             uint32_t uiSpacingY)
{
    if (uiWidth == 0 || uiHeight == 0) {
        LOG_RENDERER("Error Invalid Param(uiWidth:%d, uiHeight:%d)\n", static_cast<int32_t>(uiWidth),
                     static_cast<int32_t>(uiHeight));
        return -2;
    }
    if (uiMode >= E_SIZE_MODE_NUMS) {
        LOG_RENDERER("Error Invalid Param(Size:%d)\n", static_cast<int32_t>(uiMode));
        return -2;
    }
    const bool bVertical = g_uiDirection != 0;
    const bool bTallSpacing = !bVertical && uiMode >= E_SIZE_DOUBLE_HEIGHT;
    Set_GlyphGeometry(uiMode, uiWidth, uiHeight, bVertical ? uiSpacingY : uiSpacingX,
                      bVertical ? uiSpacingX : uiSpacingY);
    g_uiCellWidth = g_uiGlyphWidth + uiSpacingX;
    g_uiCellHeight = g_uiGlyphHeight + (bTallSpacing ? uiSpacingY / 2 * 3 / 3 * 4 : uiSpacingY);
    g_uiSizeMode = uiMode;
    return zyr_fontFT_setFontSize(g_uiGlyphWidth, g_uiGlyphHeight);
}

void zyr_font_getCharPosition(uint32_t *puiX, uint32_t *puiY)
{
    const uint32_t uiHalf = g_uiCellWidth / 2;
    if (g_uiAlign == E_ANCHOR_CENTER_X)
        *puiX = *puiX > uiHalf ? *puiX - uiHalf : 0;
    else if (g_uiAlign == E_ANCHOR_BOTTOM)
        *puiY = *puiY > g_uiCellHeight ? *puiY - g_uiCellHeight : 0;
}

static void Clear_Cell(uint32_t uiX, uint32_t uiY)
{
    Report("zyr_fontDraw_clearFontBG", zyr_fontDraw_clearFontBG(uiX, uiY, g_uiCellWidth, g_uiCellHeight));
}

static int32_t Get_CellAdvance()
{
    return static_cast<int32_t>(g_uiDirection != 0 ? g_uiGlyphHeight : g_uiGlyphWidth);
}

int32_t zyr_font_clearChar(uint32_t uiAttr, uint32_t uiX, uint32_t uiY)
{
    static_cast<void>(uiAttr);
    zyr_font_getCharPosition(&uiX, &uiY);
    Clear_Cell(uiX, uiY);
    return Get_CellAdvance();
}

/* Box lines and underline, in that order. */
static void Decorate_Cell(uint32_t uiAttr, uint32_t uiX, uint32_t uiY)
{
    const uint32_t uiTop = uiY + g_uiGlyphOffsetY;
    const uint32_t uiHeight = g_uiGlyphHeight + g_uiGlyphOffsetY;
    if ((uiAttr & ATTR_BOX_LINES) != 0)
        Report("zyr_fontDraw_drawHighlighting",
               zyr_fontDraw_drawHighlighting(uiX, uiTop, g_uiCellWidth, g_uiGlyphHeight, uiAttr));
    if ((uiAttr & ATTR_UNDERLINE) != 0)
        Report("zyr_fontDraw_drawUnderline", zyr_fontDraw_drawUnderline(uiX, uiY, g_uiCellWidth, uiHeight));
}

int32_t zyr_font_displayChar(uint32_t uiAttr, uint16_t usNonSpacing, uint16_t usChar, uint32_t uiX,
                             uint32_t uiY)
{
    zyr_font_getCharPosition(&uiX, &uiY);
    Clear_Cell(uiX, uiY);
    const uint32_t uiGlyphX = uiX + g_uiGlyphOffsetX;
    const uint32_t uiGlyphY = uiY + g_uiGlyphOffsetY;
    if (usNonSpacing != 0) {
        const int32_t iResult = zyr_fontFT_drawChar(uiAttr, usNonSpacing, uiGlyphX, uiGlyphY);
        if (iResult < 0) LOG_RENDERER("Error zyr_fontFT_drawChar(non-space character %d)\n", iResult);
    }
    const int32_t iResult = zyr_fontFT_drawChar(uiAttr, usChar, uiGlyphX, uiGlyphY);
    if (iResult < 0) {
        LOG_RENDERER("Error zyr_fontFT_drawChar(%d)\n", iResult);
        return iResult;
    }
    Decorate_Cell(uiAttr, uiX, uiY);
    return Get_CellAdvance();
}

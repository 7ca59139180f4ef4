#include <cstddef>
#include <cstring>

#include "font/renderer_log.h"
#include "zyr/zyr_font.h"

/* Box lines that zyr_fontDraw_drawHighlighting() knows. */
enum BoxLine : uint32_t { E_BOX_BOTTOM = 0x01, E_BOX_RIGHT = 0x02, E_BOX_TOP = 0x04, E_BOX_LEFT = 0x08 };

struct FontColors {
    uint16_t usFontColor; // glyphs, underline, box lines
    uint16_t usSecondColor;
    uint16_t usBGColor; // cell background, trimmed corners of the box
    uint16_t usFourthColor;
};

static uint16_t *g_pusDestBuf;
static uint32_t g_uiDestWidth;
static uint32_t g_uiDestHeight;
static uint32_t g_uiDestPitch; // pixels
static FontColors g_stFontColors;

/* Part of a row or column that lies inside the region: uiFirst up to, not including, uiEnd. */
struct Span {
    uint32_t uiFirst;
    uint32_t uiEnd;
};

static Span Clip_Span(int64_t llStart, uint32_t uiLength, uint32_t uiLimit)
{
    const int64_t llEnd = llStart + uiLength;
    const int64_t llFirst = llStart < 0 ? 0 : llStart;
    const int64_t llStop = llEnd < uiLimit ? llEnd : uiLimit;
    if (llFirst >= llStop) return {0, 0};
    return {static_cast<uint32_t>(llFirst), static_cast<uint32_t>(llStop)};
}

/* A pitch below the width would let the end of one row run into the next, and that of the last row out of the
 * buffer: columns end at the smaller of the two. */
static uint32_t Get_Columns()
{
    return g_uiDestWidth < g_uiDestPitch ? g_uiDestWidth : g_uiDestPitch;
}

static uint16_t *Get_Row(uint32_t uiRow)
{
    return g_pusDestBuf + static_cast<size_t>(uiRow) * g_uiDestPitch;
}

static void Fill_Pixels(uint16_t *pusPixels, size_t uiCount, uint16_t usColor)
{
    if (usColor == 0)
        memset(pusPixels, 0, uiCount * sizeof(*pusPixels));
    else
        for (size_t uiPixel = 0; uiPixel < uiCount; ++uiPixel) pusPixels[uiPixel] = usColor;
}

static void Fill_Rect(int64_t llX, int64_t llY, uint32_t uiWidth, uint32_t uiHeight, uint16_t usColor)
{
    const Span stColumns = Clip_Span(llX, uiWidth, Get_Columns());
    const Span stRows = Clip_Span(llY, uiHeight, g_uiDestHeight);
    for (uint32_t uiRow = stRows.uiFirst; uiRow < stRows.uiEnd; ++uiRow)
        Fill_Pixels(Get_Row(uiRow) + stColumns.uiFirst, stColumns.uiEnd - stColumns.uiFirst, usColor);
}

/* Coordinates arrive unsigned; one left of or above the region is a negative number in disguise. */
static int64_t To_Signed(uint32_t uiCoordinate)
{
    return static_cast<int32_t>(uiCoordinate);
}

static int32_t Check_Rect(uint32_t uiWidth, uint32_t uiHeight)
{
    if (uiWidth == 0 || uiHeight == 0) {
        LOG_RENDERER("Error Invalid Param(W:%d, H:%d)\n", static_cast<int32_t>(uiWidth),
                     static_cast<int32_t>(uiHeight));
        return -2;
    }
    return g_pusDestBuf == nullptr ? -2 : 0;
}

int32_t zyr_fontDraw_init(void)
{
    g_pusDestBuf = nullptr;
    g_uiDestWidth = g_uiDestHeight = g_uiDestPitch = 0;
    g_stFontColors = {};
    return 0;
}

/* The buffer is forgotten: its owner may give its memory back from now on. */
int32_t zyr_fontDraw_close(void)
{
    g_pusDestBuf = nullptr;
    return 0;
}

int32_t zyr_fontDraw_setDestBuf(uint16_t *pusBuf)
{
    if (pusBuf == nullptr) {
        LOG_RENDERER("Error Invalid Param(pBuf:%d)\n", 0);
        return -2;
    }
    g_pusDestBuf = pusBuf;
    return 0;
}

int32_t zyr_fontDraw_setDestRegion(uint32_t uiWidth, uint32_t uiHeight, uint32_t uiPitch)
{
    if (uiWidth == 0 || uiHeight == 0 || uiPitch == 0) {
        LOG_RENDERER("Error Invalid Param(uiWidth:%d uiHeight:%d uiPitch:%d)\n",
                     static_cast<int32_t>(uiWidth), static_cast<int32_t>(uiHeight),
                     static_cast<int32_t>(uiPitch));
        return -2;
    }
    g_uiDestWidth = uiWidth;
    g_uiDestHeight = uiHeight;
    g_uiDestPitch = uiPitch;
    return 0;
}

uint16_t *zyr_fontDraw_getDestBuf(void)
{
    return g_pusDestBuf;
}

int32_t zyr_fontDraw_getDestRegion(uint32_t *puiWidth, uint32_t *puiHeight, uint32_t *puiPitch)
{
    if (puiWidth == nullptr || puiHeight == nullptr || puiPitch == nullptr) return -2;
    *puiWidth = g_uiDestWidth;
    *puiHeight = g_uiDestHeight;
    *puiPitch = g_uiDestPitch;
    return 0;
}

int32_t zyr_fontDraw_setFontColor(uint16_t usFontColor, uint16_t usSecondColor, uint16_t usBGColor,
                                  uint16_t usFourthColor)
{
    g_stFontColors = {usFontColor, usSecondColor, usBGColor, usFourthColor};
    return 0;
}

int32_t zyr_fontDraw_clearDestBuf(uint16_t usColor)
{
    if (g_pusDestBuf == nullptr) {
        LOG_RENDERER("Error g_pusDestBuf is NULL\n");
        return -1;
    }
    Fill_Pixels(g_pusDestBuf, static_cast<size_t>(g_uiDestPitch) * g_uiDestHeight, usColor);
    return 0;
}

int32_t zyr_fontDraw_clearFontBG(uint32_t uiX, uint32_t uiY, uint32_t uiWidth, uint32_t uiHeight)
{
    const int32_t iResult = Check_Rect(uiWidth, uiHeight);
    if (iResult != 0) return iResult;
    Fill_Rect(To_Signed(uiX), To_Signed(uiY), uiWidth, uiHeight, g_stFontColors.usBGColor);
    return 0;
}

/* The right line stands two columns left of the box's last column. The top and bottom lines are trimmed there
 * first, so that they end at it. */
static void Draw_RightLine(int64_t llX, int64_t llY, uint32_t uiWidth, uint32_t uiHeight)
{
    const int64_t llColumn = llX + uiWidth - 3;
    Fill_Rect(llColumn, llY, 3, 1, g_stFontColors.usBGColor);
    Fill_Rect(llColumn, llY + uiHeight - 3, 3, 1, g_stFontColors.usBGColor);
    Fill_Rect(llColumn, llY, 1, uiHeight - 2, g_stFontColors.usFontColor);
}

int32_t zyr_fontDraw_drawHighlighting(uint32_t uiX, uint32_t uiY, uint32_t uiWidth, uint32_t uiHeight,
                                      uint32_t uiFlags)
{
    const int32_t iResult = Check_Rect(uiWidth, uiHeight);
    if (iResult != 0) return iResult;
    if (uiWidth < 3 || uiHeight < 3) return 0;

    const int64_t llX = To_Signed(uiX);
    const int64_t llY = To_Signed(uiY);
    const uint16_t usColor = g_stFontColors.usFontColor;
    if ((uiFlags & E_BOX_BOTTOM) != 0) Fill_Rect(llX, llY + uiHeight - 3, uiWidth, 1, usColor);
    if ((uiFlags & E_BOX_TOP) != 0) Fill_Rect(llX, llY, uiWidth, 1, usColor);
    if ((uiFlags & E_BOX_LEFT) != 0) Fill_Rect(llX, llY, 1, uiHeight - 3, usColor);
    if ((uiFlags & E_BOX_RIGHT) != 0) Draw_RightLine(llX, llY, uiWidth, uiHeight);
    return 0;
}

int32_t zyr_fontDraw_drawUnderline(uint32_t uiX, uint32_t uiY, uint32_t uiWidth, uint32_t uiHeight)
{
    const int32_t iResult = Check_Rect(uiWidth, uiHeight);
    if (iResult != 0) return iResult;
    Fill_Rect(To_Signed(uiX), To_Signed(uiY) + uiHeight - 1, uiWidth, 1, g_stFontColors.usFontColor);
    return 0;
}

/* Eight pixels at once: a vector of the compiler's, which becomes one register where there is SSE2 or NEON.
 */
typedef uint16_t EightPixels __attribute__((vector_size(16)));

struct PixelMask {
    uint16_t ausPixels[8]; // all ones where the bit is set
};

struct PixelMasks {
    PixelMask astMasks[256]; // by the eight bits
};

consteval PixelMasks Make_PixelMasks()
{
    PixelMasks stMasks = {};
    for (uint32_t uiBits = 0; uiBits < 256; ++uiBits)
        for (uint32_t uiPixel = 0; uiPixel < 8; ++uiPixel)
            stMasks.astMasks[uiBits].ausPixels[uiPixel] = (uiBits & (0x80U >> uiPixel)) != 0 ? 0xFFFF : 0;
    return stMasks;
}
alignas(16) constexpr PixelMasks PixelMaskTable = Make_PixelMasks();

static void Draw_EightPixels(uint16_t *pusPixels, uint32_t uiBits, EightPixels usColor)
{
    EightPixels usPixels;
    EightPixels usMask;
    memcpy(&usPixels, pusPixels, sizeof(usPixels));
    memcpy(&usMask, &PixelMaskTable.astMasks[uiBits], sizeof(usMask));
    usPixels = (usPixels & ~usMask) | (usColor & usMask);
    memcpy(pusPixels, &usPixels, sizeof(usPixels));
}

/* The visible part of a bitmap: bits stBits of its rows. Its bit 0 stands at llX in a region of uiColumns. */
struct ClippedBitmap {
    int64_t llX;
    Span stBits;
    uint32_t uiColumns;
};

static uint32_t Get_LastByteMask(uint32_t uiEnd)
{
    return (0xFF00U >> ((uiEnd - 1) % 8 + 1)) & 0xFFU;
}

/* All bytes of the row stand inside the region, each with eight pixels. */
static void Draw_WholeRow(uint16_t *pusPixels, const uint8_t *pucBits, uint32_t uiWidth)
{
    const EightPixels usColor = EightPixels{} + g_stFontColors.usFontColor;
    const uint32_t uiLastByte = (uiWidth - 1) / 8;
    for (uint32_t uiByte = 0; uiByte < uiLastByte; ++uiByte, pusPixels += 8)
        Draw_EightPixels(pusPixels, pucBits[uiByte], usColor);
    Draw_EightPixels(pusPixels, pucBits[uiLastByte] & Get_LastByteMask(uiWidth), usColor);
}

static void Draw_CutRow(const ClippedBitmap &stBitmap, uint16_t *pusRow, const uint8_t *pucBits)
{
    for (uint32_t uiBit = stBitmap.stBits.uiFirst; uiBit < stBitmap.stBits.uiEnd; ++uiBit)
        if ((pucBits[uiBit / 8] & (0x80U >> uiBit % 8)) != 0)
            pusRow[stBitmap.llX + uiBit] = g_stFontColors.usFontColor;
}

static void Draw_BitmapRow(const ClippedBitmap &stBitmap, uint16_t *pusRow, const uint8_t *pucBits)
{
    const uint32_t uiBytes = (stBitmap.stBits.uiEnd + 7) / 8;
    if (stBitmap.stBits.uiFirst == 0 &&
        stBitmap.llX + static_cast<int64_t>(uiBytes) * 8 <= stBitmap.uiColumns)
        Draw_WholeRow(pusRow + stBitmap.llX, pucBits, stBitmap.stBits.uiEnd);
    else
        Draw_CutRow(stBitmap, pusRow, pucBits);
}

static int32_t Check_BitmapArea(int32_t iX, uint32_t uiWidth)
{
    if (g_pusDestBuf == nullptr || g_uiDestWidth == 0 || g_uiDestHeight == 0 || g_uiDestPitch == 0) {
        LOG_RENDERER("Error Invalid Area(puiDestBuf:0x%08X, W:%d, H:%d, P:%d)\n",
                     static_cast<uint32_t>(reinterpret_cast<uintptr_t>(g_pusDestBuf)),
                     static_cast<int32_t>(g_uiDestWidth), static_cast<int32_t>(g_uiDestHeight),
                     static_cast<int32_t>(g_uiDestPitch));
        return -3;
    }
    if (static_cast<int64_t>(iX) + uiWidth > g_uiDestWidth) {
        LOG_RENDERER("Error Invalid Area(X:%d, W:%d, DestW:%d)\n", iX, static_cast<int32_t>(uiWidth),
                     static_cast<int32_t>(g_uiDestWidth));
        return -5;
    }
    return 0;
}

int32_t zyr_fontDraw_drawBitmapMono(int32_t iX, int32_t iY, uint32_t uiWidth, uint32_t uiRows, int32_t iPitch,
                                    const uint8_t *pucBits)
{
    const int32_t iResult = Check_BitmapArea(iX, uiWidth);
    if (iResult != 0) return iResult;

    const uint32_t uiColumns = Get_Columns();
    const Span stColumns = Clip_Span(iX, uiWidth, uiColumns);
    const Span stRows = Clip_Span(iY, uiRows, g_uiDestHeight);
    if (stColumns.uiFirst == stColumns.uiEnd || stRows.uiFirst == stRows.uiEnd) return 0;
    if (pucBits == nullptr) return -2;

    const uint32_t uiX = static_cast<uint32_t>(iX);
    const ClippedBitmap stBitmap = {iX, {stColumns.uiFirst - uiX, stColumns.uiEnd - uiX}, uiColumns};
    for (uint32_t uiRow = stRows.uiFirst; uiRow < stRows.uiEnd; ++uiRow) {
        const int64_t llBitmapRow = static_cast<int64_t>(uiRow) - iY;
        Draw_BitmapRow(stBitmap, Get_Row(uiRow), pucBits + static_cast<ptrdiff_t>(llBitmapRow * iPitch));
    }
    return 0;
}

#include <cstddef>

#include "font/font_ft.h"
#include "font/font_layout.h"
#include "font/renderer_log.h"

static int32_t Check_String(const uint16_t *pusString)
{
    if (pusString != nullptr) return 0;
    LOG_RENDERER("Error Invalid Param(pusString:%d)\n", 0);
    return -2;
}

static int32_t Get_RegionWidth(uint32_t *puiWidth)
{
    uint32_t uiHeight = 0;
    uint32_t uiPitch = 0;
    return zyr_font_getDestRegion(puiWidth, &uiHeight, &uiPitch);
}

struct LineRecorder {
    uint32_t *puiLineWidth; // may be NULL
    uint32_t uiLineNums;
    uint32_t uiMaxWidth;
};

/* A full line counts as wide as the region, whatever its last character made of it. */
static void Record_Line(LineRecorder &stLines, uint32_t uiWidth, uint32_t uiCountedWidth)
{
    if (stLines.puiLineWidth != nullptr) stLines.puiLineWidth[stLines.uiLineNums] = uiWidth;
    if (stLines.uiMaxWidth < uiCountedWidth) stLines.uiMaxWidth = uiCountedWidth;
    ++stLines.uiLineNums;
}

/* The length is looked at behind characters only: a newline never ends the walk, the unit that follows it
 * decides. */
static void Measure_Lines(const uint16_t *pusString, uint32_t uiLength, uint32_t uiRegionWidth,
                          LineRecorder &stLines)
{
    uint32_t uiWidth = 0;
    uint32_t uiTaken = 0;
    while (pusString[uiTaken] != 0 && stLines.uiLineNums < MAX_LINE_NUMS) {
        const uint16_t usUnit = pusString[uiTaken++];
        if (usUnit == '\n') {
            Record_Line(stLines, uiWidth, uiWidth);
            uiWidth = 0;
            continue;
        }
        uiWidth += zyr_fontFT_measureChar(usUnit);
        if (uiWidth >= uiRegionWidth) {
            Record_Line(stLines, uiWidth, uiRegionWidth);
            uiWidth = 0;
            if (pusString[uiTaken] == '\n') ++uiTaken;
        }
        if (uiTaken >= uiLength) {
            if (stLines.uiLineNums < MAX_LINE_NUMS) Record_Line(stLines, uiWidth, uiWidth);
            return;
        }
    }
}

int32_t zyr_font_calcRegion(const uint16_t *pusString, int32_t iLength, uint32_t uiLineHeight,
                            uint32_t *puiWidth, uint32_t *puiHeight, uint32_t *puiLineWidth)
{
    int32_t iResult = Check_String(pusString);
    if (iResult != 0) return iResult;
    uint32_t uiRegionWidth = 0;
    iResult = Get_RegionWidth(&uiRegionWidth);
    if (iResult != 0) return iResult;

    LineRecorder stLines = {puiLineWidth, 0, 0};
    if (iLength > 0) Measure_Lines(pusString, static_cast<uint32_t>(iLength), uiRegionWidth, stLines);
    if (puiWidth != nullptr) *puiWidth = stLines.uiMaxWidth;
    if (puiHeight != nullptr) *puiHeight = stLines.uiLineNums * uiLineHeight;
    return 0;
}

/* Where drawing stands. A line that was measured wider than the region is tightened: its characters keep
 * their order and their shares of the line, and the last one ends at the region's edge. */
struct StringPen {
    const uint16_t *pusString;
    const uint32_t *puiLineWidth;
    uint32_t uiRegionWidth;
    uint32_t uiLineHeight;
    uint32_t uiLength;    // units to take
    uint32_t uiTaken;     // so many are drawn, newlines included
    uint32_t uiLineIndex; // line that is being drawn
    uint32_t uiX;
    uint32_t uiY;
    bool bTight;
    uint32_t uiLineAdvance; // tight line: sum of the advances drawn so far
    uint32_t uiSpan;        // tight line: sum of all advances but the last
    int64_t llRoom;         // tight line: where the last character goes
};

/* A tight line ends with the character that measuring found to fill it. */
static void Tighten_Line(StringPen &stPen, uint32_t uiMeasuredWidth)
{
    uint32_t uiSum = 0;
    uint32_t uiLast = 0;
    uint32_t uiUnit = stPen.uiTaken;
    do {
        const uint16_t usUnit = stPen.pusString[uiUnit];
        if (usUnit == 0 || usUnit == '\n') break;
        uiLast = zyr_fontFT_measureChar(usUnit);
        uiSum += uiLast;
    } while (++uiUnit < stPen.uiLength && uiSum < uiMeasuredWidth);

    const uint32_t uiSpan = uiSum - uiLast;
    stPen.bTight = uiSum > stPen.uiRegionWidth && uiSpan <= INT32_MAX;
    stPen.uiLineAdvance = 0;
    stPen.uiSpan = uiSpan;
    stPen.llRoom = static_cast<int64_t>(stPen.uiRegionWidth) - uiLast;
}

static void Start_Line(StringPen &stPen)
{
    const uint32_t uiMeasuredWidth = stPen.puiLineWidth[stPen.uiLineIndex];
    stPen.bTight = false;
    if (uiMeasuredWidth <= stPen.uiRegionWidth) {
        stPen.uiX = (stPen.uiRegionWidth - uiMeasuredWidth) / 2;
        return;
    }
    stPen.uiX = 0;
    Tighten_Line(stPen, uiMeasuredWidth);
}

/* @return false when the line widths are used up */
static bool Next_Line(StringPen &stPen)
{
    if (++stPen.uiLineIndex >= MAX_LINE_NUMS) return false;
    stPen.uiY += stPen.uiLineHeight;
    Start_Line(stPen);
    return true;
}

static int64_t Divide_Down(int64_t llValue, int64_t llDivisor)
{
    return llValue >= 0 ? llValue / llDivisor : -((-llValue + llDivisor - 1) / llDivisor);
}

/* Move past a character. @return whether the line is full after it */
static bool Advance_Pen(StringPen &stPen, uint32_t uiAdvance)
{
    if (!stPen.bTight) {
        stPen.uiX += uiAdvance;
        return stPen.uiX >= stPen.uiRegionWidth;
    }
    stPen.uiLineAdvance += uiAdvance;
    if (stPen.uiSpan != 0)
        stPen.uiX = static_cast<uint32_t>(Divide_Down(stPen.uiLineAdvance * stPen.llRoom, stPen.uiSpan));
    return stPen.uiLineAdvance >= stPen.puiLineWidth[stPen.uiLineIndex];
}

/* @return false when drawing is over */
static bool Draw_Unit(StringPen &stPen, uint16_t usUnit)
{
    const int32_t iAdvance = zyr_fontFT_drawChar(0, usUnit, stPen.uiX, stPen.uiY);
    const bool bFull =
        Advance_Pen(stPen, iAdvance >= 0 ? static_cast<uint32_t>(iAdvance) : zyr_fontFT_measureChar(usUnit));
    if (bFull && stPen.pusString[stPen.uiTaken] == '\n') ++stPen.uiTaken;
    if (stPen.uiTaken >= stPen.uiLength) return false;
    return !bFull || Next_Line(stPen);
}

int32_t zyr_font_displayString(const uint16_t *pusString, int32_t iLength, const uint32_t *puiLineWidth,
                               uint32_t uiLineHeight)
{
    int32_t iResult = Check_String(pusString);
    if (iResult != 0) return iResult;
    if (puiLineWidth == nullptr) return -2;
    StringPen stPen = {};
    iResult = Get_RegionWidth(&stPen.uiRegionWidth);
    if (iResult != 0) return iResult;
    if (iLength <= 0) return 0;

    stPen.pusString = pusString;
    stPen.puiLineWidth = puiLineWidth;
    stPen.uiLineHeight = uiLineHeight;
    stPen.uiLength = static_cast<uint32_t>(iLength);
    Start_Line(stPen);
    bool bMore = true;
    while (bMore && pusString[stPen.uiTaken] != 0) {
        const uint16_t usUnit = pusString[stPen.uiTaken++];
        bMore = usUnit == '\n' ? Next_Line(stPen) : Draw_Unit(stPen, usUnit);
    }
    return 0;
}

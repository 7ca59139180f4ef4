/* What a caption costs, in microseconds and as a ratio to two yardsticks that are taken in the same run:
 *
 *   x_cached  times a bare loop that clears 1280 x 32 pixels and sets the bits of 40 ready bitmaps
 *   x_freetype  times loading and rendering the same 40 glyphs with FreeType
 *
 *   Yardstick/...    the two themselves
 *   FontString       measure, clear and draw a string of 40 Korean characters seen before, 32 pixels
 *   FontNewString    the same with characters never seen
 *   DisplayString    a caption change at HDMI 1080p, from the call to the device's update request
 */
#include <benchmark/benchmark.h>
#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

#include "zyr/zyr_display.h"
#include "zyr/zyr_font.h"
#include "zyr/zyr_host.h"
#include "zyr_ccfb.h"

namespace
{

constexpr uint32_t GLYPH_NUMS = 40;
constexpr uint32_t SIZE = 32;
constexpr size_t WIDTH = size_t{GLYPH_NUMS} * SIZE;
constexpr uint16_t COLOR = 0x8410;

std::vector<uint16_t> Make_String(uint32_t uiFirst)
{
    std::vector<uint16_t> vusString(GLYPH_NUMS + 1, 0);
    for (uint32_t uiChar = 0; uiChar < GLYPH_NUMS; ++uiChar)
        vusString[uiChar] = static_cast<uint16_t>(0xAC00 + (uiFirst + uiChar * 37) % 11172);
    return vusString;
}

struct ReadyGlyph {
    uint32_t uiAdvance;
    uint32_t uiLeft;
    uint32_t uiTop; // rows below the cell's top
    uint32_t uiRows;
    uint32_t uiPitch;
    std::vector<uint8_t> vucBits;
};

FT_Face Open_Face()
{
    FT_Library ftLibrary = nullptr;
    FT_Face ftFace = nullptr;
    if (FT_Init_FreeType(&ftLibrary) != 0 ||
        FT_New_Face(ftLibrary, zyr_platform_fontPath(), 0, &ftFace) != 0 ||
        FT_Set_Pixel_Sizes(ftFace, SIZE, SIZE) != 0) {
        fprintf(stderr, "cannot open the font %s\n", zyr_platform_fontPath());
        exit(1);
    }
    return ftFace;
}

void Render_String(FT_Face ftFace, const std::vector<uint16_t> &vusString)
{
    for (uint32_t uiChar = 0; uiChar < GLYPH_NUMS; ++uiChar) {
        FT_Load_Glyph(ftFace, FT_Get_Char_Index(ftFace, vusString[uiChar]), FT_LOAD_NO_BITMAP);
        FT_Render_Glyph(ftFace->glyph, FT_RENDER_MODE_MONO);
        benchmark::DoNotOptimize(ftFace->glyph->bitmap.buffer);
    }
}

std::vector<ReadyGlyph> Make_ReadyGlyphs(FT_Face ftFace, const std::vector<uint16_t> &vusString)
{
    std::vector<ReadyGlyph> vstGlyphs;
    for (uint32_t uiChar = 0; uiChar < GLYPH_NUMS; ++uiChar) {
        FT_Load_Glyph(ftFace, FT_Get_Char_Index(ftFace, vusString[uiChar]), FT_LOAD_NO_BITMAP);
        FT_Render_Glyph(ftFace->glyph, FT_RENDER_MODE_MONO);
        const FT_Bitmap &stBitmap = ftFace->glyph->bitmap;
        const uint32_t uiPitch = static_cast<uint32_t>(stBitmap.pitch);
        vstGlyphs.push_back(
            {static_cast<uint32_t>(ftFace->glyph->advance.x >> 6),
             static_cast<uint32_t>(std::max(ftFace->glyph->bitmap_left, 0)),
             static_cast<uint32_t>(std::clamp(25 - ftFace->glyph->bitmap_top, 0, 4)), stBitmap.rows, uiPitch,
             std::vector<uint8_t>(stBitmap.buffer, stBitmap.buffer + size_t{uiPitch} * stBitmap.rows)});
    }
    return vstGlyphs;
}

/* Masks of four pixels, by their bits. */
constexpr auto MaskTable = [] {
    std::array<uint64_t, 16> aullTable = {};
    for (uint32_t uiBits = 0; uiBits < 16; ++uiBits) {
        std::array<uint16_t, 4> ausMask = {};
        for (uint32_t uiPixel = 0; uiPixel < 4; ++uiPixel)
            ausMask[uiPixel] = (uiBits & (8U >> uiPixel)) != 0 ? 0xFFFF : 0;
        aullTable[uiBits] = std::bit_cast<uint64_t>(ausMask);
    }
    return aullTable;
}();

void Set_Bits(uint16_t *pusPixels, uint8_t ucBits)
{
    constexpr uint64_t ullColor = COLOR * 0x0001000100010001U;
    uint64_t aullPixels[2];
    memcpy(aullPixels, pusPixels, sizeof(aullPixels));
    const uint64_t ullHigh = MaskTable[ucBits >> 4];
    const uint64_t ullLow = MaskTable[ucBits & 15];
    aullPixels[0] = (aullPixels[0] & ~ullHigh) | (ullColor & ullHigh);
    aullPixels[1] = (aullPixels[1] & ~ullLow) | (ullColor & ullLow);
    memcpy(pusPixels, aullPixels, sizeof(aullPixels));
}

void Draw_Ready(const std::vector<ReadyGlyph> &vstGlyphs, uint16_t *pusBuffer)
{
    memset(pusBuffer, 0, WIDTH * SIZE * sizeof(*pusBuffer));
    uint32_t uiX = 0;
    for (const ReadyGlyph &stGlyph : vstGlyphs) {
        for (uint32_t uiRow = 0; uiRow < stGlyph.uiRows; ++uiRow) {
            uint16_t *pusPixels = pusBuffer + (stGlyph.uiTop + uiRow) * WIDTH + uiX + stGlyph.uiLeft;
            const uint8_t *pucBits = stGlyph.vucBits.data() + size_t{uiRow} * stGlyph.uiPitch;
            for (uint32_t uiByte = 0; uiByte < stGlyph.uiPitch; ++uiByte)
                if (pucBits[uiByte] != 0) Set_Bits(pusPixels + size_t{uiByte} * 8, pucBits[uiByte]);
        }
        uiX += stGlyph.uiAdvance;
    }
    benchmark::DoNotOptimize(pusBuffer);
    benchmark::ClobberMemory();
}

/* Processor time of some rounds, in nanoseconds. */
template <typename Work>
double Time_Rounds(Work pfWork)
{
    constexpr uint32_t ROUNDS = 31;
    timespec stStart = {};
    timespec stEnd = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &stStart);
    for (uint32_t uiRound = 0; uiRound < ROUNDS; ++uiRound) pfWork();
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &stEnd);
    return static_cast<double>(stEnd.tv_sec - stStart.tv_sec) * 1e9 +
           static_cast<double>(stEnd.tv_nsec - stStart.tv_nsec);
}

/* Median of many short comparisons taken in turn, so that a busy machine slows both sides. */
template <typename Work, typename Yardstick>
double Compare_Work(Work pfWork, Yardstick pfYardstick)
{
    constexpr uint32_t RUNS = 31;
    std::vector<double> vdRatios;
    for (uint32_t uiRun = 0; uiRun < RUNS; ++uiRun)
        vdRatios.push_back(Time_Rounds(pfWork) / Time_Rounds(pfYardstick));
    std::nth_element(vdRatios.begin(), vdRatios.begin() + RUNS / 2, vdRatios.end());
    return vdRatios[RUNS / 2];
}

struct Yardsticks {
    FT_Face ftFace = Open_Face();
    std::vector<uint16_t> vusString = Make_String(0);
    std::vector<ReadyGlyph> vstGlyphs = Make_ReadyGlyphs(ftFace, vusString);
    std::vector<uint16_t> vusBuffer = std::vector<uint16_t>(WIDTH * (SIZE + 16));
};

Yardsticks &Get_Yardsticks()
{
    static Yardsticks stYardsticks;
    return stYardsticks;
}

template <typename Work, typename FreeTypeWork>
void Run_Compared(benchmark::State &stState, Work pfWork, FreeTypeWork pfFreeType)
{
    for (auto stStep : stState) {
        static_cast<void>(stStep);
        pfWork();
    }
    Yardsticks &stYardsticks = Get_Yardsticks();
    stState.counters["x_cached"] =
        Compare_Work(pfWork, [&] { Draw_Ready(stYardsticks.vstGlyphs, stYardsticks.vusBuffer.data()); });
    stState.counters["x_freetype"] = Compare_Work(pfWork, pfFreeType);
}

/* The string that most figures are about. */
void Render_Seen()
{
    Render_String(Get_Yardsticks().ftFace, Get_Yardsticks().vusString);
}

void Yardstick_Cached(benchmark::State &stState)
{
    Yardsticks &stYardsticks = Get_Yardsticks();
    Run_Compared(
        stState, [&] { Draw_Ready(stYardsticks.vstGlyphs, stYardsticks.vusBuffer.data()); }, Render_Seen);
}

void Yardstick_FreeType(benchmark::State &stState)
{
    Run_Compared(stState, Render_Seen, Render_Seen);
}

void Draw_String(const std::vector<uint16_t> &vusString, uint16_t *pusBuffer)
{
    uint32_t auiLineWidth[60] = {};
    uint32_t uiWidth = 0;
    uint32_t uiHeight = 0;
    zyr_font_setDestBuf(pusBuffer);
    zyr_font_setDestRegion(1920, 545, 1920);
    zyr_font_setFontSize(0, SIZE, SIZE, 0, 0);
    zyr_font_calcRegion(vusString.data(), GLYPH_NUMS, SIZE, &uiWidth, &uiHeight, auiLineWidth);
    zyr_font_setDestRegion(uiWidth, uiHeight, uiWidth);
    zyr_font_clearDestBuf(0);
    zyr_font_setFontSize(0, SIZE, SIZE, 0, 0);
    zyr_font_setFontColor(COLOR, COLOR, 0, 0);
    zyr_font_displayString(vusString.data(), GLYPH_NUMS, auiLineWidth, SIZE);
}

void FontString(benchmark::State &stState)
{
    zyr_font_init();
    std::vector<uint16_t> vusBuffer(size_t{1920} * 545);
    const std::vector<uint16_t> vusString = Make_String(0);
    Run_Compared(
        stState, [&] { Draw_String(vusString, vusBuffer.data()); }, Render_Seen);
    zyr_font_close();
}

/* 279 strings of 40 characters go through all Korean syllables, more than the renderer keeps. */
void FontNewString(benchmark::State &stState)
{
    zyr_font_init();
    std::vector<uint16_t> vusBuffer(size_t{1920} * 545);
    std::vector<std::vector<uint16_t>> vvusStrings;
    for (uint32_t uiString = 0; uiString < 279; ++uiString)
        vvusStrings.push_back(Make_String(uiString * 40 * 37));
    size_t uiOwn = 0;
    size_t uiOther = 0;
    Run_Compared(
        stState, [&] { Draw_String(vvusStrings[uiOwn++ % vvusStrings.size()], vusBuffer.data()); },
        [&] { Render_String(Get_Yardsticks().ftFace, vvusStrings[uiOther++ % vvusStrings.size()]); });
    zyr_font_close();
}

void DisplayString(benchmark::State &stState)
{
    zyr_host_setProperty("ro.board.platform", "zyr72xx");
    zyr_host_setProperty("persist.sys.output_mode", "1");
    if (zyr_display_open() != 0) {
        stState.SkipWithError("the display does not open");
        return;
    }
    const std::vector<uint16_t> vusString = Make_String(0);
    Run_Compared(
        stState, [&] { zyr_display_displayString(vusString.data(), GLYPH_NUMS); }, Render_Seen);
    zyr_display_close();
}

BENCHMARK(Yardstick_Cached)->Name("Yardstick/Cached")->Unit(benchmark::kMicrosecond);
BENCHMARK(Yardstick_FreeType)->Name("Yardstick/FreeType")->Unit(benchmark::kMicrosecond);
BENCHMARK(FontString)->Unit(benchmark::kMicrosecond);
BENCHMARK(FontNewString)->Unit(benchmark::kMicrosecond);
BENCHMARK(DisplayString)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();

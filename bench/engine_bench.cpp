/* engine_bench OPERATION FILE [ROUNDS [LINE_ENDS]]: do one thing with a subtitle file, again and again, and print what it
 * costs. script/bench puts the figures beside those of other software; callgrind counts inside Run_Measured().
 *
 *   read       open, every frame, close          index     open and close
 *   rewound    the same as read, with a seek to 0 first, so that nothing is passed over whatever the order
 *   firstseek  the first seek, to the last frame seek      seeks to any time with the frame behind them
 *   loop       the file by a loop that looks at each byte: line ends and digits
 *   string     40 Korean characters of 32 pixels seen before: measured, cleared, drawn (FILE is not looked at)
 *   newstring  the same with characters never seen
 *   caption    a caption change at HDMI 1080p, from the call to the device's update
 *   bits       a bare loop that clears 1280 x 32 pixels and sets the bits of 40 ready bitmaps
 */
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <bit>
#include <cstring>
#include <string>

#include "bench_clock.h"
#include "zyr/zyr_display.h"
#include "zyr/zyr_font.h"
#include "zyr/zyr_host.h"
#include "zyr/zyr_subtitle.h"

namespace
{

constexpr uint32_t SEEKS = 200;
constexpr uint32_t STRINGS = 20;
constexpr uint32_t GLYPH_NUMS = 40;
constexpr uint32_t SIZE = 32;
constexpr uint16_t COLOR = 0x8410;

std::string s_strFile;
std::string s_strMovie;
uint32_t s_uiFrames = 0;
uint32_t s_uiLastStart = 0; // ms
uint32_t s_uiAllocs = 0;    // while the frames were read
uint64_t s_ullAsked = 0;    // bytes

bool Get_Frame()
{
    uint32_t uiStream = 0;
    uint32_t uiLines = 0;
    uint32_t uiLength = 0;
    int32_t iStart = 0;
    int32_t iEnd = 0;
    uint8_t *pucText = nullptr;
    if (zyrSubtitle_getFrame(&uiStream, &iStart, &iEnd, &uiLines, &uiLength, &pucText) != 0) return false;
    s_uiLastStart = static_cast<uint32_t>(iStart);
    return true;
}

void Open_File()
{
    Check(zyrSubtitle_open(s_strMovie.c_str(), 0) == 0, "open");
}

void Close_File()
{
    zyrSubtitle_close();
}

void Read_Frames()
{
    s_uiFrames = 0;
    const uint32_t uiAllocs = zyr_host_allocations();
    while (Get_Frame()) ++s_uiFrames;
    s_uiAllocs = zyr_host_allocations() - uiAllocs;
}

uint32_t Read_File()
{
    Open_File();
    Read_Frames();
    Close_File();
    return 1;
}

uint32_t Read_Rewound()
{
    Open_File();
    Check(zyrSubtitle_seek(0) == 0, "seek");
    Read_Frames();
    Close_File();
    return 1;
}

uint32_t Index_File()
{
    Open_File();
    Close_File();
    return 1;
}

void Open_ToSeek()
{
    if (s_uiFrames == 0) Read_File();
    Open_File();
}

uint32_t Seek_Last()
{
    Check(zyrSubtitle_seek(s_uiLastStart) == 0, "seek");
    return 1;
}

/* Whatever the first seek remembers is there. */
void Open_ToSeekAgain()
{
    static uint32_t s_uiLast = 0;
    if (s_uiFrames == 0) {
        Read_File();
        s_uiLast = s_uiLastStart;
    }
    s_uiLastStart = s_uiLast;
    Open_File();
    Seek_Last();
}

uint32_t Seek_Anywhere()
{
    const uint32_t uiLast = s_uiLastStart;
    uint64_t ullState = 88172645463325252u;
    for (uint32_t uiSeek = 0; uiSeek < SEEKS; ++uiSeek) {
        ullState ^= ullState << 13;
        ullState ^= ullState >> 7;
        ullState ^= ullState << 17;
        Check(zyrSubtitle_seek(static_cast<uint32_t>(ullState % uiLast)) == 0 && Get_Frame(), "seek");
    }
    return SEEKS;
}

volatile uint32_t g_uiSink = 0;

uint32_t Loop_File()
{
    static std::array<uint8_t, 65536> s_aucBlock;
    const int iFile = open(s_strFile.c_str(), O_RDONLY);
    uint32_t uiSum = 0;
    uint32_t uiLineEnds = 0;
    uint8_t ucPrev = 0;
    for (ssize_t iRead = 0; (iRead = read(iFile, s_aucBlock.data(), s_aucBlock.size())) > 0;)
        for (ssize_t iPos = 0; iPos < iRead; ++iPos) {
            const uint8_t ucByte = s_aucBlock[static_cast<size_t>(iPos)];
            if (ucByte == 0x0A && ucPrev == 0x0D) ++uiLineEnds;
            if (ucByte >= '0' && ucByte <= '9') uiSum = uiSum * 10 + ucByte - '0';
            ucPrev = ucByte;
        }
    close(iFile);
    g_uiSink = uiSum + uiLineEnds;
    return 1;
}

using KoreanString = std::array<uint16_t, GLYPH_NUMS + 1>;
std::array<uint16_t, size_t{1920} * 545> s_ausPixels;

KoreanString Make_String(uint32_t uiFirst)
{
    KoreanString ausString = {};
    for (uint32_t uiChar = 0; uiChar < GLYPH_NUMS; ++uiChar)
        ausString[uiChar] = static_cast<uint16_t>(0xAC00 + (uiFirst + uiChar * 37) % 11172);
    return ausString;
}

void Draw_String(const KoreanString &ausString)
{
    uint32_t auiLineWidth[60] = {};
    uint32_t uiWidth = 0;
    uint32_t uiHeight = 0;
    zyr_font_setDestBuf(s_ausPixels.data());
    zyr_font_setDestRegion(1920, 545, 1920);
    zyr_font_setFontSize(0, SIZE, SIZE, 0, 0);
    zyr_font_calcRegion(ausString.data(), GLYPH_NUMS, SIZE, &uiWidth, &uiHeight, auiLineWidth);
    zyr_font_setDestRegion(uiWidth, uiHeight, uiWidth);
    zyr_font_clearDestBuf(0);
    zyr_font_setFontSize(0, SIZE, SIZE, 0, 0);
    zyr_font_setFontColor(COLOR, COLOR, 0, 0);
    zyr_font_displayString(ausString.data(), GLYPH_NUMS, auiLineWidth, SIZE);
}

void Open_Font()
{
    Check(zyr_font_init() == 0, "the font");
    Draw_String(Make_String(0));
}

void Close_Font()
{
    zyr_font_close();
}

uint32_t Draw_SeenString()
{
    static const KoreanString s_ausString = Make_String(0);
    for (uint32_t uiString = 0; uiString < STRINGS; ++uiString) Draw_String(s_ausString);
    return STRINGS;
}

/* Each next string goes on through all Korean syllables, more than the renderer keeps. */
uint32_t Draw_NewString()
{
    static uint32_t s_uiNext = 0;
    for (uint32_t uiString = 0; uiString < STRINGS; ++uiString) {
        s_uiNext += GLYPH_NUMS * 37;
        Draw_String(Make_String(s_uiNext));
    }
    return STRINGS;
}

void Open_Display()
{
    zyr_host_setProperty("ro.board.platform", "zyr72xx");
    zyr_host_setProperty("persist.sys.output_mode", "1");
    Check(zyr_display_open() == 0, "the display");
    const KoreanString ausString = Make_String(0);
    zyr_display_displayString(ausString.data(), GLYPH_NUMS);
}

void Close_Display()
{
    zyr_display_close();
}

uint32_t Show_Captions()
{
    const KoreanString ausString = Make_String(0);
    for (uint32_t uiString = 0; uiString < STRINGS; ++uiString)
        zyr_display_displayString(ausString.data(), GLYPH_NUMS);
    return STRINGS;
}

/* Masks of four pixels, by their bits. */
constexpr auto MaskTable = [] {
    std::array<uint64_t, 16> aullTable = {};
    for (uint32_t uiBits = 0; uiBits < 16; ++uiBits) {
        std::array<uint16_t, 4> ausMask = {};
        for (uint32_t uiPixel = 0; uiPixel < 4; ++uiPixel)
            ausMask[uiPixel] = (uiBits & (8u >> uiPixel)) != 0 ? 0xFFFF : 0;
        aullTable[uiBits] = std::bit_cast<uint64_t>(ausMask);
    }
    return aullTable;
}();

void Set_Bits(uint16_t *pusPixels, uint32_t uiBits)
{
    constexpr uint64_t ullColor = COLOR * 0x0001000100010001u;
    uint64_t aullPixels[2];
    memcpy(aullPixels, pusPixels, sizeof(aullPixels));
    for (uint32_t uiHalf = 0; uiHalf < 2; ++uiHalf) {
        const uint64_t ullMask = MaskTable[uiHalf == 0 ? uiBits >> 4 : uiBits & 15];
        aullPixels[uiHalf] = (aullPixels[uiHalf] & ~ullMask) | (ullColor & ullMask);
    }
    memcpy(pusPixels, aullPixels, sizeof(aullPixels));
}

/* Bitmaps about as full as those of Korean characters: 27 rows of four bytes, half of the bits set. */
uint32_t Set_ReadyBits()
{
    constexpr uint32_t ROWS = 27;
    constexpr size_t WIDTH = size_t{GLYPH_NUMS} * SIZE;
    static std::array<std::array<uint8_t, 4>, ROWS * GLYPH_NUMS> s_aaucRows;
    for (size_t uiRow = 0; uiRow < s_aaucRows.size(); ++uiRow)
        s_aaucRows[uiRow] = {0x3C, static_cast<uint8_t>(uiRow * 37), static_cast<uint8_t>(uiRow * 91), 0x78};
    for (uint32_t uiString = 0; uiString < STRINGS; ++uiString) {
        memset(s_ausPixels.data(), 0, WIDTH * SIZE * sizeof(uint16_t));
        for (uint32_t uiRow = 0; uiRow < s_aaucRows.size(); ++uiRow)
            for (uint32_t uiByte = 0; uiByte < 4; ++uiByte)
                Set_Bits(s_ausPixels.data() + (uiRow % ROWS + 3) * WIDTH + size_t{uiRow / ROWS} * SIZE +
                             size_t{uiByte} * 8,
                         s_aaucRows[uiRow][uiByte]);
        g_uiSink = s_ausPixels[WIDTH * 4];
    }
    return STRINGS;
}

constexpr Operation OPERATIONS[] = {
    {"read", nullptr, Read_File, nullptr},
    {"rewound", nullptr, Read_Rewound, nullptr},
    {"index", nullptr, Index_File, nullptr},
    {"firstseek", Open_ToSeek, Seek_Last, Close_File},
    {"seek", Open_ToSeekAgain, Seek_Anywhere, Close_File},
    {"loop", nullptr, Loop_File, nullptr},
    {"string", Open_Font, Draw_SeenString, Close_Font},
    {"newstring", Open_Font, Draw_NewString, Close_Font},
    {"caption", Open_Display, Show_Captions, Close_Display},
    {"bits", nullptr, Set_ReadyBits, nullptr},
};

int32_t Count_Asked(int iCall, uint32_t uiAsked, int32_t iReal, void *)
{
    if (iCall == ZYR_HOST_READ) s_ullAsked += uiAsked;
    return iReal;
}

} // namespace

int main(int iArguments, char **ppszArguments)
{
    const Operation *const pstOperation =
        iArguments < 3 ? nullptr : Find_Operation(OPERATIONS, std::size(OPERATIONS), ppszArguments[1]);
    if (pstOperation == nullptr) {
        fprintf(stderr, "usage: engine_bench OPERATION FILE [ROUNDS [LINE_ENDS]]\n");
        return 2;
    }
    s_strFile = ppszArguments[2];
    s_strMovie = s_strFile.substr(0, s_strFile.rfind('.')) + ".avi";
    zyr_host_setLineEnds(iArguments > 4 ? atoi(ppszArguments[4]) : 0);
    Measure_Operation(*pstOperation,
                      static_cast<uint32_t>(std::max(1, iArguments > 3 ? atoi(ppszArguments[3]) : 5)));
    if (s_uiFrames != 0 && pstOperation->pfFinish == nullptr) {
        zyr_host_setFileHook(Count_Asked, nullptr);
        pstOperation->pfRun();
        printf("frames %u\nallocs %u\nasked %llu\n", s_uiFrames, s_uiAllocs,
               static_cast<unsigned long long>(s_ullAsked));
    }
    return 0;
}

/* Any text, for any output, size and place: on the display, and in a buffer without a pixel to spare, on a device and
 * with memory that fail at times. */

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_MODULE_H
#include FT_SYSTEM_H

#include "fuzz_input.h"
#include "zyr/zyr_display.h"
#include "zyr/zyr_font.h"
#include "zyr/zyr_host.h"

const size_t g_uiSteeringBytes = 24;

namespace
{

constexpr uint32_t MAX_LINES = 60;
constexpr size_t MAX_INPUT_BYTES =
    600; // more characters than a display has room for take long and show nothing new

bool s_bOpen;
uint32_t s_uiFailingMalloc; // 1 = the next allocation fails; 0 = none
bool s_bFailFromThenOn;

bool Is_MallocDue()
{
    if (s_uiFailingMalloc == 0) return false;
    if (s_uiFailingMalloc > 1) {
        --s_uiFailingMalloc;
        return false;
    }
    if (!s_bFailFromThenOn) s_uiFailingMalloc = 0;
    return true;
}

void *Allocate_ForFreeType(FT_Memory, long lBytes)
{
    return Is_MallocDue() ? nullptr : std::malloc(static_cast<size_t>(lBytes));
}

void Free_ForFreeType(FT_Memory, void *pvBlock)
{
    std::free(pvBlock);
}

void *Reallocate_ForFreeType(FT_Memory, long, long lBytes, void *pvBlock)
{
    return Is_MallocDue() ? nullptr : std::realloc(pvBlock, static_cast<size_t>(lBytes));
}

} // namespace

// The linker puts these in the place of the renderer's own calls, so that its memory can fail as well.
extern "C" void *__real_malloc(size_t uiBytes);
extern "C" void *__wrap_malloc(size_t uiBytes)
{
    constexpr size_t GLYPH_CACHE_BYTES = 512 * 1024;
    return uiBytes == GLYPH_CACHE_BYTES && Is_MallocDue() ? nullptr : __real_malloc(uiBytes);
}

extern "C" FT_Error __wrap_FT_Init_FreeType(FT_Library *pstLibrary)
{
    if (Is_MallocDue()) return FT_Err_Out_Of_Memory;
    // FT_Done_FreeType() gives it back through its own free.
    auto *const pstMemory = static_cast<FT_Memory>(std::malloc(sizeof(FT_MemoryRec_)));
    *pstMemory = {nullptr, Allocate_ForFreeType, Free_ForFreeType, Reallocate_ForFreeType};
    const FT_Error iError = FT_New_Library(pstMemory, pstLibrary);
    if (iError != 0)
        std::free(pstMemory);
    else
        FT_Add_Default_Modules(*pstLibrary);
    return iError;
}

namespace
{

void Set_Number(const char *pszKey, uint8_t ucValue)
{
    zyr_host_setProperty(pszKey, std::to_string(ucValue).c_str());
}

void Choose_Output(FuzzInput &stInput)
{
    zyr_host_setProperty("ro.board.platform", (stInput.Take_Byte() & 1) != 0 ? "zyr741x" : "zyr72xx");
    Set_Number("persist.sys.output_mode", stInput.Take_Byte() % 5);
    Set_Number("persist.sys.hdmi_resolution", stInput.Take_Byte() % 20);
    Set_Number("persist.sys.composite_mode", stInput.Take_Byte() % 3);
    Set_Number("persist.sys.component_mode", stInput.Take_Byte() % 3);
}

/* What is left of the input, in a block that ends where the text does. */
std::vector<uint16_t> Take_Text(const FuzzInput &stInput)
{
    std::vector<uint16_t> ausText;
    const std::span<const uint8_t> aucRest = stInput.Get_Rest();
    for (size_t uiByte = 0; uiByte + 1 < aucRest.size(); uiByte += 2)
        ausText.push_back(static_cast<uint16_t>(aucRest[uiByte] | aucRest[uiByte + 1] << 8));
    ausText.push_back(0);
    ausText.shrink_to_fit();
    return ausText;
}

/* What is shown in place of a caption stays empty, whatever is drawn in front of it. */
void Expect_EmptyBuffer()
{
    constexpr size_t FIRST_PIXEL = 2 * size_t{1047896}, PIXELS = 2710 / 2;
    const uint16_t *const pusMemory = zyr_host_captionMemory(nullptr);
    if (pusMemory == nullptr) return;
    const uint16_t *const pusBuffer = pusMemory + FIRST_PIXEL;
    Demand(std::all_of(pusBuffer, pusBuffer + PIXELS, [](uint16_t usPixel) { return usPixel == 0; }),
           "nothing is drawn behind a drawing buffer");
}

void Show_OnDisplay(FuzzInput stInput)
{
    Choose_Output(stInput);
    const uint32_t uiFontSize = 24u + stInput.Take_Byte() % 5 * 4u;
    const uint32_t uiPosition = stInput.Take_Number();
    const std::vector<uint16_t> ausText = Take_Text(stInput);
    zyr_display_system_init(); // the output may be another one now
    zyr_display_setFontSize(uiFontSize);
    zyr_display_displayString(ausText.data(), static_cast<int32_t>(ausText.size() - 1));
    zyr_display_setPosition(uiPosition);
    std::vector<uint8_t> aucPicture(size_t{64} * 48 * 4);
    zyr_host_composeCaption(aucPicture.data(), 64, 48);
    Expect_EmptyBuffer();
    zyr_display_clearString();
}

/* Open the display anew, on a device or with memory that fails. It stays open from run to run: opening clears four
 * megabytes. */
void Reopen_Display(FuzzInput &stInput)
{
    zyr_host_failDevice(stInput.Take_Byte() % 4);
    s_uiFailingMalloc = stInput.Take_Byte();
    s_bFailFromThenOn = stInput.Take_Byte() % 2 == 1;
    zyr_display_open();
    zyr_host_failDevice(0);
}

void Draw_Boxes(FuzzInput &stInput)
{
    const uint32_t uiX = stInput.Take_Number() - 0x4000u, uiY = stInput.Take_Number() - 0x4000u;
    const uint32_t uiWidth = stInput.Take_Number(), uiHeight = stInput.Take_Number();
    zyr_fontDraw_clearFontBG(uiX, uiY, uiWidth, uiHeight);
    zyr_fontDraw_drawHighlighting(uiX, uiY, uiWidth, uiHeight, stInput.Take_Byte());
    zyr_fontDraw_drawUnderline(uiX, uiY, uiWidth, uiHeight);
}

void Draw_Bits(FuzzInput &stInput)
{
    const auto iX = static_cast<int32_t>(stInput.Take_Number()) - 0x200;
    const auto iY = static_cast<int32_t>(stInput.Take_Number()) - 0x200;
    const uint32_t uiWidth = stInput.Take_Byte(), uiRows = stInput.Take_Byte();
    const std::vector<uint8_t> aucBits((uiWidth + 7) / 8 * size_t{uiRows}, 0xA5);
    zyr_fontDraw_drawBitmapMono(iX, iY, uiWidth, uiRows, static_cast<int32_t>((uiWidth + 7) / 8),
                                aucBits.data());
}

void Draw_InBuffer(FuzzInput stInput)
{
    const uint32_t uiWidth = 1u + stInput.Take_Byte(), uiHeight = 1u + stInput.Take_Byte();
    const uint32_t uiPitch = std::max(uiWidth + stInput.Take_Byte() % 9u, 5u) - 4u; // also below the width
    std::vector<uint16_t> ausPixels(size_t{uiPitch} * uiHeight);
    zyr_font_setDestBuf(ausPixels.data());
    zyr_font_setDestRegion(uiWidth, uiHeight, uiPitch);
    zyr_font_clearDestBuf(stInput.Take_Byte());
    uint8_t aucSteps[7];
    for (uint8_t &ucStep : aucSteps) ucStep = stInput.Take_Byte();
    zyr_font_setDirection(aucSteps[0] % 2, aucSteps[1] % 3);
    zyr_font_setFontSize(aucSteps[2] % 6, aucSteps[3] % 64, aucSteps[4] % 64, aucSteps[5] % 16,
                         aucSteps[6] % 16);
    Draw_Boxes(stInput);
    Draw_Bits(stInput);
    const uint8_t ucAttribute = stInput.Take_Byte();
    const uint32_t uiX = stInput.Take_Number(), uiY = stInput.Take_Number();
    const std::vector<uint16_t> ausText = Take_Text(stInput);
    std::vector<uint32_t> auiWidths(MAX_LINES);
    uint32_t uiBoxWidth = 0, uiBoxHeight = 0;
    const auto iLength = static_cast<int32_t>(ausText.size() - 1);
    zyr_font_calcRegion(ausText.data(), iLength, 20, &uiBoxWidth, &uiBoxHeight, auiWidths.data());
    Demand(uiBoxWidth <= uiWidth && uiBoxHeight <= MAX_LINES * 20, "a measured box fits its region");
    zyr_font_displayString(ausText.data(), iLength, auiWidths.data(), 20);
    zyr_font_displayChar(ucAttribute, ausText.back(), ausText.front(), uiX, uiY);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucData, size_t uiSize)
{
    if (uiSize > MAX_INPUT_BYTES) return 0;
    FuzzInput stInput(pucData, uiSize);
    const uint8_t ucOptions = stInput.Take_Byte();
    if (ucOptions < 4) Reopen_Display(stInput);
    if (ucOptions >= 252) s_uiFailingMalloc = stInput.Take_Byte(); // while glyphs are made
    if (ucOptions % 2 == 0) Show_OnDisplay(stInput);
    if (!s_bOpen || ucOptions < 4 || ucOptions >= 252) { // what failed has closed it
        s_uiFailingMalloc = 0;
        FuzzInput stNothing(nullptr, 0);
        Choose_Output(stNothing); // all zeros: one that there is
        s_bOpen = zyr_display_open() == 0;
        Demand(s_bOpen, "the display opens when nothing fails");
    }
    if (ucOptions % 4 != 0) Draw_InBuffer(stInput);
    return 0;
}

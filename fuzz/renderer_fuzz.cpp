/* Any text, for any output, size and place: on the display, and in a buffer without a pixel to spare. */

#include <string>
#include <vector>

#include "fuzz_input.h"
#include "zyr/zyr_display.h"
#include "zyr/zyr_font.h"
#include "zyr/zyr_host.h"

namespace
{

constexpr uint32_t MAX_LINES = 60;

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

void Show_OnDisplay(FuzzInput stInput)
{
    Choose_Output(stInput);
    const uint32_t uiFontSize = 24u + stInput.Take_Byte() % 5 * 4u;
    const uint32_t uiPosition = stInput.Take_Number();
    const std::vector<uint16_t> ausText = Take_Text(stInput);
    if (zyr_display_open() != 0) return;
    zyr_display_setFontSize(uiFontSize);
    zyr_display_displayString(ausText.data(), static_cast<int32_t>(ausText.size() - 1));
    zyr_display_setPosition(uiPosition);
    std::vector<uint8_t> aucPicture(size_t{64} * 48 * 4);
    zyr_host_composeCaption(aucPicture.data(), 64, 48);
    zyr_display_clearString();
    zyr_display_close();
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
    const uint32_t uiPitch = uiWidth + stInput.Take_Byte() % 9u;
    std::vector<uint16_t> ausPixels(size_t{uiPitch} * uiHeight);
    zyr_font_setDestBuf(ausPixels.data());
    zyr_font_setDestRegion(uiWidth, uiHeight, uiPitch);
    zyr_font_clearDestBuf(stInput.Take_Byte());
    zyr_font_setDirection(stInput.Take_Byte() % 2, stInput.Take_Byte() % 3);
    zyr_font_setFontSize(stInput.Take_Byte() % 6, stInput.Take_Byte() % 64, stInput.Take_Byte() % 64,
                         stInput.Take_Byte() % 16, stInput.Take_Byte() % 16);
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
    const FuzzInput stInput(pucData, uiSize);
    zyr_host_reset();
    Show_OnDisplay(stInput);
    Demand(zyr_font_init() == 0, "the caption font opens");
    Draw_InBuffer(stInput);
    zyr_font_close();
    return 0;
}

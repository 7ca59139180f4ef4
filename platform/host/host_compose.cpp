#include "host_device.h"

#include "zyr/zyr_host.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr int64_t RGBA_BYTES = 4;
constexpr int64_t PIXEL_BYTES = 2;

// A stretch of box coordinates, empty when the end is not above the start.
struct Span {
    int64_t llFirst;
    int64_t llEnd;
};

// The part of a box side of uiSize pixels at iPos that lies in 0..uiLimit of the picture, counted from the
// box.
Span Clip_Side(int32_t iPos, uint32_t uiSize, uint32_t uiLimit)
{
    const int64_t llPos = iPos;
    return {std::max<int64_t>(0, -llPos), std::min<int64_t>(uiSize, uiLimit - llPos)};
}

void Write_Pixel(uint8_t *pucRgba, uint16_t usPixel)
{
    const uint32_t uiRed = usPixel >> 11;
    const uint32_t uiGreen = (usPixel >> 5) & 0x3F;
    const uint32_t uiBlue = usPixel & 0x1F;
    pucRgba[0] = static_cast<uint8_t>(uiRed << 3 | uiRed >> 2);
    pucRgba[1] = static_cast<uint8_t>(uiGreen << 2 | uiGreen >> 4);
    pucRgba[2] = static_cast<uint8_t>(uiBlue << 3 | uiBlue >> 2);
    pucRgba[3] = 0xFF;
}

// Draws a row of the box, from llOffset in the caption memory on, as far as the memory goes. The buffer may
// begin at any address the library names, an odd one too.
void Compose_Row(uint8_t *pucRgba, int64_t llOffset, int64_t llPixels)
{
    const int64_t llInMemory = (int64_t{HOST_PLANE_BYTES} - llOffset) / PIXEL_BYTES;
    const uint8_t *pucSource = Get_HostPlaneMemory() + llOffset;
    for (int64_t llPixel = 0; llPixel < std::min(llPixels, llInMemory); ++llPixel) {
        uint16_t usPixel;
        memcpy(&usPixel, pucSource + llPixel * PIXEL_BYTES, sizeof(usPixel));
        if (usPixel != 0) Write_Pixel(pucRgba + llPixel * RGBA_BYTES, usPixel);
    }
}

bool Is_Shown(const HostPlane &stPlane)
{
    return stPlane.bEnabled && stPlane.bConfigured && stPlane.bUpdated;
}

} // namespace

int zyr_host_getCaptionBox(int32_t *piX, int32_t *piY, uint32_t *puiWidth, uint32_t *puiHeight)
{
    const HostPlane &stPlane = *Get_HostPlane();
    if (!Is_Shown(stPlane)) return -1;
    if (piX != nullptr) *piX = stPlane.stConfig.iX;
    if (piY != nullptr) *piY = stPlane.stConfig.iY;
    if (puiWidth != nullptr) *puiWidth = stPlane.stConfig.uiWidth;
    if (puiHeight != nullptr) *puiHeight = stPlane.stConfig.uiHeight;
    return 0;
}

int zyr_host_composeCaption(uint8_t *pucRgba, uint32_t uiWidth, uint32_t uiHeight)
{
    const HostPlane *pstPlane = Get_HostPlane();
    if (pucRgba == nullptr || !Is_Shown(*pstPlane)) return -1;
    const HostPlaneConfig &stConfig = pstPlane->stConfig;
    const Span stColumns = Clip_Side(stConfig.iX, stConfig.uiWidth, uiWidth);
    const Span stRows = Clip_Side(stConfig.iY, stConfig.uiHeight, uiHeight);
    const int64_t llBuffer = int64_t{pstPlane->uiShownPhys} - HOST_PLANE_PHYS;
    if (stColumns.llFirst >= stColumns.llEnd || llBuffer < 0) return 0;
    // A wider pitch leads out of the memory with the second row all the same, and the products stay in range.
    const int64_t llPitch = std::min(stConfig.uiSourceWidth, HOST_PLANE_BYTES);
    for (int64_t llRow = stRows.llFirst; llRow < stRows.llEnd; ++llRow) {
        const int64_t llOffset = llBuffer + (llRow * llPitch + stColumns.llFirst) * PIXEL_BYTES;
        if (llOffset >= HOST_PLANE_BYTES) break;
        const int64_t llPixel = (stConfig.iY + llRow) * uiWidth + stConfig.iX + stColumns.llFirst;
        Compose_Row(pucRgba + llPixel * RGBA_BYTES, llOffset, stColumns.llEnd - stColumns.llFirst);
    }
    return 0;
}

#include "picture.h"

#include <algorithm>

Picture Make_Picture(uint32_t uiWidth, uint32_t uiHeight)
{
    Picture stPicture{uiWidth, uiHeight, std::vector<uint8_t>(size_t{uiWidth} * uiHeight * 4, 0)};
    for (size_t uiByte = 3; uiByte < stPicture.aucRgba.size(); uiByte += 4) stPicture.aucRgba[uiByte] = 0xFF;
    return stPicture;
}

// Old pixels from Start to End make new pixel uiNew, at least one of them.
struct Span {
    uint32_t uiStart;
    uint32_t uiEnd;
};
static Span Get_Span(uint32_t uiNew, uint32_t uiOldSize, uint32_t uiNewSize)
{
    const auto uiStart = static_cast<uint32_t>(uint64_t{uiNew} * uiOldSize / uiNewSize);
    const auto uiEnd = static_cast<uint32_t>((uint64_t{uiNew} + 1) * uiOldSize / uiNewSize);
    return {uiStart, std::max(uiEnd, uiStart + 1)};
}

static void Set_MeanPixel(const Picture &stPicture, Span stX, Span stY, uint8_t *pucPixel)
{
    uint32_t auiSum[4] = {};
    for (uint32_t uiY = stY.uiStart; uiY < stY.uiEnd; ++uiY) {
        const uint8_t *pucOld = &stPicture.aucRgba[(size_t{uiY} * stPicture.uiWidth + stX.uiStart) * 4];
        for (uint32_t uiByte = 0; uiByte < (stX.uiEnd - stX.uiStart) * 4; ++uiByte)
            auiSum[uiByte % 4] += pucOld[uiByte];
    }
    const uint32_t uiPixels = (stX.uiEnd - stX.uiStart) * (stY.uiEnd - stY.uiStart);
    for (int iPart = 0; iPart < 4; ++iPart)
        pucPixel[iPart] = static_cast<uint8_t>((auiSum[iPart] + uiPixels / 2) / uiPixels);
}

Picture Scale_Picture(const Picture &stPicture, uint32_t uiWidth, uint32_t uiHeight)
{
    if (stPicture.uiWidth == uiWidth && stPicture.uiHeight == uiHeight) return stPicture;
    Picture stScaled = Make_Picture(uiWidth, uiHeight);
    if (stPicture.aucRgba.empty()) return stScaled;
    uint8_t *pucPixel = stScaled.aucRgba.data();
    for (uint32_t uiY = 0; uiY < uiHeight; ++uiY) {
        const Span stY = Get_Span(uiY, stPicture.uiHeight, uiHeight);
        for (uint32_t uiX = 0; uiX < uiWidth; ++uiX, pucPixel += 4)
            Set_MeanPixel(stPicture, Get_Span(uiX, stPicture.uiWidth, uiWidth), stY, pucPixel);
    }
    return stScaled;
}

Picture Cut_Picture(const Picture &stPicture, uint32_t uiX, uint32_t uiY, uint32_t uiWidth, uint32_t uiHeight)
{
    Picture stCut = Make_Picture(uiWidth, uiHeight);
    if (uiX >= stPicture.uiWidth) return stCut;
    const uint32_t uiCopied = std::min(uiWidth, stPicture.uiWidth - uiX);
    for (uint32_t uiRow = 0; uiRow < uiHeight && uiY + uiRow < stPicture.uiHeight; ++uiRow) {
        const uint8_t *pucOld = &stPicture.aucRgba[(size_t{uiY + uiRow} * stPicture.uiWidth + uiX) * 4];
        std::copy_n(pucOld, size_t{uiCopied} * 4, &stCut.aucRgba[size_t{uiRow} * uiWidth * 4]);
    }
    return stCut;
}

void Paste_Picture(Picture &stTarget, const Picture &stSource, uint32_t uiX, uint32_t uiY)
{
    if (uiX >= stTarget.uiWidth) return;
    const uint32_t uiCopied = std::min(stSource.uiWidth, stTarget.uiWidth - uiX);
    for (uint32_t uiRow = 0; uiRow < stSource.uiHeight && uiY + uiRow < stTarget.uiHeight; ++uiRow)
        std::copy_n(&stSource.aucRgba[size_t{uiRow} * stSource.uiWidth * 4], size_t{uiCopied} * 4,
                    &stTarget.aucRgba[(size_t{uiY + uiRow} * stTarget.uiWidth + uiX) * 4]);
}

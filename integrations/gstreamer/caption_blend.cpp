#include "caption_blend.h"

#include <algorithm>
#include <array>
#include <cmath>

static constexpr uint32_t PIXEL_BYTES = 4;
static constexpr double FULL = 255;

bool Is_ByteFormat(const GstVideoFormatInfo *pstFormat)
{
    if (GST_VIDEO_FORMAT_INFO_IS_TILED(pstFormat) || GST_VIDEO_FORMAT_INFO_HAS_PALETTE(pstFormat) ||
        (GST_VIDEO_FORMAT_INFO_FLAGS(pstFormat) & GST_VIDEO_FORMAT_FLAG_COMPLEX) ||
        GST_VIDEO_FORMAT_INFO_BITS(pstFormat) != 8)
        return false;
    for (guint ui = 0; ui < GST_VIDEO_FORMAT_INFO_N_COMPONENTS(pstFormat); ++ui)
        if (GST_VIDEO_FORMAT_INFO_DEPTH(pstFormat, ui) != 8) return false;
    return true;
}

// A component of a pixel is a sum of blue, green, red and alpha, each 0 to 255 and multiplied by alpha.
using Weights = std::array<double, PIXEL_BYTES>;

static Weights Get_YuvWeights(const GstVideoInfo &stInfo, guint uiComponent)
{
    double dKr = 0.299;
    double dKb = 0.114;
    gst_video_color_matrix_get_Kr_Kb(stInfo.colorimetry.matrix, &dKr, &dKb);
    gint aiOffset[GST_VIDEO_MAX_COMPONENTS];
    gint aiScale[GST_VIDEO_MAX_COMPONENTS];
    gst_video_color_range_offsets(stInfo.colorimetry.range, stInfo.finfo, aiOffset, aiScale);
    const Weights adLuma = {dKb, 1 - dKr - dKb, dKr, 0};
    Weights adWeights = adLuma;
    if (uiComponent > 0) {
        const size_t uiHue = uiComponent == 1 ? 0 : 2; // how far blue or red is from the luma
        const double dRange = 2 * (1 - adLuma[uiHue]);
        for (size_t ui = 0; ui < PIXEL_BYTES; ++ui)
            adWeights[ui] = ((ui == uiHue ? 1 : 0) - adLuma[ui]) / dRange;
    }
    for (double &dWeight : adWeights) dWeight *= aiScale[uiComponent] / FULL;
    adWeights[3] = aiOffset[uiComponent] / FULL;
    return adWeights;
}

static Weights Get_Weights(const GstVideoInfo &stInfo, guint uiComponent)
{
    if (uiComponent == 3) return {0, 0, 0, 1};
    if (GST_VIDEO_INFO_IS_RGB(&stInfo)) {
        Weights adWeights = {};
        adWeights[2 - uiComponent] = 1;
        return adWeights;
    }
    return Get_YuvWeights(stInfo, uiComponent);
}

// Where a component lies in its plane, and how many pixels of the film one of its samples stands for.
struct ComponentPlace {
    uint32_t uiStep; // bytes from sample to sample
    uint32_t uiOffset;
    uint32_t uiShiftX;
    uint32_t uiShiftY;
};

static ComponentPlace Get_Place(const GstVideoFormatInfo *pstFormat, guint uiComponent)
{
    return {static_cast<uint32_t>(GST_VIDEO_FORMAT_INFO_PSTRIDE(pstFormat, uiComponent)),
            static_cast<uint32_t>(GST_VIDEO_FORMAT_INFO_POFFSET(pstFormat, uiComponent)),
            GST_VIDEO_FORMAT_INFO_W_SUB(pstFormat, uiComponent),
            GST_VIDEO_FORMAT_INFO_H_SUB(pstFormat, uiComponent)};
}

// The mean of the picture's pixels under a sample; what lies beside the picture is empty.
static Weights Get_Mean(const CaptionPicture &stPicture, const ComponentPlace &stPlace, uint32_t uiX,
                        uint32_t uiY)
{
    const ZyrCaptionBox &stBox = stPicture.stBox;
    const uint32_t uiLeft = std::max(uiX << stPlace.uiShiftX, stBox.uiX);
    const uint32_t uiTop = std::max(uiY << stPlace.uiShiftY, stBox.uiY);
    const uint32_t uiRight = std::min((uiX + 1) << stPlace.uiShiftX, stBox.uiX + stBox.uiWidth);
    const uint32_t uiBottom = std::min((uiY + 1) << stPlace.uiShiftY, stBox.uiY + stBox.uiHeight);
    Weights adMean = {};
    for (uint32_t uiRow = uiTop; uiRow < uiBottom; ++uiRow) {
        const size_t uiPixel = size_t{uiRow - stBox.uiY} * stBox.uiWidth + (uiLeft - stBox.uiX);
        const uint8_t *pucPixel = &stPicture.aucBgra[uiPixel * PIXEL_BYTES];
        for (uint32_t uiColumn = uiLeft; uiColumn < uiRight; ++uiColumn)
            for (double &dSum : adMean) dSum += *pucPixel++;
    }
    const double dPixels = 1U << (stPlace.uiShiftX + stPlace.uiShiftY);
    for (double &dSum : adMean) dSum /= dPixels;
    return adMean;
}

static uint8_t Round_Byte(double dValue)
{
    return static_cast<uint8_t>(std::lround(std::clamp(dValue, 0.0, FULL)));
}

static void Fill_Component(PlaneMarks &stMarks, const CaptionPicture &stPicture,
                           const ComponentPlace &stPlace, const Weights &adWeights)
{
    const uint32_t uiSamples = stMarks.uiRowBytes / stPlace.uiStep;
    for (uint32_t uiRow = 0; uiRow < stMarks.astRows.size(); ++uiRow) {
        for (uint32_t ui = 0; ui < uiSamples; ++ui) {
            const Weights adMean =
                Get_Mean(stPicture, stPlace, stMarks.uiX / stPlace.uiStep + ui, stMarks.uiY + uiRow);
            double dValue = 0;
            for (size_t uiByte = 0; uiByte < PIXEL_BYTES; ++uiByte)
                dValue += adMean[uiByte] * adWeights[uiByte];
            const size_t uiAt =
                size_t{uiRow} * stMarks.uiRowBytes + size_t{ui} * stPlace.uiStep + stPlace.uiOffset;
            stMarks.aucAdded[uiAt] = Round_Byte(dValue);
            stMarks.aucKept[uiAt] = Round_Byte(FULL - adMean[3]);
        }
    }
}

static PlaneMarks Make_EmptyMarks(const CaptionPicture &stPicture, guint uiPlane,
                                  const ComponentPlace &stPlace)
{
    const ZyrCaptionBox &stBox = stPicture.stBox;
    const auto pfLast = [](uint32_t uiEnd, uint32_t uiShift) { return (uiEnd - 1) >> uiShift; };
    const uint32_t uiLeft = stBox.uiX >> stPlace.uiShiftX;
    const uint32_t uiTop = stBox.uiY >> stPlace.uiShiftY;
    PlaneMarks stMarks;
    stMarks.uiPlane = uiPlane;
    stMarks.uiX = uiLeft * stPlace.uiStep;
    stMarks.uiY = uiTop;
    stMarks.uiRowBytes = (pfLast(stBox.uiX + stBox.uiWidth, stPlace.uiShiftX) - uiLeft + 1) * stPlace.uiStep;
    stMarks.astRows.resize(pfLast(stBox.uiY + stBox.uiHeight, stPlace.uiShiftY) - uiTop + 1);
    stMarks.aucAdded.resize(stMarks.astRows.size() * stMarks.uiRowBytes);
    stMarks.aucKept.resize(stMarks.aucAdded.size(), static_cast<uint8_t>(FULL));
    return stMarks;
}

static void Find_Rows(PlaneMarks &stMarks)
{
    const uint8_t *pucKept = stMarks.aucKept.data();
    const auto pfMarked = [](uint8_t ucKept) { return ucKept != 255; };
    for (PlaneMarks::Row &stRow : stMarks.astRows) {
        const uint8_t *const pucEnd = pucKept + stMarks.uiRowBytes;
        stRow.uiFirst = static_cast<uint32_t>(std::find_if(pucKept, pucEnd, pfMarked) - pucKept);
        stRow.uiEnd = stMarks.uiRowBytes;
        while (stRow.uiEnd > stRow.uiFirst && !pfMarked(pucKept[stRow.uiEnd - 1])) --stRow.uiEnd;
        pucKept = pucEnd;
    }
}

std::vector<PlaneMarks> Make_Marks(const CaptionPicture &stScaled, const GstVideoInfo &stInfo)
{
    std::vector<PlaneMarks> astMarks;
    if (stScaled.aucBgra.empty()) return astMarks;
    for (guint uiComponent = 0; uiComponent < GST_VIDEO_INFO_N_COMPONENTS(&stInfo); ++uiComponent) {
        const auto uiPlane = static_cast<guint>(GST_VIDEO_FORMAT_INFO_PLANE(stInfo.finfo, uiComponent));
        const ComponentPlace stPlace = Get_Place(stInfo.finfo, uiComponent);
        auto pstMarks = std::find_if(astMarks.begin(), astMarks.end(),
                                     [&](const PlaneMarks &stMarks) { return stMarks.uiPlane == uiPlane; });
        if (pstMarks == astMarks.end())
            pstMarks = astMarks.insert(pstMarks, Make_EmptyMarks(stScaled, uiPlane, stPlace));
        Fill_Component(*pstMarks, stScaled, stPlace, Get_Weights(stInfo, uiComponent));
    }
    for (PlaneMarks &stMarks : astMarks) Find_Rows(stMarks);
    return astMarks;
}

// A byte of the frame times what is kept of it, by 255, to the nearest: exact in 16 bits, so that it goes many at a step.
static void Blend_Row(uint8_t *__restrict pucTo, const uint8_t *__restrict pucAdded,
                      const uint8_t *__restrict pucKept, uint32_t uiBytes)
{
    for (uint32_t ui = 0; ui < uiBytes; ++ui) {
        const auto usProduct = static_cast<uint16_t>(pucTo[ui] * pucKept[ui] + 128);
        const auto usLeft = static_cast<uint16_t>(static_cast<uint16_t>(usProduct + (usProduct >> 8)) >> 8);
        const auto usSum = static_cast<uint16_t>(pucAdded[ui] + usLeft); // 256 where both were rounded up
        pucTo[ui] = static_cast<uint8_t>(usSum > 255 ? 255 : usSum);
    }
}

void Blend_Marks(const std::vector<PlaneMarks> &astMarks, GstVideoFrame &stFrame)
{
    for (const PlaneMarks &stMarks : astMarks) {
        auto *const pucPlane = static_cast<uint8_t *>(GST_VIDEO_FRAME_PLANE_DATA(&stFrame, stMarks.uiPlane));
        const gint iStride = GST_VIDEO_FRAME_PLANE_STRIDE(&stFrame, stMarks.uiPlane);
        for (uint32_t uiRow = 0; uiRow < stMarks.astRows.size(); ++uiRow) {
            const PlaneMarks::Row &stRow = stMarks.astRows[uiRow];
            const size_t uiAt = size_t{uiRow} * stMarks.uiRowBytes + stRow.uiFirst;
            uint8_t *const pucRow = pucPlane + static_cast<ptrdiff_t>(stMarks.uiY + uiRow) * iStride;
            Blend_Row(pucRow + stMarks.uiX + stRow.uiFirst, &stMarks.aucAdded[uiAt], &stMarks.aucKept[uiAt],
                      stRow.uiEnd - stRow.uiFirst);
        }
    }
}

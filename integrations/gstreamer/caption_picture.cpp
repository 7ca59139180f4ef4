#include "caption_picture.h"

#include <algorithm>
#include <cstring>
#include <mutex>

static constexpr uint32_t PIXEL_BYTES = 4;

static std::mutex s_stScreenLock;

// The renderer's pixels are opaque or not there: multiplied by their alpha already.
static void Cut_Box(const std::vector<uint8_t> &aucRgba, CaptionPicture &stPicture)
{
    const ZyrCaptionBox &stBox = stPicture.stBox;
    stPicture.aucBgra.resize(size_t{stBox.uiWidth} * stBox.uiHeight * PIXEL_BYTES);
    uint8_t *pucTo = stPicture.aucBgra.data();
    for (uint32_t uiRow = 0; uiRow < stBox.uiHeight; ++uiRow) {
        const size_t uiPixel = size_t{stBox.uiY + uiRow} * stPicture.stOutput.uiWidth + stBox.uiX;
        const uint8_t *pucFrom = &aucRgba[uiPixel * PIXEL_BYTES];
        for (uint32_t uiX = 0; uiX < stBox.uiWidth; ++uiX, pucFrom += PIXEL_BYTES, pucTo += PIXEL_BYTES) {
            pucTo[0] = pucFrom[2];
            pucTo[1] = pucFrom[1];
            pucTo[2] = pucFrom[0];
            pucTo[3] = pucFrom[3];
        }
    }
}

int Draw_Caption(const ScreenSettings &stSettings, const std::string &strText, CaptionPicture &stPicture)
{
    stPicture = {};
    if (strText.empty()) return ZYR_CAPTIONS_OK;
    zyrCaptions_getOutput(stSettings.uiOutput, &stPicture.stOutput);
    std::vector<uint8_t> aucRgba(size_t{stPicture.stOutput.uiWidth} * stPicture.stOutput.uiHeight *
                                 PIXEL_BYTES);
    const std::lock_guard<std::mutex> stGuard(s_stScreenLock);
    ZyrCaptionScreen *pstScreen = nullptr;
    int iResult = zyrCaptions_openScreen(stPicture.stOutput.pszName, stSettings.uiFontSize,
                                         stSettings.iPosition, &pstScreen);
    if (iResult != ZYR_CAPTIONS_OK) return iResult;
    iResult = zyrCaptions_draw(pstScreen, strText.c_str(), aucRgba.data(), &stPicture.stBox);
    zyrCaptions_closeScreen(pstScreen);
    if (iResult == ZYR_CAPTIONS_OK) Cut_Box(aucRgba, stPicture);
    return iResult;
}

static uint32_t Scale_Length(uint32_t uiLength, uint32_t uiTo, uint32_t uiFrom)
{
    return static_cast<uint32_t>((uint64_t{uiLength} * uiTo + uiFrom / 2) / uiFrom);
}

ZyrCaptionBox Place_Picture(const CaptionPicture &stPicture, uint32_t uiWidth, uint32_t uiHeight)
{
    const ZyrCaptionBox &stBox = stPicture.stBox;
    const ZyrCaptionOutput &stOutput = stPicture.stOutput;
    const uint32_t uiX = Scale_Length(stBox.uiX, uiWidth, stOutput.uiWidth);
    const uint32_t uiY = Scale_Length(stBox.uiY, uiHeight, stOutput.uiHeight);
    const uint32_t uiRight = Scale_Length(stBox.uiX + stBox.uiWidth, uiWidth, stOutput.uiWidth);
    const uint32_t uiBottom = Scale_Length(stBox.uiY + stBox.uiHeight, uiHeight, stOutput.uiHeight);
    return {uiX, uiY, uiRight - uiX, uiBottom - uiY};
}

static bool Convert_Pixels(const GstVideoInfo &stFrom, const uint8_t *pucFrom, const GstVideoInfo &stTo,
                           uint8_t *pucTo)
{
    GstBuffer *const pstFrom = gst_buffer_new_memdup(pucFrom, GST_VIDEO_INFO_SIZE(&stFrom));
    GstBuffer *const pstTo = gst_buffer_new_allocate(nullptr, GST_VIDEO_INFO_SIZE(&stTo), nullptr);
    GstVideoFrame stFromFrame;
    GstVideoFrame stToFrame;
    const bool bMapped = gst_video_frame_map(&stFromFrame, &stFrom, pstFrom, GST_MAP_READ) != FALSE &&
                         gst_video_frame_map(&stToFrame, &stTo, pstTo, GST_MAP_WRITE) != FALSE;
    GstVideoConverter *const pstConverter =
        bMapped
            ? gst_video_converter_new(&stFrom, &stTo,
                                      gst_structure_new("options", GST_VIDEO_CONVERTER_OPT_RESAMPLER_METHOD,
                                                        GST_TYPE_VIDEO_RESAMPLER_METHOD,
                                                        GST_VIDEO_RESAMPLER_METHOD_LINEAR, nullptr))
            : nullptr;
    if (pstConverter != nullptr) gst_video_converter_frame(pstConverter, &stFromFrame, &stToFrame);
    if (pstConverter != nullptr) gst_video_converter_free(pstConverter);
    if (bMapped) {
        gst_video_frame_unmap(&stFromFrame);
        gst_video_frame_unmap(&stToFrame);
        gst_buffer_extract(pstTo, 0, pucTo, GST_VIDEO_INFO_SIZE(&stTo));
    }
    gst_buffer_unref(pstFrom);
    gst_buffer_unref(pstTo);
    return pstConverter != nullptr;
}

CaptionPicture Scale_Picture(const CaptionPicture &stPicture, uint32_t uiWidth, uint32_t uiHeight)
{
    if (stPicture.aucBgra.empty()) return {};
    CaptionPicture stScaled;
    stScaled.stBox = Place_Picture(stPicture, uiWidth, uiHeight);
    stScaled.stOutput = {stPicture.stOutput.pszName, uiWidth, uiHeight};
    if (stScaled.stBox.uiWidth == 0 || stScaled.stBox.uiHeight == 0) return {};
    if (stScaled.stBox.uiWidth == stPicture.stBox.uiWidth &&
        stScaled.stBox.uiHeight == stPicture.stBox.uiHeight) {
        stScaled.aucBgra = stPicture.aucBgra;
        return stScaled;
    }
    GstVideoInfo stFrom;
    GstVideoInfo stTo;
    gst_video_info_set_format(&stFrom, GST_VIDEO_FORMAT_BGRA, stPicture.stBox.uiWidth,
                              stPicture.stBox.uiHeight);
    gst_video_info_set_format(&stTo, GST_VIDEO_FORMAT_BGRA, stScaled.stBox.uiWidth, stScaled.stBox.uiHeight);
    stScaled.aucBgra.resize(GST_VIDEO_INFO_SIZE(&stTo));
    if (!Convert_Pixels(stFrom, stPicture.aucBgra.data(), stTo, stScaled.aucBgra.data())) return {};
    return stScaled;
}

// The format of compositions is a 32-bit word of alpha, red, green and blue in the machine's byte order.
static GstBuffer *Make_CompositionPixels(const CaptionPicture &stPicture)
{
    GstBuffer *const pstPixels = gst_buffer_new_memdup(stPicture.aucBgra.data(), stPicture.aucBgra.size());
    if constexpr (G_BYTE_ORDER == G_BIG_ENDIAN) {
        GstMapInfo stMap;
        gst_buffer_map(pstPixels, &stMap, GST_MAP_READWRITE);
        for (gsize ui = 0; ui + PIXEL_BYTES <= stMap.size; ui += PIXEL_BYTES)
            std::reverse(stMap.data + ui, stMap.data + ui + PIXEL_BYTES);
        gst_buffer_unmap(pstPixels, &stMap);
    }
    gst_buffer_add_video_meta(pstPixels, GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_OVERLAY_COMPOSITION_FORMAT_RGB,
                              stPicture.stBox.uiWidth, stPicture.stBox.uiHeight);
    return pstPixels;
}

GstVideoOverlayComposition *Make_Composition(const CaptionPicture &stPicture, uint32_t uiWidth,
                                             uint32_t uiHeight)
{
    const ZyrCaptionBox stPlace = Place_Picture(stPicture, uiWidth, uiHeight);
    GstBuffer *const pstPixels = Make_CompositionPixels(stPicture);
    GstVideoOverlayRectangle *const pstRectangle = gst_video_overlay_rectangle_new_raw(
        pstPixels, static_cast<gint>(stPlace.uiX), static_cast<gint>(stPlace.uiY), stPlace.uiWidth,
        stPlace.uiHeight, GST_VIDEO_OVERLAY_FORMAT_FLAG_PREMULTIPLIED_ALPHA);
    GstVideoOverlayComposition *const pstComposition = gst_video_overlay_composition_new(pstRectangle);
    gst_video_overlay_rectangle_unref(pstRectangle);
    gst_buffer_unref(pstPixels);
    return pstComposition;
}

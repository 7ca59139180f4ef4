// A caption as an output of the box draws it, cut to its marks, and that over the frames of a film.
#ifndef ZYR_GST_CAPTION_PICTURE_H
#define ZYR_GST_CAPTION_PICTURE_H

#include <gst/video/video-overlay-composition.h>
#include <gst/video/video.h>

#include <cstdint>
#include <string>
#include <vector>

#include "zyr/zyr_captions.h"

struct ScreenSettings {
    uint32_t uiOutput = 0;   // as zyrCaptions_getOutput() counts them
    uint32_t uiFontSize = 0; // 0: the output's own
    int32_t iPosition = -1;  // pixels of the output above its bottom; -1: the output's own
};

// Blue, green, red, alpha of each pixel, multiplied by their alpha.
struct CaptionPicture {
    std::vector<uint8_t> aucBgra; // empty: nothing to show
    ZyrCaptionBox stBox{};        // of the output
    ZyrCaptionOutput stOutput{};
};

// ZYR_CAPTIONS_OK, or why it could not be drawn. Elements of a process take turns at its one display.
int Draw_Caption(const ScreenSettings &stSettings, const std::string &strText, CaptionPicture &stPicture);

// The place of a picture in a film of some size: the output's display covers the whole frame.
ZyrCaptionBox Place_Picture(const CaptionPicture &stPicture, uint32_t uiWidth, uint32_t uiHeight);

// As large as its place in the film.
CaptionPicture Scale_Picture(const CaptionPicture &stPicture, uint32_t uiWidth, uint32_t uiHeight);

// For a sink that puts captions over the film itself.
GstVideoOverlayComposition *Make_Composition(const CaptionPicture &stPicture, uint32_t uiWidth,
                                             uint32_t uiHeight);

#endif

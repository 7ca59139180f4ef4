// A caption put over frames of system memory: made once in the film's own format, so that a frame costs one
// multiplication a byte where marks are.
#ifndef ZYR_GST_CAPTION_BLEND_H
#define ZYR_GST_CAPTION_BLEND_H

#include "caption_picture.h"

// The marks in one plane of a frame, bytes as they lie there.
struct PlaneMarks {
    struct Row {
        uint32_t uiFirst; // first byte with a mark, and one behind the last; bytes of the row
        uint32_t uiEnd;
    };
    guint uiPlane = 0;
    uint32_t uiX = 0; // of the first byte; bytes
    uint32_t uiY = 0; // of the first row
    uint32_t uiRowBytes = 0;
    std::vector<Row> astRows;
    std::vector<uint8_t> aucAdded; // to what is left of the frame
    std::vector<uint8_t> aucKept;  // of the frame, 255: all
};

// Every component is a byte. Of other formats GStreamer's own blending takes care.
bool Is_ByteFormat(const GstVideoFormatInfo *pstFormat);

// A picture that Scale_Picture() has made for the film.
std::vector<PlaneMarks> Make_Marks(const CaptionPicture &stScaled, const GstVideoInfo &stInfo);

void Blend_Marks(const std::vector<PlaneMarks> &astMarks, GstVideoFrame &stFrame);

#endif

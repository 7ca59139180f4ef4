// Pictures in memory and as PNG files.
#ifndef ZYRSUB_PICTURE_H
#define ZYRSUB_PICTURE_H

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "exit_code.h"

// Red, green, blue, alpha bytes, row by row from the top.
struct Picture {
    uint32_t uiWidth = 0;
    uint32_t uiHeight = 0;
    std::vector<uint8_t> aucRgba;
};

Picture Make_Picture(uint32_t uiWidth, uint32_t uiHeight); // black, opaque

// Each new pixel is the mean of the old ones it covers.
Picture Scale_Picture(const Picture &stPicture, uint32_t uiWidth, uint32_t uiHeight);

// A rectangle of a picture; what lies outside is black.
Picture Cut_Picture(const Picture &stPicture, uint32_t uiX, uint32_t uiY, uint32_t uiWidth,
                    uint32_t uiHeight);

// Place a picture onto another; what lies outside is lost.
void Paste_Picture(Picture &stTarget, const Picture &stSource, uint32_t uiX, uint32_t uiY);

Outcome Read_Png(const std::string &strPath, Picture &stPicture);
Outcome Write_Png(const std::string &strPath, const Picture &stPicture);

// As small as libpng makes it without loss: with a palette where there are few colours. Empty when it fails.
std::string Encode_Png(const Picture &stPicture);

// A PNG written in bands from the top, so that a tall one needs little memory.
class PngWriter
{
public:
    PngWriter(std::string strPath, uint32_t uiWidth, uint32_t uiHeight);
    ~PngWriter();
    PngWriter(const PngWriter &) = delete;
    PngWriter &operator=(const PngWriter &) = delete;

    // Bands as wide as the file, together as high as it; the first failure stays for Finish().
    void Write_Band(const Picture &stBand);
    Outcome Finish();

private:
    struct State;
    State *m_pstState;
};

#endif

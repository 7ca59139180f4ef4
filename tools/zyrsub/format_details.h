// What single formats tell beyond their frames, decoded for people.
#ifndef ZYRSUB_FORMAT_DETAILS_H
#define ZYRSUB_FORMAT_DETAILS_H

#include <cstdint>
#include <string>
#include <vector>

#include "text_convert.h"
#include "zyr/quib_caption.h"

struct SsaStyle {
    std::string strName;
    std::string strFont;
    const SSAStyleInfo *pstNumbers = nullptr; // the engine's, until the file is closed
};

struct SsaHeader {
    std::string strTitle;
    std::string strScript;
    std::string strType;
    std::vector<SsaStyle> astStyles;
};

struct SubViewerHeader {
    uint32_t uiDelay = 0;
    uint32_t uiColor = 0; // the six hexadecimal digits as one number
    uint32_t uiSize = 0;
    std::string strFont;
};

SsaHeader Read_SsaHeader(const TextDecoder &stDecoder);
SubViewerHeader Read_SubViewerHeader(const TextDecoder &stDecoder);

// "bold", "top", ... for each bit that is set; bits without a name are left out.
std::vector<std::string> List_DisplayModes(uint32_t uiDisplayMode);

// #RRGGBB of an RGB565 colour, the full range of each part used.
std::string Format_Color(uint16_t usColor);

// #RRGGBB of a 24-bit number.
std::string Format_Color24(uint32_t uiColor);

const char *Get_FormatName(CaptionFormat eFormat);

#endif

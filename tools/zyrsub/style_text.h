// Styles and colours for people.
#ifndef ZYRSUB_STYLE_TEXT_H
#define ZYRSUB_STYLE_TEXT_H

#include <cstdint>
#include <string>
#include <vector>

// "bold", "top", ... for each bit that is set; bits without a name are left out.
std::vector<std::string> List_DisplayModes(uint32_t uiDisplayMode);

// #RRGGBB of an RGB565 colour, the full range of each part used.
std::string Format_Color(uint16_t usColor);

// #RRGGBB of a 24-bit number.
std::string Format_Color24(uint32_t uiColor);

#endif

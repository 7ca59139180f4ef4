#include "markup/colour.h"

#include <cstring>

#include "record/engine_log.h"
#include "record/parser_state.h"
#include "text/name_index.h"
#include "text/text_helpers.h"

namespace
{

struct ColourRow {
    char szName[21];   // in the row itself, which then needs no relocation
    uint16_t usColour; // RGB565
};

// clang-format off
constexpr ColourRow ColourTable[] = {
    {"white", 0xFFFF}, {"whitesmoke", 0xF7BE}, {"mintcream", 0xF7FF}, {"azure", 0xF7FF},
    {"ghostwhite", 0xFFDF}, {"aliceblue", 0xF7DF}, {"snow", 0xFFDF}, {"floralwhite", 0xFFDE},
    {"ivory", 0xFFFE}, {"seashell", 0xFFBD}, {"honeydew", 0xF7FE}, {"oldlace", 0xFFBC},
    {"beige", 0xF7BB}, {"cornsilk", 0xFFDB}, {"linen", 0xFF9C}, {"papayawhip", 0xFF7A},
    {"wheat", 0xF6F6}, {"blanchedalmond", 0xFF59}, {"moccasin", 0xFF36}, {"bisque", 0xFF38},
    {"navajowhite", 0xFEF5}, {"lightyellow", 0xFFFC}, {"lightgoldenrodyellow", 0xFFDA},
    {"lemonchiffon", 0xFFD9}, {"palegoldenrod", 0xEF55}, {"lavenderblush", 0xFF9E},
    {"mistyrose", 0xFF3C}, {"antiquewhite", 0xFF5A}, {"lavender", 0xE73F}, {"lightcyan", 0xE7FF},
    {"powderblue", 0xB71C}, {"paleturquoise", 0xAF7D}, {"lightblue", 0xAEDC}, {"skyblue", 0x867D},
    {"lightskyblue", 0x867F}, {"deepskyblue", 0x05FF}, {"cornflowerblue", 0x64BD},
    {"dodgerblue", 0x1C9F}, {"royalblue", 0x435C}, {"slateblue", 0x6AD9}, {"mediumblue", 0x0019},
    {"blue", 0x001F}, {"mediumslateblue", 0x7B5D}, {"steelblue", 0x4416}, {"cyan", 0x07FF},
    {"darkblue", 0x0011}, {"darkslateblue", 0x49F1}, {"lightpink", 0xFDB8}, {"pink", 0xFE19},
    {"thistle", 0xDDFB}, {"plum", 0xDD1B}, {"violet", 0xEC1D}, {"orchid", 0xDB9A},
    {"mediumorchid", 0xBABA}, {"fuchsia", 0xF81F}, {"magenta", 0xF81F}, {"hotpink", 0xFB56},
    {"deeppink", 0xF8B2}, {"peachpuff", 0xFED7}, {"khaki", 0xF731}, {"lightsalmon", 0xFD0F},
    {"orange", 0xFD20}, {"darkorange", 0xFC60}, {"darksalmon", 0xECAF}, {"coral", 0xFBEA},
    {"salmon", 0xFC0E}, {"lightcoral", 0xF410}, {"tomato", 0xFB08}, {"red", 0xF800},
    {"orangered", 0xFA20}, {"crimson", 0xD8A7}, {"burlywood", 0xDDD0}, {"sandybrown", 0xF52C},
    {"tan", 0xD5B1}, {"gold", 0xFEA0}, {"darkgoldenrod", 0xBC21}, {"goldenrod", 0xDD24},
    {"brass", 0xB528}, {"peru", 0xCC27}, {"chocolate", 0xD343}, {"indianred", 0xCAEB},
    {"sienna", 0xA285}, {"brown", 0xA145}, {"darkred", 0x8800}, {"firebrick", 0xB104},
    {"maroon", 0x8000}, {"saddlebrown", 0x8A22}, {"palegreen", 0x9FD3}, {"greenyellow", 0xAFE5},
    {"mediumspringgreen", 0x07D3}, {"lawngreen", 0x7FE0}, {"lime", 0x07E0}, {"chartreuse", 0x7FE0},
    {"springgreen", 0x07EF}, {"lightgreen", 0x9772}, {"limegreen", 0x3666}, {"forestgreen", 0x2444},
    {"mediumseagreen", 0x3D8E}, {"seagreen", 0x2C4A}, {"yellowgreen", 0x9E66}, {"aquamarine", 0x7FFA},
    {"black", 0x0000}, {"blueviolet", 0x895C}, {"cadetblue", 0x5CF4}, {"darkcyan", 0x0451},
    {"darkgray", 0xAD55}, {"darkgreen", 0x0320}, {"darkmagenta", 0x8811}, {"darkolivegreen", 0x5345},
    {"darkorchid", 0x9999}, {"darkseagreen", 0x8DF1}, {"darkslategray", 0x2A69},
    {"darkturquoise", 0x067A}, {"darkviolet", 0x901A}, {"dimgray", 0x6B4D}, {"gainsboro", 0xDEFB},
    {"gray", 0x8410}, {"green", 0x0400}, {"indigo", 0x4810}, {"lightgrey", 0xD69A},
    {"lightseagreen", 0x2595}, {"lightslategray", 0x7453}, {"lightsteelblue", 0xB63B},
    {"mediumaquamarine", 0x6675}, {"mediumpurple", 0x939B}, {"mediumturquoise", 0x4E99},
    {"mediumvioletred", 0xC0B0}, {"midnightblue", 0x18CE}, {"navy", 0x0010}, {"olive", 0x8400},
    {"olivedrab", 0x6C64}, {"palevioletred", 0xDB92}, {"purple", 0x8010}, {"rosybrown", 0xBC71},
    {"silver", 0xC618}, {"slategray", 0x7412}, {"teal", 0x0410}, {"turquoise", 0x471A},
    {"darkkhaki", 0xBDAD}, {"yellow", 0xFFE0}, {"aqua", 0x07FF},
};
// clang-format on

constexpr NameIndex<512, true> s_stColourIndex(ColourTable);

void Log_NoColour(const char *pszText, uint32_t uiLen)
{
    LOG_PARSER("RGB Color Data Parsing Failed! (RGB DATA = ");
    for (uint32_t uiPos = 0; uiPos < uiLen; ++uiPos)
        __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG, "%c", pszText[uiPos]);
    __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG, ")\n");
}

} // namespace

bool Copy_ColourText(char *szText, const uint16_t *pusValue, uint32_t uiLen)
{
    if (uiLen > COLOUR_UNITS) {
        LOG_PARSER("Too Long Color Name! ([%d] >> [%d])\n", static_cast<int32_t>(uiLen),
                   static_cast<int32_t>(COLOUR_UNITS));
        return false;
    }
    std::memset(szText, 0, COLOUR_UNITS + 1);
    uint16_t usBad = 0;
    if (Copy_AsciiUnits(szText, pusValue, uiLen, &usBad) == uiLen) return true;
    LOG_PARSER("Bad Color Name Character! [0x%04X]\n", usBad);
    return false;
}

bool Parse_HexColour(const char *pszDigits, uint32_t uiLen, const char *pszText, uint32_t *puiValue)
{
    *puiValue = 0;
    for (uint32_t uiPos = 0; uiPos < uiLen; ++uiPos) {
        const int32_t iDigit = Get_HexValue(static_cast<uint8_t>(pszDigits[uiPos]));
        if (iDigit < 0) {
            LOG_PARSER("RGB Color Data is bad! (DATA = %s,  VALUE = 0x%08X)\n", pszText, *puiValue);
            return false;
        }
        *puiValue = (*puiValue << 4) | static_cast<uint32_t>(iDigit);
    }
    return true;
}

bool Resolve_Colour(const uint16_t *pusValue, uint32_t uiLen, uint16_t *pusColour)
{
    char szText[COLOUR_UNITS + 1];
    if (!Copy_ColourText(szText, pusValue, uiLen)) return false;
    if (const ColourRow *const pstRow = s_stColourIndex.Find(ColourTable, szText, uiLen)) {
        *pusColour = pstRow->usColour;
        return true;
    }
    constexpr uint32_t RGB_DIGITS = 6;
    const bool bSigned = uiLen == RGB_DIGITS + 1 && szText[0] == '#';
    if (uiLen != RGB_DIGITS && !bSigned) {
        Log_NoColour(szText, uiLen);
        return false;
    }
    uint32_t uiValue = 0;
    if (!Parse_HexColour(szText + (bSigned ? 1 : 0), RGB_DIGITS, szText, &uiValue)) return false;
    *pusColour = Get_Rgb565(uiValue);
    return true;
}

#include "format_details.h"

#include <algorithm>
#include <cstdio>

struct DisplayModeRow {
    uint32_t uiBit;
    const char *pszName;
};
static constexpr DisplayModeRow DISPLAY_MODES[] = {
    {0x0002, "underline"}, {0x0004, "bold"}, {0x0008, "italic"}, {0x0010, "left"},   {0x0020, "center"},
    {0x0040, "right"},     {0x0080, "h1"},   {0x0100, "h2"},     {0x0200, "h3"},     {0x0400, "h4"},
    {0x0800, "h5"},        {0x1000, "h6"},   {0x2000, "top"},    {0x4000, "middle"},
};

// Fixed arrays of names are padded with zeros.
template <size_t uiSize>
static std::string Decode_Padded(const TextDecoder &stDecoder, const uint16_t (&ausText)[uiSize])
{
    const uint16_t *pusEnd = std::find(ausText, ausText + uiSize, uint16_t{0});
    return stDecoder.Decode_Units({ausText, pusEnd});
}

// A header text begins with the blank behind its colon.
static std::string Decode_HeaderText(const TextDecoder &stDecoder, const uint16_t *pusText, uint32_t uiUnits)
{
    if (pusText == nullptr) return "";
    const std::string strText = stDecoder.Decode_Units({pusText, uiUnits});
    const size_t uiFirst = strText.find_first_not_of(" \t");
    return uiFirst == std::string::npos ? "" : strText.substr(uiFirst);
}

SsaHeader Read_SsaHeader(const TextDecoder &stDecoder)
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    SsaHeader stHeader;
    stHeader.strTitle = Decode_HeaderText(stDecoder, stInfo.pusSSATitle, stInfo.uiSSATitleLength);
    stHeader.strScript =
        Decode_HeaderText(stDecoder, stInfo.pusSSAOriginalScript, stInfo.uiSSAOriginalScriptLength);
    stHeader.strType = Decode_HeaderText(stDecoder, stInfo.pusSSAScriptType, stInfo.uiSSAScriptTypeLength);
    for (const SSAStyleNode *pstNode = stInfo.pstSSAStyleList; pstNode != nullptr;
         pstNode = pstNode->pstNext) {
        const SSAStyleInfo &stStyle = pstNode->stStyle;
        stHeader.astStyles.push_back({Decode_Padded(stDecoder, stStyle.ausStyleName),
                                      Decode_Padded(stDecoder, stStyle.ausFontName), &stStyle});
    }
    return stHeader;
}

SubViewerHeader Read_SubViewerHeader(const TextDecoder &stDecoder)
{
    const SubViewerHeaderInfo &stInfo = pstQuibCaptionParserInfo->stSubViewerInfo;
    const uint32_t uiUnits = std::min<uint32_t>(stInfo.uiFontNameLength, ZYR_SUBVIEWER_FONT_UNITS);
    return {stInfo.uiDelay, stInfo.uiColf, stInfo.uiSize,
            stDecoder.Decode_Units({stInfo.ausFontName, uiUnits})};
}

std::vector<std::string> List_DisplayModes(uint32_t uiDisplayMode)
{
    std::vector<std::string> astrNames;
    for (const DisplayModeRow &stRow : DISPLAY_MODES)
        if ((uiDisplayMode & stRow.uiBit) != 0) astrNames.emplace_back(stRow.pszName);
    return astrNames;
}

std::string Format_Color24(uint32_t uiColor)
{
    char szColor[16];
    std::snprintf(szColor, sizeof szColor, "#%06X", uiColor & 0xFFFFFFU);
    return szColor;
}

std::string Format_Color(uint16_t usColor)
{
    const uint32_t uiRed = usColor >> 11;
    const uint32_t uiGreen = (usColor >> 5) & 0x3FU;
    const uint32_t uiBlue = usColor & 0x1FU;
    return Format_Color24((uiRed << 3 | uiRed >> 2) << 16 | (uiGreen << 2 | uiGreen >> 4) << 8 |
                          (uiBlue << 3 | uiBlue >> 2));
}

const char *Get_FormatName(CaptionFormat eFormat)
{
    switch (eFormat) {
    case E_CAPTION_FORMAT_SAMI: return "SAMI";
    case E_CAPTION_FORMAT_SUBRIP: return "SubRip";
    case E_CAPTION_FORMAT_SUBVIEWER: return "SubViewer";
    case E_CAPTION_FORMAT_SSA: return "SSA";
    default: return "none";
    }
}

#include "format/ssa/ssa_override.h"

#include <cstring>

#include "markup/colour.h"
#include "markup/tag_command.h"
#include "record/engine_log.h"
#include "record/parser_state.h"
#include "text/text_helpers.h"

namespace
{

/** A parameter. Blanks in it are not counted, so that as many units at its end are not looked at. */
struct OverrideParam {
    const uint16_t *pusUnits;
    uint32_t uiLen;
};

struct OverrideRow {
    const char *pszName; // a block whose name begins so is this one
    void (*pfApply)(const OverrideParam &stParam);
    bool bClosed; // an "&" closes the parameter
};

constexpr uint32_t NAME_UNITS = 3; // longest name

bool Begins_With(const OverrideParam &stParam, char cUnit)
{
    return stParam.uiLen > 0 && stParam.pusUnits[0] == static_cast<uint8_t>(cUnit);
}

void Ignore(const OverrideParam & /*stParam*/) {}

void Set_Bold(const OverrideParam &stParam)
{
    Set_TextStyle(E_TAGCMD_SET_DISPLAY_MODE, Begins_With(stParam, '1') ? DISPLAY_MODE_BOLD : 0u);
}

void Set_Italic(const OverrideParam &stParam)
{
    Set_TextStyle(E_TAGCMD_SET_DISPLAY_MODE, Begins_With(stParam, '1') ? DISPLAY_MODE_ITALIC : 0u);
}

void Set_Number(TagCommand eTagCmd, const OverrideParam &stParam)
{
    if (stParam.uiLen == 0) return;
    Set_TextStyle(eTagCmd, QUIBCAPTPARS_Str2Number(stParam.pusUnits, static_cast<int32_t>(stParam.uiLen)));
}

void Set_FontSize(const OverrideParam &stParam)
{
    Set_Number(E_TAGCMD_SET_FONT_SIZE, stParam);
}

void Set_Highlight(const OverrideParam &stParam)
{
    Set_Number(E_TAGCMD_SET_FONT_HIGHLIGHT, stParam);
}

void Set_Colour(const OverrideParam &stParam)
{
    if (stParam.uiLen == 0) return;
    char szText[COLOUR_UNITS + 1];
    uint32_t uiColour = 0;
    if (Copy_ColourText(szText, stParam.pusUnits, stParam.uiLen) &&
        Parse_HexColour(szText, stParam.uiLen, szText, &uiColour))
        Set_TextStyle(E_TAGCMD_SET_FONT_COLOR, Get_Rgb565(uiColour));
}

void Set_Alignment(const OverrideParam &stParam)
{
    if (stParam.uiLen == 0) return;
    DisplayMode eMode = DISPLAY_MODE_CENTER;
    if (Begins_With(stParam, '1')) eMode = DISPLAY_MODE_LEFT;
    if (Begins_With(stParam, '3')) eMode = DISPLAY_MODE_RIGHT;
    Set_TextStyle(E_TAGCMD_SET_DISPLAY_MODE, eMode);
}

void Reset_Style(const OverrideParam & /*stParam*/)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    const SSAStyleInfo *const pstStyle = stInfo.stSSAFrameInfo.pstStyle;
    stInfo.uiDisplayMode = 0;
    if (pstStyle != nullptr)
        Set_TextStyle(E_TAGCMD_SET_FONT_COLOR, Get_Rgb565(pstStyle->uiPrimaryColour));
    else
        stInfo.usFontColor = static_cast<uint16_t>(QUIBCAPT_GetFontColor());
    stInfo.uiFontSize = QUIBCAPT_GetFontHeight();
    stInfo.uiHighlight = 0;
}

/** In the order in which they are tried. */
constexpr OverrideRow OverrideTable[] = {
    {"b", Set_Bold, false},      {"i", Set_Italic, false},    {"fn", Ignore, false},
    {"fs", Set_FontSize, false}, {"fe", Ignore, false},       {"c&H", Set_Colour, true},
    {"a", Set_Alignment, false}, {"k", Set_Highlight, false}, {"r", Reset_Style, false},
};

/** @return whether all units are ASCII; the first other one is logged. */
bool Check_Ascii(const uint16_t *pusUnits, uint32_t uiLen)
{
    for (uint32_t uiPos = 0; uiPos < uiLen; ++uiPos) {
        if (pusUnits[uiPos] <= 0x7F) continue;
        LOG_PARSER("Bad Tag Name Character! [0x%04X]\n", pusUnits[uiPos]);
        return false;
    }
    return true;
}

const OverrideRow *Find_Override(const uint16_t *pusName, uint32_t uiLen)
{
    char szName[NAME_UNITS] = {};
    for (uint32_t uiPos = 0; uiPos < uiLen && uiPos < NAME_UNITS; ++uiPos)
        szName[uiPos] = static_cast<char>(pusName[uiPos]);
    for (const OverrideRow &stRow : OverrideTable)
        if (Compare_StringNoCase(stRow.pszName, szName, static_cast<uint32_t>(std::strlen(stRow.pszName))) !=
            0)
            return &stRow;
    return nullptr;
}

OverrideParam Get_Param(const uint16_t *pusUnits, uint32_t uiLen)
{
    OverrideParam stParam = {pusUnits, 0};
    for (uint32_t uiPos = 0; uiPos < uiLen; ++uiPos) {
        if (Is_Blank(pusUnits[uiPos])) continue;
        if (stParam.uiLen++ == 0) stParam.pusUnits = pusUnits + uiPos;
    }
    return stParam;
}

bool Apply_Block(const uint16_t *pusBlock, uint32_t uiLen)
{
    if (uiLen <= 2 || pusBlock[0] != '\\') return false;
    const uint16_t *const pusName = pusBlock + 1;
    uint32_t uiNameLen = uiLen - 2;
    if (!Check_Ascii(pusName, uiNameLen)) return false;
    const OverrideRow *const pstRow = Find_Override(pusName, uiNameLen);
    if (pstRow == nullptr) return false;
    if (pstRow->bClosed && pusName[--uiNameLen] != '&') {
        LOG_PARSER("NO Parsing TAG Type = ");
        return false;
    }
    const uint32_t uiKeyLen = static_cast<uint32_t>(std::strlen(pstRow->pszName));
    pstRow->pfApply(Get_Param(pusName + uiKeyLen, uiNameLen - uiKeyLen));
    return true;
}

} // namespace

void Apply_SSAOverride(const uint16_t *pusBlock, uint32_t uiLen)
{
    if (Apply_Block(pusBlock, uiLen)) return;
    LOG_PARSER("FrameParser_SSA() - Failed to parse the caption tag!\n");
}

#include "format/ssa/ssa_fields.h"

#include <cstring>

#include "format/ssa/ssa_line.h"
#include "format/ssa/style_list.h"
#include "markup/tag_command.h"
#include "record/engine_log.h"
#include "record/parser_state.h"
#include "text/text_helpers.h"

namespace
{

uint32_t Get_Number(uint32_t uiFrom = 0)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    return QUIBCAPTPARS_Str2Number(stTag.ausTagBuf + uiFrom,
                                   static_cast<int32_t>(stTag.uiTagLength - uiFrom));
}

uint32_t Get_Time()
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    return Parse_SSAPts(stTag.ausTagBuf, static_cast<int32_t>(stTag.uiTagLength));
}

void Finish_Marked(SSAFrameInfo &stFrame)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    for (uint32_t uiPos = 0; uiPos < stTag.uiTagLength; ++uiPos)
        if (Is_Digit(stTag.ausTagBuf[uiPos])) stFrame.uiMarked = stTag.ausTagBuf[uiPos] - uint32_t{'0'};
}

void Finish_Style(SSAFrameInfo &stFrame)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    const uint32_t uiUnits = stTag.uiTagLength < ZYR_SSA_FRAME_NAME_UNITS
                                 ? stTag.uiTagLength
                                 : static_cast<uint32_t>(ZYR_SSA_FRAME_NAME_UNITS);
    std::memcpy(stFrame.ausStyleName, stTag.ausTagBuf, uiUnits * sizeof(uint16_t));
    stFrame.pstStyle = Find_Style(stTag.ausTagBuf, stTag.uiTagLength);
}

/** ";" y1 ";" y2 ";" delay, from unit uiPos of the tag buffer on. */
void Parse_ScrollUp(SSAFrameInfo &stFrame, uint32_t uiPos)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    uint32_t uiStart = 0; // of the parameter that is open
    uint32_t uiOpened = 0;
    for (; uiPos < stTag.uiTagLength && uiOpened < 3; ++uiPos) {
        if (stTag.ausTagBuf[uiPos] != ';') continue;
        const uint32_t uiValue =
            QUIBCAPTPARS_Str2Number(stTag.ausTagBuf + uiStart, static_cast<int32_t>(uiPos - uiStart));
        if (uiOpened == 1) stFrame.uiEffectY1 = uiValue;
        if (uiOpened == 2) stFrame.uiEffectY2 = uiValue;
        ++uiOpened;
        uiStart = uiPos + 1;
    }
    if (uiOpened == 3) stFrame.uiEffectDelay = Get_Number(uiStart);
}

/** One separator, then the delay. */
void Parse_Banner(SSAFrameInfo &stFrame, uint32_t uiPos)
{
    if (uiPos < s_pstTagControlInfo->uiTagLength) stFrame.uiEffectDelay = Get_Number(uiPos + 1);
}

void Parse_Karaoke(SSAFrameInfo & /*stFrame*/, uint32_t /*uiPos*/) {}

struct EffectRow {
    const char *pszName; // as the field has it, without blanks
    uint32_t uiEffect;
    void (*pfParse)(SSAFrameInfo &stFrame, uint32_t uiPos);
};

constexpr EffectRow EffectTable[] = {
    {"Karaoke", 1, Parse_Karaoke},
    {"Scrollup", 2, Parse_ScrollUp},
    {"Banner", 3, Parse_Banner},
};
constexpr uint32_t EFFECT_UNITS = 29; // longest effect that is looked at

void Finish_Effect(SSAFrameInfo &stFrame)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    if (stTag.uiTagLength == 0 || stTag.uiTagLength > EFFECT_UNITS) return;
    char szEffect[EFFECT_UNITS + 1] = {};
    uint16_t usBad = 0;
    if (Copy_AsciiUnits(szEffect, stTag.ausTagBuf, stTag.uiTagLength, &usBad) < stTag.uiTagLength) {
        LOG_PARSER("Bad SSA Effect Name Character! [0x%04X]\n", usBad);
        return;
    }
    for (const EffectRow &stRow : EffectTable) {
        const uint32_t uiNameLen = static_cast<uint32_t>(std::strlen(stRow.pszName));
        if (Compare_StringNoCase(stRow.pszName, szEffect, uiNameLen) == 0) continue;
        stFrame.uiEffect = stRow.uiEffect;
        stRow.pfParse(stFrame, uiNameLen);
        break;
    }
}

uint32_t Get_AlignmentMode(uint32_t uiAlignment)
{
    uint32_t uiMode = DISPLAY_MODE_CENTER;
    if ((uiAlignment & 1) != 0) uiMode |= (uiAlignment & 2) != 0 ? DISPLAY_MODE_RIGHT : DISPLAY_MODE_LEFT;
    if ((uiAlignment & 4) != 0) return uiMode | DISPLAY_MODE_TOP;
    return (uiAlignment & 8) != 0 ? uiMode | DISPLAY_MODE_MIDDLE : uiMode;
}

void Apply_Style(const SSAStyleInfo &stStyle)
{
    Set_TextStyle(E_TAGCMD_SET_DISPLAY_MODE, Get_AlignmentMode(stStyle.uiAlignment));
    Set_TextStyle(E_TAGCMD_SET_FONT_COLOR, Get_Rgb565(stStyle.uiPrimaryColour));
    if (stStyle.uiBorderStyle != 0)
        Set_TextStyle(E_TAGCMD_SET_FONT_OUTLINECOLOR, Get_Rgb565(stStyle.uiBackColour));
    if (stStyle.uiBold != 0) Set_TextStyle(E_TAGCMD_SET_DISPLAY_MODE, DISPLAY_MODE_BOLD);
    if (stStyle.uiItalic != 0) Set_TextStyle(E_TAGCMD_SET_DISPLAY_MODE, DISPLAY_MODE_ITALIC);
    if (stStyle.uiFontSize != 0) Set_TextStyle(E_TAGCMD_SET_FONT_SIZE, stStyle.uiFontSize);
}

} // namespace

bool Finish_SSAField(uint32_t eField, SSAFrameInfo &stFrame)
{
    switch (eField) {
    case E_SSA_FIELD_MARKED: Finish_Marked(stFrame); return true;
    case E_SSA_FIELD_START: stFrame.uiStartPTS = Get_Time(); return stFrame.uiStartPTS != 0;
    case E_SSA_FIELD_END: stFrame.uiEndPTS = Get_Time(); return stFrame.uiEndPTS != 0;
    case E_SSA_FIELD_STYLE: Finish_Style(stFrame); return true;
    case E_SSA_FIELD_MARGIN_L: stFrame.uiMarginL = Get_Number(); return true;
    case E_SSA_FIELD_MARGIN_R: stFrame.uiMarginR = Get_Number(); return true;
    case E_SSA_FIELD_MARGIN_V: stFrame.uiMarginV = Get_Number(); return true;
    case E_SSA_FIELD_EFFECT: Finish_Effect(stFrame); return true;
    default: return true; // the name
    }
}

void Begin_SSAText(const SSAFrameInfo &stFrame)
{
    if (stFrame.pstStyle != nullptr) Apply_Style(*stFrame.pstStyle);
    pstQuibCaptionParserInfo->stSSAFrameInfo = stFrame;
    pstQuibCaptionParserInfo->uiConvLength = 0;
}

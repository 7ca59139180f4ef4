#include "markup/caption_text.h"

#include "lines/line_output.h"
#include "markup/entity.h"
#include "markup/html_tag.h"
#include "record/engine_log.h"
#include "text/text_helpers.h"

namespace
{

constexpr uint32_t ENTITY_UNITS = 12; // an entity of so many units is none

/** Give the first uiNums units of the tag buffer back as text. */
void Give_Back(uint32_t uiNums)
{
    Append_Units(s_pstTagControlInfo->ausTagBuf, uiNums);
    s_pstTagControlInfo->uiTagLength = 0;
}

void Restart_Markup(uint16_t usFirst)
{
    s_pstTagControlInfo->ausTagBuf[0] = usFirst;
    s_pstTagControlInfo->uiTagLength = 1;
}

MarkupStep Finish_Tag(const char *pszParser)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    const int32_t iResult = Apply_HtmlTag(pszParser);
    const uint32_t uiTag = iResult == -1 ? static_cast<uint32_t>(E_HTML_TAG_UNKNOWN) : Get_TagId(iResult);
    if (iResult != -1 && uiTag == E_HTML_TAG_UNKNOWN &&
        (s_uiParsingOption & E_PARSING_OPTION_SHOW_UNKNOWN_TAGS) != 0)
        Give_Back(stTag.uiTagLength);
    stTag.uiTagLength = 0;
    return {E_MARKUP_TEXT, false, uiTag};
}

/** Decode the first uiNums units of the tag buffer; what is no entity is text. */
void Finish_Entity(uint32_t uiNums)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    const uint16_t usCode = Get_EntityCharCode(stTag.ausTagBuf, static_cast<int32_t>(uiNums));
    if (usCode == 0)
        Give_Back(uiNums);
    else
        Append_Unit(usCode);
    stTag.uiTagLength = 0;
}

/** @return whether a unit may stand in an entity behind its "&" or "&#". */
bool Is_EntityUnit(uint32_t uiUnit)
{
    return Is_Digit(uiUnit) || To_Upper(uiUnit) != uiUnit;
}

MarkupStep Drop_Entity()
{
    Give_Back(s_pstTagControlInfo->uiTagLength);
    return {E_MARKUP_TEXT, false};
}

} // namespace

int32_t Apply_HtmlTag(const char *pszParser)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    const int32_t iResult = Parse_HtmlTag(stTag.ausTagBuf, static_cast<int32_t>(stTag.uiTagLength));
    if (iResult == -1) LOG_PARSER("%s() - Failed to parse the caption tag!\n", pszParser);
    return iResult;
}

void Append_Units(const uint16_t *pusUnits, uint32_t uiNums)
{
    for (uint32_t uiIndex = 0; uiIndex < uiNums; ++uiIndex) Append_Unit(pusUnits[uiIndex]);
}

void Begin_Markup(uint16_t usFirst)
{
    Lay_Out_Text();
    Restart_Markup(usFirst);
}

MarkupStep Step_Tag(uint16_t usChar, const char *pszParser)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    const uint32_t uiBefore = stTag.uiTagLength;
    Collect_TagUnit(usChar, TAG_TEXT_UNITS);
    if (usChar == '>') return Finish_Tag(pszParser);
    if (usChar == '<' && uiBefore > 0) {
        Give_Back(uiBefore);
        Restart_Markup(usChar);
    }
    return {E_MARKUP_TAG, false};
}

MarkupStep Step_Entity(uint16_t usChar)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    const uint32_t uiBefore = stTag.uiTagLength;
    Collect_TagUnit(usChar, TAG_TEXT_UNITS);
    switch (usChar) {
    case ';': Finish_Entity(stTag.uiTagLength); return {E_MARKUP_TEXT, false};
    case ' ':
    case '\t':
    case '\n':
    case '\r': Finish_Entity(uiBefore); return {E_MARKUP_TEXT, true};
    case '&':
        Give_Back(uiBefore);
        Restart_Markup(usChar);
        return {E_MARKUP_ENTITY, false};
    case '#': return uiBefore == 1 ? MarkupStep{E_MARKUP_ENTITY, false} : Drop_Entity();
    case '<':
        Give_Back(uiBefore);
        Begin_Markup(usChar);
        return {E_MARKUP_TAG, false};
    default: break;
    }
    if (stTag.uiTagLength >= ENTITY_UNITS || !Is_EntityUnit(usChar)) return Drop_Entity();
    return {E_MARKUP_ENTITY, false};
}

void Complete_FrameText()
{
    Lay_Out_Text();
    Close_LastLine();
}

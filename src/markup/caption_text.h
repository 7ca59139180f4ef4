/*
 * What the formats share on the way from characters to output lines: the convert buffer, blank folding, the
 * tags and entities of markup text, the pattern that ends an entry.
 */
#pragma once

#include <cstdint>

#include "lines/line_output.h"
#include "record/parser_state.h"
#include "text/text_helpers.h"

/** Put a unit into the convert buffer, and hand the text over when only one more would fit. */
inline void Append_Unit(uint16_t usUnit)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    stInfo.pusConvBuf[stInfo.uiConvLength++] = usUnit;
    if (stInfo.uiConvLength + 1 >= s_uiConvBufSize) Lay_Out_Text();
}

/** Put units into the convert buffer as they are: blanks are not folded again. */
void Append_Units(const uint16_t *pusUnits, uint32_t uiNums);

/** Put the blank of a run of blanks and tabs into the convert buffer: the first one counts. */
inline void Append_FoldedBlank()
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    if (stInfo.ucPrevBlank != 0) return;
    Append_Unit(0x20);
    stInfo.ucPrevBlank = 1;
}

/** Put a unit into the tag buffer while it is not full. */
inline void Collect_TagUnit(uint16_t usUnit, uint32_t uiMax)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    if (stTag.uiTagLength < uiMax) stTag.ausTagBuf[stTag.uiTagLength++] = usUnit;
}

/** Where markup text stands. */
enum MarkupState : uint32_t { E_MARKUP_TEXT, E_MARKUP_TAG, E_MARKUP_ENTITY };

/** What a unit led to. */
struct MarkupStep {
    MarkupState eNext;
    bool bAgain;        // the next state sees the unit again
    uint32_t uiTag = 0; // the known tag that the unit has completed; 0 = none
};

/** Hand the text so far over, so that it keeps its style, and begin a tag or an entity with its first unit.
 */
void Begin_Markup(uint16_t usFirst);

/** Let the tag in the tag buffer take effect; a malformed one is logged. @return as Parse_HtmlTag() */
int32_t Apply_HtmlTag(const char *pszParser);

/** One unit of markup text, which is none of those that are not text in the format. */
inline MarkupState Step_MarkupText(uint16_t usChar)
{
    if (Is_Blank(usChar)) {
        Append_FoldedBlank();
        return E_MARKUP_TEXT;
    }
    pstQuibCaptionParserInfo->ucPrevBlank = 0;
    if (usChar == '<' || usChar == '&') {
        Begin_Markup(usChar);
        return usChar == '<' ? E_MARKUP_TAG : E_MARKUP_ENTITY;
    }
    Append_Unit(usChar);
    return E_MARKUP_TEXT;
}

/** One more unit of a tag. @param[in] pszParser  name of the frame parser, for the log */
MarkupStep Step_Tag(uint16_t usChar, const char *pszParser);

/** One more unit of an entity. */
MarkupStep Step_Entity(uint16_t usChar);

/** Hand the rest of a frame's text over and close its last line. */
void Complete_FrameText();

/** Units of the pattern CR LF CR LF, an empty line, that ends an entry. */
constexpr uint32_t ENTRY_END_UNITS = 4;

/** @return whether a unit is the next one of the pattern, uiMatched of which have been seen. */
constexpr bool Matches_EntryEnd(uint32_t uiMatched, uint16_t usChar)
{
    return usChar == (uiMatched % 2 == 0 ? '\r' : '\n');
}

/* What both passes over an SSA file do with the units of a line. */
#pragma once

#include <span>

#include "markup/caption_text.h"

/** Keys of SSA lines; the value is the row of the key table. */
enum SSALineType : uint32_t {
    E_SSA_LINE_DIALOGUE,
    E_SSA_LINE_STYLE,
    E_SSA_LINE_TITLE,
    E_SSA_LINE_ORIGINAL_SCRIPT,
    E_SSA_LINE_SCRIPT_TYPE,
    E_SSA_LINE_UNKNOWN,
};

/** Put a unit of a key, a field or a name into the tag buffer. @return whether that has filled it */
inline bool Hold_SSAUnit(uint16_t usChar)
{
    Collect_TagUnit(usChar, TAG_BUF_UNITS);
    return s_pstTagControlInfo->uiTagLength == TAG_BUF_UNITS;
}

/** Milliseconds of a time H:MM:SS.CC: exactly 7 digits, whatever stands between them. @return 0 otherwise
 * (logged). */
uint32_t Parse_SSAPts(const uint16_t *pusTime, int32_t iLen);

/** @return the first of some names that a text of up to 30 units begins with, ASCII case aside; their number
 * for all other texts. */
uint32_t Find_SSAName(std::span<const char *const> stNames, const uint16_t *pusText, int32_t iLen);

/** @return SSALineType of a key that begins with a known name, E_SSA_LINE_UNKNOWN for all others. */
uint32_t Get_SSALineType(const uint16_t *pusName, int32_t iLen);

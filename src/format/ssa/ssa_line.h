/* What both passes over an SSA file do with the units of a line. */
#pragma once

#include "markup/caption_text.h"

/** Put a unit of a key, a field or a name into the tag buffer. @return whether that has filled it */
inline bool Hold_SSAUnit(uint16_t usChar)
{
    Collect_TagUnit(usChar, TAG_BUF_UNITS);
    return s_pstTagControlInfo->uiTagLength == TAG_BUF_UNITS;
}

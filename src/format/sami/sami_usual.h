/*
 * The usual parts of a SAMI file: "<SYNC Start=1000>", "<P Class=KRCC>", and the text behind them up to the next SYNC
 * tag, with paragraphs of other classes before and behind.
 */
#pragma once

#include <cstdint>

#include "format/usual_text.h"
#include "record/parser_state.h"

/** @return whether a unit ends a tag's name. */
constexpr bool Is_TagSpace(uint32_t uiUnit)
{
    return uiUnit == ' ' || uiUnit == '\t' || uiUnit == '\r' || uiUnit == '\n';
}

enum SamiTagKind : uint32_t {
    E_SAMI_TAG_SYNC,
    E_SAMI_TAG_P,
    E_SAMI_TAG_OTHER, // one that says nothing to the header's scan; its "<" alone
};

/** A tag in its usual form. */
struct SamiTag {
    SamiTagKind eKind;
    uint32_t uiBytes;
    uint32_t uiStart; // of a SYNC tag, ms
    uint32_t uiNameUnits;
    uint16_t ausName[ZYR_CLASS_NAME_UNITS]; // of a P tag's class, in upper case
};

/** Look at the tag at the read position. @return whether it is a usual one */
bool Match_SamiTag(SamiTag *pstTag);

/** Take the frame whose SYNC tag stands at the read position, if all of it is usual, as the current stream's frame; the
 * times are left to the caller. @return whether it was */
bool Take_UsualSami(const SamiFrameInfo &stEntry);

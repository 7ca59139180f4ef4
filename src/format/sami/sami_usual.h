/*
 * The usual parts of a SAMI file: "<SYNC Start=1000>", "<P Class=KRCC>", and the text behind them.
 *
 * The header's scan finds the two tags, and with them where each text begins and ends, so that a frame of the usual
 * kind is nothing but its text.
 */
#pragma once

#include <cstdint>

#include "format/sami/sami_index.h"
#include "format/usual_text.h"

/** A class's name and the ">" behind it as a P tag had them last, all bits set where the bytes may be any; zero: none
 * had them. */
struct SamiClassForm {
    uint64_t aullText[2];
    uint64_t aullAny[2]; // bits of the bytes that may be any
    uint32_t uiUnits;
};

/** How each class is named; behind the last one that is known there may be others. */
struct SamiClassForms {
    uint32_t uiNums;
    SamiClassForm astForm[ZYR_CLASS_MAX];
};

/** A SYNC tag, a P tag, or a P tag right behind a SYNC tag, in usual form. */
struct SamiTag {
    const uint8_t *pucTag;    // in the read buffer
    const uint8_t *pucBehind; // the byte behind it, and behind a line end that follows a P tag
    uint32_t uiLineEndBytes;  // of a line end right before it
    bool bOthersBefore;       // other tags have been passed over
    bool bSync;
    bool bParagraph;
    uint32_t uiStart;                       // of a SYNC tag, ms
    uint32_t uiClass;                       // of a P tag; ZYR_CLASS_MAX: none, or not seen like that before
    uint32_t uiNameUnits;                   // of a name that has not been seen
    uint16_t ausName[ZYR_CLASS_NAME_UNITS]; // in upper case
    const uint8_t *pucName;                 // as it stands in the tag; until the next tag is looked for
};

/** Looks for tags in the current stream's read buffer. */
struct SamiTagFinder {
    UsualText stText;
    const uint8_t *pucLast; // last place where the buffer holds a whole tag
    const SamiClassForms *pstForms;
    uint8_t aucNarrow[64]; // UTF-16 units as bytes
};

/** Begin at the read position. @return false where nothing is usual */
bool Begin_SamiTags(SamiTagFinder *pstFinder, const SamiClassForms *pstForms);

/** Find the next tag from stText.pucByte on, and go behind it. @return false when only the literal reading can tell what
 *          stands there: nothing but other tags and characters has been passed over */
bool Find_SamiTag(SamiTagFinder &stFinder, SamiTag *pstTag);

/** Remember how a tag has named a class. */
void Note_ClassForm(const SamiTag &stTag, uint32_t uiClass, SamiClassForms *pstForms);

/** Take the frame whose SYNC tag stands at the read position, if its text is known and usual, as the current stream's
 * frame; the times are left to the caller. @return whether it was */
bool Take_UsualSami(const SamiFrameInfo &stEntry);

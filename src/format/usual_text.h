/*
 * The text of a usual entry at once: from the bytes of the read buffer to finished lines, which are kept as they
 * go out. All or nothing: until Commit_UsualText() nothing that anybody sees has changed, so whatever is odd
 * about an entry ends the attempt, and the literal reading takes the entry.
 *
 * A format says in a UsualForm which units its text stops at, and what each of them means. Characters in between
 * are taken here, sixteen bytes at a step.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "record/parser_state.h"
#include "text/text_kind.h"

/** Tests turn the usual reading off to hold it against the literal one. */
extern bool s_bUsualReading;

/** Entries that the usual reading has taken since the program began. */
extern uint32_t s_uiUsualEntries;

/** What a stop led to. */
enum UsualStep : uint32_t {
    E_USUAL_ON,  // the text goes on at the byte behind it
    E_USUAL_END, // the entry is complete; its last line is still open
    E_USUAL_ODD, // only the literal reading can tell
};

/** Tag whose effect waits until the entry is known to be whole. */
struct UsualTag {
    const uint8_t *pucTag; // in the read buffer
    uint32_t uiUnits;
};

struct UsualText {
    static constexpr uint32_t TAGS_MAX = 12;

    const uint8_t *pucByte; // next byte of the entry
    const uint8_t
        *pucEnd; // USUAL_AHEAD bytes behind the last one that the buffer holds, or that may be the entry's
    const uint8_t *pucFileLine; // where the current line of the file begins
    uint8_t *pucStore;          // the stream's text buffer: lines with a newline behind each
    uint8_t *pucLine;           // in it: where the current line begins
    uint8_t *pucOut;            // and where its next byte goes
    uint32_t uiTrails;          // bytes of the current line that begin no unit
    bool bPrevBlank; // a blank is none of the line: it would be its first unit, or the second of a run
    TextKind eKind;
    uint32_t uiUnitBytes;
    bool bBigEndian;
    uint32_t uiLines;
    uint32_t uiTags;
    CaptionLine *pstLines; // of the stream's line table, which nobody looks at before the frame is committed
    UsualTag astTag[TAGS_MAX];

    /** @return the unit uiUnit units ahead; USUAL_AHEAD bytes are there. */
    uint32_t Get_Unit(uint32_t uiUnit) const { return Get_UnitAt(pucByte + size_t{uiUnit} * uiUnitBytes); }
    uint32_t Get_UnitAt(const uint8_t *puc) const
    {
        if (uiUnitBytes == 1) return *puc;
        return bBigEndian ? static_cast<uint32_t>(puc[0] << 8 | puc[1])
                          : static_cast<uint32_t>(puc[1] << 8 | puc[0]);
    }
    /** @return the next eight units as bytes, the first one lowest; those beyond a byte as 0xFF or 0. */
    uint64_t Get_Eight() const
    {
        uint64_t ullBytes;
        if (uiUnitBytes != 1) return Narrow_Eight();
        std::memcpy(&ullBytes, pucByte, sizeof(ullBytes));
        return ullBytes;
    }
    uint64_t Narrow_Eight() const;
    void Take_Units(uint32_t uiUnits) { pucByte += size_t{uiUnits} * uiUnitBytes; }
    /** Pass over a head of the entry, behind which its text begins. */
    void Take_Head(uint32_t uiUnits)
    {
        Take_Units(uiUnits);
        pucFileLine = pucByte;
    }
    bool Is_LineEmpty() const { return pucOut == pucLine; }
    /** @return the byte behind the last one that may be the entry's. */
    inline const uint8_t *Get_TextEnd() const;
};

/** Bytes from the next one on that can be looked at wherever a stop is met. */
constexpr int32_t USUAL_AHEAD = 32;

inline const uint8_t *UsualText::Get_TextEnd() const
{
    return pucEnd - USUAL_AHEAD;
}

/** Up to eight ASCII characters, and the bits of them that count: of a letter all but the case, if it may be any. */
struct UsualWord {
    uint64_t ullText;
    uint64_t ullBits;

    template <uint32_t BYTES>
    consteval UsualWord(const char (&szText)[BYTES], bool bAnyCase) : ullText(0), ullBits(0)
    {
        static_assert(BYTES - 1 <= 8);
        for (uint32_t uiPos = 0; uiPos < BYTES - 1; ++uiPos) {
            const bool bLetter = szText[uiPos] >= 'a' && szText[uiPos] <= 'z';
            const uint64_t ullCounts = bAnyCase && bLetter ? 0xDF : 0xFF;
            ullText |= (static_cast<uint8_t>(szText[uiPos]) & ullCounts) << uiPos * 8;
            ullBits |= ullCounts << uiPos * 8;
        }
    }
    /** @param[in] ullEight  as UsualText::Get_Eight() */
    constexpr bool Begins(uint64_t ullEight) const { return ((ullEight ^ ullText) & ullBits) == 0; }
};

/** The most usual entity by far: a blank. */
constexpr UsualWord NO_BREAK_SPACE("&nbsp;", false);
constexpr uint32_t NO_BREAK_SPACE_UNITS = 6;

struct UsualForm {
    uint8_t aucStop[2]; // where a run of characters ends, beside units below 0x20 and a second blank in a row
    /** Take the stop at the next byte. */
    UsualStep (*pfTakeStop)(UsualText &stText, uint32_t uiUnit);
    /** Let a tag take effect, which stands in the tag buffer. */
    void (*pfApplyTag)(uint32_t uiUnits);
    bool bLines = false; // CR LF ends a line and CR LF CR LF the entry: such a CR need not come to pfTakeStop
};

/** Look at the current stream's read position. @return false where no text is usual */
bool Point_UsualText(UsualText *pstText);

/**
 * Begin so many units behind the current stream's read position.
 *
 * @return false where no entry is usual: the usual reading is off, the frame has been begun already, the host
 *         has changed limits or options
 */
bool Begin_UsualText(UsualText *pstText, uint32_t uiSkipUnits);

/** Take the next unit of an entry's head. @return whether it is sure */
bool Take_UsualUnit(UsualText &stText, uint16_t *pusUnit);

/** Pass over the entry whose head of so many units has been matched. @param[in] ucOdd  as Find_EmptyLine()
 *  @return whether it is usual to its end, as far as a seek looks at it */
bool Pass_UsualText(const UsualText &stText, uint32_t uiHeadUnits, uint8_t ucOdd);

/** Take text up to the entry's end. @return whether the entry is usual to its end */
bool Take_UsualText(UsualText &stText, const UsualForm &stForm);

/** Make the entry the current stream's frame, and take it off the read buffer. */
void Commit_UsualText(const UsualText &stText, const UsualForm &stForm);

// ---- What stops mean in several formats ----

/** Close the line that a line break ends. */
UsualStep Break_UsualLine(UsualText &stText);

/** Put a decoded unit behind the line. */
UsualStep Put_UsualUnit(UsualText &stText, uint32_t uiUnit);

/** A tab, folded into a run of blanks. */
UsualStep Take_UsualTab(UsualText &stText);

/** Note a tag from an opening to a closing ASCII unit. One that holds others than ASCII units is odd. */
UsualStep Note_UsualTag(UsualText &stText, uint32_t uiOpen, uint32_t uiClose);

/** "<": a line break, or a tag for later. */
UsualStep Take_UsualHtmlTag(UsualText &stText);

/** "&": an entity that is closed with ";". */
UsualStep Take_UsualEntity(UsualText &stText);

/** An entry without text: what is left of CR LF CR LF behind its times. @return whether it is that */
bool Take_UsualEmptyLine(UsualText &stText);

/**
 * The beginning of an entry as bytes: UTF-16 units narrowed, those beyond a byte as 0xFF or 0.
 *
 * @param[in] uiUnits  BLOCK_BYTES at least; pucTarget has room for them
 * @return the bytes themselves where a unit is a byte, or pucTarget; NULL when the buffer holds less than uiUnits
 */
const uint8_t *Get_UsualHead(const UsualText &stText, uint8_t *pucTarget, uint32_t uiUnits);

/** The same at the current stream's read position. */
const uint8_t *Get_UsualHead(uint8_t *pucTarget, uint32_t uiUnits);

/* The usual forms of the two tags that make up a SAMI file. */
#pragma once

#include <cstdint>
#include <cstring>

#include "text/buffer_units.h"
#include "text/text_helpers.h"

constexpr uint32_t USUAL_TAG_UNITS = 32; // more than such a tag has
constexpr uint32_t USUAL_DIGITS = 9;     // of a time: no overflow

/** @return whether a unit ends a tag's name. */
constexpr bool Is_TagSpace(uint32_t uiUnit)
{
    return uiUnit == ' ' || uiUnit == '\t' || uiUnit == '\r' || uiUnit == '\n';
}

/** @return whether the read buffer holds more units than a usual tag has. */
inline bool Holds_UsualTag(const BufferUnits &stUnits)
{
    return stUnits.iNums >= static_cast<int32_t>(USUAL_TAG_UNITS);
}

/** A text in upper case of up to 16 units, and the bits of its bytes that count: of a letter all but the
 * case. */
struct CaselessText {
    uint32_t uiUnits;
    uint64_t aullText[2];
    uint64_t aullBits[2];

    template <uint32_t BYTES>
    consteval explicit CaselessText(const char (&szText)[BYTES]) : uiUnits(BYTES - 1), aullText(), aullBits()
    {
        static_assert(BYTES - 1 <= 16);
        for (uint32_t uiPos = 0; uiPos < BYTES - 1; ++uiPos) {
            const uint64_t ullByte = static_cast<uint8_t>(szText[uiPos]);
            const bool bLetter = ullByte - 'A' < 26;
            aullText[uiPos / 8] |= ullByte << uiPos % 8 * 8;
            aullBits[uiPos / 8] |= uint64_t{bLetter ? 0xDFu : 0xFFu} << uiPos % 8 * 8;
        }
    }
};

inline bool Begins_With(const BufferUnits &stUnits, const CaselessText &stText)
{
    if (stUnits.uiUnitBytes == 1) {
        uint64_t aullBytes[2];
        std::memcpy(aullBytes, stUnits.pucBytes, sizeof(aullBytes));
        return ((aullBytes[0] ^ stText.aullText[0]) & stText.aullBits[0]) == 0 &&
               ((aullBytes[1] ^ stText.aullText[1]) & stText.aullBits[1]) == 0;
    }
    for (uint32_t uiPos = 0; uiPos < stText.uiUnits; ++uiPos)
        if (To_Upper(stUnits[uiPos]) != (stText.aullText[uiPos / 8] >> uiPos % 8 * 8 & 0xFF)) return false;
    return true;
}

constexpr CaselessText SYNC_NAME("SYNC");
constexpr CaselessText SYNC_START("<SYNC START=");
constexpr CaselessText PARAGRAPH_CLASS("<P CLASS=");

/** Look at a tag "<SYNC START=1000>". @return its units, or 0 for anything else. */
inline uint32_t Match_SyncTag(const BufferUnits &stUnits, uint32_t *puiStart)
{
    constexpr uint32_t VALUE = SYNC_START.uiUnits;
    if (!Begins_With(stUnits, SYNC_START)) return 0;
    uint32_t uiPos = VALUE;
    *puiStart = 0;
    for (; uiPos < VALUE + USUAL_DIGITS && Is_Digit(stUnits[uiPos]); ++uiPos)
        *puiStart = *puiStart * 10 + (stUnits[uiPos] - '0');
    return uiPos > VALUE && stUnits[uiPos] == '>' ? uiPos + 1 : 0;
}

/**
 * Look at a tag "<P CLASS=KRCC>".
 *
 * @param[out] pusName  room for ZYR_CLASS_NAME_UNITS units; the name in upper case
 * @return units of the tag, or 0 for anything else
 */
inline uint32_t Match_ParagraphTag(const BufferUnits &stUnits, uint16_t *pusName, uint32_t *puiUnits)
{
    constexpr uint32_t VALUE = PARAGRAPH_CLASS.uiUnits;
    if (!Begins_With(stUnits, PARAGRAPH_CLASS)) return 0;
    uint32_t uiNums = 0;
    for (; uiNums < ZYR_CLASS_NAME_UNITS; ++uiNums) {
        const uint32_t uiUnit = To_Upper(stUnits[VALUE + uiNums]);
        if (!Is_Digit(uiUnit) && uiUnit - 'A' >= 26) break;
        pusName[uiNums] = static_cast<uint16_t>(uiUnit);
    }
    *puiUnits = uiNums;
    return uiNums > 0 && stUnits[VALUE + uiNums] == '>' ? VALUE + uiNums + 1 : 0;
}

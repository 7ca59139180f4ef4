/* Finding a character in the read buffer without decoding what stands before it. */
#pragma once

#include <cstdint>

#include "text/text_kind.h"

/** Bytes behind a character found that the buffer still holds, and can be looked at. */
constexpr int32_t FOUND_AHEAD = 32;

/**
 * Find the first character of two, which are ASCII (and may be the same).
 *
 * @param[in] pucByte  where a character begins
 * @param[in] pucEnd   behind the last byte that the buffer holds
 * @return its place; NULL when it is not there or not FOUND_AHEAD bytes before the end, or when a byte in between
 *         may hide one of the two in a form that only the reader can tell
 */
const uint8_t *Find_Unit(TextKind eKind, const uint8_t *pucByte, const uint8_t *pucEnd, uint8_t ucFirst,
                         uint8_t ucSecond);

/** The same for "<" alone. */
const uint8_t *Find_TagOpen(TextKind eKind, const uint8_t *pucByte, const uint8_t *pucEnd);

/** @return whether a UTF-8 character of several bytes, which may begin at pucFrom at the earliest, ends right before a
 *          place. */
bool Ends_Utf8(const uint8_t *pucFrom, const uint8_t *pucEnd);

/**
 * Bytes right before a character that decode to none are counted to it by the reader.
 *
 * @param[in] pucFrom  where a character begins
 * @return whether there are none before a character found behind it
 */
inline bool Is_CountedAlone(TextKind eKind, const uint8_t *pucFrom, const uint8_t *pucFound)
{
    return eKind != E_TEXT_UTF8 || pucFound == pucFrom || pucFound[-1] < 0x80 || Ends_Utf8(pucFrom, pucFound);
}

/**
 * Find the first CR, which must be that of a CR LF, in the current stream's read buffer.
 *
 * @param[in] uiSkipUnits  units from the read position on that are passed over
 * @return bytes from the read position to behind the LF, or 0 when it is not sure
 */
uint32_t Find_LineEnd(uint32_t uiSkipUnits);

/**
 * Find the first empty line: a CR LF right behind another.
 *
 * @param[in] pucByte  where a line begins
 * @param[in] pucEnd   as Find_Unit()
 * @param[in] ucOdd    a character that makes it unsure when it stands before; CR = none
 * @return the byte behind it; NULL when it is not sure that there is one
 */
const uint8_t *Find_EmptyLine(TextKind eKind, const uint8_t *pucByte, const uint8_t *pucEnd, uint8_t ucOdd);

/**
 * Pass over characters in the current stream's read buffer up to the first of two, which are ASCII. Bytes that
 * decode to no character are left before it: the reader counts them to the character behind them.
 *
 * @return bytes passed over; 0 also where it is not sure where the two stand
 */
uint32_t Skip_To(uint8_t ucFirst, uint8_t ucSecond);

/* Telling a subtitle file's encoding: by its byte order mark, or by counting UTF-8 sequences. */
#pragma once

#include <cstdint>

/** What a scan has seen so far. */
struct Utf8Count {
    uint32_t uiInvalid;   // bytes that UTF-8 does not allow where they stand
    uint32_t uiSequences; // complete characters of several bytes
    uint32_t uiPending;   // continuation bytes still expected
};

/** @return encoding that the first bytes of a file (up to 3 are looked at) mark, or E_TEXT_ENCODING_ANSI
 * without a mark. */
uint32_t Get_MarkedEncoding(const uint8_t *pucBytes, int32_t iBytes);

/** Count on over uiBytes bytes. @return whether the counts decide the encoding, so that reading can stop. */
bool Count_Utf8(Utf8Count *pstCount, const uint8_t *pucBytes, uint32_t uiBytes);

/** @return encoding that the counts speak for at the end of the file, or where Count_Utf8() stopped. */
uint32_t Decide_Encoding(const Utf8Count &stCount);

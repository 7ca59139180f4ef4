// Text with every line end made CR LF, gathered piece by piece.
#ifndef ZYR_PLATFORM_HOST_TEXT_H
#define ZYR_PLATFORM_HOST_TEXT_H

#include <cstddef>
#include <cstdint>

enum HostTextUnit : uint32_t {
    E_HOST_TEXT_UNKNOWN,
    E_HOST_TEXT_BYTES,
    E_HOST_TEXT_UTF16_SAME,
    E_HOST_TEXT_UTF16_SWAPPED
};

struct HostText {
    uint8_t *pucData;   // free() it
    size_t uiBytes;     // of text so far
    size_t uiRoom;      // bytes that pucData holds
    HostTextUnit eUnit; // known from the first piece on
};

/** Bytes at the end of a piece that may have to be given again: two 16-bit CRs and an odd byte. */
constexpr size_t HOST_TEXT_REST_MAX = 5;

/**
 * Append a piece of the file. A line end that may go on in the next piece is left, and so is half a unit.
 *
 * @param[in]  uiBytes   of the piece; the first piece has two or more, unless it is the last
 * @param[in]  bLast     the file ends with this piece: nothing is left
 * @param[out] puiTaken  bytes done; the next piece begins with the others, at most HOST_TEXT_REST_MAX
 * @return false without memory, or when the text passes 2^31 - 1 bytes
 */
bool Append_HostText(HostText *pstText, const uint8_t *pucPiece, size_t uiBytes, bool bLast,
                     size_t *puiTaken);

#endif

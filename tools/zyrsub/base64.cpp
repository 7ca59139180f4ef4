#include "base64.h"

#include <cstdint>

std::string Encode_Base64(std::string_view strBytes)
{
    static constexpr char LETTERS[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string strText;
    strText.reserve((strBytes.size() + 2) / 3 * 4);
    for (size_t uiByte = 0; uiByte < strBytes.size(); uiByte += 3) {
        const std::string_view strThree = strBytes.substr(uiByte, 3);
        uint32_t uiBits = 0;
        for (size_t ui = 0; ui < 3; ++ui)
            uiBits = uiBits << 8 | (ui < strThree.size() ? static_cast<uint8_t>(strThree[ui]) : 0U);
        for (size_t ui = 0; ui < 4; ++ui)
            strText += ui <= strThree.size() ? LETTERS[uiBits >> (18 - 6 * ui) & 0x3F] : '=';
    }
    return strText;
}

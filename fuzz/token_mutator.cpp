/* Beside libFuzzer's own changes: a token, or a piece of the input, once or so many times that a buffer fills. */

#include <algorithm>
#include <cstring>
#include <string_view>

#include "fuzz_input.h"

extern "C" size_t LLVMFuzzerMutate(uint8_t *pucData, size_t uiSize, size_t uiMaxSize);
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t *pucData, size_t uiSize, size_t uiMaxSize, unsigned uiSeed);

namespace
{

using namespace std::string_view_literals;

constexpr std::string_view TOKENS[] = {
    "<SYNC Start=1000>"sv,
    "<P Class=KRCC>"sv,
    "<P>"sv,
    "<br>"sv,
    "&nbsp;"sv,
    "&#9;"sv,
    "\t"sv,
    " "sv,
    "x"sv,
    "<b>"sv,
    "</b>"sv,
    "<i>"sv,
    "<font color=\"red\">"sv,
    "&"sv,
    "<"sv,
    "\r\n"sv,
    "\r\n\r\n"sv,
    "\xEA\xB0\x80"sv,
    "\xC7\xD1"sv,
    "\xF0\x9F\x98\x80"sv,
    "1\r\n00:00:01,000 --> 00:00:02,000\r\n"sv,
    "00:00:01.00,00:00:02.00\r\n"sv,
    "[br]"sv,
    "[Events]\r\n"sv,
    "Style: A,Arial,20,1,1,1,1,0,0,1,1,1,2,1,1,1,0,0\r\n"sv,
    "Dialogue: Marked=0,0:00:01.00,0:00:02.00,A,,0000,0000,0000,,text\r\n"sv,
    "{\\b1}"sv,
    "\\N"sv,
    "\\n"sv,
    "\0"sv,
    "\xFF"sv,
    "\x20\x00"sv,
    "\x00\x20"sv,
    "\n\0"sv,
    "a\0"sv,
    "0123456789"sv,
    ",",
    "="sv,
    ":"sv};

class Random
{
public:
    explicit Random(unsigned uiSeed) : m_uiState(uiSeed * 2654435769u + 1) {}
    uint32_t Below(uint32_t uiLimit)
    {
        m_uiState = m_uiState * 1664525u + 1013904223u;
        return (m_uiState >> 8) % uiLimit;
    }

private:
    uint32_t m_uiState;
};

/** How often: mostly a few times, at times thousands. */
size_t Take_Times(Random &stRandom)
{
    return 1 + stRandom.Below(1u << stRandom.Below(15));
}

/** Put a token so many times at a place, as far as there is room. */
size_t Insert_Repeated(uint8_t *pucData, size_t uiSize, size_t uiMaxSize, size_t uiPlace,
                       std::string_view strToken, size_t uiTimes)
{
    uiTimes = std::min(uiTimes, (uiMaxSize - uiSize) / strToken.size());
    const size_t uiBytes = uiTimes * strToken.size();
    std::memmove(pucData + uiPlace + uiBytes, pucData + uiPlace, uiSize - uiPlace);
    for (size_t uiTime = 0; uiTime < uiTimes; ++uiTime)
        std::memcpy(pucData + uiPlace + uiTime * strToken.size(), strToken.data(), strToken.size());
    return uiSize + uiBytes;
}

} // namespace

size_t LLVMFuzzerCustomMutator(uint8_t *pucData, size_t uiSize, size_t uiMaxSize, unsigned uiSeed)
{
    Random stRandom(uiSeed);
    if (stRandom.Below(4) != 0 || uiSize <= g_uiSteeringBytes)
        return LLVMFuzzerMutate(pucData, uiSize, uiMaxSize);
    const auto uiText = static_cast<uint32_t>(uiSize - g_uiSteeringBytes);
    const size_t uiPlace = stRandom.Below(uiText + 1);
    uint8_t aucPiece[64];
    std::string_view strToken = TOKENS[stRandom.Below(static_cast<uint32_t>(std::size(TOKENS)))];
    if (stRandom.Below(3) == 0) { // a piece of the input instead
        const size_t uiFrom = stRandom.Below(uiText);
        const size_t uiBytes = std::min<size_t>(1 + stRandom.Below(sizeof(aucPiece)), uiText - uiFrom);
        std::memcpy(aucPiece, pucData + uiFrom, uiBytes);
        strToken = {reinterpret_cast<const char *>(aucPiece), uiBytes};
    }
    return Insert_Repeated(pucData, uiSize, uiMaxSize, uiPlace, strToken, Take_Times(stRandom));
}

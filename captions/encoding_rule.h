// How the engine tells a file's encoding, told again from its bytes: which it does not say, and a program that shows
// why a file reads as it does wants to know.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

struct EncodingRule {
    const char *pszEncoding = "ANSI"; // or "UTF-8", "UTF-16LE", "UTF-16BE"
    uint32_t uiRule = 0;              // ZYR_CAPTIONS_BY_MARK and so on
    uint32_t uiCharacters = 0;        // of several bytes, that the scan saw; 0 with a mark, as the rest
    uint32_t uiInvalid = 0;           // bytes that UTF-8 does not allow where they stand
    size_t uiScanned = 0;             // bytes, until the scan had seen enough
    size_t uiFirstInvalid = 0;        // or ZYR_CAPTIONS_NOWHERE
};

EncodingRule Find_EncodingRule(std::string_view strFile);

// Why the engine reads a file in the encoding it does, and what speaks for another.
#ifndef ZYRSUB_ENCODING_REPORT_H
#define ZYRSUB_ENCODING_REPORT_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "subtitle_source.h"
#include "text/encoding.h"

enum EncodingRule {
    E_RULE_MARK,     // a byte order mark
    E_RULE_SCAN,     // the bytes from 0x80 on are UTF-8, or too many of them are not
    E_RULE_FALLBACK, // neither: ANSI
};

struct BadByte {
    size_t uiOffset = 0; // bytes from the file's start
    uint8_t ucByte = 0;
};

struct CodePageGuess {
    std::string strName;
    std::string strPreview; // a line of the captions, read so
    bool bInUse = false;
};

struct EncodingReport {
    EncodingRule eRule = E_RULE_FALLBACK;
    Utf8Count stCount = {};                // all 0 with a mark
    size_t uiScanned = 0;                  // bytes, until the scan had seen enough
    std::optional<BadByte> stNotUtf8;      // the first that the scan found
    std::optional<BadByte> stUndecodable;  // the first in the encoding that is in use
    std::vector<CodePageGuess> astGuesses; // for ANSI text with bytes from 0x80 on, best first
};

EncodingReport Explain_Encoding(const SubtitleSource &stSource);

// "mark", "scan" or "fallback".
const char *Get_RuleName(EncodingRule eRule);

#endif

// The code pages of text without a Unicode encoding.
#pragma once

#include <string>
#include <string_view>
#include <vector>

constexpr const char *USUAL_CODE_PAGE = "CP949"; // where the bytes tell nothing

// Names that stand for less than what their files hold, as EUC-KR without the later Hangul, give the code page that
// took them over; any other name is given back.
std::string Widen_CodePage(const std::string &strName);

// What a file's bytes look like, best first, in names that iconv knows; nothing without a byte from 0x80 on.
std::vector<std::string> Guess_CodePages(std::string_view strFile);

bool Is_High(char cByte); // no ASCII

// Where the first byte stands that the code page cannot read, or ZYR_CAPTIONS_NOWHERE.
size_t Find_UnreadableByte(std::string_view strFile, const std::string &strCodePage);

// The code pages of text without a Unicode encoding.
#ifndef ZYRSUB_CODE_PAGE_H
#define ZYRSUB_CODE_PAGE_H

#include <string>
#include <string_view>
#include <vector>

// As an option: the likeliest code page of each file.
constexpr const char *AUTO_CODE_PAGE = "auto";

// Names that stand for less than what their files hold, as EUC-KR without the later Hangul, give the code
// page that took them over; any other name is given back.
std::string Widen_CodePage(const std::string &strName);

// No character of it takes two bytes.
bool Is_SingleByte(const std::string &strCodePage);

// What a file's bytes look like, best first, in names that iconv knows; nothing without a byte from 0x80 on.
std::vector<std::string> Guess_CodePages(std::string_view strFile);

#endif

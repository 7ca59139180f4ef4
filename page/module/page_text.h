// Text on its way between a file's encoding and a person who edits it.
#ifndef ZYRPAGE_PAGE_TEXT_H
#define ZYRPAGE_PAGE_TEXT_H

#include <optional>
#include <string>
#include <string_view>

// UTF-8 with a newline for each line end; what cannot be read is U+FFFD.
std::string Decode_Text(std::string_view strBytes, const std::string &strEncoding);

// With CR LF line ends. Nothing where the encoding does not have all of the text.
std::optional<std::string> Encode_Exactly(std::string_view strText, const std::string &strEncoding);

#endif

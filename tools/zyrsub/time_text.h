// Times as people write and read them.
#ifndef ZYRSUB_TIME_TEXT_H
#define ZYRSUB_TIME_TEXT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The end of a frame whose file does not tell one.
constexpr int32_t OPEN_END = 0x7FFFFFFF;

// H:MM:SS.mmm, MM:SS.mmm, 1h2m3.5s with any of its units, or milliseconds (1500, 1500ms); a comma serves as
// the point. Nothing for any other text, a fraction without a unit among them, and for times from 0x7FFFFFFF
// ms on.
std::optional<uint32_t> Parse_Time(std::string_view strText);

// H:MM:SS.mmm
std::string Format_Time(int32_t iMs);

// As Format_Time(); "-" for an open end.
std::string Format_EndTime(int32_t iMs);

#endif

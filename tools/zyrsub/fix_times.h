// Time lines of SubRip, SubViewer and SSA, read as a person reads them and written as the box does.
#ifndef ZYRSUB_FIX_TIMES_H
#define ZYRSUB_FIX_TIMES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// "1:02.5", "00:00:01,500", "0:00:01:50" ...: ms; negative with a "-" in front.
std::optional<int64_t> Read_LooseTime(std::string_view strTime);

struct TimeLine {
    int64_t llStart;     // ms
    int64_t llEnd;       // ms
    std::string strLead; // what an SSA line has in front of its start
    std::string strRest; // what stands behind the end
};

// The line's times in a format (ZYR_CAPTIONS_SUBRIP and so on); nothing for a line that is no such line.
std::optional<TimeLine> Read_TimeLine(uint32_t uiFormat, std::string_view strLine);

std::string Write_TimeLine(uint32_t uiFormat, const TimeLine &stLine);

#endif

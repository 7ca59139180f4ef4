#include "time_text.h"

#include <cstdio>
#include <cstdlib>

std::string Format_Time(int32_t iMs)
{
    const int64_t llMs = std::llabs(static_cast<int64_t>(iMs));
    char szTime[32];
    std::snprintf(szTime, sizeof szTime, "%s%d:%02d:%02d.%03d", iMs < 0 ? "-" : "",
                  static_cast<int>(llMs / 3600000), static_cast<int>(llMs / 60000 % 60),
                  static_cast<int>(llMs / 1000 % 60), static_cast<int>(llMs % 1000));
    return szTime;
}

std::string Format_EndTime(int32_t iMs)
{
    return iMs == OPEN_END ? "-" : Format_Time(iMs);
}

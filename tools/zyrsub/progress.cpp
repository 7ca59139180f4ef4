#include "progress.h"

#include <cstdio>
#include <unistd.h>

void Show_Progress(size_t uiDone, size_t uiAll, const std::string &strAfter)
{
    static constexpr size_t BAR = 40;
    if (isatty(STDERR_FILENO) == 0) return;
    const std::string strBar(uiAll == 0 ? BAR : BAR * uiDone / uiAll, '#');
    std::fprintf(stderr, "\r[%-40s] %zu of %zu%s\033[K%s", strBar.c_str(), uiDone, uiAll, strAfter.c_str(),
                 uiDone == uiAll ? "\n" : "");
}

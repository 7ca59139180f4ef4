// How far something is, on a terminal.
#ifndef ZYRSUB_PROGRESS_H
#define ZYRSUB_PROGRESS_H

#include <cstddef>
#include <string>

// A bar on standard error, where that is a terminal; at the end the line is closed.
void Show_Progress(size_t uiDone, size_t uiAll, const std::string &strAfter = "");

#endif

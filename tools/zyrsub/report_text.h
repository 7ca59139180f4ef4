// Results for people, on standard output.
#ifndef ZYRSUB_REPORT_TEXT_H
#define ZYRSUB_REPORT_TEXT_H

#include <string>

#include "subtitle_source.h"

void Print_Info(const std::string &strMovie, const SubtitleSource &stSource);

// One frame: times, the class where there are several, and the lines below each other.
void Print_Frame(const SubtitleSource &stSource, const Frame &stFrame);

#endif

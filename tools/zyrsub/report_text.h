// Results for people, on standard output.
#ifndef ZYRSUB_REPORT_TEXT_H
#define ZYRSUB_REPORT_TEXT_H

#include <string>

#include "caption_file.h"
#include "line_ends.h"

void Print_Info(const std::string &strMovie, const CaptionFile &stCaptions, const LineEnds &stEnds);

// One frame: times, the class where there are several, and the lines below each other.
void Print_Frame(const CaptionFile &stCaptions, const Frame &stFrame);

// "UTF-8", "ANSI, read as CP949".
std::string Describe_Encoding(const ZyrCaptionsFile &stFile);

// "mark", "scan" or "fallback".
const char *Get_RuleName(uint32_t uiRule);

#endif

// Places in a file as the engine sees them, which is with every line end as CR LF, and in the file itself.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "caption_list.h"

// Turns the places that captions have in the presented text into those of the file's own bytes.
void Place_InFile(std::vector<CaptionRecord> &astRecords, std::string_view strFile);

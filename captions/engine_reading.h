// The engine, used under the library's one lock: a file's bytes become a list's captions.
#pragma once

#include <mutex>
#include <string>

#include "caption_list.h"
#include "subtitle_file.h"

// Held by who uses the engine, the display or the host layer.
std::mutex &Get_EngineLock();

// The list's file, format, code page and encoding are known; strBytes stay until this returns.
LoadResult Read_WithEngine(ZyrCaptions &stList, const std::string &strBytes,
                           const ZyrCaptionsOptions &stOptions, std::string &strHighBlock);

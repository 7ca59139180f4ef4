// Files that are there whole or not at all.
#ifndef ZYRSUB_SAFE_FILE_H
#define ZYRSUB_SAFE_FILE_H

#include <string>

#include "exit_code.h"

// Writes under a temporary name in the same folder, and renames. An existing file stays unless bForce, and then
// keeps its mode, and its place behind a link; a device or a pipe is written to as it is.
Outcome Write_Safely(const std::string &strFile, const std::string &strBytes, bool bForce);

#endif

// Files that are there whole or not at all.
#ifndef ZYRSUB_SAFE_FILE_H
#define ZYRSUB_SAFE_FILE_H

#include <string>

#include "exit_code.h"

// Writes under a temporary name in the same folder, and renames; an existing file stays unless bForce.
Outcome Write_Safely(const std::string &strFile, const std::string &strBytes, bool bForce);

#endif

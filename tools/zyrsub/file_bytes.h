// Files as they are.
#ifndef ZYRSUB_FILE_BYTES_H
#define ZYRSUB_FILE_BYTES_H

#include <cstdint>
#include <optional>
#include <string>

// The file's first bytes, uiMost at most; nothing when it cannot be read, or is no regular file.
std::optional<std::string> Read_Bytes(const std::string &strPath, size_t uiMost = SIZE_MAX);

#endif

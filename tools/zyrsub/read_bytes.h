// Whole files and standard input, as bytes.
#ifndef ZYRSUB_READ_BYTES_H
#define ZYRSUB_READ_BYTES_H

#include <string>

// Empty where it cannot be read.
std::string Read_FileBytes(const std::string &strPath);

std::string Read_Input();

#endif

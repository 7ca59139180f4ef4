// What was probably meant by a name that does not exist.
#ifndef ZYRSUB_CLOSEST_NAME_H
#define ZYRSUB_CLOSEST_NAME_H

#include <span>
#include <string>

// The name that takes the fewest single-character changes; empty when none is near.
std::string Find_ClosestName(const std::string &strName, std::span<const std::string> astrNames);

#endif

// Bytes as text of 64 letters, as pages hold pictures.
#ifndef ZYRSUB_BASE64_H
#define ZYRSUB_BASE64_H

#include <string>
#include <string_view>

std::string Encode_Base64(std::string_view strBytes);

#endif

// Languages by the names that SAMI files give their classes.
#pragma once

#include <string_view>

// The BCP 47 tag of a class name in upper case, or nullptr where the name does not say a language.
const char *Find_LanguageTag(std::string_view strClass);

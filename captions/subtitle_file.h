// The file that a load reads: found by its name or beside a movie, and its bytes.
#pragma once

#include <string>
#include <string_view>

#include "zyr/zyr_captions.h"

// A step that went wrong; a good one has no sentence.
struct LoadResult {
    int iError = ZYR_CAPTIONS_OK;
    std::string strSentence;

    bool Is_Good() const { return iError == ZYR_CAPTIONS_OK; }
};

// By the name's ending, in any letter case; ZYR_CAPTIONS_UNKNOWN for any other.
uint32_t Find_FormatByName(std::string_view strName);

// By what the text itself says.
uint32_t Find_FormatByText(std::string_view strBytes);

const char *Get_FormatName(uint32_t uiFormat);

// The ending that the engine knows a format by.
const char *Get_FormatEnding(uint32_t uiFormat);

// A subtitle file is read itself; for a movie, strFile becomes the first name beside it that opens.
LoadResult Read_Subtitle(std::string &strFile, std::string &strBytes);

// A file by its own name alone, whatever its ending.
LoadResult Read_AnyFile(const std::string &strFile, std::string &strBytes);

#include "subtitle_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

struct EndingRow {
    const char *pszEnding; // in the engine's order
    uint32_t uiFormat;
};
constexpr EndingRow ENDINGS[] = {
    {".SMI", ZYR_CAPTIONS_SAMI},      {".smi", ZYR_CAPTIONS_SAMI},      {".SAMI", ZYR_CAPTIONS_SAMI},
    {".sami", ZYR_CAPTIONS_SAMI},     {".SRT", ZYR_CAPTIONS_SUBRIP},    {".srt", ZYR_CAPTIONS_SUBRIP},
    {".SUB", ZYR_CAPTIONS_SUBVIEWER}, {".sub", ZYR_CAPTIONS_SUBVIEWER}, {".SSA", ZYR_CAPTIONS_SSA},
    {".ssa", ZYR_CAPTIONS_SSA},
};

struct FormatRow {
    const char *pszName;
    const char *pszEnding;
};
constexpr FormatRow FORMATS[] = {
    {"SAMI", ".smi"}, {"SubRip", ".srt"}, {"SubViewer", ".sub"}, {"SSA", ".ssa"}, {"none", ""},
};

// Kinds of subtitle that people have and the engine does not read.
struct ForeignRow {
    const char *pszEnding; // lower case
    const char *pszSentence;
};
constexpr ForeignRow FOREIGN[] = {
    {".ass", "ASS (version 4+) is not read; SSA (version 4, .ssa) is, so save it as that or as .srt"},
    {".vtt", "WebVTT is not read; save it as .srt"},
    {".idx", "pictures of text are not read; a text subtitle (.smi .sami .srt .sub .ssa) is needed"},
    {".sup", "pictures of text are not read; a text subtitle (.smi .sami .srt .sub .ssa) is needed"},
};

struct SignRow {
    const char *pszSign; // lower case
    uint32_t uiFormat;
};
constexpr SignRow SIGNS[] = {
    {"<sami", ZYR_CAPTIONS_SAMI},
    {"<sync", ZYR_CAPTIONS_SAMI},
    {"[script info]", ZYR_CAPTIONS_SSA},
    {"[events]", ZYR_CAPTIONS_SSA},
    {"[information]", ZYR_CAPTIONS_SUBVIEWER},
    {"[subtitle]", ZYR_CAPTIONS_SUBVIEWER},
    {"-->", ZYR_CAPTIONS_SUBRIP},
};

constexpr size_t SIGN_BYTES = 16384; // a file's head, where its kind is told

std::string Get_LowerEnding(std::string_view strName)
{
    const size_t uiDot = strName.rfind('.');
    std::string strEnding(uiDot == std::string_view::npos ? "" : strName.substr(uiDot));
    for (char &cChar : strEnding)
        if (cChar >= 'A' && cChar <= 'Z') cChar = static_cast<char>(cChar | 0x20);
    return strEnding;
}

LoadResult Explain_Failure(int iError)
{
    if (iError == ENOENT || iError == ENOTDIR) return {ZYR_CAPTIONS_NOT_FOUND, "there is no such file"};
    return {ZYR_CAPTIONS_UNREADABLE, std::string("not readable (") + std::strerror(iError) + ")"};
}

// Without O_NONBLOCK the open of a pipe would wait for its writer; regular files do not mind.
LoadResult Open_Regular(const std::string &strFile, int &iFile, size_t &uiBytes)
{
    struct stat stStatus = {};
    iFile = open(strFile.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (iFile < 0) return Explain_Failure(errno);
    LoadResult stResult;
    if (fstat(iFile, &stStatus) != 0)
        stResult = Explain_Failure(errno);
    else if (S_ISDIR(stStatus.st_mode))
        stResult = {ZYR_CAPTIONS_FOLDER, "a folder, not a subtitle file"};
    else if (!S_ISREG(stStatus.st_mode))
        stResult = {ZYR_CAPTIONS_UNREADABLE, "no regular file; copy it to one first"};
    else if (stStatus.st_size > INT32_MAX)
        stResult = {ZYR_CAPTIONS_TOO_LARGE, "larger than 2 GiB, which no subtitle is"};
    uiBytes = static_cast<size_t>(stStatus.st_size);
    if (!stResult.Is_Good()) close(iFile);
    return stResult;
}

LoadResult Read_All(int iFile, size_t uiBytes, std::string &strBytes)
{
    size_t uiDone = 0;
    strBytes.resize(uiBytes);
    while (uiDone < uiBytes) {
        const ssize_t iGot = read(iFile, strBytes.data() + uiDone, uiBytes - uiDone);
        if (iGot < 0 && errno == EINTR) continue;
        if (iGot < 0) return Explain_Failure(errno);
        if (iGot == 0) break;
        uiDone += static_cast<size_t>(iGot);
    }
    strBytes.resize(uiDone);
    return {};
}

LoadResult Read_File(const std::string &strFile, std::string &strBytes)
{
    int iFile = -1;
    size_t uiBytes = 0;
    LoadResult stResult = Open_Regular(strFile, iFile, uiBytes);
    if (!stResult.Is_Good()) return stResult;
    try {
        stResult = Read_All(iFile, uiBytes, strBytes);
    } catch (...) {
        close(iFile);
        throw;
    }
    close(iFile);
    return stResult;
}

// A movie's subtitle is the first of the names that opens, whatever it then holds.
LoadResult Read_Beside(std::string &strFile, std::string &strBytes)
{
    const std::string strBase = strFile.substr(0, strFile.rfind('.'));
    for (const EndingRow &stRow : ENDINGS) {
        LoadResult stResult = Read_File(strBase + stRow.pszEnding, strBytes);
        if (!stResult.Is_Good() && stResult.iError != ZYR_CAPTIONS_TOO_LARGE) continue;
        strFile = strBase + stRow.pszEnding;
        return stResult;
    }
    return {ZYR_CAPTIONS_NOT_FOUND,
            "no readable subtitle beside it (" + strBase + " with .smi, .sami, .srt, .sub or .ssa)"};
}

bool Is_Folder(const std::string &strFile)
{
    struct stat stStatus = {};
    return stat(strFile.c_str(), &stStatus) == 0 && S_ISDIR(stStatus.st_mode);
}

} // namespace

uint32_t Find_FormatByName(std::string_view strName)
{
    const std::string strEnding = Get_LowerEnding(strName);
    for (const EndingRow &stRow : ENDINGS)
        if (strEnding == stRow.pszEnding) return stRow.uiFormat;
    return ZYR_CAPTIONS_UNKNOWN;
}

// Of 16-bit text the zero bytes are left out, which makes ASCII of what matters here.
uint32_t Find_FormatByText(std::string_view strBytes)
{
    std::string strHead;
    for (const char cByte : strBytes.substr(0, SIGN_BYTES))
        if (cByte != 0) strHead += cByte >= 'A' && cByte <= 'Z' ? static_cast<char>(cByte | 0x20) : cByte;
    for (const SignRow &stRow : SIGNS)
        if (strHead.find(stRow.pszSign) != std::string::npos) return stRow.uiFormat;
    return ZYR_CAPTIONS_UNKNOWN;
}

const char *Get_FormatName(uint32_t uiFormat)
{
    return FORMATS[std::min<uint32_t>(uiFormat, ZYR_CAPTIONS_UNKNOWN)].pszName;
}

const char *Get_FormatEnding(uint32_t uiFormat)
{
    return FORMATS[std::min<uint32_t>(uiFormat, ZYR_CAPTIONS_UNKNOWN)].pszEnding;
}

LoadResult Read_Subtitle(std::string &strFile, std::string &strBytes)
{
    if (Is_Folder(strFile)) return {ZYR_CAPTIONS_FOLDER, "a folder, not a subtitle file"};
    if (Find_FormatByName(strFile) != ZYR_CAPTIONS_UNKNOWN) return Read_File(strFile, strBytes);
    const std::string strEnding = Get_LowerEnding(strFile);
    for (const ForeignRow &stRow : FOREIGN)
        if (strEnding == stRow.pszEnding) return {ZYR_CAPTIONS_NO_FORMAT, stRow.pszSentence};
    return Read_Beside(strFile, strBytes);
}

LoadResult Read_AnyFile(const std::string &strFile, std::string &strBytes)
{
    return Read_File(strFile, strBytes);
}

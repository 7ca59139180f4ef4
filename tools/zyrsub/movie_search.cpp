#include "movie_search.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "text_tools.h"

// In the engine's order, each in capitals first.
static constexpr const char *ENDINGS[] = {".SMI", ".smi", ".SAMI", ".sami", ".SRT",
                                          ".srt", ".SUB", ".sub",  ".SSA",  ".ssa"};

bool Is_SubtitleName(const std::string &strFile)
{
    const size_t uiDot = strFile.rfind('.');
    const std::string strEnding = uiDot == std::string::npos ? "" : Lower_Case(strFile.substr(uiDot));
    return std::find(std::begin(ENDINGS), std::end(ENDINGS), strEnding) != std::end(ENDINGS);
}

static TriedName Try_Name(const std::string &strFile)
{
    struct stat stStat = {};
    if (stat(strFile.c_str(), &stStat) != 0)
        return {strFile, errno == ENOENT ? "not there" : std::strerror(errno)};
    if (S_ISDIR(stStat.st_mode)) return {strFile, "a folder"};
    if (!S_ISREG(stStat.st_mode)) return {strFile, "no regular file"};
    const int iFile = open(strFile.c_str(), O_RDONLY | O_CLOEXEC);
    if (iFile < 0) return {strFile, std::strerror(errno)};
    close(iFile);
    return {strFile, "found", true};
}

static std::string Get_BaseName(const std::string &strPath)
{
    return strPath.substr(0, strPath.rfind('.'));
}

// Empty when the file has nothing to do with the movie.
static std::string Explain_Sibling(const std::string &strBase, const std::string &strName)
{
    const std::string strOwn = Get_BaseName(strName);
    const std::string strEnding = strName.substr(strOwn.size());
    if (strOwn == strBase) return "its ending is in mixed letter case; name it " + Lower_Case(strEnding);
    if (Lower_Case(strOwn) == Lower_Case(strBase)) return "its name differs from the movie's in letter case";
    if (Lower_Case(strOwn).starts_with(Lower_Case(strBase) + "."))
        return "there is more than the movie's name before its ending";
    return "";
}

static std::vector<Sibling> List_Siblings(const std::string &strBasePath,
                                          const std::vector<TriedName> &astTried)
{
    const size_t uiSlash = strBasePath.rfind('/');
    const std::string strFolder = uiSlash == std::string::npos ? "" : strBasePath.substr(0, uiSlash + 1);
    const std::string strBase = strBasePath.substr(strFolder.size());
    std::vector<Sibling> astSiblings;
    std::error_code stIgnored;
    for (std::filesystem::directory_iterator stEntry(strFolder.empty() ? "." : strFolder, stIgnored), stEnd;
         stEntry != stEnd; stEntry.increment(stIgnored)) {
        const std::string strName = stEntry->path().filename().string();
        const std::string strFile = strFolder + strName;
        const bool bTried = std::any_of(astTried.begin(), astTried.end(),
                                        [&](const TriedName &stTried) { return stTried.strFile == strFile; });
        if (bTried || !Is_SubtitleName(strName) || stEntry->is_directory(stIgnored)) continue;
        const std::string strWhy = Explain_Sibling(strBase, strName);
        if (!strWhy.empty()) astSiblings.push_back({strFile, strWhy});
    }
    std::sort(astSiblings.begin(), astSiblings.end(),
              [](const Sibling &stA, const Sibling &stB) { return stA.strFile < stB.strFile; });
    return astSiblings;
}

MovieSearch Search_Movie(const std::string &strMovie)
{
    MovieSearch stSearch;
    for (const char *const pszEnding : ENDINGS) {
        stSearch.astTried.push_back(Try_Name(Get_BaseName(strMovie) + pszEnding));
        if (stSearch.astTried.back().bOpens && !stSearch.uiWinner)
            stSearch.uiWinner = stSearch.astTried.size() - 1;
    }
    stSearch.astSiblings = List_Siblings(Get_BaseName(strMovie), stSearch.astTried);
    return stSearch;
}

#include "file_tree.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <unistd.h>

#include "movie_search.h"

namespace fs = std::filesystem;

static void Add_Tree(const std::string &strFolder, std::vector<TreeFile> &astFiles)
{
    const size_t uiFirst = astFiles.size();
    std::error_code stIgnored;
    fs::recursive_directory_iterator stEntry(strFolder, fs::directory_options::skip_permission_denied,
                                             stIgnored);
    for (const fs::recursive_directory_iterator stEnd; stEntry != stEnd; stEntry.increment(stIgnored)) {
        const std::string strPath = stEntry->path().string();
        if (Is_SubtitleName(strPath) && !stEntry->is_directory(stIgnored))
            astFiles.push_back({strPath, stEntry->path().lexically_relative(strFolder).string()});
    }
    std::sort(astFiles.begin() + static_cast<std::ptrdiff_t>(uiFirst), astFiles.end(),
              [](const TreeFile &stA, const TreeFile &stB) { return stA.strPath < stB.strPath; });
}

std::vector<TreeFile> List_Trees(const std::vector<std::string> &astrInputs)
{
    std::vector<TreeFile> astFiles;
    bool bFolder = false;
    for (const std::string &strInput : astrInputs) {
        std::error_code stIgnored;
        const bool bThis = fs::is_directory(strInput, stIgnored);
        bFolder = bFolder || bThis;
        if (bThis)
            Add_Tree(strInput, astFiles);
        else
            astFiles.push_back({strInput, fs::path(strInput).filename().string()});
    }
    if (!bFolder) astFiles.clear();
    return astFiles;
}

void Show_Progress(size_t uiDone, size_t uiAll)
{
    static constexpr size_t BAR = 40;
    if (isatty(STDERR_FILENO) == 0) return;
    const std::string strBar(BAR * uiDone / uiAll, '#');
    std::fprintf(stderr, "\r[%-40s] %zu of %zu%s", strBar.c_str(), uiDone, uiAll,
                 uiDone == uiAll ? "\n" : "");
}

ExitCode Report_Tree(const std::vector<ExitCode> &aeCodes)
{
    const auto pfCount = [&](ExitCode eCode) {
        return static_cast<size_t>(std::count(aeCodes.begin(), aeCodes.end(), eCode));
    };
    const size_t uiGood = pfCount(E_EXIT_GOOD);
    std::fflush(stdout);
    std::fprintf(stderr, "zyrsub: %zu files: %zu good", aeCodes.size(), uiGood);
    for (const auto &[eCode, pszHow] :
         {std::pair(E_EXIT_TEXT_LOST, "not whole, or not readable"),
          std::pair(E_EXIT_NOT_SUBTITLE, "no subtitle"), std::pair(E_EXIT_USAGE, "refused"),
          std::pair(E_EXIT_SOME_FAILED, "failed")})
        if (pfCount(eCode) > 0) std::fprintf(stderr, ", %zu %s", pfCount(eCode), pszHow);
    std::fputs("\n", stderr);
    return aeCodes.empty() ? E_EXIT_NOT_FOUND : *std::max_element(aeCodes.begin(), aeCodes.end());
}

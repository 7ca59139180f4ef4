#include "file_tree.h"

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>

#include "movie_search.h"

namespace fs = std::filesystem;

static bool Is_Folder(const std::string &strPath)
{
    std::error_code stIgnored;
    return fs::is_directory(strPath, stIgnored);
}

bool Has_Folder(const std::vector<std::string> &astrInputs)
{
    return std::any_of(astrInputs.begin(), astrInputs.end(), Is_Folder);
}

TreeWalk::TreeWalk(std::vector<std::string> astrInputs, std::optional<int64_t> llSince)
    : m_astrInputs(std::move(astrInputs)), m_llSince(llSince)
{
}

// A folder that cannot be read is an empty one, and one that a link leads to is not entered: it could lead back.
void TreeWalk::Enter(const std::string &strFolder, const std::string &strBelow)
{
    Level stLevel{strFolder.ends_with('/') ? strFolder : strFolder + "/", strBelow, {}, 0};
    std::error_code stIgnored;
    fs::directory_iterator stEntry(strFolder, fs::directory_options::skip_permission_denied, stIgnored);
    for (const fs::directory_iterator stEnd; stEntry != stEnd; stEntry.increment(stIgnored)) {
        const std::string strName = stEntry->path().filename().string();
        if (!stEntry->is_directory(stIgnored)) {
            if (Is_SubtitleName(strName)) stLevel.astEntries.push_back({strName});
        } else if (!stEntry->is_symlink(stIgnored)) {
            stLevel.astEntries.push_back({strName + "/"});
        }
    }
    std::sort(stLevel.astEntries.begin(), stLevel.astEntries.end(),
              [](const Entry &stA, const Entry &stB) { return stA.strName < stB.strName; });
    m_astLevels.push_back(std::move(stLevel));
}

// What cannot be asked for its time stays: the reading tells what is wrong.
bool TreeWalk::Is_Wanted(const std::string &strPath) const
{
    struct stat stStat = {};
    return !m_llSince || stat(strPath.c_str(), &stStat) != 0 || stStat.st_mtime >= *m_llSince;
}

std::optional<TreeFile> TreeWalk::Next_Below()
{
    while (!m_astLevels.empty()) {
        Level &stLevel = m_astLevels.back();
        if (stLevel.uiNext == stLevel.astEntries.size()) {
            m_astLevels.pop_back();
            continue;
        }
        const std::string &strName = stLevel.astEntries[stLevel.uiNext++].strName;
        const TreeFile stFile{stLevel.strFolder + strName, stLevel.strBelow + strName};
        if (strName.ends_with('/'))
            Enter(stFile.strPath, stFile.strBelow);
        else if (Is_Wanted(stFile.strPath))
            return stFile;
    }
    return std::nullopt;
}

std::optional<TreeFile> TreeWalk::Next()
{
    for (;;) {
        if (std::optional<TreeFile> stFile = Next_Below()) return stFile;
        if (m_uiInput == m_astrInputs.size()) return std::nullopt;
        const std::string &strInput = m_astrInputs[m_uiInput++];
        if (Is_Folder(strInput))
            Enter(strInput, "");
        else if (Is_Wanted(strInput))
            return TreeFile{strInput, fs::path(strInput).filename().string()};
    }
}

std::vector<TreeFile> List_Trees(const std::vector<std::string> &astrInputs)
{
    std::vector<TreeFile> astFiles;
    if (!Has_Folder(astrInputs)) return astFiles;
    TreeWalk stWalk(astrInputs);
    while (std::optional<TreeFile> stFile = stWalk.Next()) astFiles.push_back(std::move(*stFile));
    return astFiles;
}

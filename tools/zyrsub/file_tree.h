// Trees of files: what is in them.
#ifndef ZYRSUB_FILE_TREE_H
#define ZYRSUB_FILE_TREE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct TreeFile {
    std::string strPath;
    std::string
        strBelow; // its path below the folder that was given; the name alone for a file that was given itself
};

bool Has_Folder(const std::vector<std::string> &astrInputs);

// Every subtitle file in the folders among the inputs, in the order of their names; other inputs as they are. Holds no
// more than the folders on the way to the present one.
class TreeWalk
{
public:
    // llSince: leave out what was last written before, seconds since 1970.
    explicit TreeWalk(std::vector<std::string> astrInputs, std::optional<int64_t> llSince = std::nullopt);

    std::optional<TreeFile> Next();

private:
    struct Entry {
        std::string strName; // a folder's ends with "/", so that names sort as whole paths do
    };
    struct Level {
        std::string strFolder; // with "/" at its end
        std::string strBelow;
        std::vector<Entry> astEntries;
        size_t uiNext = 0;
    };

    void Enter(const std::string &strFolder, const std::string &strBelow);
    std::optional<TreeFile> Next_Below();
    bool Is_Wanted(const std::string &strPath) const;

    std::vector<std::string> m_astrInputs;
    std::optional<int64_t> m_llSince;
    size_t m_uiInput = 0;
    std::vector<Level> m_astLevels;
};

// All of them at once. Nothing when there is no folder among the inputs.
std::vector<TreeFile> List_Trees(const std::vector<std::string> &astrInputs);

#endif

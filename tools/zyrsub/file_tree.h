// Trees of files: what is in them, how far a run through them is, and how it ended.
#ifndef ZYRSUB_FILE_TREE_H
#define ZYRSUB_FILE_TREE_H

#include <string>
#include <vector>

#include "exit_code.h"

struct TreeFile {
    std::string strPath;
    std::string
        strBelow; // its path below the folder that was given; the name alone for a file that was given itself
};

// Every subtitle file in the folders among the inputs, in the order of their names; other inputs as they are.
// Nothing when there is no folder among them.
std::vector<TreeFile> List_Trees(const std::vector<std::string> &astrInputs);

// A bar on standard error, where that is a terminal.
void Show_Progress(size_t uiDone, size_t uiAll);

// One line on standard error: how many there were, and how they ended. Gives the worst code.
ExitCode Report_Tree(const std::vector<ExitCode> &aeCodes);

#endif

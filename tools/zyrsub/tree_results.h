// The results of a run through a tree: a file of JSON lines with which a run that was stopped goes on.
#ifndef ZYRSUB_TREE_RESULTS_H
#define ZYRSUB_TREE_RESULTS_H

#include <functional>
#include <string>
#include <unordered_set>

#include "tree_worker.h"

class TreeResults
{
public:
    TreeResults() = default;
    ~TreeResults();
    TreeResults(const TreeResults &) = delete;
    TreeResults &operator=(const TreeResults &) = delete;

    // Opens the file for this run alone, and tells what it has already; half a line at its end is cut off.
    Outcome Open(const std::string &strFile, const std::function<void(const TreeReport &)> &pfOld);

    bool Is_Open() const { return m_iFile >= 0; }
    bool Is_Done(const std::string &strPath) const { return m_astrDone.contains(strPath); }
    bool Write(const std::string &strLines) const;

private:
    int m_iFile = -1;
    std::unordered_set<std::string> m_astrDone;
};

// A file's name as JSON lines show it: what is not UTF-8 in it is U+FFFD.
std::string Show_Path(const std::string &strPath);

// The line of a file that there is nothing else to tell of.
std::string Write_FailureLine(const std::string &strPath, const Outcome &stOutcome);

#endif

// Processes that read the files of a tree, one file at a time each. The engine has one state for a process, so that all
// cores want several; and a file that ends its process ends no more than that.
#ifndef ZYRSUB_TREE_WORKER_H
#define ZYRSUB_TREE_WORKER_H

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>

#include "exit_code.h"
#include "file_tree.h"

// What became of a file.
struct TreeReport {
    ExitCode eCode = E_EXIT_GOOD;
    std::string strOut;                       // what the step wrote to standard output,
    std::string strProblems;                  // and to standard error
    std::map<std::string, uint32_t> mapTally; // findings by code
    std::string strFailure;                   // why there is no more than this; empty when there is
};

// Reads one file; what it prints is taken from the standard streams.
using TreeStep = std::function<TreeReport(const TreeFile &)>;

class TreeWorker
{
public:
    // Throws std::runtime_error when the system gives no process.
    explicit TreeWorker(const TreeStep &pfStep);
    ~TreeWorker();
    TreeWorker(const TreeWorker &) = delete;
    TreeWorker &operator=(const TreeWorker &) = delete;

    int Get_Socket() const { return m_iSocket; } // can be read when the report is there
    bool Give(const TreeFile &stFile) const;
    std::optional<TreeReport> Take() const; // nothing when the process has died
    std::string Explain_Death();            // waits for its end

private:
    int m_iSocket = -1;
    pid_t m_iProcess = -1;
};

#endif

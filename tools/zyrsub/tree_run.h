// Runs a command over every file of a tree, on all cores.
#ifndef ZYRSUB_TREE_RUN_H
#define ZYRSUB_TREE_RUN_H

#include <string>
#include <vector>

#include "options.h"
#include "tree_worker.h"

// With a folder among the inputs, or an option that only such a run has.
bool Is_TreeRun(const Options &stOptions);

// Each file's output appears whole and in the order of the tree, however many processes read; with --results it goes to
// that file. Progress and, at the end, a line or two of summary go to standard error. Gives the worst exit code; one
// file, whatever is in it, never ends the run.
ExitCode Run_Tree(const Options &stOptions, const TreeStep &pfStep);

// "2026-01-31", "2026-01-31T12:00", "36h", "7d": seconds since 1970. Nothing for another text.
std::optional<int64_t> Parse_Since(const std::string &strText);

#endif

// How a run ends, and what went wrong on the way.
#ifndef ZYRSUB_EXIT_CODE_H
#define ZYRSUB_EXIT_CODE_H

#include <string>

enum ExitCode : int {
    E_EXIT_GOOD = 0,
    E_EXIT_SOME_FAILED = 1,
    E_EXIT_USAGE = 2,
    E_EXIT_NOT_FOUND = 3,
    E_EXIT_TEXT_LOST = 3, // of convert: written, but not all of the text
    E_EXIT_NOT_SUBTITLE = 4,
};

// The outcome of one step; a good one has no text.
struct Outcome {
    ExitCode eCode = E_EXIT_GOOD;
    std::string strText;

    bool IsGood() const { return eCode == E_EXIT_GOOD; }
};

#endif

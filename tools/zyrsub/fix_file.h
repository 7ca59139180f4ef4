// A subtitle file written so that the box reads it as its author meant it.
#ifndef ZYRSUB_FIX_FILE_H
#define ZYRSUB_FIX_FILE_H

#include <memory>
#include <string>
#include <vector>

#include "exit_code.h"
#include "fix_text.h"
#include "options.h"
#include "zyr/zyr_findings.h"

struct FixResult {
    std::string strName;   // of the file that was read
    std::string strEnding; // that the new one needs
    std::string strOld;    // its text: UTF-8 with newlines
    std::string strNew;
    std::string strBytes; // of the new file
    std::vector<FixChange> astChanges;
    std::unique_ptr<ZyrFindings, void (*)(ZyrFindings *)> pstLeft{nullptr,
                                                                  zyrFindings_free}; // of the new file
};

Outcome Fix_File(const std::string &strMovie, const Options &stOptions, FixResult &stResult);

#endif

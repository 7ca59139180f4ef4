// The findings of one file, in the words of this tool.
#ifndef ZYRSUB_LINT_FILE_H
#define ZYRSUB_LINT_FILE_H

#include <memory>
#include <string>
#include <vector>

#include "exit_code.h"
#include "options.h"
#include "zyr/zyr_findings.h"

class LintFile
{
public:
    // A movie, whose subtitle stands beside it, or a subtitle file itself; "-" is standard input.
    Outcome Open(const std::string &strMovie, const Options &stOptions);

    const std::string &Get_Movie() const { return m_strMovie; }
    const std::vector<ZyrFinding> &Get_Findings() const { return m_astFindings; } // of the level asked for
    uint32_t Count(uint32_t uiSeverity) const;
    ZyrCaptionsFile Get_File() const;
    ZyrCaption Get_Caption(const ZyrFinding &stFinding) const; // all 0 for a finding without one

private:
    std::string m_strMovie;
    std::unique_ptr<ZyrFindings, void (*)(ZyrFindings *)> m_pstFindings{nullptr, zyrFindings_free};
    std::vector<ZyrFinding> m_astFindings;
};

// What was looked for in a file, and how that ended.
struct LintResult {
    LintFile stFile;
    Outcome stOutcome;
};

// How a search that failed ends, and why, without the file's name in front.
ExitCode Get_FindingsCode(const ZyrFindings *pstFindings);
std::string Get_FindingsText(const ZyrFindings *pstFindings, const std::string &strMovie);

// The line of a finding, or of a long one the part that the finding is in.
struct LintLine {
    std::string strText; // a control character shows as U+FFFD, a tab as a blank
    size_t uiColumn;     // of the finding in it, 0 on
    bool bCutBefore;
    bool bCutBehind;
};
LintLine Cut_Line(const ZyrFinding &stFinding);

ZyrFindingRule Get_Rule(uint32_t uiRule);

#endif

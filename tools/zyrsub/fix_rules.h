// What can be done about findings.
#ifndef ZYRSUB_FIX_RULES_H
#define ZYRSUB_FIX_RULES_H

#include <string>
#include <vector>

#include "fix_text.h"
#include "zyr/zyr_findings.h"

// What is to be done about the findings that a text has now.
struct FixPlan {
    const FixText &stText;
    uint32_t uiFormat; // ZYR_CAPTIONS_SUBRIP and so on
    const ZyrFindings *pstFindings;
    std::vector<FixEdit> astEdits = {};
    bool bSort = false;

    void Add(size_t uiAt, size_t uiBytes, std::string strNew, const char *pszCode, std::string strWhat)
    {
        astEdits.push_back({uiAt, uiBytes, std::move(strNew), pszCode, std::move(strWhat)});
    }
};

// uiAt is the finding's place in the text, which the finder was given in UTF-8 with a mark and CR LF line ends.
void Plan_Finding(FixPlan &stPlan, const ZyrFinding &stFinding, size_t uiAt);

// Captions that have more text than six lines hold become two.
void Plan_Split(FixPlan &stPlan, const ZyrFinding &stFinding, size_t uiAt);

// What is wrong with tags of SAMI, and with lines of SSA, is mended before anything is looked for.
std::vector<FixEdit> Plan_SamiTags(const FixText &stText);
std::vector<FixEdit> Plan_SsaLines(const FixText &stText);

// Entries, frames and lines in the order of their times. False when they are.
bool Sort_Captions(FixText &stText, uint32_t uiFormat);

#endif

// Findings as people and programs read them.
#ifndef ZYRSUB_LINT_WRITE_H
#define ZYRSUB_LINT_WRITE_H

#include <string>
#include <vector>

#include "lint_file.h"

// One file's findings, each with its line and a caret; coloured for a terminal.
std::string Write_LintText(const LintResult &stResult, bool bColour);

// All files' findings as one document; its version is that of the tool.
std::string Write_LintJson(const std::vector<LintResult> &astResults);
std::string Write_LintSarif(const std::vector<LintResult> &astResults);
std::string Write_LintJunit(const std::vector<LintResult> &astResults);

// One file's findings as one line of JSON.
std::string Write_LintLine(const LintResult &stResult);

// What a code means; and all of them, as a page of Markdown.
std::string Explain_Rule(const ZyrFindingRule &stRule);
std::string Write_RulePage();

#endif

// zyrsub lint: what a box makes of subtitle files that was not meant.
#include "commands.h"

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

#include "closest_name.h"
#include "file_tree.h"
#include "lint_write.h"
#include "progress.h"
#include "tree_run.h"

static void Print(const std::string &strText)
{
    std::fwrite(strText.data(), 1, strText.size(), stdout);
}

static ExitCode Explain(const std::string &strCode)
{
    if (strCode == "all") {
        Print(Write_RulePage());
        return E_EXIT_GOOD;
    }
    const uint32_t uiRule = zyrFindings_findRule(strCode.c_str());
    if (uiRule != ZYR_CAPTIONS_NONE) {
        Print(Explain_Rule(Get_Rule(uiRule)));
        return E_EXIT_GOOD;
    }
    std::vector<std::string> astrCodes;
    ZyrFindingRule stRule;
    for (uint32_t ui = 0; zyrFindings_getRule(ui, &stRule) == ZYR_CAPTIONS_OK; ++ui)
        astrCodes.emplace_back(stRule.pszCode);
    const std::string strClosest = Find_ClosestName(strCode, astrCodes);
    std::fprintf(stderr, "zyrsub: there is no code '%s'%s\n", strCode.c_str(),
                 strClosest.empty() ? " ('all' tells all of them)"
                                    : ("; did you mean '" + strClosest + "'?").c_str());
    return E_EXIT_USAGE;
}

static bool Is_Coloured()
{
    const char *const pszNoColour = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) != 0 && (pszNoColour == nullptr || *pszNoColour == '\0');
}

static ExitCode Get_Code(const LintResult &stResult)
{
    if (!stResult.stOutcome.IsGood()) return stResult.stOutcome.eCode;
    return stResult.stFile.Get_Findings().empty() ? E_EXIT_GOOD : E_EXIT_SOME_FAILED;
}

static LintResult Lint_File(const Options &stOptions, const std::string &strMovie)
{
    LintResult stResult;
    stResult.stOutcome = stResult.stFile.Open(strMovie, stOptions);
    if (!stResult.stOutcome.IsGood()) Report_Problem(strMovie, stResult.stOutcome.strText);
    return stResult;
}

static std::vector<std::string> List_Files(const Options &stOptions)
{
    std::vector<std::string> astrFiles;
    for (const TreeFile &stFile : List_Trees(stOptions.astrMovies)) astrFiles.push_back(stFile.strPath);
    return astrFiles.empty() ? stOptions.astrMovies : astrFiles;
}

static void Print_Summary(const std::vector<LintResult> &astResults)
{
    uint32_t uiLost = 0;
    uint32_t uiChanged = 0;
    uint32_t uiDoubtful = 0;
    size_t uiClean = 0;
    for (const LintResult &stResult : astResults) {
        uiLost += stResult.stFile.Count(ZYR_FINDING_LOST);
        uiChanged += stResult.stFile.Count(ZYR_FINDING_CHANGED);
        uiDoubtful += stResult.stFile.Count(ZYR_FINDING_DOUBTFUL);
        uiClean += Get_Code(stResult) == E_EXIT_GOOD ? 1 : 0;
    }
    std::fflush(stdout);
    std::fprintf(stderr, "zyrsub: %zu of %zu files without findings; %u lost, %u changed, %u doubtful\n",
                 uiClean, astResults.size(), uiLost, uiChanged, uiDoubtful);
}

static ExitCode Get_Worst(const std::vector<LintResult> &astResults)
{
    std::vector<ExitCode> aeCodes;
    for (const LintResult &stResult : astResults) aeCodes.push_back(Get_Code(stResult));
    return Combine_Codes(aeCodes);
}

// Of a tree, which may be large: a file's findings go out as soon as they are known.
static ExitCode Lint_Tree(const Options &stOptions)
{
    const bool bLines = stOptions.stLint.strFormat == "jsonl" || !stOptions.stTree.strResults.empty();
    const bool bColour = Is_Coloured();
    return Run_Tree(stOptions, [&](const TreeFile &stFile) {
        const LintResult stResult = Lint_File(stOptions, stFile.strPath);
        Print(bLines ? Write_LintLine(stResult) : Write_LintText(stResult, bColour));
        TreeReport stReport{Get_Code(stResult), "", "", {}, ""};
        for (const ZyrFinding &stFinding : stResult.stFile.Get_Findings())
            ++stReport.mapTally[stFinding.pszCode];
        return stReport;
    });
}

ExitCode Run_Lint(const Options &stOptions)
{
    const LintOptions &stLint = stOptions.stLint;
    if (!stLint.strExplain.empty()) return Explain(stLint.strExplain);
    if (stOptions.astrMovies.empty()) {
        std::fputs("zyrsub: MOVIE is required ('zyrsub lint --help' tells more)\n", stderr);
        return E_EXIT_USAGE;
    }
    if (stLint.strFormat == "jsonl" || !stOptions.stTree.strResults.empty() ||
        (stLint.strFormat == "text" && Is_TreeRun(stOptions)))
        return Lint_Tree(stOptions);
    std::vector<LintResult> astResults;
    const std::vector<std::string> astrFiles = List_Files(stOptions);
    for (const std::string &strMovie : astrFiles) {
        astResults.push_back(Lint_File(stOptions, strMovie));
        if (stLint.strFormat == "text") Print(Write_LintText(astResults.back(), Is_Coloured()));
        if (astrFiles.size() > 1 && isatty(STDOUT_FILENO) == 0)
            Show_Progress(astResults.size(), astrFiles.size());
    }
    if (stLint.strFormat == "json") Print(Write_LintJson(astResults));
    if (stLint.strFormat == "sarif") Print(Write_LintSarif(astResults));
    if (stLint.strFormat == "junit") Print(Write_LintJunit(astResults));
    if (stLint.strFormat == "text") Print_Summary(astResults);
    return Get_Worst(astResults);
}

// zyrsub fix: subtitle files written so that the box reads them as they were meant.
#include "commands.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "file_tree.h"
#include "fix_file.h"
#include "line_diff.h"
#include "lint_file.h"
#include "safe_file.h"
#include "text_tools.h"

namespace fs = std::filesystem;

// Changes by line; what is left is told by lint's own words.
static void Print_Changes(const std::string &strName, const FixResult &stResult)
{
    std::vector<FixChange> astChanges = stResult.astChanges;
    std::stable_sort(astChanges.begin(), astChanges.end(),
                     [](const FixChange &stA, const FixChange &stB) { return stA.uiLine < stB.uiLine; });
    for (const FixChange &stChange : astChanges)
        std::fprintf(stderr, "%s:%u: %s: %s\n", Make_Printable(strName).c_str(), stChange.uiLine,
                     stChange.strCode.c_str(), Make_Printable(stChange.strWhat).c_str());
}

static uint32_t Print_Left(const std::string &strName, const FixResult &stResult)
{
    uint32_t uiLost = 0;
    ZyrFinding stFinding;
    for (uint32_t ui = 0; zyrFindings_get(stResult.pstLeft.get(), ui, &stFinding) == ZYR_CAPTIONS_OK; ++ui) {
        if (stFinding.uiSeverity < ZYR_FINDING_LOST) continue;
        ++uiLost;
        std::fprintf(stderr, "%s: not fixed, line %u of the new file: %s: %s\n",
                     Make_Printable(strName).c_str(), stFinding.uiLine, stFinding.pszCode,
                     Make_Printable(stFinding.pszSentence).c_str());
    }
    return uiLost;
}

// -o names a file, or with several inputs a folder.
static std::string Find_Target(const FixOptions &stFix, const TreeFile &stFile, const FixResult &stResult,
                               bool bSeveral)
{
    if (stFix.strFile == "-") return "-";
    std::error_code stIgnored;
    const bool bFolder = bSeveral || fs::is_directory(stFix.strFile, stIgnored);
    if (!bFolder) return stFix.strFile;
    fs::path stTarget = fs::path(stFix.strFile) / stFile.strBelow;
    if (Lower_Case(stTarget.extension().string()) != stResult.strEnding &&
        !(stResult.strEnding == ".smi" && Lower_Case(stTarget.extension().string()) == ".sami"))
        stTarget.replace_extension(stResult.strEnding);
    fs::create_directories(stTarget.parent_path(), stIgnored); // the write tells what is wrong
    return stTarget.string();
}

static Outcome Write_Result(const std::string &strTarget, const FixResult &stResult, bool bForce)
{
    if (strTarget != "-") return Write_Safely(strTarget, stResult.strBytes, bForce);
    std::fwrite(stResult.strBytes.data(), 1, stResult.strBytes.size(), stdout);
    return {};
}

static ExitCode Fix_One(const Options &stOptions, const TreeFile &stFile, bool bSeveral)
{
    const FixOptions &stFix = stOptions.stFix;
    FixResult stResult;
    Outcome stOutcome = Fix_File(stFile.strPath, stOptions, stResult);
    if (!stOutcome.IsGood()) {
        Report_Problem(stFile.strPath, stOutcome.strText);
        return stOutcome.eCode;
    }
    if (stFix.bDryRun) {
        const std::string strDiff =
            Write_Diff(stFile.strPath, stResult.strOld, stFile.strPath + " (fixed)", stResult.strNew);
        std::fwrite(strDiff.data(), 1, strDiff.size(), stdout);
        std::fflush(stdout);
    } else {
        stOutcome = Write_Result(Find_Target(stFix, stFile, stResult, bSeveral), stResult, stFix.bForce);
    }
    if (!stOutcome.IsGood()) {
        Report_Problem(stFile.strPath, stOutcome.strText);
        return stOutcome.eCode;
    }
    Print_Changes(stFile.strPath, stResult);
    const uint32_t uiLost = Print_Left(stFile.strPath, stResult);
    std::fprintf(stderr, "zyrsub: %s: %zu changes, %u things not fixed\n",
                 Make_Printable(stFile.strPath).c_str(), stResult.astChanges.size(), uiLost);
    return uiLost > 0 ? E_EXIT_TEXT_LOST : E_EXIT_GOOD;
}

ExitCode Run_Fix(const Options &stOptions)
{
    std::vector<TreeFile> astFiles = List_Trees(stOptions.astrMovies);
    const bool bSeveral = !astFiles.empty() || stOptions.astrMovies.size() > 1;
    if (astFiles.empty())
        for (const std::string &strMovie : stOptions.astrMovies)
            astFiles.push_back({strMovie, fs::path(strMovie).filename().string()});
    if (stOptions.stFix.strFile.empty() && !stOptions.stFix.bDryRun) {
        std::fputs("zyrsub: -o OUT is required, or --dry-run ('zyrsub fix --help' tells more)\n", stderr);
        return E_EXIT_USAGE;
    }
    std::vector<ExitCode> aeCodes;
    aeCodes.reserve(astFiles.size());
    for (const TreeFile &stFile : astFiles) aeCodes.push_back(Fix_One(stOptions, stFile, bSeveral));
    return Combine_Codes(aeCodes);
}

// zyrsub info, zyrsub frames: any number of inputs, and one bad file never stops the others.
#include "commands.h"

#include <algorithm>
#include <cstdio>
#include <functional>

#include "report_json.h"
#include "report_text.h"
#include "text_tools.h"
#include "tree_run.h"

void Report_Problem(const std::string &strMovie, const std::string &strText)
{
    std::fflush(stdout);
    std::fprintf(stderr, "zyrsub: %s: %s\n", Make_Printable(strMovie).c_str(),
                 Make_Printable(strText).c_str());
}

using FileStep = std::function<Outcome(const std::string &, const CaptionFile &, JsonReport &)>;

ExitCode Combine_Codes(const std::vector<ExitCode> &aeCodes)
{
    for (const ExitCode eCode : aeCodes)
        if (eCode != aeCodes.front()) return E_EXIT_SOME_FAILED;
    return aeCodes.empty() ? E_EXIT_GOOD : aeCodes.front();
}

static ExitCode Run_File(const Options &stOptions, const std::string &strMovie, const FileStep &pfStep,
                         JsonReport &stJson)
{
    stJson.Begin_File(strMovie);
    CaptionFile stFile;
    Outcome stOutcome = stFile.Open(strMovie, stOptions.stSource);
    if (stOutcome.IsGood()) stOutcome = pfStep(strMovie, stFile, stJson);
    if (!stOutcome.IsGood()) {
        Report_Problem(strMovie, stOutcome.strText);
        stJson.Add_Failure(stOutcome);
    }
    return stOutcome.eCode;
}

static ExitCode Run_Files(const Options &stOptions, const FileStep &pfStep)
{
    JsonReport stJson;
    std::vector<ExitCode> aeCodes;
    for (const std::string &strMovie : stOptions.astrMovies)
        aeCodes.push_back(Run_File(stOptions, strMovie, pfStep, stJson));
    if (stOptions.stReport.bJson) stJson.Print();
    return Combine_Codes(aeCodes);
}

ExitCode Run_Info(const Options &stOptions)
{
    const FileStep pfInfo = [&](const std::string &strMovie, const CaptionFile &stFile, JsonReport &stJson) {
        const LineEnds stEnds = Find_LineEnds(stFile, stOptions.stSource);
        if (stOptions.stReport.bJson)
            stJson.Add_Info(stFile, stEnds);
        else
            Print_Info(strMovie, stFile, stEnds);
        return Outcome{};
    };
    if (!Is_TreeRun(stOptions)) return Run_Files(stOptions, pfInfo);
    return Run_Tree(stOptions, [&](const TreeFile &stFile) {
        JsonReport stJson;
        TreeReport stReport{Run_File(stOptions, stFile.strPath, pfInfo, stJson), "", "", {}, ""};
        if (stOptions.stReport.bJson) stJson.Print_Line();
        return stReport;
    });
}

static Outcome Report_Frames(const ReportOptions &stReport, const CaptionFile &stFile, JsonReport &stJson)
{
    if (stReport.bJson) stJson.Add_Source(stFile, true);
    if (stFile.Count() == 0)
        Report_Problem(stFile.Get_File().pszFile, "no captions: " + stFile.Explain_Empty());
    const uint32_t uiLimit = std::min(stReport.uiCount.value_or(UINT32_MAX), stFile.Count());
    for (uint32_t uiIndex = 0; uiIndex < uiLimit; ++uiIndex) {
        const Frame stFrame = stFile.Read_Frame(uiIndex);
        if (stReport.uiTo && stFrame.iStart > static_cast<int64_t>(*stReport.uiTo)) break;
        if (stReport.bJson)
            stJson.Add_Frame(stFile, stFrame);
        else
            Print_Frame(stFile, stFrame);
    }
    return {};
}

ExitCode Run_Frames(const Options &stOptions)
{
    bool bFirst = true;
    return Run_Files(stOptions,
                     [&](const std::string &strMovie, const CaptionFile &stFile, JsonReport &stJson) {
                         if (!stOptions.stReport.bJson && stOptions.astrMovies.size() > 1)
                             std::printf("%s%s\n", bFirst ? "" : "\n", strMovie.c_str());
                         bFirst = false;
                         return Report_Frames(stOptions.stReport, stFile, stJson);
                     });
}

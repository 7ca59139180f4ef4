// The subcommands. Each prints its results and gives the exit code.
#ifndef ZYRSUB_COMMANDS_H
#define ZYRSUB_COMMANDS_H

#include "exit_code.h"
#include "options.h"

ExitCode Run_Info(const Options &stOptions);
ExitCode Run_Frames(const Options &stOptions);
ExitCode Run_Convert(const Options &stOptions);
ExitCode Run_Find(const Options &stOptions);
ExitCode Run_Render(const Options &stOptions);
ExitCode Run_Fix(const Options &stOptions);
ExitCode Run_Lint(const Options &stOptions);
ExitCode Run_Play(const Options &stOptions);
ExitCode Run_Report(const Options &stOptions);

// Of convert: all inputs into what is asked for.
class JsonReport;
ExitCode Convert_Inputs(const Options &stOptions, JsonReport &stJson);

// One input, or several that fail alike, give the failure's own code.
ExitCode Combine_Codes(const std::vector<ExitCode> &aeCodes);

// "zyrsub: MOVIE: what is wrong" on standard error.
void Report_Problem(const std::string &strMovie, const std::string &strText);

#endif

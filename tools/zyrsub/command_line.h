// The command line, read.
#ifndef ZYRSUB_COMMAND_LINE_H
#define ZYRSUB_COMMAND_LINE_H

#include "commands.h"
#include "options.h"

namespace CLI
{
class App;
}

struct CommandLine {
    Options stOptions;
    ExitCode (*pfRun)(const Options &) = nullptr; // NULL: there is nothing to do but to exit with eCode
    ExitCode eCode = E_EXIT_GOOD;
};

// Whether the results are to be JSON; asked before the command line is known to be right.
bool Is_JsonWanted(int iArguments, char **ppszArguments);

// The options of convert alone.
void Add_ConvertOptions(CLI::App *pstApp, ConvertOptions &stConvert);

// Prints help and usage errors itself.
CommandLine Read_CommandLine(int iArguments, char **ppszArguments);

#endif

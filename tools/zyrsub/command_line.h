// The command line, read.
#ifndef ZYRSUB_COMMAND_LINE_H
#define ZYRSUB_COMMAND_LINE_H

#include "commands.h"
#include "options.h"

struct CommandLine {
    Options stOptions;
    ExitCode (*pfRun)(const Options &) = nullptr; // NULL: there is nothing to do but to exit with eCode
    ExitCode eCode = E_EXIT_GOOD;
};

// Prints help and usage errors itself.
CommandLine Read_CommandLine(int iArguments, char **ppszArguments);

#endif

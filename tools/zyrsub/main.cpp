// zyrsub: looks into subtitle files through the library, as a player would.
#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>

#include "command_line.h"
#include "report_json.h"
#include "zyr/zyr_host.h"

static void Print_Log(int iPriority, const char *pszTag, const char *pszText, void *pvVerbose)
{
    Print_LogLine(iPriority, pszTag, pszText, *static_cast<const int *>(pvVerbose) > 1);
}

static int Run_Program(int iArguments, char **ppszArguments)
{
    CommandLine stLine = Read_CommandLine(iArguments, ppszArguments);
    if (stLine.stOptions.iVerbose > 0) zyr_host_setLogSink(Print_Log, &stLine.stOptions.iVerbose);
    stLine.stOptions.stSource.bVerbose = stLine.stOptions.iVerbose > 0;
    stLine.stOptions.stSource.bAllOfLog = stLine.stOptions.iVerbose > 1;
    const ExitCode eCode = stLine.pfRun == nullptr ? stLine.eCode : stLine.pfRun(stLine.stOptions);
    zyr_host_setLogSink(nullptr, nullptr);
    std::cout.flush(); // helps are written there
    if (std::cout.good() && std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return eCode;
    std::fputs("zyrsub: the results could not be written\n", stderr);
    return E_EXIT_SOME_FAILED;
}

// A reader that closes the pipe early has had enough: the run ends there without a word, as SIGPIPE ends it,
// also under a parent that ignores the signal.
int main(int iArguments, char **ppszArguments)
{
    std::signal(SIGPIPE, SIG_DFL);
    try {
        return Run_Program(iArguments, ppszArguments);
    } catch (const std::exception &stError) {
        std::fprintf(stderr, "zyrsub: %s\n", stError.what());
        if (Is_JsonWanted(iArguments, ppszArguments)) Print_JsonFailure(E_EXIT_SOME_FAILED, stError.what());
        return E_EXIT_SOME_FAILED;
    }
}

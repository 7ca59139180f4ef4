#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <string_view>

#include "closest_name.h"
#include "report_json.h"
#include "time_text.h"
#include "tree_run.h"
#include "zyr/zyr_findings.h"

static constexpr const char *MAIN_FOOTER = R"(Examples:
  zyrsub info movie.smi              what the file is, and its languages
  zyrsub frames movie.avi            every caption of the subtitle beside movie.avi
  zyrsub render movie.srt --at 1:30  the caption on screen after a minute and a half, as a picture
  zyrsub play movie.srt              the captions in real time, in a window
  zyrsub report movie.smi -o movie.html   all of it as a page to look at
  zyrsub convert movie.smi -o movie.srt   the captions as a file of another format
  zyrsub find movie.avi              which subtitle a player finds for the movie, and why
  zyrsub lint movie.srt              what the box makes of the file that was not meant
  zyrsub fix movie.srt -o fixed.srt  the file as the box must have it

"zyrsub COMMAND --help" tells more about each command.

Exit codes: 0 good, 1 some inputs failed (lint: there are findings), 2 wrong use, 3 not found or not readable (convert: text was lost),
4 not a subtitle that can be read.)";

static constexpr const char *INFO_FOOTER = R"(Examples:
  zyrsub info movie.srt              one file
  zyrsub info movie.avi              the subtitle that a player finds beside the movie
  zyrsub info --json *.smi           many files, as one JSON document
  zyrsub info --json subtitles/      every file of a tree, a line of JSON each
  zyrsub info --codepage auto old.smi   read in the code page that its bytes look like)";

static constexpr const char *FIND_FOOTER = R"(Examples:
  zyrsub find movie.avi              every name that is tried, and the one that wins
  zyrsub find --json *.avi           many movies, as one JSON document)";

static constexpr const char *LINT_FOOTER = R"(Examples:
  zyrsub lint movie.srt                      what the box makes of it that was not meant
  zyrsub lint --level lost subtitles/        every file of a tree; exit 1 when text is lost in any
  zyrsub lint --output hdmi-720p movie.smi   also what that output makes of the captions
  zyrsub lint --format sarif *.srt           for a code host; junit for other build services
  zyrsub lint --explain ZYR-SRT-005          what a code means, with an example

Exit codes: 0 no findings of the level, 1 some (or different failures), 2 wrong use, 3 not found or not readable.)";

static constexpr const char *FIX_FOOTER = R"(Examples:
  zyrsub fix movie.srt -o fixed.srt          written as the box reads it
  zyrsub fix --dry-run movie.smi             what would be changed, as a diff
  zyrsub fix subtitles/ -o fixed/            every file of a tree, under its own path

Each change is told on standard error with the line that it is in, and so is what could not be fixed: then the exit
code is 3. A file that is right is written as it is.)";

static constexpr const char *FRAMES_FOOTER = R"(Examples:
  zyrsub frames movie.srt                           every frame: from, until, text
  zyrsub frames movie.srt --from 1:00:00 --count 3  what a player shows after a jump to one hour
  zyrsub frames movie.smi --class KRCC --json       one language, as JSON
  zyrsub frames movie.smi --together                the languages of one moment in one text
  zyrsub frames old.srt --codepage auto             text of an unknown code page
  zyrsub frames old.srt --codepage CP1252 --single-byte

Times are milliseconds (1500), 1.5s, 1m30s, H:MM:SS.mmm or MM:SS. --from jumps as a player does, and where
that leads differs by format: SubRip and SubViewer go on with the caption that starts at or before the time,
SAMI with the first one from it on. SSA looks back from its first line, and begins with the last one before
the time or with that first line.)";

static constexpr const char *RENDER_FOOTER = R"(Examples:
  zyrsub render movie.srt                                   the first caption
  zyrsub render movie.srt --at 1:30.5 -o shot.png
  zyrsub render movie.smi --at 90s --output hdmi-720p --background still.png -o shot.png
  zyrsub render movie.srt --all --sheet sheet.png           all captions on one sheet, with their times

Outputs: )";

static constexpr const char *REPORT_FOOTER = R"(Examples:
  zyrsub report movie.smi -o movie.html                         the page, drawn for lcd
  zyrsub report movie.srt -o movie.html --outputs lcd,hdmi-720p to switch between two outputs
  zyrsub report movie.srt -o movie.html --watch                 the open page follows each saving of the file

The page needs no network and no other file. Outputs: )";

static constexpr const char *PLAY_FOOTER = R"(Keys:
  space        pause and go on
  left, right  5 seconds back, on
  down, up     a minute back, on
  n, p         next, previous caption
  l            next language, then all of them again
  o            next output (window only)
  q, Esc       quit

Examples:
  zyrsub play movie.srt
  zyrsub play movie.smi --from 10:00 --speed 2 --output hdmi-720p
  zyrsub play movie.srt --watch          each saving of the file shows at the same time
  zyrsub play movie.srt --terminal       as text, where there is no window system)";

template <typename Ms>
static void Add_Time(CLI::App *pstApp, const std::string &strName, Ms &uiMs, const std::string &strHelp)
{
    pstApp
        ->add_option_function<std::string>(
            strName,
            [strName, &uiMs](const std::string &strText) {
                const std::optional<uint32_t> uiRead = Parse_Time(strText);
                if (!uiRead)
                    throw CLI::ValidationError(
                        strName, "'" + strText + "' is not a time (1500, 1.5s, 1m30s, H:MM:SS.mmm)");
                uiMs = *uiRead;
            },
            strHelp)
        ->type_name("T");
}

static void Add_SourceOptions(CLI::App *pstApp, Options &stOptions, bool bSeveral)
{
    SourceOptions &stSource = stOptions.stSource;
    pstApp
        ->add_option("MOVIE", stOptions.astrMovies,
                     "the movie (it need not exist), or a subtitle file: .smi .sami .srt .sub .ssa")
        ->required()
        ->expected(1, bSeveral ? 1000000 : 1)
        ->type_name("");
    pstApp
        ->add_option("--codepage", stSource.strCodePage,
                     "code page of text without a Unicode encoding; auto: what it looks like [CP949]")
        ->type_name("NAME");
    pstApp->add_flag("--single-byte", stSource.bSingleByte, "every byte of such text is one character");
    pstApp->add_flag("--raw-line-ends", stSource.bRawLineEnds,
                     "hand line ends over as the file has them, as on the box (else all become CR LF)");
    pstApp
        ->add_option("--class", stSource.astrClasses,
                     "language class to read, by name or index; repeat for more")
        ->allow_extra_args(false)
        ->type_name("NAME|INDEX");
    pstApp->add_flag("-v,--verbose", stOptions.iVerbose,
                     "show the library's log of errors; -vv: all of its log");
}

static uint32_t Find_Output(const std::string &strOption, const std::string &strName)
{
    for (uint32_t uiOutput = 0; uiOutput < Count_Outputs(); ++uiOutput)
        if (strName == Get_Output(uiOutput).pszName) return uiOutput;
    throw CLI::ValidationError(strOption, "there is no output '" + strName + "' (see --help)");
}

// The size and place of captions, on any output.
static void Add_TextOptions(CLI::App *pstApp, Options &stOptions)
{
    ScreenOptions &stScreen = stOptions.stScreen;
    pstApp
        ->add_option("--font-size", stScreen.uiFontSize,
                     "28, 32, 36 or 40: 4, 8, 12 or 16 pixels more than the output's own size (24, 28 or 32)")
        ->check(CLI::IsMember({24, 28, 32, 36, 40}))
        ->type_name("N");
    pstApp
        ->add_option("--position", stScreen.uiPosition,
                     "pixels between the caption and the display's bottom [16]")
        ->check(CLI::Range(0, 4096))
        ->type_name("N");
}

static void Add_ScreenOptions(CLI::App *pstApp, Options &stOptions)
{
    ScreenOptions &stScreen = stOptions.stScreen;
    pstApp
        ->add_option_function<std::string>(
            "--output",
            [&stScreen](const std::string &strName) { stScreen.uiOutput = Find_Output("--output", strName); },
            "the display's output [lcd]")
        ->type_name("NAME");
    Add_TextOptions(pstApp, stOptions);
    pstApp->add_option("--background", stScreen.strBackground, "PNG to draw over, instead of black")
        ->type_name("FILE");
}

static std::string List_OutputNames()
{
    std::string strNames;
    for (uint32_t uiOutput = 0; uiOutput < Count_Outputs(); ++uiOutput)
        strNames += std::string(uiOutput > 0 ? " " : "") + Get_Output(uiOutput).pszName;
    return strNames;
}

// Every command's options land in the one record; only the command that is run fills its part.
using Run = ExitCode (*)(const Options &);

static CLI::App *Add_Command(CLI::App &stApp, CommandLine &stLine, const char *pszName, const char *pszHelp,
                             Run pfRun)
{
    CLI::App *pstApp = stApp.add_subcommand(pszName, pszHelp);
    pstApp->callback([&stLine, pfRun] { stLine.pfRun = pfRun; });
    return pstApp;
}

// Of commands that take folders.
static void Add_TreeOptions(CLI::App *pstApp, Options &stOptions)
{
    TreeOptions &stTree = stOptions.stTree;
    pstApp
        ->add_option_function<std::string>(
            "--results",
            [&stOptions](const std::string &strFile) {
                stOptions.stTree.strResults = strFile;
                stOptions.stReport.bJson = true;
            },
            "folders: lines of JSON for this file; the same command goes on with a run that was stopped")
        ->type_name("FILE");
    pstApp
        ->add_option_function<std::string>(
            "--since",
            [&stTree](const std::string &strText) {
                stTree.llSince = Parse_Since(strText);
                if (!stTree.llSince)
                    throw CLI::ValidationError("--since",
                                               "'" + strText + "' is not a date, and no 90m, 36h, 7d, 2w");
            },
            "folders: only files last written since then: 2026-01-31, 2026-01-31T12:00, 36h, 7d")
        ->type_name("TIME");
    pstApp->add_option("--jobs", stTree.uiJobs, "folders: processes that read [one for each core]")
        ->check(CLI::Range(1, 1024))
        ->type_name("N");
}

static void Add_ReportCommands(CLI::App &stApp, CommandLine &stLine)
{
    Options &stOptions = stLine.stOptions;
    CLI::App *pstInfo =
        Add_Command(stApp, stLine, "info", "What a subtitle file is: format, encoding, languages", Run_Info);
    Add_SourceOptions(pstInfo, stOptions, true);
    pstInfo->add_flag("--json", stOptions.stReport.bJson,
                      "print one JSON document; of folders a line for each file");
    Add_TreeOptions(pstInfo, stOptions);
    pstInfo->footer(INFO_FOOTER);

    ReportOptions &stReport = stOptions.stReport;
    CLI::App *pstFrames = Add_Command(stApp, stLine, "frames",
                                      "Every caption with its times, as a player gets them", Run_Frames);
    Add_SourceOptions(pstFrames, stOptions, true);
    Add_Time(pstFrames, "--from", stOptions.stSource.uiFromMs, "jump there first, as a player does");
    Add_Time(pstFrames, "--to", stReport.uiTo, "stop before the first frame that starts later");
    pstFrames->add_option("--count", stReport.uiCount, "stop after so many frames")->type_name("N");
    pstFrames->add_flag("--together", stOptions.stSource.bTogether,
                        "join the languages of one moment in one text");
    pstFrames->add_flag("--json", stReport.bJson, "print one JSON document");
    pstFrames->footer(FRAMES_FOOTER);
}

static void Add_FindCommand(CLI::App &stApp, CommandLine &stLine)
{
    CLI::App *pstFind =
        Add_Command(stApp, stLine, "find", "Which subtitle a player finds for a movie, and why", Run_Find);
    pstFind->add_option("MOVIE", stLine.stOptions.astrMovies, "the movie (it need not exist)")
        ->required()
        ->expected(1, 1000000)
        ->type_name("");
    pstFind->add_flag("--json", stLine.stOptions.stReport.bJson, "print one JSON document");
    pstFind->add_flag("-v,--verbose", stLine.stOptions.iVerbose,
                      "show the library's log of errors; -vv: all of its log");
    pstFind->footer(FIND_FOOTER);
}

// Line ends are what lint and fix are about, and the log is joined with what they find.
static void Add_LintSource(CLI::App *pstLint, Options &stOptions)
{
    SourceOptions &stSource = stOptions.stSource;
    pstLint->add_option("MOVIE", stOptions.astrMovies, "the movie, a subtitle file, or a folder of them")
        ->expected(1, 1000000)
        ->type_name("");
    pstLint
        ->add_option("--codepage", stSource.strCodePage,
                     "code page of text without a Unicode encoding; auto: what it looks like [CP949]")
        ->type_name("NAME");
    pstLint->add_flag("--single-byte", stSource.bSingleByte, "every byte of such text is one character");
}

static void Add_LintReport(CLI::App *pstLint, LintOptions &stLint)
{
    pstLint->add_option("--format", stLint.strFormat, "how findings are written [text]")
        ->check(CLI::IsMember({"text", "json", "jsonl", "sarif", "junit"}));
    pstLint
        ->add_option_function<std::string>(
            "--level",
            [&stLint](const std::string &strLevel) {
                stLint.uiLevel = strLevel == "lost"      ? ZYR_FINDING_LOST
                                 : strLevel == "changed" ? ZYR_FINDING_CHANGED
                                                         : ZYR_FINDING_DOUBTFUL;
            },
            "tell findings of this severity and of worse ones [doubtful]")
        ->check(CLI::IsMember({"doubtful", "changed", "lost"}));
}

static void Add_LintCommand(CLI::App &stApp, CommandLine &stLine)
{
    LintOptions &stLint = stLine.stOptions.stLint;
    CLI::App *pstLint =
        Add_Command(stApp, stLine, "lint", "What the box makes of a file that was not meant", Run_Lint);
    Add_LintSource(pstLint, stLine.stOptions);
    Add_TreeOptions(pstLint, stLine.stOptions);
    pstLint
        ->add_option("--class", stLine.stOptions.stSource.astrClasses,
                     "language class to look at, by name or index; repeat for more")
        ->allow_extra_args(false)
        ->type_name("NAME|INDEX");
    Add_LintReport(pstLint, stLint);
    pstLint->add_option("--cps", stLint.uiSpeed, "more characters a second are too fast to read [25]")
        ->check(CLI::Range(1, 1000))
        ->type_name("N");
    Add_Time(pstLint, "--longest", stLint.uiLongestMs, "a caption that stays longer is doubtful [15s]");
    std::vector<std::string> astrOutputs;
    for (uint32_t uiOutput = 0; uiOutput < Count_Outputs(); ++uiOutput)
        astrOutputs.emplace_back(Get_Output(uiOutput).pszName);
    pstLint->add_option("--output", stLint.strOutput, "try how captions fit an output (those of render)")
        ->check(CLI::Validator(CLI::IsMember(astrOutputs)).description(""))
        ->type_name("NAME");
    pstLint->add_option("--font-size", stLint.uiFontSize, "with --output: as render takes it")
        ->check(CLI::IsMember({24, 28, 32, 36, 40}))
        ->type_name("N");
    pstLint
        ->add_option("--explain", stLint.strExplain, "tell what a code means; all: all of them, as Markdown")
        ->type_name("CODE");
    pstLint->footer(LINT_FOOTER);
}

static void Add_FixCommand(CLI::App &stApp, CommandLine &stLine)
{
    FixOptions &stFix = stLine.stOptions.stFix;
    CLI::App *pstFix =
        Add_Command(stApp, stLine, "fix", "A file as the box must have it to show what was meant", Run_Fix);
    Add_LintSource(pstFix, stLine.stOptions);
    pstFix->get_option("MOVIE")->required();
    pstFix
        ->add_option("-o", stFix.strFile,
                     "file to write; for several inputs the folder for them; - is standard output")
        ->type_name("FILE|FOLDER");
    pstFix->add_flag("--dry-run", stFix.bDryRun, "write nothing, and show what would change as a diff");
    pstFix->add_flag("--force", stFix.bForce, "replace existing files");
    pstFix->footer(FIX_FOOTER);
}

// A picture's size, as 1280x720.
static void Set_Size(const std::string &strText, RenderOptions &stRender)
{
    static constexpr uint32_t LARGEST = 8192;
    char cEnd = 0;
    const bool bRead =
        std::sscanf(strText.c_str(), "%5ux%5u%c", &stRender.uiWidth, &stRender.uiHeight, &cEnd) == 2;
    if (!bRead || stRender.uiWidth == 0 || stRender.uiHeight == 0 || stRender.uiWidth > LARGEST ||
        stRender.uiHeight > LARGEST)
        throw CLI::ValidationError("--size", "'" + strText + "' is not a size (1280x720)");
}

static void Add_RenderCommand(CLI::App &stApp, CommandLine &stLine)
{
    RenderOptions &stRender = stLine.stOptions.stRender;
    CLI::App *pstRender =
        Add_Command(stApp, stLine, "render", "Captions as pictures, drawn as on the box", Run_Render);
    Add_SourceOptions(pstRender, stLine.stOptions, false);
    Add_ScreenOptions(pstRender, stLine.stOptions);
    Add_Time(pstRender, "--at", stRender.uiAt, "the time on screen [the first caption's start]");
    pstRender
        ->add_option_function<std::string>(
            "--size", [&stRender](const std::string &strText) { Set_Size(strText, stRender); },
            "pixels of the picture [the display's]")
        ->type_name("WxH");
    pstRender
        ->add_option("-o", stRender.strPicture,
                     "PNG to write, or marks alone as raw pixels (.bgra); - is standard output "
                     "[MOVIE-TIME-OUTPUT.png]")
        ->type_name("FILE");
    CLI::Option *pstSheet =
        pstRender
            ->add_option("--sheet", stRender.strSheet,
                         "PNG for all captions at once; -2 and so on for more than 8192 rows of pixels")
            ->type_name("FILE");
    pstRender->add_flag("--all", stRender.bAll, "every caption, on one sheet")->needs(pstSheet);
    pstSheet->excludes("--at")->excludes("-o")->excludes("--size");
    pstRender->add_flag("--force", stRender.bForce, "replace an existing file");
    pstRender->footer(std::string(RENDER_FOOTER) + List_OutputNames());
}

static void Add_PlayCommand(CLI::App &stApp, CommandLine &stLine)
{
    PlayOptions &stPlay = stLine.stOptions.stPlay;
    CLI::App *pstPlay =
        Add_Command(stApp, stLine, "play", "Captions in real time, in a window or as text", Run_Play);
    Add_SourceOptions(pstPlay, stLine.stOptions, false);
    Add_ScreenOptions(pstPlay, stLine.stOptions);
    Add_Time(pstPlay, "--from", stPlay.uiFrom, "start there");
    pstPlay->add_option("--speed", stPlay.dSpeed, "times the real speed [1]")
        ->check(CLI::Range(0.01, 1000.0))
        ->type_name("X");
    pstPlay->add_flag("--terminal", stPlay.bTerminal, "as text in the terminal");
    pstPlay->add_flag("--watch", stLine.stOptions.bWatch, "show each saving of the file, at the same time");
    pstPlay->footer(PLAY_FOOTER);
}

static std::vector<uint32_t> Find_Outputs(const std::string &strNames)
{
    std::vector<uint32_t> auiOutputs;
    if (strNames == "all")
        for (uint32_t uiOutput = 0; uiOutput < Count_Outputs(); ++uiOutput) auiOutputs.push_back(uiOutput);
    else
        for (const std::string &strName : CLI::detail::split(strNames, ','))
            auiOutputs.push_back(Find_Output("--outputs", strName));
    return auiOutputs;
}

static void Add_ReportCommand(CLI::App &stApp, CommandLine &stLine)
{
    PageOptions &stPage = stLine.stOptions.stPage;
    CLI::App *pstReport =
        Add_Command(stApp, stLine, "report", "A page that shows all captions as the box does", Run_Report);
    Add_SourceOptions(pstReport, stLine.stOptions, false);
    pstReport->add_option("-o", stPage.strFile, "the page to write; - is standard output")
        ->required()
        ->type_name("FILE");
    pstReport
        ->add_option_function<std::string>(
            "--outputs",
            [&stPage](const std::string &strNames) { stPage.auiOutputs = Find_Outputs(strNames); },
            "the displays' outputs to choose from, with commas between them; all: every one [lcd]")
        ->type_name("NAMES");
    Add_TextOptions(pstReport, stLine.stOptions);
    pstReport->add_flag("--watch", stLine.stOptions.bWatch,
                        "stay, and write the page anew whenever the file is saved");
    pstReport->add_flag("--force", stPage.bForce, "replace an existing file");
    pstReport->footer(std::string(REPORT_FOOTER) + List_OutputNames());
}

static void Add_ConvertCommand(CLI::App &stApp, CommandLine &stLine)
{
    CLI::App *pstConvert =
        Add_Command(stApp, stLine, "convert", "Captions as a file of another format", Run_Convert);
    Add_SourceOptions(pstConvert, stLine.stOptions, true);
    Add_ConvertOptions(pstConvert, stLine.stOptions.stConvert);
    pstConvert->add_flag("--json", stLine.stOptions.stReport.bJson,
                         "report what was written, and what was lost, as one JSON document");
    Add_TreeOptions(pstConvert, stLine.stOptions);
}

static std::string Suggest_Name(const std::string &strWrong, const std::vector<std::string> &astrNames)
{
    const std::string strClosest = Find_ClosestName(strWrong, astrNames);
    return "'" + strWrong + "'" + (strClosest.empty() ? "" : "; did you mean '" + strClosest + "'?");
}

static std::vector<std::string> List_OptionNames(const CLI::App &stApp)
{
    std::vector<std::string> astrNames;
    for (const CLI::Option *pstOption : stApp.get_options())
        for (const std::string &strName : pstOption->get_lnames()) astrNames.push_back("--" + strName);
    return astrNames;
}

// The first word that is no command, else the first option that the command does not have; empty when
// neither is what is wrong.
static std::string Explain_Unknown(const CLI::App &stApp, int iArguments, char **ppszArguments)
{
    const CLI::App *pstCommand = &stApp;
    for (int iArgument = 1; iArgument < iArguments; ++iArgument) {
        const std::string strArgument = ppszArguments[iArgument];
        if (strArgument == "--") break;
        const std::string strName = strArgument.substr(0, strArgument.find('='));
        if (strName.starts_with("--") && pstCommand->get_option_no_throw(strName) == nullptr)
            return "there is no option " + Suggest_Name(strName, List_OptionNames(*pstCommand));
        if (strName.starts_with("-") || pstCommand != &stApp) continue;
        std::vector<std::string> astrNames;
        for (const CLI::App *pstSub : stApp.get_subcommands([](const CLI::App *) { return true; })) {
            astrNames.push_back(pstSub->get_name());
            if (pstSub->get_name() == strName) pstCommand = pstSub;
        }
        if (pstCommand == &stApp) return "there is no command " + Suggest_Name(strName, astrNames);
    }
    return "";
}

bool Is_JsonWanted(int iArguments, char **ppszArguments)
{
    for (int iArgument = 1; iArgument < iArguments; ++iArgument) {
        const std::string_view strArgument = ppszArguments[iArgument];
        if (strArgument == "--") break;
        if (strArgument == "--json" || strArgument.starts_with("--json=")) return true;
    }
    return false;
}

static ExitCode Report_Usage(const CLI::App &stApp, const CLI::ParseError &stError, int iArguments,
                             char **ppszArguments)
{
    if (stError.get_exit_code() == 0) {
        stApp.exit(stError); // help, or the version
        return E_EXIT_GOOD;
    }
    const auto eError = static_cast<CLI::ExitCodes>(stError.get_exit_code());
    const bool bUnknown = eError == CLI::ExitCodes::ExtrasError || eError == CLI::ExitCodes::RequiredError ||
                          eError == CLI::ExitCodes::ArgumentMismatch;
    const std::string strUnknown = bUnknown ? Explain_Unknown(stApp, iArguments, ppszArguments) : "";
    const std::string strText = strUnknown.empty() ? stError.what() : strUnknown;
    std::fprintf(stderr, "zyrsub: %s\n'zyrsub --help' and 'zyrsub COMMAND --help' tell more.\n",
                 strText.c_str());
    if (Is_JsonWanted(iArguments, ppszArguments)) Print_JsonFailure(E_EXIT_USAGE, strText);
    return E_EXIT_USAGE;
}

CommandLine Read_CommandLine(int iArguments, char **ppszArguments)
{
    CommandLine stLine;
    CLI::App stApp("Shows what a set-top box makes of subtitle files: SAMI, SubRip, SSA and SubViewer.",
                   "zyrsub");
    stApp.require_subcommand(1);
    stApp.set_version_flag("--version", std::string("zyrsub ") + ZYRSUB_VERSION);
    stApp.footer(MAIN_FOOTER);
    Add_ReportCommands(stApp, stLine);
    Add_FindCommand(stApp, stLine);
    Add_LintCommand(stApp, stLine);
    Add_FixCommand(stApp, stLine);
    Add_RenderCommand(stApp, stLine);
    Add_PlayCommand(stApp, stLine);
    Add_ReportCommand(stApp, stLine);
    Add_ConvertCommand(stApp, stLine);
    try {
        stApp.parse(iArguments, ppszArguments);
    } catch (const CLI::ParseError &stError) {
        stLine.pfRun = nullptr;
        stLine.eCode = Report_Usage(stApp, stError, iArguments, ppszArguments);
    }
    return stLine;
}

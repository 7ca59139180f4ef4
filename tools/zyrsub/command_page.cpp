// zyrsub report: one page that shows a file's captions as the box does, without any other file.
#include "commands.h"

#include <csignal>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string_view>
#include <thread>
#include <unistd.h>

#include "file_watch.h"
#include "movie_search.h"
#include "page_data.h"
#include "safe_file.h"
#include "text_tools.h"

using nlohmann::ordered_json;

extern const std::string_view REPORT_PAGE; // the page with places left open, made from page/

// While it watches: the script beside the page that says which writing of it is the last.
static std::string Get_ScriptName(const std::string &strFile)
{
    return strFile + ".watch.js";
}

static void Fill_Place(std::string &strPage, std::string_view strPlace, std::string_view strText)
{
    const size_t uiPlace = strPage.find(strPlace);
    if (uiPlace != std::string::npos) strPage.replace(uiPlace, strPlace.size(), strText);
}

// A "<" would let a file's text end the element that holds it; in JSON it stands in strings alone.
static std::string Write_Data(const ordered_json &jsPage)
{
    const std::string strJson = jsPage.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    std::string strSafe;
    strSafe.reserve(strJson.size());
    for (const char cByte : strJson)
        if (cByte == '<')
            strSafe += "\\u003c";
        else
            strSafe += cByte;
    return strSafe;
}

static Outcome Write_Page(const std::string &strFile, const std::string &strPage, bool bForce)
{
    if (strFile != "-") {
        Outcome stWritten = Write_Safely(strFile, strPage, bForce);
        if (!stWritten.IsGood()) stWritten.strText = strFile + ": " + stWritten.strText;
        return stWritten;
    }
    if (std::fwrite(strPage.data(), 1, strPage.size(), stdout) == strPage.size()) return {};
    return {E_EXIT_SOME_FAILED, "the page could not be written"};
}

static void Tell_Written(const Options &stOptions, const ordered_json &jsPage, size_t uiBytes)
{
    static constexpr double MEGABYTE = 1e6;
    std::string strOutputs;
    for (const ordered_json &jsOutput : jsPage["outputs"])
        strOutputs.append("  ").append(jsOutput["name"].get<std::string>());
    std::printf("%s  %zu captions  %zu findings%s  %.2f MB\n",
                Make_Printable(stOptions.stPage.strFile).c_str(), jsPage["captions"].size(),
                jsPage["findings"].size(), strOutputs.c_str(), static_cast<double>(uiBytes) / MEGABYTE);
    std::fflush(stdout);
}

static std::string Get_BaseName(const std::string &strPath)
{
    return strPath.substr(strPath.rfind('/') + 1);
}

// The first writing respects a file that is there; those that follow replace what it wrote.
static Outcome Make_Report(const Options &stOptions, const CaptionFile &stFile, unsigned uiWriting)
{
    const std::string &strFile = stOptions.stPage.strFile;
    ordered_json jsPage;
    Outcome stOutcome = Describe_Page(stOptions, stFile, jsPage);
    if (!stOutcome.IsGood()) return stOutcome;
    if (stOptions.bWatch)
        jsPage["watch"] = {{"script", Get_BaseName(Get_ScriptName(strFile))}, {"writing", uiWriting}};
    std::string strPage(REPORT_PAGE);
    Fill_Place(strPage, "@WATCH_SOURCE@", stOptions.bWatch ? " 'self' file:" : "");
    Fill_Place(strPage, "@DATA@", Write_Data(jsPage));
    stOutcome = Write_Page(strFile, strPage, stOptions.stPage.bForce || uiWriting > 1);
    if (stOutcome.IsGood() && stOptions.bWatch)
        stOutcome =
            Write_Safely(Get_ScriptName(strFile), "Zyr.written(" + std::to_string(uiWriting) + ");\n", true);
    if (stOutcome.IsGood() && strFile != "-") Tell_Written(stOptions, jsPage, strPage.size());
    return stOutcome;
}

// Of a file that the box refuses the findings tell why.
static Outcome Open_And_Report(const Options &stOptions, unsigned uiWriting, std::string &strSubtitle)
{
    CaptionFile stFile;
    Outcome stOpened = stFile.Open(stOptions.astrMovies.front(), stOptions.stSource);
    if (!stOpened.IsGood() && stOpened.eCode != E_EXIT_NOT_SUBTITLE) return stOpened;
    strSubtitle = stFile.Get_File().pszFile;
    Outcome stMade = Make_Report(stOptions, stFile, uiWriting);
    return stMade.IsGood() ? stOpened : stMade;
}

static volatile std::sig_atomic_t s_iStopped = 0;

static void Stop_Watching(int /*iSignal*/)
{
    s_iStopped = 1;
}

// Until it is interrupted; then the page stands alone again. A file that cannot be read just now may be good again at
// its next writing.
static void Watch_File(Options stOptions, const std::string &strSubtitle)
{
    static constexpr std::chrono::milliseconds PAUSE(50);
    for (const int iSignal : {SIGINT, SIGTERM, SIGHUP}) std::signal(iSignal, Stop_Watching);
    FileWatch stWatch(strSubtitle);
    std::string strIgnored;
    unsigned uiWriting = 1;
    for (; s_iStopped == 0; std::this_thread::sleep_for(PAUSE)) {
        if (!stWatch.Is_New()) continue;
        const Outcome stOutcome = Open_And_Report(stOptions, ++uiWriting, strIgnored);
        if (!stOutcome.IsGood()) Report_Problem(stOptions.astrMovies.front(), stOutcome.strText);
    }
    stOptions.bWatch = false;
    Open_And_Report(stOptions, ++uiWriting, strIgnored);
    unlink(Get_ScriptName(stOptions.stPage.strFile).c_str());
}

// A slip of the fingers must not cost a subtitle, and a pipe cannot be written anew.
static Outcome Check_Options(const Options &stOptions)
{
    const std::string &strFile = stOptions.stPage.strFile;
    if (Is_SubtitleName(strFile)) return {E_EXIT_USAGE, "a page is not written under a subtitle's name"};
    if (stOptions.bWatch && (strFile == "-" || stOptions.astrMovies.front() == "-"))
        return {E_EXIT_USAGE, "--watch is for files, not for standard input and output"};
    return {};
}

ExitCode Run_Report(const Options &stOptions)
{
    std::string strSubtitle;
    Outcome stOutcome = Check_Options(stOptions);
    if (stOutcome.IsGood()) stOutcome = Open_And_Report(stOptions, 1, strSubtitle);
    if (!stOutcome.IsGood()) Report_Problem(stOptions.astrMovies.front(), stOutcome.strText);
    const bool bMade = stOutcome.IsGood() || stOutcome.eCode == E_EXIT_NOT_SUBTITLE;
    if (bMade && stOptions.bWatch) Watch_File(stOptions, strSubtitle);
    return stOutcome.eCode;
}

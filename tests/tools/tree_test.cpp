// zyrsub over folders: the same results however many processes read, and however often the run is stopped.
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <unistd.h>
#include <utime.h>

#include "run_program.h"
#include "text_tools.h"
#include "tree_run.h"

static const std::string GOOD = "1\r\n00:00:01,000 --> 00:00:02,000\r\nx\r\n\r\n";

static void Make_Folder(const TestFolder &stFolder, const std::string &strName)
{
    std::filesystem::create_directories(stFolder.Path(strName));
}

// The samples so many times over, and files that cannot be read.
static void Make_Tree(const TestFolder &stFolder, int iCopies)
{
    for (int iCopy = 0; iCopy < iCopies; ++iCopy) {
        const std::string strFolder = "in/" + std::to_string(iCopy) + "/";
        Make_Folder(stFolder, strFolder);
        for (const std::string &strName : List_Samples())
            stFolder.Write(strFolder + strName, Read_File(Sample(strName)));
        stFolder.Write(strFolder + "empty.srt", "");
        std::filesystem::create_symlink("nothing", stFolder.Path(strFolder + "gone.smi"));
    }
}

static std::vector<std::string> Read_Lines(const std::string &strFile)
{
    std::vector<std::string> astrLines = Split_Lines(Read_File(strFile));
    std::erase(astrLines, "");
    return astrLines;
}

TEST(Tree, AsManyProcessesAsOne)
{
    const TestFolder stFolder;
    Make_Tree(stFolder, 4);
    for (const std::string strCommand : {"info --json ", "info ", "lint --format jsonl ", "lint "}) {
        const RunResult stOne = Run_Zyrsub(strCommand + "--jobs 1 " + stFolder.Path("in"));
        const RunResult stFive = Run_Zyrsub(strCommand + "--jobs 5 " + stFolder.Path("in"));
        EXPECT_EQ(stOne.strOut, stFive.strOut) << strCommand;
        EXPECT_EQ(stOne.strErr, stFive.strErr) << strCommand;
        EXPECT_EQ(stOne.iCode, stFive.iCode) << strCommand;
        EXPECT_GT(stOne.strOut.size(), 4000U);
    }
}

TEST(Tree, OrderIsThatOfPaths)
{
    const TestFolder stFolder;
    for (const char *pszFolder : {"in/a", "in/a-b", "in/a.srt"}) Make_Folder(stFolder, pszFolder);
    for (const char *pszName :
         {"in/a/x.srt", "in/a-b/x.srt", "in/a.srt/x.SMI", "in/z.srt", "in/a0.ssa", "in/no.txt"})
        stFolder.Write(pszName, GOOD);
    TreeWalk stWalk({stFolder.Path("in"), stFolder.Path("in/no.txt")});
    std::vector<std::string> astrBelow;
    while (const std::optional<TreeFile> stFile = stWalk.Next()) astrBelow.push_back(stFile->strBelow);
    EXPECT_EQ(astrBelow,
              (std::vector<std::string>{"a-b/x.srt", "a.srt/x.SMI", "a/x.srt", "a0.ssa", "z.srt", "no.txt"}));
}

TEST(Tree, StoppedRunGoesOn)
{
    const TestFolder stFolder;
    Make_Tree(stFolder, 2);
    const std::string strResults = stFolder.Path("results.jsonl");
    const std::string strOptions = " --jobs 2 --results " + strResults + " " + stFolder.Path("in");
    for (const char *pszCommand : {"lint", "info"}) {
        std::filesystem::remove(strResults);
        const std::string strRun = pszCommand + strOptions;
        const RunResult stWhole = Run_Zyrsub(strRun);
        const std::string strWhole = Read_File(strResults);
        EXPECT_EQ(stWhole.strOut, "");
        ASSERT_GT(Read_Lines(strResults).size(), 60U);
        // Anywhere in the file, also between its lines and behind the last.
        const size_t uiLine = strWhole.find('\n', strWhole.size() / 2) + 1;
        for (const size_t uiCut : {size_t{0}, size_t{7}, uiLine - 1, uiLine, uiLine + 1, strWhole.size()}) {
            stFolder.Write("results.jsonl", strWhole.substr(0, uiCut));
            const RunResult stRun = Run_Zyrsub(strRun);
            EXPECT_EQ(Read_File(strResults), strWhole) << uiCut;
            EXPECT_EQ(stRun.iCode, stWhole.iCode) << uiCut;
            EXPECT_EQ(Split_Lines(stRun.strErr).back(), Split_Lines(stWhole.strErr).back()) << uiCut;
        }
    }
    stFolder.Write("results.jsonl", "a diary\n");
    EXPECT_EQ(Run_Zyrsub("info --results " + strResults + " " + stFolder.Path("in")).iCode, 1);
    EXPECT_EQ(Read_File(strResults), "a diary\n");
}

// The process that reads a file dies with it: that is one result, and all others come.
TEST(Tree, FilesThatKill)
{
    const TestFolder stFolder;
    Make_Folder(stFolder, "in");
    for (int iFile = 0; iFile < 200; ++iFile)
        stFolder.Write("in/" + std::to_string(iFile) + (iFile % 50 == 7 ? ".kill.srt" : ".srt"), GOOD);
    Options stOptions;
    stOptions.astrMovies = {stFolder.Path("in")};
    stOptions.stTree.strResults = stFolder.Path("results.jsonl");
    stOptions.stTree.uiJobs = 3;
    testing::internal::CaptureStderr();
    const ExitCode eCode = Run_Tree(stOptions, [](const TreeFile &stFile) {
        if (stFile.strPath.ends_with(".kill.srt")) std::raise(SIGKILL);
        if (stFile.strPath.ends_with("/150.srt")) throw std::bad_alloc();
        std::printf("{\"movie\":\"%s\"}\n", stFile.strPath.c_str());
        return TreeReport{};
    });
    const std::string strProblems = testing::internal::GetCapturedStderr();
    EXPECT_EQ(eCode, E_EXIT_SOME_FAILED);
    std::map<bool, int> mapFailed;
    for (const std::string &strLine : Read_Lines(stOptions.stTree.strResults)) {
        const nlohmann::json jsLine = nlohmann::json::parse(strLine);
        const std::string strMovie = jsLine.at("movie");
        EXPECT_EQ(jsLine.contains("error"), strMovie.ends_with(".kill.srt") || strMovie.ends_with("/150.srt"))
            << strLine;
        ++mapFailed[jsLine.contains("error")];
    }
    EXPECT_EQ(mapFailed[false], 195);
    EXPECT_EQ(mapFailed[true], 5);
    EXPECT_NE(strProblems.find("7.kill.srt: the process that read it died: Killed"), std::string::npos)
        << strProblems;
}

TEST(Tree, ConvertGoesOnOverWhatItHadWritten)
{
    const TestFolder stFolder;
    Make_Folder(stFolder, "in");
    for (const char *pszName : {"in/a.srt", "in/b.srt", "in/c.srt"}) stFolder.Write(pszName, GOOD);
    const std::string strRun = "convert --to vtt --results " + stFolder.Path("results.jsonl") + " -o " +
                               stFolder.Path("out") + " " + stFolder.Path("in");
    EXPECT_EQ(Run_Zyrsub(strRun).iCode, 0);
    const std::string strWhole = Read_File(stFolder.Path("results.jsonl"));
    stFolder.Write("results.jsonl", strWhole.substr(0, strWhole.find('\n') + 1));
    EXPECT_EQ(Run_Zyrsub(strRun).iCode, 0);
    EXPECT_EQ(Read_File(stFolder.Path("results.jsonl")), strWhole);
    stFolder.Write("results.jsonl", "");
    stFolder.Write("out/b.vtt", "somebody's own");
    EXPECT_EQ(Run_Zyrsub(strRun).iCode, 1);
    EXPECT_EQ(Read_File(stFolder.Path("out/b.vtt")), "somebody's own");
}

TEST(Tree, Since)
{
    const TestFolder stFolder;
    Make_Folder(stFolder, "in");
    const struct {
        const char *pszName;
        int64_t llAge; // seconds
    } astFiles[] = {{"in/day.srt", 86400 + 3600}, {"in/hour.srt", 3600 + 60}, {"in/now.srt", 0}};
    for (const auto &stFile : astFiles) {
        stFolder.Write(stFile.pszName, GOOD);
        const utimbuf stTimes = {time(nullptr) - stFile.llAge, time(nullptr) - stFile.llAge};
        ASSERT_EQ(utime(stFolder.Path(stFile.pszName).c_str(), &stTimes), 0);
    }
    const struct {
        const char *pszSince;
        size_t uiFiles;
    } astCases[] = {{"2001-02-03", 3}, {"2001-02-03T04:05", 3}, {"2d", 3}, {"1d", 2}, {"90m", 2},
                    {"1h", 1},         {"2999-01-01", 0}};
    for (const auto &stCase : astCases) {
        const RunResult stRun =
            Run_Zyrsub(std::string("info --json --since ") + stCase.pszSince + " " + stFolder.Path("in"));
        EXPECT_EQ(std::count(stRun.strOut.begin(), stRun.strOut.end(), '\n'),
                  static_cast<long>(stCase.uiFiles))
            << stCase.pszSince;
    }
    for (const char *pszWrong :
         {"yesterday", "1", "1y", "-1d", "2001-02-03x", "2001-13-01", "99999999999999999999d"})
        EXPECT_EQ(Run_Zyrsub(std::string("info --since ") + pszWrong + " " + stFolder.Path("in")).iCode, 2)
            << pszWrong;
}

// How zyrsub answers: slips of the fingers, one JSON document whatever happens, closed pipes; and find.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "run_program.h"

using nlohmann::json;

TEST(ZyrsubUsage, NamesTheClosest)
{
    const struct {
        std::vector<std::string> astrArguments;
        const char *pszHint;
    } astCases[] = {
        {{"fram", "x.srt"}, "'fram'; did you mean 'frames'?"},
        {{"rendr", "x.srt"}, "did you mean 'render'?"},
        {{"frames", "--jsn", "x.srt"}, "'--jsn'; did you mean '--json'?"},
        {{"frames", "--form=1s", "x.srt"}, "'--form'; did you mean '--from'?"},
        {{"frames", "--code-page=CP949", "x.srt"}, "did you mean '--codepage'?"},
        {{"xylophone"}, "no command 'xylophone'\n"},
    };
    for (const auto &stCase : astCases) {
        const RunResult stRun = Run_Zyrsub(stCase.astrArguments);
        EXPECT_EQ(stRun.iCode, 2);
        EXPECT_NE(stRun.strErr.find(stCase.pszHint), std::string::npos) << stRun.strErr;
    }
}

TEST(ZyrsubUsage, JsonStaysOneDocument)
{
    for (const auto &astrArguments :
         {std::vector<std::string>{"info", "--json"}, {"frames", "--json", "--from", "soon", "x.srt"}}) {
        const RunResult stRun = Run_Zyrsub(astrArguments);
        EXPECT_EQ(stRun.iCode, 2);
        const json jsDocument = json::parse(stRun.strOut);
        EXPECT_EQ(jsDocument["schema"], 1);
        EXPECT_EQ(jsDocument["errors"][0]["code"], 2);
    }
    const json jsGone = json::parse(Run_Zyrsub({"frames", "--json", "/nowhere/x.srt"}).strOut);
    EXPECT_EQ(jsGone["errors"][0]["movie"], "/nowhere/x.srt");
    EXPECT_EQ(jsGone["errors"][0]["code"], 3);
}

TEST(ZyrsubPipe, ClosesQuietly)
{
    const std::string strClosed = "exec 2>&1; { " + std::string(ZYRSUB_PROGRAM) +
                                  " frames $(seq 4000 | sed 's:.*:" + Sample("subrip-crlf.srt") +
                                  ":'); echo $? >&2; } | head -n 1";
    const RunResult stRun = Run_Program({"bash", "-c", strClosed});
    EXPECT_NE(stRun.strOut.find("141\n"), std::string::npos) << stRun.strOut;
    EXPECT_EQ(stRun.strOut.find("zyrsub:"), std::string::npos) << stRun.strOut;
}

TEST(ZyrsubFind, FirstThatOpensWins)
{
    const TestFolder stFolder;
    const std::string strSubRip = Read_File(Sample("subrip-crlf.srt"));
    for (const char *pszName : {"Film.srt", "Film.ssa", "Film.Srt", "Film.en.srt", "film.smi", "Film2.srt"})
        stFolder.Write(pszName, strSubRip);
    const RunResult stRun = Run_Zyrsub({"find", "--json", stFolder.Path("Film.mkv"), "gone.mkv"});
    EXPECT_EQ(stRun.iCode, 1);
    const json jsFile = json::parse(stRun.strOut)["files"][0];
    EXPECT_EQ(jsFile["subtitle"], stFolder.Path("Film.srt"));
    const char *const apszEndings[] = {".SMI", ".smi", ".SAMI", ".sami", ".SRT",
                                       ".srt", ".SUB", ".sub",  ".SSA",  ".ssa"};
    ASSERT_EQ(jsFile["tried"].size(), std::size(apszEndings));
    for (size_t uiName = 0; uiName < std::size(apszEndings); ++uiName) {
        EXPECT_EQ(jsFile["tried"][uiName]["name"], stFolder.Path("Film") + apszEndings[uiName]);
        EXPECT_EQ(jsFile["tried"][uiName]["opens"], uiName == 5 || uiName == 9);
    }
    std::vector<std::string> astrSiblings;
    for (const json &jsSibling : jsFile["never_asked_for"]) astrSiblings.push_back(jsSibling["name"]);
    EXPECT_EQ(astrSiblings, (std::vector<std::string>{stFolder.Path("Film.Srt"), stFolder.Path("Film.en.srt"),
                                                      stFolder.Path("film.smi")}));
    EXPECT_EQ(Run_Zyrsub({"find", stFolder.Path("gone.mkv")}).iCode, 3);
    stFolder.Write("Bad.smi", "");
    EXPECT_EQ(Run_Zyrsub({"find", stFolder.Path("Bad.mkv")}).iCode, 4);
}

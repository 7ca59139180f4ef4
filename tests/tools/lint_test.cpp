// zyrsub lint: what it prints, in every format, and how it ends.
#include <gtest/gtest.h>

#include "run_program.h"

using nlohmann::json;

TEST(ZyrsubLint, TextHasALineAndACaret)
{
    const TestFolder stFolder;
    stFolder.Write("a.srt", "1\r\n00:00:01,000 --> 00:00:03,000\r\n등 &AMP; x\r\n\r\n");
    const RunResult stRun = Run_Zyrsub("lint " + stFolder.Path("a.srt"));
    EXPECT_EQ(stRun.strOut,
              stFolder.Path("a.srt") +
                  ":3:3: changed ZYR-TEXT-009: \"&AMP;\" is no entity that the box knows: it stays as it "
                  "is\n    등 &AMP; x\n       ^~~~~\n");
    EXPECT_EQ(stRun.strErr, "zyrsub: 0 of 1 files without findings; 0 lost, 1 changed, 0 doubtful\n");
    EXPECT_EQ(stRun.iCode, 1);
}

TEST(ZyrsubLint, LevelsAndExitCodes)
{
    static constexpr struct {
        const char *pszArguments;
        int iCode;
    } astCases[] = {
        {"lint subrip-crlf.srt", 0},
        {"lint --level lost subrip-crlf.srt subviewer.sub", 0},
        {"lint --level lost subrip-lf.srt", 1},
        {"lint --level changed sami-lf.smi", 0},
        {"lint sami-lf.smi", 1},
        {"lint gone.srt", 3},
        {"lint subrip-crlf.srt gone.srt", 1},
        {"lint subviewer-no-header.sub", 1},
        {"lint", 2},
        {"lint --level bad subrip-crlf.srt", 2},
        {"lint --output vhs subrip-crlf.srt", 2},
        {"lint --explain ZYR-NONE-1", 2},
        {"lint --explain zyr-srt-005", 0},
        {"lint --cps 5 --level doubtful subrip-crlf.srt", 1},
        {"lint --longest 1s subrip-crlf.srt", 1},
    };
    for (const auto &stCase : astCases) {
        const RunResult stRun = Run_Zyrsub(stCase.pszArguments);
        EXPECT_EQ(stRun.iCode, stCase.iCode) << stCase.pszArguments << stRun.strOut << stRun.strErr;
    }
}

// The formats that services read say the same.
TEST(ZyrsubLint, JsonSarifAndJunit)
{
    const json jsDocument = json::parse(Run_Zyrsub("lint --format json subrip-lf.srt gone.srt").strOut);
    Expect_Values(jsDocument, {{"/schema", 1},
                               {"/files/0/format", "SubRip"},
                               {"/files/0/lost", 5},
                               {"/files/0/findings/0/code", "ZYR-FILE-004"},
                               {"/files/0/findings/0/start", 1000},
                               {"/files/0/findings/1/column", 2},
                               {"/errors/0/code", 3},
                               {"/files/1/error/code", 3}});
    const json jsSarif = json::parse(Run_Zyrsub("lint --format sarif subrip-lf.srt gone.srt").strOut);
    Expect_Values(jsSarif,
                  {{"/version", "2.1.0"},
                   {"/runs/0/results/1/ruleId", "ZYR-FILE-003"},
                   {"/runs/0/results/1/level", "error"},
                   {"/runs/0/results/1/locations/0/physicalLocation/artifactLocation/uri", "subrip-lf.srt"},
                   {"/runs/0/results/1/locations/0/physicalLocation/region/startColumn", 2},
                   {"/runs/0/invocations/0/executionSuccessful", false}});
    const json &jsRun = jsSarif["runs"][0];
    for (const json &jsResult : jsRun["results"])
        EXPECT_EQ(jsRun["tool"]["driver"]["rules"][jsResult["ruleIndex"].get<size_t>()]["id"],
                  jsResult["ruleId"]);
    const std::string strJunit =
        Run_Zyrsub("lint --format junit subrip-lf.srt subrip-crlf.srt gone.srt").strOut;
    for (const char *pszPart :
         {"<testsuite name=\"subrip-lf.srt\" tests=\"5\" failures=\"5\" errors=\"0\">",
          "name=\"ZYR-FILE-003 line 1 column 2\"",
          "the box does not show &quot;The lamp is lit at dusk.&quot;",
          "<testsuite name=\"subrip-crlf.srt\" tests=\"1\" failures=\"0\" errors=\"0\">\n    <testcase "
          "classname=\"subrip-crlf.srt\" name=\"no findings\"/>",
          "<testsuite name=\"gone.srt\" tests=\"1\" failures=\"0\" errors=\"1\">"})
        EXPECT_NE(strJunit.find(pszPart), std::string::npos) << pszPart << strJunit;
}

TEST(ZyrsubLint, PageOfCodesIsCurrent)
{
    EXPECT_EQ(Run_Zyrsub("lint --explain all").strOut, Read_File(ZYR_SOURCE "/docs/lint.md"))
        << "zyrsub lint --explain all > docs/lint.md";
}

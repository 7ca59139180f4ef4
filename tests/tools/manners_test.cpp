// How zyrsub answers: its exit codes, one JSON document whatever happens, closed pipes; and find.
#include <gtest/gtest.h>

#include "run_program.h"

using nlohmann::json;

TEST(ZyrsubExit, CodesAndMessages)
{
    const TestFolder stFolder;
    stFolder.Write("empty.srt", "");
    stFolder.Write("Bad.smi", "");
    const std::string strFolder = stFolder.Path("");
    const struct {
        std::string strArguments;
        int iCode;
        const char *pszMessage; // on standard error
    } astCases[] = {
        {"frames subrip-crlf.srt", 0, ""},
        {"--help", 0, ""},
        {"frames subrip-crlf.srt gone.srt subrip-crlf.srt", 1, "gone.srt"},
        {"frames gone.srt gone.srt", 3, "gone.srt"},
        {"frames gone.mkv", 3, "gone.mkv"},
        {"frames " + strFolder, 3, "a folder"},
        {"find gone.mkv", 3, "gone.mkv"},
        {"find " + strFolder + "Bad.mkv", 4, ""},
        {"info subviewer-no-header.sub", 4, "not a subtitle"},
        {"info " + strFolder + "empty.srt", 4, "empty"},
        {"", 2, "subcommand"},
        {"frames", 2, "MOVIE"},
        {"frames --nosuch x.srt", 2, "--nosuch"},
        {"frames --from soon x.srt", 2, "'soon' is not a time"},
        {"frames --codepage NOSUCH subrip-crlf.srt", 2, "NOSUCH"},
        {"frames sami-interleaved.smi --class FRCC", 2, "0 KRCC, 1 ENCC"},
        {"convert subrip-crlf.srt -o " + strFolder + "x.doc", 2, ""},
        {"render --output vhs subrip-crlf.srt", 2, "vhs"},
        {"render --all subrip-crlf.srt", 2, "--sheet"},
        {"render --font-size 30 subrip-crlf.srt", 2, "--font-size"},
        {"render --background subrip-crlf.srt subrip-crlf.srt", 3, "subrip-crlf.srt"},
        {"render -o /nowhere/shot.png subrip-crlf.srt", 1, "/nowhere/shot.png cannot be written"},
        {"render --sheet /nowhere/sheet.png subrip-crlf.srt", 1, "/nowhere/sheet.png cannot be written"},
        // Slips of the fingers.
        {"fram x.srt", 2, "'fram'; did you mean 'frames'?"},
        {"rendr x.srt", 2, "did you mean 'render'?"},
        {"frames --jsn x.srt", 2, "'--jsn'; did you mean '--json'?"},
        {"frames --form=1s x.srt", 2, "'--form'; did you mean '--from'?"},
        {"frames --code-page=CP949 x.srt", 2, "did you mean '--codepage'?"},
        {"xylophone", 2, "no command 'xylophone'\n"},
    };
    for (const auto &stCase : astCases) {
        const RunResult stRun = Run_Zyrsub(stCase.strArguments);
        EXPECT_EQ(stRun.iCode, stCase.iCode) << stCase.strArguments << ": " << stRun.strErr;
        EXPECT_NE(stRun.strErr.find(stCase.pszMessage), std::string::npos)
            << stCase.pszMessage << ": " << stRun.strErr;
    }
}

TEST(ZyrsubJson, OneDocumentWithItsFailures)
{
    for (const char *pszArguments :
         {"info --json", "frames --json --from soon x.srt", "convert --json subrip-crlf.srt --to srt -o -"})
        Expect_Values(Run_Json(pszArguments, 2), {{"/schema", 1}, {"/errors/0/code", 2}});
    Expect_Values(Run_Json("frames --json /nowhere/x.srt", 3),
                  {{"/errors/0/movie", "/nowhere/x.srt"}, {"/errors/0/code", 3}});
    const TestFolder stFolder;
    stFolder.Write("odd\xFFname.srt", Read_File(Sample("subrip-crlf.srt")));
    Expect_Values(Run_Json("info --json gone.srt " + stFolder.Path("odd\xFFname.srt"), 1),
                  {{"/schema", 1}, {"/files/0/error/code", 3}, {"/files/1/format", "SubRip"}});
}

TEST(ZyrsubPipe, ClosesQuietly)
{
    const RunResult stRun =
        Run_Program("exec 2>&1; { '" ZYRSUB_PROGRAM "' frames $(seq 4000 | sed 's:.*:subrip-crlf.srt:');"
                    " echo $? >&2; } | head -n 1");
    EXPECT_NE(stRun.strOut.find("141\n"), std::string::npos) << stRun.strOut;
    EXPECT_EQ(stRun.strOut.find("zyrsub:"), std::string::npos) << stRun.strOut;
}

TEST(ZyrsubFind, FirstThatOpensWins)
{
    const TestFolder stFolder;
    const std::string strSubRip = Read_File(Sample("subrip-crlf.srt"));
    for (const char *pszName : {"Film.srt", "Film.ssa", "Film.Srt", "Film.en.srt", "film.smi", "Film2.srt"})
        stFolder.Write(pszName, strSubRip);
    const json jsFile = Run_Json("find --json " + stFolder.Path("Film.mkv") + " gone.mkv", 1)["files"][0];
    EXPECT_EQ(jsFile["subtitle"], stFolder.Path("Film.srt"));
    std::string strTried; // with a star behind what opens
    for (const json &jsTried : jsFile["tried"])
        strTried += std::string(jsTried["name"]) + (jsTried["opens"] == true ? "* " : " ");
    std::string strExpected;
    for (const char *pszEnding :
         {".SMI ", ".smi ", ".SAMI ", ".sami ", ".SRT ", ".srt* ", ".SUB ", ".sub ", ".SSA ", ".ssa* "})
        strExpected += stFolder.Path("Film") + pszEnding;
    EXPECT_EQ(strTried, strExpected);
    std::string strSiblings;
    for (const json &jsSibling : jsFile["never_asked_for"])
        strSiblings += std::string(jsSibling["name"]) + " ";
    EXPECT_EQ(strSiblings,
              stFolder.Path("Film.Srt ") + stFolder.Path("Film.en.srt ") + stFolder.Path("film.smi "));
}

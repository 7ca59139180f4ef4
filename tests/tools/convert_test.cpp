// zyrsub convert: what it writes reads back as the same captions.
#include <gtest/gtest.h>
#include <sstream>
#include <sys/stat.h>

#include "run_program.h"

using nlohmann::json;

static json Read_Tracks(const std::string &strArguments)
{
    return json::parse(Run_Zyrsub("convert --to json -o - " + strArguments).strOut)["tracks"];
}

struct Caption {
    int iStart;
    int iEnd;
    std::string strLines;

    auto operator<=>(const Caption &) const = default;
};

// Prints a caption that is not the expected one.
static std::ostream &operator<<(std::ostream &stOut, const Caption &stCaption)
{
    return stOut << stCaption.iStart << " to " << stCaption.iEnd << " " << stCaption.strLines;
}

static std::vector<Caption> List_Captions(const json &jsFrames)
{
    std::vector<Caption> astCaptions;
    for (const json &jsFrame : jsFrames) {
        const bool bOpen = jsFrame["end"].is_null();
        const std::string strLines = jsFrame["lines"].empty() ? "" : jsFrame["lines"].dump();
        astCaptions.push_back({jsFrame["start"], bOpen ? INT32_MAX : int{jsFrame["end"]}, strLines});
    }
    std::stable_sort(astCaptions.begin(), astCaptions.end(),
                     [](const Caption &stA, const Caption &stB) { return stA.iStart < stB.iStart; });
    return astCaptions;
}

// SAMI ends a caption where the next one of its class begins.
static void Hold_AsSami(std::vector<Caption> &astCaptions)
{
    for (size_t uiAt = 0; uiAt + 1 < astCaptions.size(); ++uiAt) {
        Caption &stCaption = astCaptions[uiAt];
        stCaption.iEnd = std::max(stCaption.iStart, std::min(stCaption.iEnd, astCaptions[uiAt + 1].iStart));
    }
}

// SSA counts hundredths of a second below ten hours, shows nothing that starts at 0 or ends before it begins.
static void Hold_AsSsa(std::vector<Caption> &astCaptions)
{
    std::erase_if(astCaptions, [](const Caption &stCaption) { return stCaption.iEnd < stCaption.iStart; });
    for (Caption &stCaption : astCaptions) {
        stCaption.iStart = std::max(10, (stCaption.iStart + 5) / 10 * 10);
        stCaption.iEnd = std::min(35999990, (std::min(stCaption.iEnd, INT32_MAX - 5) + 5) / 10 * 10);
    }
}

// Where the file does not tell an end, a caption stays until the next one, the last one five seconds.
static void Close_Ends(std::vector<Caption> &astCaptions)
{
    for (size_t uiAt = 0; uiAt < astCaptions.size(); ++uiAt) {
        Caption &stCaption = astCaptions[uiAt];
        const bool bLast = uiAt + 1 == astCaptions.size();
        if (stCaption.iEnd == INT32_MAX)
            stCaption.iEnd = bLast ? stCaption.iStart + 5000 : astCaptions[uiAt + 1].iStart;
    }
}

// What a format holds of the captions: those with text, in an order that does not matter.
static std::vector<Caption> List_Held(const json &jsFrames, const std::string &strFormat)
{
    std::vector<Caption> astCaptions = List_Captions(jsFrames);
    if (strFormat == "smi") Hold_AsSami(astCaptions);
    if (strFormat == "srt" || strFormat == "ssa") Close_Ends(astCaptions);
    if (strFormat == "ssa") Hold_AsSsa(astCaptions);
    std::erase_if(astCaptions, [](const Caption &stCaption) { return stCaption.strLines.empty(); });
    std::sort(astCaptions.begin(), astCaptions.end());
    return astCaptions;
}

// What one track is when it has been written.
static json Read_Back(const std::string &strWrite, size_t uiTrack, const std::string &strOut)
{
    const std::string strClass = " --class " + std::to_string(uiTrack);
    const RunResult stRun = Run_Zyrsub("convert --force " + strWrite + strClass + " -o " + strOut);
    EXPECT_TRUE(stRun.iCode == 0 || stRun.iCode == 3) << stRun.strErr;
    return Read_Tracks(strOut + " --codepage CP949");
}

TEST(ZyrsubConvert, ReadsBackTheSame)
{
    const TestFolder stFolder;
    size_t uiCompared = 0;
    for (const std::string &strSample : List_Samples()) {
        if (strSample == "subviewer-no-header.sub") continue; // no subtitles
        const auto pfNamed = [&](const char *pszPart) { return strSample.find(pszPart) != strSample.npos; };
        const std::string strRead = strSample + (pfNamed("cp1252") ? " --codepage auto" : "");
        // UTF-16 holds characters that are not read from UTF-8.
        const std::string strWrite = strRead + (pfNamed("utf16") ? " --encoding utf-16le" : "");
        const json jsTracks = Read_Tracks(strRead);
        for (const std::string strTo : {"srt", "smi", "ssa"}) {
            // A carriage return inside a caption is a blank in SSA.
            if (strTo == "ssa" && strSample == "sami-malformed.smi") continue;
            const std::string strOut = stFolder.Path("out." + strTo);
            for (size_t uiTrack = 0; uiTrack < jsTracks.size(); ++uiTrack, ++uiCompared) {
                SCOPED_TRACE(testing::Message() << strSample << " " << strTo);
                const json jsRead = Read_Back(strWrite, uiTrack, strOut);
                ASSERT_EQ(jsRead.size(), 1U);
                EXPECT_EQ(List_Held(jsRead[0]["frames"], ""), List_Held(jsTracks[uiTrack]["frames"], strTo));
            }
        }
    }
    EXPECT_GT(uiCompared, 100U);
}

static std::string Make_Entry(int iSecond, const std::string &strText)
{
    const std::string strTime = "00:00:0" + std::to_string(iSecond);
    return std::to_string(iSecond) + "\r\n" + strTime + ",000 --> " + strTime + ",900\r\n" + strText +
           "\r\n\r\n";
}

// What a file's author wrote and the box does not show is told by kind, makes the exit code 3, and is refused by
// --strict; what is only shown otherwise is told.
TEST(ZyrsubConvert, EveryLossIsTold)
{
    const struct {
        std::string strName, strText;
        int iCode;
        const char *pszTold; // empty: nothing is lost
        const char *pszWritten;
    } astCases[] = {
        {"a.srt", Make_Entry(1, "plain"), 0, "", "plain"},
        {"a.srt", "1\r\nno time\r\n[one]\r\n\r\n2\r\nnone\r\ntwo\r\n\r\n" + Make_Entry(1, "three"), 3,
         "2 captions: text is no caption's", "three"},
        {"a.sub",
         "[INFORMATION]\r\n[END INFORMATION]\r\n[SUBTITLE]\r\n[COLF]&HFF,[SIZE]18\r\n\r\n"
         "-00:00:01.00,00:00:01.00\r\none\r\n\r\n00:00:02.00,00:00:03.00\r\ntwo\r\n\r\n",
         3, "1 caption: text is no caption's", "two"},
        {"a.srt", Make_Entry(1, "1\r\n2\r\n3\r\n4\r\n5\r\n6\r\nseven"), 3,
         "1 caption: what stands behind its sixth line", "6"},
        {"a.srt", Make_Entry(1, "a 🐋 whale"), 3, "1 caption: characters beyond U+FFFF", "a whale"},
        {"a.srt", Make_Entry(1, "if 1 < 2 then more"), 3, "1 caption: what stands behind a '<'", "if 1"},
        {"a.srt", Make_Entry(1, "one") + "2\r\nno time\r\nlost\r\n\r\n" + Make_Entry(3, "three"), 3,
         "text is no caption's", "three"},
        {"a.srt", Make_Entry(1, "one\r\n\r\ntwo words behind an empty line") + Make_Entry(3, "three"), 3,
         "text", "three"},
        {"a.srt", Make_Entry(1, "<b>all of it"), 0, "", "<b>all of it</b>"},
        {"a.srt", Make_Entry(1, "<font color=\"#FF0000\">red"), 0, "", "<font color=\"#FF0000\">red</font>"},
        {"a.srt", Make_Entry(1, "a <b>part</b> of it"), 0, "1 caption: the style of a part of it",
         "a part of it"},
        {"a.srt", Make_Entry(1, "fish &amp; chips &copy; &#65;"), 0, "", "fish & chips"},
        {"a.smi",
         "<SAMI><BODY><SYNC Start=1000><P Class=A>one<SYNC Start=2000><P Class=A>&nbsp;"
         "<SYNC Start=3000><P Class=A>last</BODY></SAMI>",
         0, "1 caption: it has no end",
         "00:00:01,000 --> 00:00:02,000\r\none\r\n\r\n2\r\n00:00:03,000 --> 00:00:08,000"},
        {"a.smi", "<SAMI><BODY><SYNC Start=1000><P Class=A>one<P Class=A>twice</BODY></SAMI>", 0,
         "1 caption: it has no end", "one"},
        {"a.smi",
         "<SAMI><BODY><SYNC Start=soon><P Class=A>never<SYNC Start=3000 End=4000><P Class=A>x</BODY></SAMI>",
         3, "1 caption: text is no caption's", "x"},
        {"a.sub",
         "[INFORMATION]\r\n[END INFORMATION]\r\n[SUBTITLE]\r\n00:00:01.00,00:00:02.00\r\none[br]two\r\n\r\n"
         "soon\r\nnever\r\n\r\n00:00:05.00,00:00:06.00\r\nthree\r\n\r\n",
         3, "text", "three"},
        {"a.ssa",
         "[Script Info]\r\nScriptType: v4.00\r\n\r\n[Events]\r\nFormat: Marked, Start, End, Style, Name, "
         "MarginL, "
         "MarginR, MarginV, Effect, Text\r\nDialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,one\\Ntwo\r\n",
         0, "", "one\r\ntwo"},
    };
    const TestFolder stFolder;
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.strText);
        stFolder.Write(stCase.strName, stCase.strText);
        const std::string strConvert = "convert --to srt -o - " + stFolder.Path(stCase.strName);
        const RunResult stRun = Run_Zyrsub(strConvert);
        EXPECT_EQ(stRun.iCode, stCase.iCode) << stRun.strErr;
        EXPECT_NE(stRun.strErr.find(stCase.pszTold), std::string::npos) << stRun.strErr;
        EXPECT_EQ(stRun.strErr.empty(), *stCase.pszTold == '\0') << stRun.strErr;
        EXPECT_NE(stRun.strOut.find(stCase.pszWritten), std::string::npos) << stRun.strOut;
        EXPECT_EQ(Run_Zyrsub(strConvert + " --strict").strOut.empty(), stCase.iCode == 3);
    }
}

TEST(ZyrsubConvert, MarksCodePagesAndOpenEnds)
{
    const TestFolder stFolder;
    stFolder.Write("cn.srt",
                   Make_Entry(1, "\xD3\xEE\xD6\xE6\xCA\xD8\xBB\xA4\xC9\xF1\xB1\xA3\xBB\xA4\xCE\xD2\xC3\xC7"));
    const std::string strChinese = "convert --to txt -o - " + stFolder.Path("cn.srt");
    EXPECT_EQ(Run_Zyrsub(strChinese).iCode, 2);
    EXPECT_NE(Run_Zyrsub(strChinese).strErr.find("--codepage GB18030"), std::string::npos);
    EXPECT_EQ(Run_Zyrsub(strChinese + " --codepage auto").strOut, "宇宙守护神保护我们\n");
    EXPECT_TRUE(Run_Zyrsub("convert --bom --to srt -o - subrip-crlf.srt").strOut.starts_with("\uFEFF1\r\n"));
    EXPECT_NE(
        Run_Zyrsub("convert --open-end 1s --to srt -o - sami-unordered.smi").strOut.find("--> 00:00:10,000"),
        std::string::npos);
    stFolder.Write("blank.smi", "<SAMI><BODY><SYNC Start=1000><P Class=A>&nbsp;</BODY></SAMI>");
    const RunResult stBlank = Run_Zyrsub("convert --to srt -o - " + stFolder.Path("blank.smi"));
    EXPECT_EQ(stBlank.iCode, 1);
    EXPECT_NE(stBlank.strErr.find("no captions to convert"), std::string::npos);
}

TEST(ZyrsubConvert, TextsOfOtherReaders)
{
    const TestFolder stFolder;
    stFolder.Write("x.srt", "1\r\n00:00:01,000 --> 00:00:02,500\r\na &lt; b &amp; c\r\nsecond\r\n\r\n"
                            "2\r\n00:00:03,000 --> 00:00:02,000\r\nbackwards\r\n\r\n");
    const std::string strConvert = "convert " + stFolder.Path("x.srt") + " -o - --to ";
    EXPECT_EQ(Run_Zyrsub(strConvert + "vtt").strOut,
              "WEBVTT\n\n00:00:01.000 --> 00:00:02.500\na &lt; b &amp; c\nsecond\n");
    EXPECT_EQ(Run_Zyrsub(strConvert + "txt").strOut, "a < b & c\nsecond\n\nbackwards\n");
    const std::string strKorean = stFolder.Path("ko.srt");
    Run_Zyrsub("convert subrip-cp949.srt --encoding CP949 -o " + strKorean);
    EXPECT_NE(Run_Zyrsub("info " + strKorean).strOut.find("ANSI, read as CP949"), std::string::npos);
    EXPECT_EQ(Run_Zyrsub("frames " + strKorean).strOut, Run_Zyrsub("frames subrip-cp949.srt").strOut);
}

TEST(ZyrsubConvert, FilesAndTimes)
{
    const TestFolder stFolder;
    Expect_Values(Read_Tracks("subrip-crlf.srt --shift -1.5s --scale 2"),
                  {{"/0/frames/0/start", 500}, {"/0/frames/1/end", 11500}});

    stFolder.Write("there.srt", "mine");
    const std::string strThere = stFolder.Path("there.srt");
    EXPECT_EQ(Run_Zyrsub("convert subrip-crlf.srt -o " + strThere).iCode, 1);
    EXPECT_EQ(Read_File(strThere), "mine");
    EXPECT_EQ(Run_Zyrsub("convert subrip-crlf.srt --force -o " + strThere).iCode, 0);
    EXPECT_TRUE(Read_File(strThere).starts_with("1\r\n00:00:01,000 --> "));

    const std::string strBoth = stFolder.Path("both.smi");
    EXPECT_EQ(Run_Zyrsub("convert subrip-crlf.srt gone.srt subrip-utf8.srt -o " + strBoth).iCode, 1)
        << "one input is missing, the others are converted";
    EXPECT_EQ(Read_Tracks(strBoth).size(), 2U);
}

TEST(ZyrsubConvert, JsonTellsWhatWasWrittenAndLost)
{
    const TestFolder stFolder;
    const std::string strConvert =
        "convert --json sami-interleaved.smi --encoding CP1252 --shift -5s -o " + stFolder.Path("out.srt");
    const json jsReport = Run_Json(strConvert, 3);
    const std::string strLosses = jsReport["outputs"][0]["losses"].dump();
    EXPECT_NE(strLosses.find("does not have are written as '?'"), std::string::npos) << strLosses;
    EXPECT_NE(strLosses.find("move it out of the movie"), std::string::npos) << strLosses;
    Expect_Values(jsReport, {{"/outputs/0/file", stFolder.Path("out.KRCC.srt")},
                             {"/outputs/0/format", "SubRip"},
                             {"/outputs/1/format", "SubRip"},
                             {"/outputs/2", "(nothing)"}});
    Expect_Values(Run_Json(strConvert, 1), {{"/outputs/1/error/code", 1}, // they are there already
                                            {"/errors/1/code", 1},
                                            {"/errors/2", "(nothing)"}});
}

// Three languages whose names differ in letter case, in what a file name cannot have, and in nothing.
static std::string Make_Sami(const std::vector<std::string> &astrClasses)
{
    std::string strText = "<SAMI><BODY>";
    for (size_t uiClass = 0; uiClass < astrClasses.size(); ++uiClass)
        for (int iSync = 0; iSync < 2; ++iSync)
            strText += "<SYNC Start=" + std::to_string(1000 * (iSync + 1)) +
                       "><P Class=" + astrClasses[uiClass] + ">text " + std::to_string(uiClass) + "\r\n";
    return strText + "</BODY></SAMI>\r\n";
}

TEST(ZyrsubConvert, NoLanguageIsLost)
{
    const TestFolder stFolder;
    stFolder.Write("x.smi", Make_Sami({"A/B", "A_B",
                                       "A\x1B"
                                       "B"}));
    const json jsReport =
        Run_Json("convert --json --force " + stFolder.Path("x.smi") + " -o " + stFolder.Path("o.srt"));
    Expect_Values(jsReport, {{"/outputs/0/file", stFolder.Path("o.A_B.srt")},
                             {"/outputs/1/file", stFolder.Path("o.A_B2.srt")},
                             {"/outputs/2/file", stFolder.Path("o.A_B3.srt")}});
    EXPECT_NE(Read_File(stFolder.Path("o.A_B2.srt")).find("text 1"), std::string::npos);

    const std::string strMerged = stFolder.Path("merged.smi");
    Run_Zyrsub("convert subrip-crlf.srt subrip-utf8.srt --class-name krcc --class-name KRCC -o " + strMerged);
    EXPECT_EQ(Read_Tracks(strMerged).size(), 2U);
    stFolder.Write("ko.smi", Make_Sami({"\uD55C\uAE00\uC790\uB9C9"}));
    Run_Zyrsub("convert " + stFolder.Path("ko.smi") + " " + stFolder.Path("ko.smi") + " --force -o " +
               strMerged);
    Expect_Values(Read_Tracks(strMerged), {{"/1/class", "\uD55C\uAE00\uC790"
                                                        "2"}});

    stFolder.Write("none.srt", "nothing here\r\n");
    const RunResult stNone =
        Run_Zyrsub("convert subrip-crlf.srt " + stFolder.Path("none.srt") + " --force -o " + strMerged);
    EXPECT_EQ(stNone.iCode, 1);
    EXPECT_NE(stNone.strErr.find("no captions to convert"), std::string::npos) << stNone.strErr;
}

TEST(ZyrsubConvert, WrongUseIsRefused)
{
    const TestFolder stFolder;
    stFolder.Write("ko.smi", Make_Sami({"\uD55C\uAE00"}));
    const struct {
        std::string strArguments;
        const char *pszMessage;
    } astCases[] = {
        {"subrip-crlf.srt --encoding UTF-32 -o x.srt", "'UTF-32' is not"},
        {"subrip-crlf.srt --encoding ISO-2022-KR -o x.srt", "'ISO-2022-KR' is not"},
        {"subrip-crlf.srt --encoding CP949 -o x.vtt", "WebVTT is always UTF-8"},
        {"subrip-crlf.srt --class-name A -o x.srt", "only SAMI has class names"},
        {"subrip-crlf.srt --class-name A --class-name B -o x.smi", "more class names than languages"},
        {"subrip-crlf.srt subrip-utf8.srt -o x.srt", "only SAMI and JSON hold several inputs"},
        {stFolder.Path("ko.smi") + " --encoding CP949 -o x.smi", "only found in UTF-8"},
    };
    for (const auto &stCase : astCases) {
        const RunResult stRun = Run_Zyrsub("convert " + stCase.strArguments);
        EXPECT_EQ(stRun.iCode, 2) << stCase.strArguments;
        EXPECT_NE(stRun.strErr.find(stCase.pszMessage), std::string::npos) << stRun.strErr;
    }
}

TEST(ZyrsubConvert, TargetsKeepWhatTheyAre)
{
    const TestFolder stFolder;
    stFolder.Write("real.srt", "old");
    std::filesystem::permissions(stFolder.Path("real.srt"), std::filesystem::perms::owner_all);
    std::filesystem::create_symlink("real.srt", stFolder.Path("link.srt"));
    EXPECT_EQ(Run_Zyrsub("convert subrip-crlf.srt --force -o " + stFolder.Path("link.srt")).iCode, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(stFolder.Path("link.srt")));
    EXPECT_NE(Read_File(stFolder.Path("real.srt")), "old");
    EXPECT_EQ(std::filesystem::status(stFolder.Path("real.srt")).permissions(),
              std::filesystem::perms::owner_all);

    EXPECT_EQ(Run_Zyrsub("convert subrip-crlf.srt --to srt -o /dev/full").iCode, 1);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
    EXPECT_EQ(Run_Zyrsub("convert subrip-crlf.srt -o " + stFolder.Path(std::string(251, 'n') + ".srt")).iCode,
              0);
    EXPECT_EQ(Run_Zyrsub("render subrip-crlf.srt -o " + stFolder.Path("real.srt")).iCode, 2);
    ASSERT_EQ(mkfifo(stFolder.Path("pipe.srt").c_str(), 0600), 0);
    EXPECT_EQ(Run_Zyrsub("info " + stFolder.Path("pipe.srt")).iCode, 3) << "it must not wait for a writer";
}

TEST(ZyrsubTree, EveryFileOfAFolder)
{
    const TestFolder stFolder;
    std::filesystem::create_directories(stFolder.Path("in/deep"));
    std::filesystem::copy(Sample("sami-interleaved.smi"), stFolder.Path("in/deep/two.smi"));
    std::filesystem::copy(Sample("subrip-crlf.srt"), stFolder.Path("in/one.srt"));
    stFolder.Write("in/notes.txt", "no subtitle");
    const std::string strConvert =
        "convert --json --to srt " + stFolder.Path("in") + " -o " + stFolder.Path("out");
    const RunResult stGood = Run_Zyrsub(strConvert);
    EXPECT_EQ(stGood.iCode, 0) << stGood.strErr;
    EXPECT_NE(stGood.strErr.find("2 files: 2 good\n"), std::string::npos) << stGood.strErr;
    EXPECT_TRUE(std::filesystem::exists(stFolder.Path("out/one.srt")));
    EXPECT_TRUE(std::filesystem::exists(stFolder.Path("out/deep/two.KRCC.srt")));
    stFolder.Write("in/bad.sub", "nothing of a kind");
    const RunResult stInfo = Run_Zyrsub("info --json " + stFolder.Path("in"));
    EXPECT_EQ(stInfo.iCode, 4) << "the worst";
    EXPECT_NE(stInfo.strErr.find("3 files: 2 good, 1 no subtitle\n"), std::string::npos) << stInfo.strErr;
    std::istringstream stLines(stInfo.strOut);
    std::string strFormats;
    for (std::string strLine; std::getline(stLines, strLine);)
        strFormats += json::parse(strLine).value("format", "none") + " ";
    EXPECT_EQ(strFormats, "none SAMI SubRip ");
    EXPECT_EQ(Run_Zyrsub("info " + stFolder.Path("out/deep/..") + " /nowhere.srt").iCode, 3);
}

// zyrsub info and zyrsub frames, end to end over the shipped samples.
#include <gtest/gtest.h>

#include "run_program.h"
#include "text_encode.h"

using nlohmann::json;

static std::string Read_Expected(const std::string &strSample)
{
    const std::string strPath = ZYRSUB_EXPECTED "/" + strSample + ".txt";
    EXPECT_TRUE(std::filesystem::exists(strPath)) << strPath;
    return Read_File(strPath);
}

// What every sample gives was checked by hand when its expectation was written down. Those of samples that
// differ in their encoding or their line ends alone are equal.
TEST(ZyrsubFrames, EverySampleGivesItsFrames)
{
    for (const std::string &strName : List_Samples()) {
        const bool bWestern = strName.find("cp1252") != std::string::npos;
        const RunResult stRun =
            Run_Zyrsub("frames " + strName + (bWestern ? " --codepage cp1252 --single-byte" : ""));
        EXPECT_EQ(stRun.strOut, Read_Expected(strName)) << strName;
        EXPECT_EQ(stRun.iCode, strName == "subviewer-no-header.sub" ? 4 : 0) << strName << stRun.strErr;
    }
    EXPECT_NE(Run_Zyrsub("frames --raw-line-ends subrip-lf.srt").strOut, Read_Expected("subrip-lf.srt"));
}

TEST(ZyrsubFrames, FromToCount)
{
    static constexpr struct {
        const char *pszArguments;
        const char *pszStarts;
    } astCases[] = {
        {"subrip-crlf.srt", "1000 4000 7000 9500 "},
        {"subrip-crlf.srt --from 0:00:05", "4000 7000 9500 "},
        {"subrip-crlf.srt --from 5s --to 7000", "4000 7000 "},
        {"subrip-crlf.srt --to 6.999s", "1000 4000 "},
        {"subrip-crlf.srt --count 2", "1000 4000 "},
        {"sami-interleaved.smi --from 4s --class ENCC", "4000 6500 7000 9000 9500 12000 "},
        {"ssa-styles.ssa --from 4s --count 1", "1000 "},
        {"ssa-unordered.ssa --from 4s --count 2", "3000 5000 "},
        {"ssa-unordered.ssa", "1000 3000 5000 5000 7000 9000 "},
        {"subviewer.sub --from 8s", "7000 9500 "},
    };
    for (const auto &stCase : astCases) {
        const json jsDocument = Run_Json(std::string("frames --json ") + stCase.pszArguments);
        std::string strStarts;
        for (const json &jsFrame : jsDocument["files"][0]["frames"])
            strStarts += jsFrame["start"].dump() + " ";
        EXPECT_EQ(strStarts, stCase.pszStarts) << stCase.pszArguments;
    }
}

TEST(ZyrsubFrames, ClassesByNameAndIndex)
{
    const std::string strEnglish = Run_Zyrsub("frames sami-interleaved.smi --class encc").strOut;
    EXPECT_NE(strEnglish.find("The lamp"), std::string::npos);
    EXPECT_EQ(strEnglish.find("등"), std::string::npos);
    EXPECT_EQ(Run_Zyrsub("frames --class 1 sami-interleaved.smi").strOut, strEnglish);
    const std::string strFolded = Run_Zyrsub("frames sami-sparse.smi --class S29 --count 1").strOut;
    EXPECT_NE(strFolded.find("MAIN 1"), std::string::npos) << strFolded;
}

TEST(ZyrsubJson, Frames)
{
    const struct {
        const char *pszArguments;
        json jsValues; // of the frames
    } astCases[] = {
        {"sami-interleaved.smi --class ENCC --class KRCC --count 2",
         {{"/0/class", "ENCC"}, {"/0/stream", 0}, {"/1/class", "KRCC"}}},
        {"sami-interleaved.smi --together",
         {{"/0/lines", {"해가 지면 등을 켭니다.", "The lamp is lit at dusk."}},
          {"/0/stream", nullptr},
          {"/1/lines", json::array()},
          {"/7/start", 12000},
          {"/8", "(nothing)"}}},
        {"sami-unnamed.smi", {{"/0/end", 3500}, {"/7/end", nullptr}, {"/8", "(nothing)"}}},
        {"subrip-tags.srt", // closed tags leave nothing
         {{"/0/style/display_mode", json::array()},
          {"/0/style/colour", "#FFFFFF"},
          {"/0/style/font_size", 16},
          {"/2/style/display_mode", json::array({"bold"})},
          {"/2/style/colour_raw", 0x867D}}},
        {"ssa-styles.ssa",
         {{"/2/style/display_mode", {"center", "top"}},
          {"/2/style/colour", "#00FFFF"},
          {"/2/style/outline_colour", "#420000"},
          {"/2/style/font_size", 28},
          {"/5/style/display_mode", {"center", "right"}},
          {"/5/style/font_size", 36},
          {"/5/style/highlight", 50}}},
    };
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.pszArguments);
        Expect_Values(Run_Json(std::string("frames --json ") + stCase.pszArguments)["files"][0]["frames"],
                      stCase.jsValues);
    }
}

TEST(ZyrsubJson, Info)
{
    Expect_Values(Run_Json("info --json sami-sparse.smi ssa-cp949.ssa subviewer.sub subrip-utf16be.srt "
                           "sami-eight.smi")["files"],
                  {{"/0/classes/0/name", "MAIN"},
                   {"/0/classes/0/folded", json::array({"S29"})},
                   {"/0/classes/0/frames", 69},
                   {"/0/classes/2/last", 31000},
                   {"/0/classes/3", "(nothing)"},
                   {"/1/ssa/title", "등대"},
                   {"/1/ssa/styles/1/font", "TimesNewRoman"},
                   {"/1/ssa/styles/3", "(nothing)"},
                   {"/1/classes/0/frames", 3},
                   {"/1/code_page", "CP949"},
                   {"/2/subviewer/delay", 250},
                   {"/2/subviewer/colour", "#FF8000"},
                   {"/2/subviewer/font", "Arial"},
                   {"/3/encoding", "UTF-16BE"},
                   {"/3/classes/0/last", 9000},
                   {"/4/classes/6/last", 5000},
                   {"/4/classes/7", "(nothing)"}});
}

// A subtitle file is opened itself, whatever stands beside it; a movie takes the first one beside it.
TEST(ZyrsubOpen, MovieOrFile)
{
    const TestFolder stFolder;
    stFolder.Write("Film.Srt", Read_File(Sample("subrip-crlf.srt")));
    stFolder.Write("Film.smi", Read_File(Sample("sami-unnamed.smi")));
    EXPECT_EQ(Run_Zyrsub("frames " + stFolder.Path("Film.Srt")).strOut, Read_Expected("subrip-crlf.srt"));
    EXPECT_EQ(Run_Zyrsub("frames " + stFolder.Path("Film.mkv")).strOut, Read_Expected("sami-unnamed.smi"));
    Expect_Values(Run_Json("info --json " + stFolder.Path("Film.mkv")),
                  {{"/files/0/subtitle", stFolder.Path("Film.smi")}});
}

// A caption in SubRip, in one code page or another.
static std::string Make_Caption(const std::string &strText)
{
    return "1\r\n00:00:01,000 --> 00:00:02,000\r\n" + strText + "\r\n\r\n";
}

static json Bad_Byte(int iOffset)
{
    return {{"offset", iOffset}, {"byte", 0xFF}};
}

TEST(ZyrsubInfo, TellsWhyTheEncoding)
{
    const struct {
        std::string strBytes;
        const char *pszEncoding;
        const char *pszRule;
        json jsScan; // UTF-8 characters, invalid bytes, the first of them
        json jsUndecodable;
    } astCases[] = {
        {"\xEF\xBB\xBF" + Make_Caption("caf\xC3\xA9 \xFF"), "UTF-8", "mark", nullptr, Bad_Byte(43)},
        {Make_Caption("plain"), "ANSI", "fallback", {0, 0, nullptr}, nullptr},
        {Make_Caption("caf\xC3\xA9"), "UTF-8", "scan", {1, 0, nullptr}, nullptr},
        {Make_Caption("caf\xC3\xA9 \xFF"), "ANSI", "fallback", {1, 1, Bad_Byte(40)}, Bad_Byte(40)},
        {Make_Caption(std::string(30, '\xFF')), "ANSI", "scan", {0, 21, Bad_Byte(34)}, Bad_Byte(34)},
    };
    const TestFolder stFolder;
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.strBytes);
        stFolder.Write("x.srt", stCase.strBytes);
        const json jsFile = Run_Json("info --json " + stFolder.Path("x.srt"))["files"][0];
        Expect_Values(jsFile, {{"/encoding", stCase.pszEncoding},
                               {"/encoding_details/decided_by", stCase.pszRule},
                               {"/encoding_details/first_undecodable", stCase.jsUndecodable}});
        json jsScan = jsFile["encoding_details"]["scan"];
        if (!jsScan.is_null())
            jsScan = {jsScan["utf8_characters"], jsScan["invalid_bytes"], jsScan["first_invalid"]};
        EXPECT_EQ(jsScan, stCase.jsScan);
    }
}

TEST(ZyrsubCodePage, AutoTakesTheLikeliest)
{
    const struct {
        std::string strIconv; // how the file is written
        std::string strReadAs;
        std::string strText;
        std::string strStaysAs; // CP1251 is called what it was asked for
        const char *pszOption = "";
    } astCases[] = {
        {"EUC-KR", "CP949", "해가 지면 등을 켭니다. 바다는 고요하고 바람은 잔잔합니다.", "CP949"},
        {"GBK", "GB18030", "宇宙守护神保护我们远离邪恶,今天天气很好,我们去海边散步。", "GB18030"},
        {"SHIFT_JIS", "CP932", "日が沈むと明かりがつきます。海は静かで、風は穏やかです。", "CP932"},
        {"CP1251", "WINDOWS-1251", "Когда солнце садится, зажигается свет. Море спокойно.", "CP1251",
         " --single-byte"},
    };
    const TestFolder stFolder;
    const std::string strFile = stFolder.Path("x.srt");
    for (const auto &stCase : astCases) {
        const Converter stConverter(stCase.strIconv.c_str(), "UTF-8");
        stFolder.Write("x.srt", stConverter.Convert(Make_Caption(stCase.strText), 1, "?"));
        const std::string strFrames = "frames --json " + strFile + " --codepage ";
        for (const auto &[strAsked, strNamed] : {std::pair(std::string("auto"), stCase.strReadAs),
                                                 {stCase.strIconv + stCase.pszOption, stCase.strStaysAs}}) {
            const json jsFile = Run_Json(strFrames + strAsked)["files"][0];
            std::string strRead;
            for (const std::string strLine : jsFile["frames"][0]["lines"]) strRead += strLine;
            EXPECT_EQ(strRead, stCase.strText) << strAsked;
            EXPECT_EQ(jsFile["code_page"], strNamed) << strAsked;
        }
        const json jsInfo = Run_Json("info --json " + strFile);
        const json &jsBest = jsInfo["files"][0]["encoding_details"]["likely_code_pages"][0];
        EXPECT_EQ(jsBest["name"], stCase.strReadAs);
        EXPECT_EQ(std::string(jsBest["preview"]).substr(0, 6), stCase.strText.substr(0, 6));
    }
}

TEST(ZyrsubLog, VerboseShowsTheLibrarysLog)
{
    EXPECT_EQ(Run_Zyrsub("frames subrip-malformed.srt").strErr, "");
    EXPECT_NE(Run_Zyrsub("frames -v subrip-malformed.srt").strErr.find("SUBRIP PTS FORMAT is BAD"),
              std::string::npos);
}

// What the box, which knows only CR LF, makes of a file; and why there is nothing in another.
TEST(ZyrsubInfo, LineEndsAndEmptyFiles)
{
    const struct {
        std::string strName, strText;
        const char *pszSays;
    } astCases[] = {
        {"x.srt", Make_Caption("a"), "line ends  CR LF 4\n"},
        {"x.srt", "1\n00:00:01,000 --> 00:00:02,000\na\n\n",
         "line ends  LF 4; the box, which reads only CR LF, gets 0 of 1 captions"},
        {"x.srt", "hello\r\n", "no time line is understood"},
        {"x.smi", "<SAMI><BODY><SYNC Start=\"1000\"><P>a</BODY></SAMI>", "its START values stand in quotes"},
        {"x.ssa", "[Script Info]\r\n", "it has no [Events] section"},
    };
    const TestFolder stFolder;
    for (const auto &stCase : astCases) {
        stFolder.Write(stCase.strName, stCase.strText);
        const RunResult stRun = Run_Zyrsub("info " + stFolder.Path(stCase.strName));
        EXPECT_NE((stRun.strOut + stRun.strErr).find(stCase.pszSays), std::string::npos) << stRun.strOut;
    }
    const RunResult stInput = Run_Program("'" ZYRSUB_PROGRAM "' frames - < sami-interleaved.smi");
    EXPECT_EQ(stInput.strOut, Read_Expected("sami-interleaved.smi"));
}

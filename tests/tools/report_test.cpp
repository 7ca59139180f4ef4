// zyrsub info and zyrsub frames, end to end over the shipped samples.
#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "run_program.h"
#include "text_convert.h"

using nlohmann::json;

static std::vector<std::string> List_Samples()
{
    std::vector<std::string> astrNames;
    for (const auto &stEntry : std::filesystem::directory_iterator(ZYR_SAMPLES))
        if (stEntry.path().filename() != "README.md") astrNames.push_back(stEntry.path().filename());
    return astrNames;
}

// What every sample gives was checked by hand when its expectation was written down.
TEST(ZyrsubFrames, EverySampleGivesItsFrames)
{
    for (const std::string &strName : List_Samples()) {
        const std::string strExpected = std::string(ZYRSUB_EXPECTED) + "/" + strName + ".txt";
        ASSERT_TRUE(std::filesystem::exists(strExpected)) << strName;
        std::vector<std::string> astrArguments = {"frames", Sample(strName)};
        if (strName.find("cp1252") != std::string::npos)
            astrArguments.insert(astrArguments.end(), {"--codepage", "cp1252", "--single-byte"});
        const RunResult stRun = Run_Zyrsub(astrArguments);
        EXPECT_EQ(stRun.strOut, Read_File(strExpected)) << strName;
        EXPECT_EQ(stRun.iCode, strName == "subviewer-no-header.sub" ? 4 : 0) << strName << stRun.strErr;
    }
}

TEST(ZyrsubFrames, EncodingAndLineEndsMakeNoDifference)
{
    static constexpr struct {
        const char *pszA;
        const char *pszB;
    } astCases[] = {
        {"subrip-crlf.srt", "subrip-lf.srt"},
        {"subrip-utf16le.srt", "subrip-utf16be.srt"},
        {"sami-interleaved.smi", "sami-lf.smi"},
        {"sami-interleaved.smi", "sami-utf16le.smi"},
        {"sami-interleaved.smi", "sami-utf16be.smi"},
        {"sami-interleaved.smi", "sami-blocks.smi"},
        {"ssa-styles.ssa", "ssa-lf.ssa"},
        {"ssa-utf8.ssa", "ssa-cp949.ssa"},
        {"ssa-utf8.ssa", "ssa-utf16le.ssa"},
        {"ssa-utf8.ssa", "ssa-utf16be.ssa"},
        {"subviewer.sub", "subviewer-lf.sub"},
        {"subviewer-utf16le.sub", "subviewer-utf16be.sub"},
    };
    for (const auto &stCase : astCases) {
        const std::string strFrames = Run_Zyrsub({"frames", Sample(stCase.pszA)}).strOut;
        EXPECT_NE(strFrames, "") << stCase.pszA;
        EXPECT_EQ(strFrames, Run_Zyrsub({"frames", Sample(stCase.pszB)}).strOut) << stCase.pszB;
    }
    EXPECT_NE(Run_Zyrsub({"frames", "--raw-line-ends", Sample("subrip-lf.srt")}).strOut,
              Run_Zyrsub({"frames", Sample("subrip-lf.srt")}).strOut);
}

static std::vector<int> List_Starts(const std::vector<std::string> &astrArguments)
{
    std::vector<std::string> astrAll = {"frames", "--json"};
    astrAll.insert(astrAll.end(), astrArguments.begin(), astrArguments.end());
    const RunResult stRun = Run_Zyrsub(astrAll);
    std::vector<int> aiStarts;
    const json jsDocument = json::parse(stRun.strOut);
    for (const json &jsFrame : jsDocument["files"][0]["frames"]) aiStarts.push_back(jsFrame["start"]);
    return aiStarts;
}

TEST(ZyrsubFrames, FromToCount)
{
    const struct {
        std::vector<std::string> astrArguments;
        std::vector<int> aiStarts;
    } astCases[] = {
        {{"subrip-crlf.srt"}, {1000, 4000, 7000, 9500}},
        {{"subrip-crlf.srt", "--from", "0:00:05"}, {4000, 7000, 9500}},
        {{"subrip-crlf.srt", "--from", "5s", "--to", "7000"}, {4000, 7000}},
        {{"subrip-crlf.srt", "--to", "6.999s"}, {1000, 4000}},
        {{"subrip-crlf.srt", "--count", "2"}, {1000, 4000}},
        {{"sami-interleaved.smi", "--from", "4s", "--class", "ENCC"}, {4000, 6500, 7000, 9000, 9500, 12000}},
        {{"ssa-styles.ssa", "--from", "4s", "--count", "1"}, {1000}},
        {{"ssa-unordered.ssa", "--from", "4s", "--count", "2"}, {3000, 5000}},
        {{"ssa-unordered.ssa"}, {5000, 5000, 7000, 9000}},
        {{"ssa-unordered.ssa", "--from", "0"}, {1000, 3000, 5000, 5000, 7000, 9000}},
        {{"subviewer.sub", "--from", "8s"}, {7000, 9500}},
    };
    for (auto stCase : astCases) {
        std::string strShown;
        for (const std::string &strArgument : stCase.astrArguments) strShown += strArgument + " ";
        stCase.astrArguments[0] = Sample(stCase.astrArguments[0]);
        EXPECT_EQ(List_Starts(stCase.astrArguments), stCase.aiStarts) << strShown;
    }
}

TEST(ZyrsubFrames, ClassesByNameAndIndex)
{
    const std::string strSami = Sample("sami-interleaved.smi");
    const std::string strEnglish = Run_Zyrsub({"frames", strSami, "--class", "encc"}).strOut;
    EXPECT_NE(strEnglish.find("The lamp"), std::string::npos);
    EXPECT_EQ(strEnglish.find("등"), std::string::npos);
    EXPECT_EQ(Run_Zyrsub({"frames", "--class", "1", strSami}).strOut, strEnglish);

    const json jsBoth = json::parse(
        Run_Zyrsub({"frames", strSami, "--class", "ENCC", "--class", "KRCC", "--json", "--count", "2"})
            .strOut);
    const json &jsFrames = jsBoth["files"][0]["frames"];
    EXPECT_EQ(jsFrames[0]["class"], "ENCC");
    EXPECT_EQ(jsFrames[0]["stream"], 0);
    EXPECT_EQ(jsFrames[1]["class"], "KRCC");

    const RunResult stWrong = Run_Zyrsub({"frames", strSami, "--class", "FRCC"});
    EXPECT_EQ(stWrong.iCode, 2);
    EXPECT_NE(stWrong.strErr.find("0 KRCC, 1 ENCC"), std::string::npos) << stWrong.strErr;

    const RunResult stFolded =
        Run_Zyrsub({"frames", Sample("sami-sparse.smi"), "--class", "S29", "--count", "1"});
    EXPECT_NE(stFolded.strOut.find("MAIN 1"), std::string::npos) << stFolded.strOut;
}

TEST(ZyrsubFrames, TogetherJoinsTheLanguages)
{
    const json jsDocument =
        json::parse(Run_Zyrsub({"frames", "--together", "--json", Sample("sami-interleaved.smi")}).strOut);
    const json &jsFrames = jsDocument["files"][0]["frames"];
    ASSERT_EQ(jsFrames.size(), 8U);
    EXPECT_EQ(jsFrames[0]["lines"], (json{"해가 지면 등을 켭니다.", "The lamp is lit at dusk."}));
    EXPECT_EQ(jsFrames[1]["lines"], json::array());
    EXPECT_TRUE(jsFrames[0]["stream"].is_null());
}

TEST(ZyrsubFrames, StyleInJson)
{
    const json jsTags = json::parse(Run_Zyrsub({"frames", "--json", Sample("subrip-tags.srt")}).strOut);
    const json &jsFrames = jsTags["files"][0]["frames"];
    EXPECT_EQ(jsFrames[0]["style"]["display_mode"], json::array()) << "closed tags leave nothing";
    EXPECT_EQ(jsFrames[2]["style"]["colour_raw"], 0x867D);
    EXPECT_EQ(jsFrames[2]["style"]["display_mode"], json{"bold"});
    EXPECT_EQ(jsFrames[0]["style"]["colour"], "#FFFFFF");
    EXPECT_EQ(jsFrames[0]["style"]["font_size"], 16);

    const json jsSsa = json::parse(Run_Zyrsub({"frames", "--json", Sample("ssa-styles.ssa")}).strOut);
    const json &jsSign = jsSsa["files"][0]["frames"][2]["style"];
    EXPECT_EQ(jsSign["font_size"], 28);
    EXPECT_EQ(jsSign["colour"], "#00FFFF");
    EXPECT_EQ(jsSign["outline_colour"], "#420000");
    EXPECT_EQ(jsSign["display_mode"], (json{"center", "top"}));
    const json &jsSung = jsSsa["files"][0]["frames"][5]["style"];
    EXPECT_EQ(jsSung["highlight"], 50);
    EXPECT_EQ(jsSung["font_size"], 36);
    EXPECT_EQ(jsSung["display_mode"], (json{"center", "right"}));
}

TEST(ZyrsubFrames, OpenEndIsNull)
{
    const json jsDocument = json::parse(Run_Zyrsub({"frames", "--json", Sample("sami-unnamed.smi")}).strOut);
    const json &jsFrames = jsDocument["files"][0]["frames"];
    EXPECT_EQ(jsFrames[0]["end"], 3500);
    EXPECT_TRUE(jsFrames.back()["end"].is_null());
}

TEST(ZyrsubInfo, Formats)
{
    const json jsDocument = json::parse(
        Run_Zyrsub({"info", "--json", Sample("sami-sparse.smi"), Sample("ssa-cp949.ssa"),
                    Sample("subviewer.sub"), Sample("subrip-utf16be.srt"), Sample("sami-eight.smi")})
            .strOut);
    const json &jsFiles = jsDocument["files"];
    const json &jsClasses = jsFiles[0]["classes"];
    ASSERT_EQ(jsClasses.size(), 3U);
    EXPECT_EQ(jsClasses[0]["name"], "MAIN");
    EXPECT_EQ(jsClasses[0]["folded"], json{"S29"});
    EXPECT_EQ(jsClasses[0]["frames"], 69);
    EXPECT_EQ(jsClasses[2]["last"], 31000);

    EXPECT_EQ(jsFiles[1]["ssa"]["title"], "등대");
    EXPECT_EQ(jsFiles[1]["ssa"]["styles"].size(), 3U);
    EXPECT_EQ(jsFiles[1]["ssa"]["styles"][1]["font"], "TimesNewRoman");
    EXPECT_EQ(jsFiles[1]["classes"][0]["frames"], 3);
    EXPECT_EQ(jsFiles[1]["code_page"], "CP949");

    EXPECT_EQ(jsFiles[2]["subviewer"]["delay"], 250);
    EXPECT_EQ(jsFiles[2]["subviewer"]["colour"], "#FF8000");
    EXPECT_EQ(jsFiles[2]["subviewer"]["font"], "Arial");

    EXPECT_EQ(jsFiles[3]["encoding"], "UTF-16BE");
    EXPECT_EQ(jsFiles[3]["classes"][0]["last"], 9000);
    EXPECT_EQ(jsFiles[4]["classes"].size(), 7U);
}

// A subtitle file is opened itself, whatever stands beside it; a movie takes the first one beside it.
TEST(ZyrsubOpen, MovieOrFile)
{
    const TestFolder stFolder;
    stFolder.Write("Film.Srt", Read_File(Sample("subrip-crlf.srt")));
    stFolder.Write("Film.smi", Read_File(Sample("sami-unnamed.smi")));
    EXPECT_EQ(List_Starts({stFolder.Path("Film.Srt")}), (std::vector<int>{1000, 4000, 7000, 9500}));
    EXPECT_EQ(List_Starts({stFolder.Path("Film.mkv")}).size(), 8U);
    const json jsInfo = json::parse(Run_Zyrsub({"info", "--json", stFolder.Path("Film.mkv")}).strOut);
    EXPECT_EQ(jsInfo["files"][0]["subtitle"], stFolder.Path("Film.smi"));
}

// A caption in SubRip, in one code page or another.
static std::string Make_Caption(const std::string &strText)
{
    return "1\r\n00:00:01,000 --> 00:00:02,000\r\n" + strText + "\r\n\r\n";
}

TEST(ZyrsubInfo, TellsWhyTheEncoding)
{
    const struct {
        std::string strBytes;
        const char *pszEncoding;
        json jsScan;        // rule, UTF-8 characters, invalid bytes, place and value of the first
        json jsUndecodable; // place and value
    } astCases[] = {
        {"\xEF\xBB\xBF" + Make_Caption("caf\xC3\xA9 \xFF"), "UTF-8", {"mark"}, {43, 0xFF}},
        {Make_Caption("plain"), "ANSI", {"fallback", 0, 0, nullptr}, nullptr},
        {Make_Caption("caf\xC3\xA9"), "UTF-8", {"scan", 1, 0, nullptr}, nullptr},
        {Make_Caption("caf\xC3\xA9 \xFF"), "ANSI", {"fallback", 1, 1, {40, 0xFF}}, {40, 0xFF}},
        {Make_Caption(std::string(30, '\xFF')), "ANSI", {"scan", 0, 21, {34, 0xFF}}, {34, 0xFF}},
    };
    const TestFolder stFolder;
    for (const auto &stCase : astCases) {
        stFolder.Write("x.srt", stCase.strBytes);
        const json jsInfo = json::parse(Run_Zyrsub({"info", "--json", stFolder.Path("x.srt")}).strOut);
        const json &jsFile = jsInfo["files"][0];
        const json &jsDetails = jsFile["encoding_details"];
        const auto pfPlace = [](const json &jsByte) {
            return jsByte.is_null() ? jsByte : json{jsByte["offset"], jsByte["byte"]};
        };
        json jsScan = {jsDetails["decided_by"]};
        if (const json &js = jsDetails["scan"]; !js.is_null())
            jsScan.insert(jsScan.end(),
                          {js["utf8_characters"], js["invalid_bytes"], pfPlace(js["first_invalid"])});
        EXPECT_EQ(jsFile["encoding"], stCase.pszEncoding) << stCase.strBytes;
        EXPECT_EQ(jsScan, stCase.jsScan) << stCase.strBytes;
        EXPECT_EQ(pfPlace(jsDetails["first_undecodable"]), stCase.jsUndecodable) << stCase.strBytes;
    }
}

TEST(ZyrsubCodePage, AutoTakesTheLikeliest)
{
    const struct {
        const char *pszIconv; // how the file is written
        const char *pszReadAs;
        std::string strText;
        bool bSingleByte;
    } astCases[] = {
        {"EUC-KR", "CP949", "해가 지면 등을 켭니다. 바다는 고요하고 바람은 잔잔합니다.", false},
        {"GBK", "GB18030", "宇宙守护神保护我们远离邪恶,今天天气很好,我们去海边散步。", false},
        {"SHIFT_JIS", "CP932", "日が沈むと明かりがつきます。海は静かで、風は穏やかです。", false},
        {"CP1251", "WINDOWS-1251", "Когда солнце садится, зажигается свет. Море спокойно.", true},
    };
    const TestFolder stFolder;
    for (const auto &stCase : astCases) {
        const Converter stConverter(stCase.pszIconv, "UTF-8");
        stFolder.Write("x.srt", stConverter.Convert(Make_Caption(stCase.strText), 1, "?"));
        const std::string strFile = stFolder.Path("x.srt");
        for (const std::string strAsked : {"auto", stCase.pszIconv}) {
            std::vector<std::string> astrArguments = {"frames", "--json", "--codepage", strAsked, strFile};
            if (strAsked != "auto" && stCase.bSingleByte) astrArguments.emplace_back("--single-byte");
            const json jsFile = json::parse(Run_Zyrsub(astrArguments).strOut)["files"][0];
            std::string strRead;
            for (const std::string strLine : jsFile["frames"][0]["lines"]) strRead += strLine;
            EXPECT_EQ(strRead, stCase.strText) << strAsked;
            const bool bAsked = strAsked != "auto" && stCase.bSingleByte; // CP1251 stays what it is called
            EXPECT_EQ(jsFile["code_page"], bAsked ? stCase.pszIconv : stCase.pszReadAs);
        }
        const json jsInfo = json::parse(Run_Zyrsub({"info", "--json", strFile}).strOut);
        const json &jsBest = jsInfo["files"][0]["encoding_details"]["likely_code_pages"][0];
        EXPECT_EQ(jsBest["name"], stCase.pszReadAs);
        EXPECT_EQ(std::string(jsBest["preview"]).substr(0, 6), stCase.strText.substr(0, 6));
    }
}

TEST(ZyrsubExit, Codes)
{
    const TestFolder stFolder;
    stFolder.Write("empty.srt", "");
    const std::string strGood = Sample("subrip-crlf.srt");
    const std::string strGone = stFolder.Path("gone.srt");
    const struct {
        std::vector<std::string> astrArguments;
        int iCode;
        const char *pszMessage; // on standard error
    } astCases[] = {
        {{"frames", strGood}, 0, ""},
        {{"--help"}, 0, ""},
        {{"frames", strGood, strGone, strGood}, 1, "gone.srt"},
        {{"frames", strGone, strGone}, 3, "gone.srt"},
        {{}, 2, "subcommand"},
        {{"frames"}, 2, "MOVIE"},
        {{"frames", "--nosuch", strGood}, 2, "--nosuch"},
        {{"frames", "--from", "soon", strGood}, 2, "'soon' is not a time"},
        {{"frames", "--codepage", "NOSUCH", strGood}, 2, "NOSUCH"},
        {{"render", "--output", "vhs", strGood}, 2, "vhs"},
        {{"frames", stFolder.Path("gone.mkv")}, 3, "gone.mkv"},
        {{"frames", stFolder.Path("")}, 3, "no readable subtitle"},
        {{"info", Sample("subviewer-no-header.sub")}, 4, "not a subtitle"},
        {{"info", stFolder.Path("empty.srt")}, 4, "empty"},
    };
    for (const auto &stCase : astCases) {
        const RunResult stRun = Run_Zyrsub(stCase.astrArguments);
        EXPECT_EQ(stRun.iCode, stCase.iCode) << stRun.strErr;
        EXPECT_NE(stRun.strErr.find(stCase.pszMessage), std::string::npos)
            << stCase.pszMessage << ": " << stRun.strErr;
    }
}

TEST(ZyrsubJson, OneDocumentWithItsFailures)
{
    const TestFolder stFolder;
    stFolder.Write("odd\xFFname.srt", Read_File(Sample("subrip-crlf.srt")));
    const RunResult stRun =
        Run_Zyrsub({"info", "--json", stFolder.Path("gone.srt"), stFolder.Path("odd\xFFname.srt")});
    EXPECT_EQ(stRun.iCode, 1);
    const json jsDocument = json::parse(stRun.strOut);
    EXPECT_EQ(jsDocument["schema"], 1);
    EXPECT_EQ(jsDocument["files"][0]["error"]["code"], 3);
    EXPECT_EQ(jsDocument["files"][1]["format"], "SubRip");
}

TEST(ZyrsubLog, VerboseShowsTheLibrarysLog)
{
    const std::string strSample = Sample("subrip-malformed.srt");
    EXPECT_EQ(Run_Zyrsub({"frames", strSample}).strErr, "");
    EXPECT_NE(Run_Zyrsub({"frames", "-v", strSample}).strErr.find("SUBRIP PTS FORMAT is BAD"),
              std::string::npos);
}

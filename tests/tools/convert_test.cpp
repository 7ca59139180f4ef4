// zyrsub convert: what it writes reads back as the same captions.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "run_program.h"

using nlohmann::json;

static json Read_Tracks(std::vector<std::string> astrArguments)
{
    astrArguments.insert(astrArguments.begin(), "convert");
    astrArguments.insert(astrArguments.end(), {"--to", "json", "-o", "-"});
    return json::parse(Run_Zyrsub(astrArguments).strOut)["tracks"];
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

// What a format holds of the captions: those with text, in an order that does not matter.
static std::vector<Caption> List_Held(const json &jsFrames, const std::string &strFormat)
{
    std::vector<Caption> astCaptions = List_Captions(jsFrames);
    if (strFormat == "smi") Hold_AsSami(astCaptions);
    if (strFormat == "ssa") Hold_AsSsa(astCaptions);
    std::erase_if(astCaptions, [](const Caption &stCaption) { return stCaption.strLines.empty(); });
    std::sort(astCaptions.begin(), astCaptions.end());
    return astCaptions;
}

struct ReadBackCase {
    std::string strSample;
    std::vector<std::string> astrRead;  // options to read the sample with
    std::vector<std::string> astrWrite; // options to write it with
};

// UTF-16 holds characters that are not read from UTF-8.
static std::vector<ReadBackCase> List_ReadBackCases()
{
    std::vector<ReadBackCase> astCases;
    for (const auto &stEntry : std::filesystem::directory_iterator(ZYR_SAMPLES)) {
        const std::string strName = stEntry.path().filename();
        if (strName == "README.md" || strName == "subviewer-no-header.sub") continue; // no subtitles
        ReadBackCase stCase = {stEntry.path(), {}, {}};
        if (strName.find("cp1252") != std::string::npos) stCase.astrRead = {"--codepage", "auto"};
        if (strName.find("utf16") != std::string::npos) stCase.astrWrite = {"--encoding", "utf-16le"};
        astCases.push_back(stCase);
    }
    return astCases;
}

TEST(ZyrsubConvert, ReadsBackTheSame)
{
    const TestFolder stFolder;
    size_t uiCompared = 0;
    for (const ReadBackCase &stCase : List_ReadBackCases()) {
        std::vector<std::string> astrSample = {stCase.strSample};
        astrSample.insert(astrSample.end(), stCase.astrRead.begin(), stCase.astrRead.end());
        const json jsTracks = Read_Tracks(astrSample);
        for (const std::string strTo : {"srt", "smi", "ssa"}) {
            // A carriage return inside a caption is a blank in SSA.
            if (strTo == "ssa" && stCase.strSample.ends_with("sami-malformed.smi")) continue;
            for (size_t uiTrack = 0; uiTrack < jsTracks.size(); ++uiTrack) {
                const std::string strOut = stFolder.Path("out." + strTo);
                std::vector<std::string> astrConvert = {"convert", "--force", "-o", strOut};
                astrConvert.insert(astrConvert.end(), {"--class", std::to_string(uiTrack)});
                astrConvert.insert(astrConvert.end(), stCase.astrWrite.begin(), stCase.astrWrite.end());
                astrConvert.insert(astrConvert.end(), astrSample.begin(), astrSample.end());
                ASSERT_EQ(Run_Zyrsub(astrConvert).iCode, 0) << stCase.strSample;
                const json jsRead = Read_Tracks({strOut});
                ASSERT_EQ(jsRead.size(), 1U) << stCase.strSample;
                EXPECT_EQ(List_Held(jsRead[0]["frames"], "srt"),
                          List_Held(jsTracks[uiTrack]["frames"], strTo))
                    << stCase.strSample << " " << strTo;
                ++uiCompared;
            }
        }
    }
    EXPECT_GT(uiCompared, 100U);
}

TEST(ZyrsubConvert, TextsOfOtherReaders)
{
    const TestFolder stFolder;
    stFolder.Write("x.srt", "1\r\n00:00:01,000 --> 00:00:02,500\r\na &lt; b &amp; c\r\nsecond\r\n\r\n"
                            "2\r\n00:00:03,000 --> 00:00:02,000\r\nbackwards\r\n\r\n");
    const std::string strSubRip = stFolder.Path("x.srt");
    EXPECT_EQ(Run_Zyrsub({"convert", strSubRip, "--to", "vtt", "-o", "-"}).strOut,
              "WEBVTT\n\n00:00:01.000 --> 00:00:02.500\na &lt; b &amp; c\nsecond\n");
    EXPECT_EQ(Run_Zyrsub({"convert", strSubRip, "--to", "txt", "-o", "-"}).strOut,
              "a < b & c\nsecond\n\nbackwards\n");
    const std::string strKorean = stFolder.Path("ko.srt");
    Run_Zyrsub({"convert", Sample("subrip-cp949.srt"), "--encoding", "CP949", "-o", strKorean});
    EXPECT_NE(Run_Zyrsub({"info", strKorean}).strOut.find("ANSI, read as CP949"), std::string::npos);
    EXPECT_EQ(Run_Zyrsub({"frames", strKorean}).strOut,
              Run_Zyrsub({"frames", Sample("subrip-cp949.srt")}).strOut);
}

TEST(ZyrsubConvert, FilesAndTimes)
{
    const TestFolder stFolder;
    const std::string strSubRip = Sample("subrip-crlf.srt");
    const json jsMoved = Read_Tracks({strSubRip, "--shift", "-1.5s", "--scale", "2"})[0]["frames"];
    EXPECT_EQ(jsMoved[0]["start"], 500);
    EXPECT_EQ(jsMoved[1]["end"], 11500);

    stFolder.Write("there.srt", "mine");
    EXPECT_EQ(Run_Zyrsub({"convert", strSubRip, "-o", stFolder.Path("there.srt")}).iCode, 1);
    EXPECT_EQ(Read_File(stFolder.Path("there.srt")), "mine");
    EXPECT_EQ(Run_Zyrsub({"convert", strSubRip, "--force", "-o", stFolder.Path("there.srt")}).iCode, 0);
    EXPECT_TRUE(Read_File(stFolder.Path("there.srt"))
                    .starts_with("\xEF\xBB\xBF"
                                 "1\r\n00:00:01,000 --> "));

    const RunResult stBoth = Run_Zyrsub({"convert", strSubRip, stFolder.Path("gone.srt"),
                                         Sample("subrip-utf8.srt"), "-o", stFolder.Path("both.smi")});
    EXPECT_EQ(stBoth.iCode, 1) << "one input is missing, the others are converted";
    EXPECT_EQ(Read_Tracks({stFolder.Path("both.smi")}).size(), 2U);
    EXPECT_EQ(Run_Zyrsub({"convert", strSubRip, "-o", stFolder.Path("x.doc")}).iCode, 2);
}

TEST(ZyrsubConvert, JsonTellsWhatWasWrittenAndLost)
{
    const TestFolder stFolder;
    const std::string strOut = stFolder.Path("out.srt");
    const std::vector<std::string> astrConvert = {"convert", "--json",  Sample("sami-interleaved.smi"),
                                                  "-o",      strOut,    "--encoding",
                                                  "CP1252",  "--shift", "-5s"};
    const json jsReport = json::parse(Run_Zyrsub(astrConvert).strOut);
    const json &jsOutputs = jsReport["outputs"];
    ASSERT_EQ(jsOutputs.size(), 2U);
    EXPECT_EQ(jsOutputs[0]["file"], stFolder.Path("out.KRCC.srt"));
    EXPECT_EQ(jsOutputs[0]["format"], "SubRip");
    std::string strLosses;
    for (const json &jsLoss : jsOutputs[0]["losses"]) strLosses += jsLoss.dump() + "\n";
    EXPECT_NE(strLosses.find("does not have are written as '?'"), std::string::npos) << strLosses;
    EXPECT_NE(strLosses.find("move it out of the movie"), std::string::npos) << strLosses;

    const json jsAgain = json::parse(Run_Zyrsub(astrConvert).strOut);
    EXPECT_EQ(jsAgain["outputs"][1]["error"]["code"], 1) << "it is there already";
    EXPECT_EQ(jsAgain["errors"].size(), 2U);
    const RunResult stBoth =
        Run_Zyrsub({"convert", "--json", Sample("subrip-crlf.srt"), "--to", "srt", "-o", "-"});
    EXPECT_EQ(stBoth.iCode, 2);
    EXPECT_EQ(json::parse(stBoth.strOut)["errors"][0]["code"], 2);
}

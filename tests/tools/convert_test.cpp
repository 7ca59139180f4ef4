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

// Captions with text; SSA counts hundredths of a second.
static std::vector<json> List_Captions(const json &jsFrames, int iUnitMs)
{
    std::vector<json> ajsCaptions;
    for (const json &jsFrame : jsFrames) {
        if (jsFrame["lines"].empty()) continue;
        const int iStart = jsFrame["start"];
        ajsCaptions.push_back({(iStart + iUnitMs / 2) / iUnitMs, jsFrame["end"], jsFrame["lines"]});
    }
    std::sort(ajsCaptions.begin(), ajsCaptions.end());
    return ajsCaptions;
}

// Left out are samples of what a format cannot hold: ends before starts, overlaps, and characters above
// U+FFFF, which are not read from UTF-8.
TEST(ZyrsubConvert, ReadsBackTheSame)
{
    const TestFolder stFolder;
    for (const auto &stEntry : std::filesystem::directory_iterator(ZYR_SAMPLES)) {
        const std::string strName = stEntry.path().filename();
        if (strName.find("README") == 0 || strName.find("malformed") != std::string::npos ||
            strName.find("-utf16") != std::string::npos || strName == "ssa-unordered.ssa" ||
            strName == "subviewer-no-header.sub" || strName.find("cp1252") != std::string::npos)
            continue;
        const json jsTracks = Read_Tracks({stEntry.path()});
        for (const std::string strTo : {"srt", "smi", "ssa"}) {
            for (size_t uiTrack = 0; uiTrack < jsTracks.size(); ++uiTrack) {
                const std::string strOut = stFolder.Path("out." + strTo);
                const std::vector<std::string> astrArguments = {
                    "convert", stEntry.path(), "--force", "-o", strOut, "--class", std::to_string(uiTrack)};
                ASSERT_EQ(Run_Zyrsub(astrArguments).iCode, 0) << strName;
                const json jsRead = Read_Tracks({strOut});
                ASSERT_EQ(jsRead.size(), 1U) << strName;
                const int iUnitMs = strTo == "ssa" ? 10 : 1;
                const auto ajsWanted = List_Captions(jsTracks[uiTrack]["frames"], iUnitMs);
                const auto ajsGot = List_Captions(jsRead[0]["frames"], iUnitMs);
                ASSERT_EQ(ajsWanted.size(), ajsGot.size()) << strName << " " << strTo;
                for (size_t uiAt = 0; uiAt < ajsGot.size(); ++uiAt) {
                    EXPECT_EQ(ajsWanted[uiAt][0], ajsGot[uiAt][0]) << strName << " " << strTo;
                    EXPECT_EQ(ajsWanted[uiAt][2], ajsGot[uiAt][2]) << strName << " " << strTo;
                }
            }
        }
    }
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
    EXPECT_EQ(Read_File(stFolder.Path("there.srt"))
                  .find("\xEF\xBB\xBF"
                        "1\r\n00:00:01,000 --> "),
              0U);

    const RunResult stBoth = Run_Zyrsub({"convert", strSubRip, stFolder.Path("gone.srt"),
                                         Sample("subrip-utf8.srt"), "-o", stFolder.Path("both.smi")});
    EXPECT_EQ(stBoth.iCode, 1) << "one input is missing, the others are converted";
    EXPECT_EQ(Read_Tracks({stFolder.Path("both.smi")}).size(), 2U);
    EXPECT_EQ(Run_Zyrsub({"convert", strSubRip, "-o", stFolder.Path("x.doc")}).iCode, 2);
}

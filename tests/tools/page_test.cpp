// zyrsub report: what is in the page. How the page behaves is tried in a browser, apart from these.
#include <gtest/gtest.h>

#include "base64.h"
#include "picture.h"
#include "run_program.h"

using nlohmann::json;

TEST(Base64, VectorsOfTheStandard)
{
    static constexpr const char *apszCases[][2] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="},
        {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"},
        {"\xFF\xFE\xFF", "//7/"},
    };
    for (const auto &[pszBytes, pszText] : apszCases) EXPECT_EQ(Encode_Base64(pszBytes), pszText);
}

// With few colours and with more than a palette holds, transparent ones among them, nothing changes.
TEST(Pictures, PngInMemoryKeepsEveryPixel)
{
    const TestFolder stFolder;
    for (const uint32_t uiColors : {1U, 2U, 255U, 256U, 257U}) {
        Picture stPicture = Make_Picture(31, 17);
        for (size_t uiPixel = 0; uiPixel < stPicture.aucRgba.size() / 4; ++uiPixel) {
            const auto uiColor = static_cast<uint32_t>(uiPixel % uiColors);
            stPicture.aucRgba[uiPixel * 4] = static_cast<uint8_t>(uiColor);
            stPicture.aucRgba[uiPixel * 4 + 1] = static_cast<uint8_t>(uiColor >> 8);
            stPicture.aucRgba[uiPixel * 4 + 3] = uiColor % 2 == 0 ? 0xFF : 0x80;
        }
        stFolder.Write("x.png", Encode_Png(stPicture));
        Picture stRead;
        ASSERT_TRUE(Read_Png(stFolder.Path("x.png"), stRead).IsGood());
        EXPECT_TRUE(stRead.aucRgba == stPicture.aucRgba) << uiColors;
    }
}

static std::string Get_Between(const std::string &strText, const std::string &strFrom,
                               const std::string &strTo)
{
    const size_t uiFrom = strText.find(strFrom) + strFrom.size();
    return strText.substr(uiFrom, strText.find(strTo, uiFrom) - uiFrom);
}

static json Get_Data(const std::string &strPage)
{
    return json::parse(Get_Between(strPage, "<script type=\"application/json\" id=\"data\">", "</script>"));
}

TEST(ZyrsubReport, CaptionsPicturesAndOutputs)
{
    const RunResult stRun = Run_Zyrsub("report sami-bilingual.smi -o - --outputs lcd,hdmi-1080p");
    ASSERT_EQ(stRun.iCode, 0) << stRun.strErr;
    const json jsPage = Get_Data(stRun.strOut);
    Expect_Values(jsPage, {{"/file/name", "sami-bilingual.smi"},
                           {"/classes/1/name", "ENCC"},
                           {"/classes/0/language", "ko"},
                           {"/captions/1/lines/0", "The lamp is lit at dusk."},
                           {"/captions/1/start", 1000},
                           {"/captions/1/end", 3500},
                           {"/captions/1/box", "same"},
                           {"/captions/10", "(nothing)"},
                           {"/outputs/0/name", "lcd"},
                           {"/outputs/0/height", 480},
                           {"/outputs/1/width", 1920},
                           {"/outputs/2", "(nothing)"},
                           {"/watch", "(nothing)"}});
    for (const json &jsOutput : jsPage["outputs"]) {
        ASSERT_EQ(jsOutput["pictures"].size(), 10U);
        for (const json &jsPicture : jsOutput["pictures"]) {
            EXPECT_TRUE(std::string(jsPicture["png"]).starts_with("iVBORw0KGgo"));
            EXPECT_LE(jsPicture["x"].get<int>() + jsPicture["width"].get<int>(), jsOutput["width"]);
            EXPECT_LE(jsPicture["y"].get<int>() + jsPicture["height"].get<int>(), jsOutput["height"]);
        }
    }
    EXPECT_EQ(stRun.strOut.find("http://"), stRun.strOut.find("http://www.w3.org/2000/svg"))
        << "a name, not a place";
    EXPECT_EQ(stRun.strOut.find("https://"), std::string::npos);
}

TEST(ZyrsubReport, EqualTextsAreDrawnOnceAndClearsAreNoCaptions)
{
    const TestFolder stFolder;
    stFolder.Write("x.smi", "<SAMI><BODY>\r\n<SYNC Start=1000><P>la\r\n<SYNC Start=2000><P>&nbsp;\r\n"
                            "<SYNC Start=3000><P>la\r\n<SYNC Start=4000><P>&nbsp;\r\n</BODY></SAMI>\r\n");
    const json jsPage = Get_Data(Run_Zyrsub("report " + stFolder.Path("x.smi") + " -o -").strOut);
    Expect_Values(jsPage, {{"/captions/0/picture", 0},
                           {"/captions/1/picture", 0},
                           {"/captions/1/until", 4000},
                           {"/captions/2", "(nothing)"},
                           {"/outputs/0/pictures/1", "(nothing)"}});
}

// A finding leads to its caption by the number that the page gives it, which clears have no part in.
TEST(ZyrsubReport, FindingsStandWithTheirCaptions)
{
    const TestFolder stFolder;
    stFolder.Write("x.smi",
                   "<SAMI><BODY>\r\n<SYNC Start=1000><P>la\r\n<SYNC Start=2000><P>&nbsp;\r\n"
                   "<SYNC Start=3000><P>1<br>2<br>3<br>4<br>5<br>6<br>7\r\n<SYNC Start=9000><P>&nbsp;\r\n"
                   "</BODY></SAMI>\r\n");
    const json jsPage = Get_Data(Run_Zyrsub("report " + stFolder.Path("x.smi") + " -o -").strOut);
    bool bFound = false;
    for (const json &jsFinding : jsPage["findings"]) {
        if (jsFinding["text"] != "7") continue;
        bFound = true;
        Expect_Values(jsFinding, {{"/caption", 1}, {"/line", 4}, {"/severity", "lost"}});
    }
    EXPECT_TRUE(bFound) << jsPage["findings"];
}

TEST(ZyrsubReport, TextCannotEndItsElement)
{
    const TestFolder stFolder;
    const std::string strText = "</script><script>alert(1)</script> <!-- & u003c @DATA@";
    stFolder.Write(
        "x.ssa",
        "[Script Info]\r\n[Events]\r\nFormat: Marked, Start, End, Style, Name, MarginL, MarginR, "
        "MarginV, Effect, Text\r\nDialogue: Marked=0,0:00:01.00,0:00:02.00,Default,,0000,0000,0000,," +
            strText + "\r\n");
    const std::string strPage = Run_Zyrsub("report " + stFolder.Path("x.ssa") + " -o -").strOut;
    EXPECT_EQ(strPage.find("alert(1)</script>"), std::string::npos);
    Expect_Values(Get_Data(strPage), {{"/captions/0/lines/0", strText}});
}

TEST(ZyrsubReport, WhatTheBoxShowsOtherwise)
{
    const json jsPage = Get_Data(Run_Zyrsub("report subviewer-lf.sub -o -").strOut);
    Expect_Values(jsPage, {{"/captions/0/box", "differs"},
                           {"/captions/0/boxLines/0", "The lamp is lit at dusk."},
                           {"/captions/0/boxLines/2", "00:00:04.00,00:00:06.50"},
                           {"/captions/1/box", "missing"}});
    Expect_Values(Get_Data(Run_Zyrsub("report subviewer-lf.sub --raw-line-ends -o -").strOut),
                  {{"/captions/0/box", "same"}, {"/captions/1", "(nothing)"}});
}

TEST(ZyrsubReport, FilesAreRespected)
{
    const TestFolder stFolder;
    const std::string strPage = stFolder.Path("x.html");
    const struct {
        std::string strArguments;
        int iCode;
        const char *pszSays;
    } astCases[] = {
        {"subrip-crlf.srt -o " + strPage, 0, "x.html  4 captions  0 findings  lcd  0."},
        {"subrip-crlf.srt -o " + strPage, 1, "--force"},
        {"subrip-crlf.srt --force -o " + strPage, 0, "4 captions"},
        {"subrip-crlf.srt -o " + stFolder.Path("x.srt"), 2, "subtitle's name"},
        {"subrip-crlf.srt --outputs lcd,tv -o " + strPage, 2, "there is no output 'tv'"},
        {"subrip-crlf.srt --watch -o -", 2, "--watch"},
        {"subrip-crlf.srt", 2, "-o"},
        {"nothing.srt -o " + strPage, 3, "nothing.srt"},
        {"subviewer-no-header.sub --force -o " + strPage, 4, "0 captions  1 findings"},
    };
    for (const auto &stCase : astCases) {
        const RunResult stRun = Run_Zyrsub("report " + stCase.strArguments);
        EXPECT_EQ(stRun.iCode, stCase.iCode) << stCase.strArguments;
        EXPECT_NE((stRun.strOut + stRun.strErr).find(stCase.pszSays), std::string::npos)
            << stCase.strArguments << ": " << stRun.strOut << stRun.strErr;
    }
}

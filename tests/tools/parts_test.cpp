// The tool's parts that need no file: times, text, what is on screen when, playing.
#include <gtest/gtest.h>

#include "format_details.h"
#include "picture.h"
#include "playback.h"
#include "text_convert.h"
#include "time_text.h"
#include "timeline.h"

TEST(ParseTime, Forms)
{
    // clang-format off
    static constexpr std::pair<const char *, uint32_t> astGood[] = {
        {"0", 0}, {"1500", 1500}, {"1.5s", 1500}, {"1,5s", 1500}, {"1m30s", 90000}, {"1h2m3.004s", 3723004},
        {"1.5m", 90000}, {"1500ms", 1500}, {"0.4ms", 0}, {"2:03", 123000}, {"1:02:03.004", 3723004},
        {"100:00:00", 360000000}, {"90:00", 5400000}, {"2147483646", 2147483646},
    };
    // clang-format on
    for (const auto &[pszText, uiMs] : astGood) EXPECT_EQ(Parse_Time(pszText), uiMs) << pszText;
    for (const char *pszText :
         {"1.5", "1.5m3s", "30s1m", "1m30", "m", "1:60", "1:2:3:4", "1.5:00", "", "-1", "1e3", "nan", "12x",
          ".", "1..5", ":30", "2147483647", "99999999999999999999999999999999999999999999"})
        EXPECT_FALSE(Parse_Time(pszText)) << pszText;
}

TEST(FormatTime, EdgeValues)
{
    EXPECT_EQ(Format_Time(0), "0:00:00.000");
    EXPECT_EQ(Format_Time(3723004), "1:02:03.004");
    EXPECT_EQ(Format_Time(-1500), "-0:00:01.500");
    EXPECT_EQ(Format_EndTime(OPEN_END), "-");
}

TEST(TextDecoder, NothingIsDropped)
{
    using namespace std::string_view_literals;
    const struct {
        const char *pszWhy;
        uint32_t uiCharset;
        bool bSingleByte;
        const char *pszCodePage;
        std::string_view strBytes;
        std::string_view strExpected;
    } astCases[] = {
        {"a pair of the code page", 1, false, "CP949", "\xB0\xA1\x0A!"sv, "가\n!"sv},
        {"a pair that is no character", 1, false, "CP949", "a\xFF\xFF!"sv, "a\uFFFD\uFFFD!"sv},
        {"a lead byte before a plain character", 1, false, "CP949", "\xB0 x"sv, "\uFFFD x"sv},
        {"a lead byte at the end", 1, false, "CP949", "x\xB0"sv, "x\uFFFD"sv},
        {"an entity's character behind a zero", 1, false, "CP949", "\xB0\xA1\0\xE9!"sv, "가é!"sv},
        {"a single-byte character behind a zero", 1, true, "CP1251", "\0\xC0\0\xE9!"sv, "Ай!"sv},
        {"a zero that is the second half of a pair", 1, false, "CP949", "\xB0\0\xB0\xA1"sv, "\uFFFD\0가"sv},
        {"a pair of surrogates", 2, false, "", "\x3D\xD8\x0B\xDC"sv, "🐋"sv},
        {"a lone surrogate", 2, false, "", "\x3D\xD8\x41\0"sv, "\uFFFDA"sv},
        {"UTF-8 cut short", 3, false, "", "é\xC3"sv, "é\uFFFD"sv},
    };
    for (const auto &stCase : astCases) {
        const std::vector<uint8_t> aucBytes(stCase.strBytes.begin(), stCase.strBytes.end());
        EXPECT_EQ(TextDecoder(stCase.uiCharset, stCase.pszCodePage, stCase.bSingleByte).Decode(aucBytes),
                  stCase.strExpected)
            << stCase.pszWhy;
    }
}

TEST(MakeUtf16, PairsAndReplacements)
{
    EXPECT_EQ(Make_Utf16("A가🐋"), (std::vector<uint16_t>{0x41, 0xAC00, 0xD83D, 0xDC0B, 0}));
    EXPECT_EQ(Make_Utf16("\xFFz"), (std::vector<uint16_t>{0xFFFD, 0x7A, 0}));
    EXPECT_EQ(Make_Utf16(""), (std::vector<uint16_t>{0}));
}

TEST(MakePrintable, ControlsCannotReachTheTerminal)
{
    EXPECT_EQ(Make_Printable("a\x1B[2Jb\nc\x7F\xC2\x9B\xC2\xA9"), "a\uFFFD[2Jb\nc\uFFFD\uFFFD©");
}

TEST(FormatColor, FullRange)
{
    EXPECT_EQ(Format_Color(0xFFFF), "#FFFFFF");
    EXPECT_EQ(Format_Color(0xF800), "#FF0000");
    EXPECT_EQ(Format_Color(0x8410), "#848284");
    EXPECT_EQ(List_DisplayModes(0x4036),
              (std::vector<std::string>{"underline", "bold", "left", "center", "middle"}));
}

static Frame Make_Frame(uint32_t uiStream, int32_t iStart, int32_t iEnd, const char *pszLine)
{
    Frame stFrame;
    stFrame.uiStream = uiStream;
    stFrame.iStart = iStart;
    stFrame.iEnd = iEnd;
    if (*pszLine != '\0') stFrame.astrLines = {pszLine};
    return stFrame;
}

TEST(Timeline, WhatIsOnScreen)
{
    const Timeline stTimeline({Make_Frame(0, 3000, 4000, "late"), Make_Frame(0, 1000, 2000, "early"),
                               Make_Frame(0, 1500, 2500, "over"), Make_Frame(1, 1000, OPEN_END, "open"),
                               Make_Frame(1, 2000, OPEN_END, ""), Make_Frame(1, 9000, OPEN_END, "last")});
    static constexpr struct {
        int64_t llMs;
        const char *pszAll;
        const char *pszSecond;
    } astCases[] = {
        {999, "", ""},
        {1000, "early\nopen", "open"},
        {1500, "early\nover\nopen", "open"},
        {2000, "over", ""},
        {2500, "", ""},
        {3999, "late", ""},
        {4000, "", ""},
        {INT32_MAX - 1, "last", "last"},
    };
    for (const auto &stCase : astCases) {
        EXPECT_EQ(stTimeline.Get_Caption(stCase.llMs), stCase.pszAll) << stCase.llMs;
        EXPECT_EQ(stTimeline.Get_Caption(stCase.llMs, 1), stCase.pszSecond) << stCase.llMs;
    }
    EXPECT_EQ(stTimeline.Find_NextChange(2000), 2500);
    EXPECT_EQ(stTimeline.Get_End(), 9000 + 5000);
}

static Playback Make_Playback(double dSpeed)
{
    PlayOptions stOptions;
    stOptions.dSpeed = dSpeed;
    return {Timeline({Make_Frame(0, 1000, 1010, "blink"), Make_Frame(1, 9000, 20000, "other")}),
            {"A", "B"},
            stOptions};
}

TEST(Playback, NoCaptionIsMissedAtAnySpeed)
{
    Playback stPlayback = Make_Playback(100);
    std::string strSeen;
    for (bool bMore = stPlayback.Advance(120); bMore; bMore = stPlayback.Advance(0))
        strSeen += stPlayback.Get_Caption() + "|";
    EXPECT_EQ(strSeen, "blink||other|");
    EXPECT_EQ(stPlayback.Get_Position(), 12000);
    stPlayback.Advance(1000);
    while (stPlayback.Advance(0)) {}
    EXPECT_TRUE(stPlayback.Is_AtEnd());
}

TEST(Playback, Keys)
{
    static constexpr struct {
        PlayCommand eKey;
        const char *pszState;
        const char *pszCaption;
    } astCases[] = {
        {E_PLAY_PAUSE, "0:00:00.0  A + B  paused", ""},     {E_PLAY_ON, "0:00:05.0  A + B  paused", ""},
        {E_PLAY_ON, "0:00:10.0  A + B  paused", "other"},   {E_PLAY_LANGUAGE, "0:00:10.0  A  paused", ""},
        {E_PLAY_LANGUAGE, "0:00:10.0  B  paused", "other"}, {E_PLAY_BACK, "0:00:05.0  B  paused", ""},
        {E_PLAY_FAR_BACK, "0:00:00.0  B  paused", ""},
    };
    Playback stPlayback = Make_Playback(1);
    for (const auto &stCase : astCases) {
        stPlayback.Apply(stCase.eKey);
        EXPECT_EQ(stPlayback.Describe(), stCase.pszState);
        EXPECT_EQ(stPlayback.Get_Caption(), stCase.pszCaption) << stCase.pszState;
        EXPECT_FALSE(stPlayback.Advance(5000)) << "nothing moves while it is paused";
    }
    stPlayback.Apply(E_PLAY_FAR_ON);
    EXPECT_TRUE(stPlayback.Is_AtEnd());
}

TEST(Pictures, ScaleCutPaste)
{
    Picture stPicture = Make_Picture(4, 2);
    stPicture.aucRgba[0] = 200; // one red pixel of the four that make the first new one
    const Picture stSmall = Scale_Picture(stPicture, 2, 1);
    EXPECT_EQ(stSmall.aucRgba, (std::vector<uint8_t>{50, 0, 0, 255, 0, 0, 0, 255}));
    EXPECT_EQ(Scale_Picture(stSmall, 4, 2).aucRgba[4], 50);
    Paste_Picture(stPicture, stSmall, 3, 1); // half of it lies outside
    EXPECT_EQ(stPicture.aucRgba[7 * 4UL], 50);
    const Picture stCut = Cut_Picture(stPicture, 3, 1, 2, 2);
    EXPECT_EQ(stCut.aucRgba[0], 50);
    EXPECT_EQ(stCut.aucRgba[4], 0);
    EXPECT_EQ(stCut.aucRgba.size(), 16U);
}

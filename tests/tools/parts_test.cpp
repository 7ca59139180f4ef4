// The tool's parts that need no file: times, text, what is on screen when, playing.
#include <gtest/gtest.h>

#include "picture.h"
#include "playback.h"
#include "run_program.h"
#include "style_text.h"
#include "text_tools.h"
#include "time_text.h"

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

// Two languages, read from a file as everything else is.
static CaptionFile Open_Blink()
{
    const TestFolder stFolder;
    stFolder.Write("x.smi", "<SAMI><BODY><SYNC Start=1000><P Class=A>blink<SYNC Start=1010><P Class=A>&nbsp;"
                            "<SYNC Start=9000 End=20000><P Class=B>other</BODY></SAMI>");
    CaptionFile stFile;
    EXPECT_TRUE(stFile.Open(stFolder.Path("x.smi"), {}).IsGood());
    return stFile;
}

TEST(Playback, NoCaptionIsMissedAtAnySpeed)
{
    const CaptionFile stFile = Open_Blink();
    PlayOptions stOptions;
    stOptions.dSpeed = 100;
    Playback stPlayback(stFile, stOptions);
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
        {E_PLAY_PAUSE, "0:00:00.0 of 0:00:20.0  A + B  paused", ""},
        {E_PLAY_ON, "0:00:05.0 of 0:00:20.0  A + B  paused", ""},
        {E_PLAY_ON, "0:00:10.0 of 0:00:20.0  A + B  paused", "other"},
        {E_PLAY_LANGUAGE, "0:00:10.0 of 0:00:20.0  A  paused", ""},
        {E_PLAY_LANGUAGE, "0:00:10.0 of 0:00:20.0  B  paused", "other"},
        {E_PLAY_BACK, "0:00:05.0 of 0:00:20.0  B  paused", ""},
        {E_PLAY_FAR_BACK, "0:00:00.0 of 0:00:20.0  B  paused", ""},
        {E_PLAY_NEXT, "0:00:09.0 of 0:00:20.0  B  paused", "other"},
        {E_PLAY_LANGUAGE, "0:00:09.0 of 0:00:20.0  A + B  paused", "other"},
        {E_PLAY_PREVIOUS, "0:00:01.0 of 0:00:20.0  A + B  paused", "blink"},
        {E_PLAY_PREVIOUS, "0:00:01.0 of 0:00:20.0  A + B  paused", "blink"},
    };
    const CaptionFile stFile = Open_Blink();
    Playback stPlayback(stFile, {});
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

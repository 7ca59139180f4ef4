// What README shows is what there is.
#include <gtest/gtest.h>

#include "picture.h"
#include "run_program.h"

static const std::string SOURCE = ZYR_SOURCE;

// The text of the n-th line on.
static size_t Find_Line(const std::string &strText, int iLine)
{
    size_t uiAt = 0;
    for (int iAt = 1; iAt < iLine; ++iAt) uiAt = strText.find('\n', uiAt) + 1;
    return uiAt;
}

TEST(Readme, CommandsFirstThenCaptions)
{
    const std::string strReadme = Read_File(SOURCE + "/README.md");
    EXPECT_LT(strReadme.find("    script/demo\n"), Find_Line(strReadme, 16));
    EXPECT_LT(strReadme.find("    script/test\n"), Find_Line(strReadme, 16));

    std::string strFrames = Run_Zyrsub("frames subrip-crlf.srt").strOut;
    ASSERT_FALSE(strFrames.empty());
    for (size_t uiLine = 0; uiLine < strFrames.size(); uiLine = strFrames.find('\n', uiLine) + 1)
        strFrames.insert(uiLine, "    ");
    EXPECT_LT(strReadme.find(strFrames), Find_Line(strReadme, 31)) << strFrames;
}

TEST(Readme, ExampleIsTheFile)
{
    const std::string strReadme = Read_File(SOURCE + "/README.md");
    const std::string strExample = Read_File(SOURCE + "/examples/captions.c");
    ASSERT_FALSE(strExample.empty());
    EXPECT_NE(strReadme.find("```c\n" + strExample + "```\n"), std::string::npos);
}

// The examples are built as C99 with every warning an error, and find the subtitle of a movie that is not there.
TEST(Readme, ExamplesRun)
{
    const struct {
        const char *pszProgram, *pszArgument;
        int iCode;
        const char *pszStart; // of what it prints
    } astCases[] = {
        {ZYR_EXAMPLE_CAPTIONS, "subrip-crlf.avi", 0,
         "1000 to 3500 ms\nThe lamp is lit at dusk.\n4000 to 6500 ms\n"},
        {ZYR_EXAMPLE_CAPTIONS, "subrip-utf16be.srt", 0, "1000 to 3000 ms\nDéjà vu: the café is open.\n"},
        {ZYR_EXAMPLE_CAPTIONS, "nothing.avi", 2, ""},
        {ZYR_EXAMPLE_CAPTIONS, "", 1, ""},
        {ZYR_EXAMPLE_FRAMES, "subrip-crlf.avi", 0,
         "text in the file's code page\n1000 to 3500 ms\nThe lamp is lit"},
        {ZYR_EXAMPLE_FRAMES, "sami-utf16be.avi", 0, "text in UTF-16\n1000 to"},
        {ZYR_EXAMPLE_FRAMES, "nothing.avi", 1, ""},
    };
    for (const auto &stCase : astCases) {
        const RunResult stRun = Run_Program(std::string(stCase.pszProgram) + " " + stCase.pszArgument);
        EXPECT_EQ(stRun.iCode, stCase.iCode) << stCase.pszArgument;
        EXPECT_EQ(stRun.strOut.find(stCase.pszStart), 0U) << stRun.strOut;
    }
}

// script/pictures makes it; what is drawn has to be the same, however it was packed.
TEST(Readme, PictureIsDrawnByZyrsub)
{
    const TestFolder stFolder;
    const std::string strStill = stFolder.Path("still.png");
    ASSERT_EQ(Run_Program("python3 " + SOURCE + "/docs/pictures/still.py " + strStill).iCode, 0);
    Run_Zyrsub("render sami-bilingual.smi --at 1s --background " + strStill + " -o " +
               stFolder.Path("x.png"));
    Picture stDrawn, stShown;
    ASSERT_TRUE(Read_Png(stFolder.Path("x.png"), stDrawn).IsGood());
    ASSERT_TRUE(Read_Png(SOURCE + "/docs/pictures/caption.png", stShown).IsGood());
    EXPECT_TRUE(stDrawn.aucRgba == stShown.aucRgba) << "script/pictures makes it anew";
}

TEST(Readme, EverySampleIsDescribed)
{
    const std::string strTable = Read_File(SOURCE + "/samples/README.md");
    for (const std::string &strName : List_Samples())
        EXPECT_NE(strTable.find("`" + strName + "`"), std::string::npos) << strName;
}

// What README shows is what there is.
#include <gtest/gtest.h>

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
    const std::string strExample = Read_File(SOURCE + "/examples/frames.c");
    ASSERT_FALSE(strExample.empty());
    EXPECT_NE(strReadme.find("```c\n" + strExample + "```\n"), std::string::npos);
}

// The example is built as C99 with every warning an error, and finds the subtitle of a movie that is not
// there.
TEST(Readme, ExampleRuns)
{
    const RunResult stRun = Run_Program(ZYR_EXAMPLE_FRAMES " subrip-crlf.avi");
    EXPECT_EQ(stRun.iCode, 0);
    EXPECT_EQ(stRun.strOut.find("1000 to 3500 ms\nThe lamp is lit at dusk.\n4000 to 6500 ms\n"), 0U)
        << stRun.strOut;
    EXPECT_EQ(Run_Program(ZYR_EXAMPLE_FRAMES " nothing.avi").iCode, 1);
}

TEST(Readme, EverySampleIsDescribed)
{
    const std::string strTable = Read_File(SOURCE + "/samples/README.md");
    for (const std::string &strName : List_Samples())
        EXPECT_NE(strTable.find("`" + strName + "`"), std::string::npos) << strName;
}

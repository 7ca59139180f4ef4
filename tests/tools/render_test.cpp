// zyrsub render: the pictures it writes.
#include <gtest/gtest.h>

#include "picture.h"
#include "run_program.h"
#include "zyr/zyr_captions.h"

// Where the caption's marks are.
struct Marks {
    uint32_t uiPixels = 0;
    uint32_t uiLeft = UINT32_MAX;
    uint32_t uiRight = 0;
    uint32_t uiTop = UINT32_MAX;
    uint32_t uiBottom = 0;
};

static Marks Find_Marks(const Picture &stPicture)
{
    Marks stMarks;
    for (uint32_t uiPixel = 0; uiPixel < stPicture.uiWidth * stPicture.uiHeight; ++uiPixel) {
        if (stPicture.aucRgba[size_t{uiPixel} * 4] == 0) continue;
        ++stMarks.uiPixels;
        stMarks.uiLeft = std::min(stMarks.uiLeft, uiPixel % stPicture.uiWidth);
        stMarks.uiRight = std::max(stMarks.uiRight, uiPixel % stPicture.uiWidth);
        stMarks.uiTop = std::min(stMarks.uiTop, uiPixel / stPicture.uiWidth);
        stMarks.uiBottom = std::max(stMarks.uiBottom, uiPixel / stPicture.uiWidth);
    }
    return stMarks;
}

// The picture that is written behind the last option.
static Picture Render(const std::string &strArguments, const char *pszOption = "-o")
{
    const TestFolder stFolder;
    const std::string strPng = stFolder.Path("shot.png");
    const RunResult stRun = Run_Zyrsub("render " + strArguments + " " + pszOption + " " + strPng);
    Picture stPicture;
    EXPECT_EQ(stRun.iCode, 0) << stRun.strErr;
    EXPECT_EQ(stRun.strErr, "") << "no progress bar off a terminal";
    EXPECT_TRUE(Read_Png(strPng, stPicture).IsGood());
    return stPicture;
}

static Marks Find_Rendered(const std::string &strOptions)
{
    return Find_Marks(Render("subrip-crlf.srt " + strOptions));
}

// Two lines of Korean, which is centred in the display and stands above its bottom, on every output.
TEST(ZyrsubRender, EveryOutput)
{
    ZyrCaptionOutput stMode;
    for (uint32_t ui = 0; zyrCaptions_getOutput(ui, &stMode) == ZYR_CAPTIONS_OK; ++ui) {
        SCOPED_TRACE(stMode.pszName);
        const Picture stPicture = Render(std::string("subrip-cp949.srt --at 5s --output ") + stMode.pszName);
        ASSERT_EQ(stPicture.uiWidth, stMode.uiWidth);
        ASSERT_EQ(stPicture.uiHeight, stMode.uiHeight);
        const Marks stMarks = Find_Marks(stPicture);
        ASSERT_GT(stMarks.uiPixels, 500U);
        const uint32_t uiMiddle = (stMarks.uiLeft + stMarks.uiRight) / 2;
        EXPECT_NEAR(uiMiddle, stMode.uiWidth * 0.5, 12);
        EXPECT_GT(stMarks.uiTop, stMode.uiHeight / 2);
        EXPECT_LE(stMarks.uiBottom, stMode.uiHeight - 16);
        EXPECT_GT(stMarks.uiBottom, stMode.uiHeight - 16 - 32);
    }
}

TEST(ZyrsubRender, TimesPositionAndSize)
{
    EXPECT_EQ(Find_Rendered("--at 999").uiPixels, 0U);
    EXPECT_EQ(Find_Rendered("--at 3.5s").uiPixels, 0U);
    const Marks stFirst = Find_Rendered("");
    EXPECT_GT(stFirst.uiPixels, 0U);
    EXPECT_EQ(Find_Rendered("--at 1s").uiPixels, stFirst.uiPixels);
    EXPECT_EQ(Find_Rendered("--position 116").uiBottom + 100, stFirst.uiBottom);
    const Marks stLarge = Find_Rendered("--font-size 40");
    EXPECT_GT(stLarge.uiRight - stLarge.uiLeft, (stFirst.uiRight - stFirst.uiLeft) * 3 / 2);
}

TEST(ZyrsubRender, BackgroundIsScaledUnderTheCaption)
{
    const TestFolder stFolder;
    Picture stBlue = Make_Picture(10, 10);
    for (size_t uiPixel = 0; uiPixel < 100; ++uiPixel) stBlue.aucRgba[uiPixel * 4 + 2] = 255;
    ASSERT_TRUE(Write_Png(stFolder.Path("blue.png"), stBlue).IsGood());
    const Picture stPicture = Render("subrip-crlf.srt --background " + stFolder.Path("blue.png"));
    EXPECT_EQ(stPicture.uiWidth, 800U);
    EXPECT_EQ(stPicture.aucRgba[2], 255);
    EXPECT_GT(Find_Marks(stPicture).uiPixels, 0U);
}

TEST(ZyrsubRender, SheetShowsEveryCaption)
{
    const Picture stSheet = Render("subrip-tags.srt --all", "--sheet");
    ASSERT_GT(stSheet.uiHeight, 12U);
    // ten captions in three rows of four; the cells of the last two stay empty
    const uint32_t uiCell = (stSheet.uiWidth - 12) / 4;
    const uint32_t uiRow = (stSheet.uiHeight - 12) / 3;
    for (uint32_t uiIndex = 0; uiIndex < 12; ++uiIndex) {
        const Picture stCell = Cut_Picture(stSheet, uiIndex % 4 * uiCell + 12, uiIndex / 4 * uiRow + 12,
                                           uiCell - 12, uiRow - 12);
        EXPECT_EQ(stCell.aucRgba[0] == 0, uiIndex < 10) << uiIndex;
        if (uiIndex >= 10) continue;
        const uint32_t uiCaption = stCell.uiHeight - 40; // its label is below it
        EXPECT_GT(Find_Marks(Cut_Picture(stCell, 0, 0, stCell.uiWidth, uiCaption)).uiPixels, 20U) << uiIndex;
        EXPECT_GT(Find_Marks(Cut_Picture(stCell, 0, uiCaption, stCell.uiWidth, 40)).uiPixels, 100U)
            << uiIndex;
    }
}

TEST(ZyrsubRender, NothingIsReplacedAndStandardOutput)
{
    const TestFolder stFolder;
    stFolder.Write("there.png", "mine");
    const std::string strRender = "render subrip-crlf.srt -o ";
    EXPECT_EQ(Run_Zyrsub(strRender + stFolder.Path("there.png")).iCode, 1);
    EXPECT_EQ(Read_File(stFolder.Path("there.png")), "mine");
    EXPECT_EQ(Run_Zyrsub(strRender + stFolder.Path("there.png") + " --force").iCode, 0);
    EXPECT_EQ(Run_Zyrsub(strRender + "-").strOut, Read_File(stFolder.Path("there.png")));
    const RunResult stWhale = Run_Zyrsub("render subrip-utf16le.srt -o " + stFolder.Path("x.png"));
    EXPECT_NE(stWhale.strErr.find("the font lacks 1 of its characters: U+1F40B"), std::string::npos)
        << stWhale.strErr;
}

// Marks alone for a player that lays them over its film: put over black, they are the picture.
TEST(ZyrsubRender, RawMarksAndSizes)
{
    const TestFolder stFolder;
    for (const char *const pszSize : {"", "--size 800x480", "--size 400x240", "--size 1280x720"}) {
        const std::string strOptions = std::string("sami-cp949.smi --at 1500 ") + pszSize;
        const Picture stPicture = Render(strOptions);
        ASSERT_EQ(Run_Zyrsub("render " + strOptions + " --force -o " + stFolder.Path("x.bgra")).iCode, 0);
        const std::string strRaw = Read_File(stFolder.Path("x.bgra"));
        ASSERT_EQ(strRaw.size(), stPicture.aucRgba.size()) << pszSize;
        size_t uiSeen = 0;
        for (size_t ui = 0; ui < strRaw.size(); ui += 4) {
            ASSERT_EQ(static_cast<uint8_t>(strRaw[ui]), stPicture.aucRgba[ui + 2]) << pszSize << " at " << ui;
            ASSERT_EQ(strRaw[ui + 3] == 0, stPicture.aucRgba[ui] == 0) << pszSize << " at " << ui;
            uiSeen += strRaw[ui + 3] != 0 ? 1 : 0;
        }
        EXPECT_GT(uiSeen, 200U) << pszSize;
    }
    EXPECT_EQ(Run_Zyrsub("render subrip-lf.srt --size 0x10").iCode, 2);
}

TEST(ZyrsubRender, LongSheetsArePaged)
{
    const TestFolder stFolder;
    std::string strText;
    for (int iCaption = 0; iCaption < 120; ++iCaption) {
        char szEntry[80];
        std::snprintf(szEntry, sizeof szEntry, "1\r\n00:%02d:%02d,000 --> 00:%02d:%02d,900\r\nx\r\n\r\n",
                      iCaption / 60, iCaption % 60, iCaption / 60, iCaption % 60);
        strText += szEntry;
    }
    stFolder.Write("long.srt", strText);
    EXPECT_EQ(Run_Zyrsub("render " + stFolder.Path("long.srt") + " --sheet " + stFolder.Path("s.png")).iCode,
              0);
    Picture stFirst, stSecond;
    ASSERT_TRUE(Read_Png(stFolder.Path("s.png"), stFirst).IsGood());
    ASSERT_TRUE(Read_Png(stFolder.Path("s-2.png"), stSecond).IsGood());
    EXPECT_LE(stFirst.uiHeight, 8192U);
    EXPECT_GT(stFirst.uiHeight, 7800U);
    EXPECT_GT(stSecond.uiHeight, 12U);
}

#include <filesystem>
#include <fstream>

#include "support/engine_fixture.h"

#include "record/parser_state.h"

namespace
{

const std::string SRT = Entry("Hello");

class OpenFiles : public EngineTest
{
protected:
    void SetUp() override
    {
        EngineTest::SetUp();
        m_strFolder =
            testing::TempDir() + "zyr_open_" + testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::create_directories(m_strFolder);
    }

    void TearDown() override
    {
        EngineTest::TearDown();
        std::filesystem::remove_all(m_strFolder);
    }

    std::string Path(const std::string &strName) const { return m_strFolder + "/" + strName; }
    void Write(const std::string &strName, const std::string &strText = SRT) const
    {
        std::ofstream(Path(strName), std::ios::binary) << strText;
    }
    uint32_t Open_Movie(const std::string &strName) { return zyrSubtitle_open(Path(strName).c_str(), 0); }

    std::string m_strFolder;
};

TEST_F(OpenFiles, NameIsTheMoviesUpToItsLastDot)
{
    static const struct {
        const char *pszMovie, *pszSubtitle;
        bool bOpens;
    } astCases[] = {
        {"film.avi", "film.srt", true},   {"film.avi", "film.SRT", true},
        {"film.avi", "film.Srt", false},  {"a.b.avi", "a.b.srt", true},
        {"a.b.avi", "a.srt", false},      {"film", "film.srt", true},
        {"film.avi", "film2.srt", false}, {"film.avi", "film.avi.srt", false},
        {"film.", "film.srt", true},      {"a.b/film", "a.srt", true}, // a dot in a folder counts
    };
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(testing::Message() << stCase.pszMovie << " beside " << stCase.pszSubtitle);
        Write(stCase.pszSubtitle);
        EXPECT_EQ(Open_Movie(stCase.pszMovie), stCase.bOpens ? 0u : 1u);
        if (stCase.bOpens) {
            EXPECT_EQ(Path(stCase.pszSubtitle), pstQuibCaptionParserInfo->szSubtitleFileName);
        }
        std::filesystem::remove(Path(stCase.pszSubtitle));
    }
}

TEST_F(OpenFiles, FirstEndingOfTheListWins)
{
    static const std::vector<std::string> vecOrder = {".SMI", ".smi", ".SAMI", ".sami", ".SRT",
                                                      ".srt", ".SUB", ".sub",  ".SSA",  ".ssa"};
    for (const std::string &strEnding : vecOrder) Write("film" + strEnding);
    for (const std::string &strEnding : vecOrder) {
        m_vecLog.clear();
        Open_Movie("film.mkv");
        EXPECT_EQ(Count_Log("subtitle filename = " + Path("film" + strEnding)), 1u);
        std::filesystem::remove(Path("film" + strEnding));
    }
    EXPECT_EQ(Open_Movie("film.mkv"), 1u);
}

TEST_F(OpenFiles, NameMustFit)
{
    const std::string strBase = "zyrhost:" + std::string(500, 'n');
    zyr_host_mapMemory((strBase + ".srt").c_str(), SRT.data(), static_cast<uint32_t>(SRT.size()));
    EXPECT_EQ(zyrSubtitle_open((strBase + ".avi").c_str(), 0), 0u);
    EXPECT_EQ(zyrSubtitle_open((strBase + "n.avi").c_str(), 0), 1u);
    EXPECT_EQ(Count_Log("The subtitle file name is too long!"), 1u);
    EXPECT_EQ(zyrSubtitle_open(std::string(100000, '.').c_str(), 0), 1u);
}

TEST_F(OpenFiles, WhatCannotBeRead)
{
    std::filesystem::create_directory(Path("folder.srt"));
    EXPECT_EQ(Open_Movie("folder.avi"), 1u);
    Write("empty.srt", "");
    EXPECT_EQ(Open_Movie("empty.avi"), 1u);
    EXPECT_EQ(Count_Log("Failed to initialize the stream variables!"), 1u);
    EXPECT_EQ(Open_Movie("missing.avi"), 1u);
    EXPECT_EQ(zyrSubtitle_open("", 0), 1u);
    EXPECT_EQ(zyrSubtitle_open(nullptr, 0), 2u);
    EXPECT_EQ(Count_Log("Moving Picture Filename is NULL!"), 1u);
}

TEST_F(OpenFiles, FileThatShrinksWhileItIsRead)
{
    Write("film.srt", Repeat(SRT, 4000));
    ASSERT_EQ(Open_Movie("film.avi"), 0u);
    EXPECT_EQ(Next(), "1000-2000 Hello");
    std::filesystem::resize_file(Path("film.srt"), 10);
    EXPECT_LT(Count_Frames(), 3999u);
    EXPECT_EQ(zyrSubtitle_seek(500), 0u);
    EXPECT_LT(Count_Frames(), 3999u);
}

class Interface : public EngineTest
{
};

/** @return results of the calls that give something: frame, classes, name, selection. */
std::vector<uint32_t> Call_All(uint32_t *puiNumber, char **ppszName)
{
    int32_t iTime = 0;
    uint8_t *pucText = nullptr;
    return {zyrSubtitle_getFrame(nullptr, &iTime, &iTime, puiNumber, puiNumber, &pucText),
            zyrSubtitle_getClassNums(puiNumber), zyrSubtitle_getClassName(0, ppszName),
            zyrSubtitle_selectClass(1, puiNumber)};
}

TEST_F(Interface, NothingOpen)
{
    uint32_t uiNumber = 77;
    char *pszName = nullptr;
    EXPECT_EQ(Call_All(&uiNumber, &pszName), std::vector<uint32_t>(4, 1));
    EXPECT_EQ(uiNumber, 77u);
    EXPECT_EQ(zyrSubtitle_seek(5), 0u);
    EXPECT_EQ(zyrSubtitle_getOutputTextCharacterSet(), 0u);
    int32_t iTime = 0;
    uint8_t *pucText = nullptr;
    EXPECT_EQ(zyrSubtitleHandler_getFrameInfo(nullptr, &iTime, &iTime, &uiNumber, &uiNumber, &pucText), 1u);
    EXPECT_EQ(zyrSubtitle_close(), 0u);
    EXPECT_TRUE(m_vecLog.empty()) << m_vecLog[0];
}

TEST_F(Interface, BadArguments)
{
    ASSERT_EQ(Open(".srt", SRT), 0u);
    uint32_t uiNumber = 0;
    int32_t iTime = 0;
    uint8_t *pucText = nullptr;
    for (int iNull = 0; iNull < 5; ++iNull) {
        const auto fnOr = [iNull](int iNth, auto *pAny) { return iNth == iNull ? nullptr : pAny; };
        EXPECT_EQ(zyrSubtitle_getFrame(&uiNumber, fnOr(0, &iTime), fnOr(1, &iTime), fnOr(2, &uiNumber),
                                       fnOr(3, &uiNumber), fnOr(4, &pucText)),
                  2u);
        EXPECT_EQ(zyrSubtitleHandler_getFrameInfo(&uiNumber, fnOr(0, &iTime), fnOr(1, &iTime),
                                                  fnOr(2, &uiNumber), fnOr(3, &uiNumber), fnOr(4, &pucText)),
                  2u);
    }
    EXPECT_EQ(zyrSubtitle_selectClass(1, nullptr), 2u);
    EXPECT_EQ(Call_All(nullptr, nullptr), std::vector<uint32_t>(4, 2));
    EXPECT_EQ(zyrSubtitle_selectClass(0, &uiNumber), 2u);
    EXPECT_EQ(zyrSubtitle_selectClass(-1, &uiNumber), 2u);
    char *pszName = nullptr;
    EXPECT_EQ(zyrSubtitle_getClassName(1, &pszName), 1u);
    EXPECT_EQ(Call_All(&uiNumber, &pszName), std::vector<uint32_t>(4, 0))
        << "none of the calls before has used the frame up; with one class there is nothing to choose";
    EXPECT_EQ(uiNumber, 1u);
    EXPECT_STREQ(pszName, "");
}

TEST_F(Interface, OpenWhileOpenClosesTheFirst)
{
    ASSERT_EQ(Open(".srt", SRT), 0u);
    const uint64_t ullLive = zyr_host_liveBytes();
    zyr_host_mapMemory("zyrhost:other.srt", SRT.data(), static_cast<uint32_t>(SRT.size()));
    for (const bool bLowerClose : {false, true}) {
        if (bLowerClose) QUIB_CAPTION_Close();
        EXPECT_NE(TRACK_GetFileHandleOfSubtitleData(), nullptr)
            << "the lower close leaves the file to its opener";
        EXPECT_EQ(zyrSubtitle_open("zyrhost:other.avi", 0), 0u);
        EXPECT_EQ(zyr_host_openFiles(), 1u);
        EXPECT_EQ(zyr_host_liveBytes(), ullLive);
    }
    EXPECT_EQ(zyrSubtitle_open("zyrhost:missing.avi", 0), 1u);
    EXPECT_EQ(zyr_host_openFiles(), 0u);
}

TEST_F(Interface, LowerCallsTellWhatHasFailed)
{
    ASSERT_EQ(Open(".srt", SRT), 0u);
    EXPECT_EQ(QUIB_CAPTION_ParsingProcess(), 2);
    const CaptionStreamState &stState = pstQuibCaptionParserInfo->astStreamState[0];
    EXPECT_EQ(stState.iStartPTS, 1000);
    EXPECT_EQ(stState.iEndPTS, 2000);
    EXPECT_EQ(QUIB_CAPTION_SeekCaptionFrame(0), 1);
    EXPECT_EQ(stState.iStartPTS, 0) << "a seek forgets the frame before it";
    EXPECT_EQ(stState.iEndPTS, 0);
    zyr_host_failFile(ZYR_HOST_READ, 1, -9, 1);
    EXPECT_EQ(QUIB_CAPTION_SeekCaptionFrame(5000), -1);
    zyr_host_failFile(ZYR_HOST_READ, 0, 0, 0);
    zyrSubtitle_close();
    EXPECT_EQ(s_llCaptionFileSize, 0);
    zyr_host_failAllocation(1, 0);
    EXPECT_EQ(QUIB_CAPTION_Open(), -1);
}

TEST_F(Interface, HostCallbacks)
{
    uint16_t usUnit = 0;
    const uint8_t aucBytes[2] = {0xB0, 0xB1};
    EXPECT_EQ(QUIBCAPTCB_ConvertANSI2Unicode(aucBytes, &usUnit), 2);
    EXPECT_EQ(usUnit, 0xB1B0);
    EXPECT_EQ(QUIBCAPTCB_ConvertANSI2Unicode(nullptr, &usUnit), 0);
    EXPECT_EQ(QUIBCAPTCB_ConvertANSI2Unicode(aucBytes, nullptr), 0);
    EXPECT_EQ(QUIBCAPTCB_GetFileHandleOfSubtitle(), nullptr);
    EXPECT_EQ(Count_Log("[QUIBCAPTCB_GetFileHandleOfSubtitle]"), 1u);
    EXPECT_EQ(QUIBCAPTPARS_Get_VerInfo(), 36u);

    ASSERT_EQ(Open(".srt", SRT), 0u);
    void *const hFile = TRACK_GetFileHandleOfSubtitleData();
    EXPECT_EQ(QUIBCAPTCB_FileSeek(hFile, 0, 2), static_cast<int64_t>(SRT.size()));
    const uint32_t uiSeeks = zyr_host_fileCalls(2);
    for (const int32_t iOrigin : {-1, 3}) EXPECT_EQ(QUIBCAPTCB_FileSeek(hFile, 0, iOrigin), -1);
    EXPECT_EQ(zyr_host_fileCalls(2), uiSeeks) << "a bad origin does not touch the file";
    EXPECT_EQ(QUIBCAPTCB_FileSeek(hFile, -1, 0), -2);
    uint8_t ucByte = 0;
    for (void *const hNone : {hFile, static_cast<void *>(nullptr)})
        EXPECT_LT(QUIBCAPTCB_FileRead(hNone, hNone == nullptr ? &ucByte : nullptr, 1), 0);
    zyr_host_failFile(3, 1, -9, 0);
    EXPECT_EQ(QUIBCAPTCB_FileTell(hFile), -9);
    zyr_host_failAllocation(1, 0);
    EXPECT_EQ(QUIBCAPTCB_Allocate_Aligned_Memory(8, 4), nullptr);
    EXPECT_EQ(Count_Log("Aligned Memory Allocation Failed!"), 1u);
}

} // namespace

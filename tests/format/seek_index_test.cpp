// Seeks in files that are long enough for what earlier seeks found to be used: the outcome and the log must
// not tell, only the reads may.

#include "support/engine_fixture.h"

#include <random>

#include "format/seek_index.h"
#include "zyr_base.h"

namespace
{

constexpr uint32_t ENTRIES = 4000;
constexpr uint32_t STEP_MS = 2000; // from one entry's start to the next one's
constexpr uint32_t LENGTH_MS = ENTRIES * STEP_MS;

struct Format {
    const char *pszEnding, *pszHeader, *pszEntry; // the entry's hours, minutes and seconds, and its number
    const char *pszBad;                           // an entry that is logged
};

constexpr Format FORMATS[] = {
    {".srt", "", "1\r\n%02u:%02u:%02u,000 --> 99:00:00,000\r\nText of entry %u\r\n\r\n",
     "1x\r\n%02u:%02u:%02u,000 --> 99:00\r\nText of entry %u\r\n\r\n"},
    {".SUB", "[SUBTITLE]\r\n", "%02u:%02u:%02u.00,99:00:00.00\r\nText of entry %u\r\n\r\n",
     "%02u:%02u:%02u.000,99:00:00.00\r\nText of entry %u\r\n\r\n"},
};

uint32_t Draw(std::mt19937 &stRandom, uint32_t uiBelow)
{
    return static_cast<uint32_t>(stRandom() % uiBelow);
}

/** An entry that starts at a second. */
std::string Get_Entry(const char *pszEntry, uint32_t uiSeconds, uint32_t uiEntry)
{
    char szEntry[200];
    snprintf(szEntry, sizeof(szEntry), pszEntry, uiSeconds / 3600, uiSeconds / 60 % 60, uiSeconds % 60,
             uiEntry);
    return szEntry;
}

class SeekIndex : public EngineTest, public testing::WithParamInterface<Format>
{
protected:
    /** Entries in time order; every uiBadEvery-th one is bad (0 = none). */
    static std::string Get_File(uint32_t uiBadEvery)
    {
        std::string strFile = GetParam().pszHeader;
        for (uint32_t uiEntry = 1; uiEntry <= ENTRIES; ++uiEntry) {
            const bool bBad = uiBadEvery != 0 && uiEntry % uiBadEvery == 0;
            strFile += Get_Entry(bBad ? GetParam().pszBad : GetParam().pszEntry, uiEntry * (STEP_MS / 1000),
                                 uiEntry);
        }
        return strFile;
    }

    uint32_t Open_File(uint32_t uiBadEvery) { return Open(GetParam().pszEnding, Get_File(uiBadEvery)); }

    std::string Seek(uint32_t uiTarget)
    {
        EXPECT_EQ(zyrSubtitle_seek(uiTarget), 0u);
        return Next();
    }

    /** Seek to a time, then from there to another one. @return all that can be seen of the second seek. */
    std::string Seek_Twice(uint32_t uiFirst, uint32_t uiSecond)
    {
        Seek(0); // as if nothing had been read
        Seek(uiFirst);
        m_vecLog.clear();
        zyrSubtitle_seek(uiSecond);
        std::string strSeen = std::to_string(pstQuibCaptionParserInfo->iCurrPTS) + " " +
                              std::to_string(pstQuibCaptionParserInfo->llCurrFilePos);
        for (const std::string &strLine : m_vecLog) strSeen += strLine;
        return strSeen + Next();
    }
};

INSTANTIATE_TEST_SUITE_P(Formats, SeekIndex, testing::ValuesIn(FORMATS),
                         [](const auto &stInfo) { return stInfo.param.pszEnding + 1; });

TEST_P(SeekIndex, HistoryDoesNotTell)
{
    for (const uint32_t uiBadEvery : {0u, 7u, 900u}) {
        std::mt19937 stRandom(uiBadEvery);
        for (int iPair = 0; iPair < 40; ++iPair) {
            const uint32_t uiFirst = Draw(stRandom, LENGTH_MS);
            const uint32_t uiSecond = Draw(stRandom, LENGTH_MS + 5 * STEP_MS);
            SCOPED_TRACE(testing::Message() << uiBadEvery << ": " << uiFirst << ", " << uiSecond);
            ASSERT_EQ(Open_File(uiBadEvery), 0u);
            const std::string strFresh = Seek_Twice(uiFirst, uiSecond);
            zyrSubtitle_seek(1);
            zyrSubtitle_seek(Draw(stRandom, LENGTH_MS));
            EXPECT_EQ(Seek_Twice(uiFirst, uiSecond), strFresh);
            zyrSubtitle_seek(LENGTH_MS);
            EXPECT_EQ(Seek_Twice(uiFirst, uiSecond), strFresh);
            ASSERT_EQ(Open_File(uiBadEvery), 0u);
            zyr_host_failAllocation(1 + static_cast<uint32_t>(iPair) % 3,
                                    1); // no memory, or too little of it
            zyrSubtitle_seek(LENGTH_MS);
            EXPECT_EQ(Seek_Twice(uiFirst, uiSecond), strFresh);
            zyr_host_failAllocation(0, 0);
        }
    }
}

TEST_P(SeekIndex, LaterSeeksReadLittle)
{
    ASSERT_EQ(Open_File(0), 0u);
    zyrSubtitle_seek(LENGTH_MS - 1);
    std::mt19937 stRandom(1);
    const uint32_t uiBefore = zyr_host_fileCalls(ZYR_HOST_READ);
    constexpr uint32_t SEEKS = 100;
    for (uint32_t uiSeek = 0; uiSeek < SEEKS; ++uiSeek) {
        const std::string strEntry = std::to_string(1 + Draw(stRandom, ENTRIES - 2));
        EXPECT_TRUE(
            Seek(static_cast<uint32_t>(std::stoul(strEntry)) * STEP_MS + 1).ends_with(" entry " + strEntry));
    }
    EXPECT_LE(zyr_host_fileCalls(ZYR_HOST_READ) - uiBefore,
              2 * SEEKS); // one of 64 KiB; two at the file's end
}

TEST_P(SeekIndex, AnotherFileOrOptionIsScannedAnew)
{
    // A late entry in the middle, where a scan for an earlier time stops: in the text of the entry before it
    // while a lead byte takes that entry's end away.
    const auto fnFile = [](const std::string &strLead) {
        std::string strFile = Get_File(0);
        const std::string strEnd = "\r\n\r\n";
        const std::string strLate = Get_Entry(GetParam().pszEntry, 359999, 0);
        const size_t uiPlace = strFile.find(strEnd, strFile.find("entry 2000"));
        return strFile.insert(uiPlace, strLead + strEnd + strLate.substr(0, strLate.size() - strEnd.size()));
    };
    const auto fnIndex = [this](const std::string &strFile) {
        return Open(GetParam().pszEnding, strFile) == 0 && Seek(LENGTH_MS).ends_with("entry 4000");
    };
    constexpr uint32_t TARGET = 3000 * STEP_MS;
    ASSERT_TRUE(fnIndex(fnFile("\xB0")));
    EXPECT_TRUE(Seek(TARGET).ends_with("entry 3000"));
    QUIBCAPTPARS_Set_ParsingOption(2); // every byte is a character
    EXPECT_NE(Seek(TARGET).find("entry 2000"), std::string::npos);

    ASSERT_TRUE(fnIndex(Get_File(0)));
    ASSERT_EQ(Open(GetParam().pszEnding, fnFile("")), 0u); // its handle is likely to be the old one
    EXPECT_TRUE(Seek(TARGET).ends_with("entry 2000"));

    ASSERT_TRUE(fnIndex(Get_File(0)));
    const std::string strOther = fnFile("");
    zyr_host_mapMemory("zyrhost:other", strOther.data(), static_cast<uint32_t>(strOther.size()));
    void *const hOther = ZYR_fopen("zyrhost:other", "rb");
    TRACK_SetFileHandleOfSubtitleData(hOther);
    EXPECT_TRUE(Seek(TARGET).ends_with("entry 2000"));
    ZYR_fclose(hOther);

    ASSERT_TRUE(fnIndex(Get_File(0)));
    const size_t uiStart = Get_File(0).find(Get_Entry(GetParam().pszEntry, 3500 * STEP_MS / 1000, 3500));
    pstQuibCaptionParserInfo->astStreamState[0].llStartFilePos = static_cast<int64_t>(uiStart);
    EXPECT_TRUE(Seek(TARGET).ends_with("entry 3500")) << "another start is another index";
}

TEST_P(SeekIndex, FailuresAreReported)
{
    ASSERT_EQ(Open_File(0), 0u);
    zyrSubtitle_seek(LENGTH_MS - 1);
    for (uint32_t uiNth = 1; uiNth <= 2; ++uiNth) {
        zyr_host_failFile(ZYR_HOST_SEEK, uiNth, -1, 0);
        EXPECT_EQ(zyrSubtitle_seek(LENGTH_MS / 2), 1u) << uiNth;
        EXPECT_EQ(Count_Log("QUIBCAPTCB_FileSeek() Failed! (ERROR = -2)"), uiNth - 1);
    }
    EXPECT_TRUE(Seek(LENGTH_MS / 2).starts_with(std::to_string(LENGTH_MS / 2) + "-"));
}

/** A file of so many entries, by its places alone: places go as it grows, and the scan still finds its way. */
TEST_F(EngineTest, LongFilesKeepFewerPlaces)
{
    ASSERT_EQ(Open(".srt", "1"), 0u);
    constexpr uint32_t NUMS = 200000;
    constexpr uint32_t LOGGED = 150000; // an entry that no scan may pass over
    constexpr int64_t ENTRY_BYTES = 100;
    Forget_SeekPlaces();
    SeekScan stScan = {{}, Begin_SeekTrack({}, UINT32_MAX, true), false};
    for (uint32_t uiEntry = 1; uiEntry <= NUMS; ++uiEntry) {
        ASSERT_TRUE(Pass_SeekStart(stScan, uiEntry));
        stScan.stPlace = {uiEntry * ENTRY_BYTES, stScan.stPlace.llPos, uiEntry - 1, uiEntry};
        ASSERT_EQ(Pass_SeekEntry(stScan, uiEntry == LOGGED, nullptr), 1);
    }
    for (const uint32_t uiTarget : {1u, 99u, 50000u, 123456u, NUMS}) {
        SeekPlace stPlace = {};
        SeekTrack stTrack = Begin_SeekTrack(stPlace, uiTarget, true);
        Skip_SeekBlocks(stTrack, stPlace, nullptr);
        EXPECT_LE(stPlace.uiLastTime, uiTarget);
        EXPECT_LT(stPlace.uiLastTime, LOGGED);
        EXPECT_GE(stPlace.uiLastTime + 400, std::min(uiTarget, LOGGED)) << "farther than a block is long";
        EXPECT_EQ(stPlace.llPos, stPlace.uiLastTime * ENTRY_BYTES);
        EXPECT_EQ(stPlace.llPrevPos, stPlace.llPos == 0 ? 0 : stPlace.llPos - ENTRY_BYTES);
    }
    Forget_SeekPlaces();
}

} // namespace

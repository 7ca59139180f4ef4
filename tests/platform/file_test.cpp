#include "host_test.h"

#include <climits>
#include <sys/stat.h>

namespace
{

using HostFile = HostTest;

// A counter of this process: "syscr:" system calls that read, "rchar:" bytes they gave; -1 when there is
// none.
long long Get_IoCount(const std::string &strName)
{
    std::ifstream stCounters("/proc/self/io");
    long long llCount = -1;
    for (std::string strWord; strWord != strName && stCounters >> strWord >> llCount;) {}
    return stCounters ? llCount : -1;
}

TEST_F(HostFile, SeeksTellsAndReads)
{
    const TempFile stFile("0123456789");
    void *hFile = ZYR_fopen(stFile.Path(), "rb");
    // Offset, origin, result, position afterwards, what a read of 3 gives there.
    static constexpr std::tuple<int32_t, int32_t, int32_t, int32_t, const char *> astSteps[] = {
        {4, 0, 0, 4, "456"},          {-2, 1, 0, 5, "567"},  {-3, 2, 0, 7, "789"},      {0, 2, 0, 10, ""},
        {-1, 0, -1, 10, ""},          {-11, 2, -1, 10, ""},  {5, 2, 0, 15, ""},         {0, 3, -1, 15, ""},
        {0, -1, -1, 15, ""},          {-13, 1, 0, 2, "234"}, {-6, 1, -1, 5, "567"},     {-8, 1, 0, 0, "012"},
        {INT_MAX, 0, 0, INT_MAX, ""}, {1, 1, 0, -1, ""},     {INT_MIN, 1, 0, 0, "012"},
    };
    for (const auto &[iOffset, iOrigin, iResult, iPosition, pszNext] : astSteps) {
        SCOPED_TRACE(testing::Message() << iOffset << " from " << iOrigin);
        EXPECT_EQ(ZYR_fseek(hFile, iOffset, iOrigin), iResult);
        EXPECT_EQ(ZYR_ftell(hFile), iPosition);
        EXPECT_EQ(Read_Text(hFile, 3), pszNext);
    }
    char acBuffer[16] = {};
    ZYR_fseek(hFile, 0, 0);
    EXPECT_EQ(ZYR_fread(acBuffer, 4, 3, hFile), 2); // only whole elements count
    EXPECT_STREQ(acBuffer, "0123456789");
    EXPECT_EQ(ZYR_fread(acBuffer, 0, 3, hFile), 0);
    EXPECT_LT(ZYR_fread(nullptr, 1, 3, hFile), 0);
    EXPECT_EQ(ZYR_fclose(hFile), 0);
    EXPECT_TRUE(ZYR_fread(acBuffer, 1, 1, nullptr) < 0 && ZYR_fseek(nullptr, 0, 0) != 0 &&
                ZYR_ftell(nullptr) < 0);
}

TEST_F(HostFile, OpensRegularFilesOnly)
{
    const TempFile stFile("x"), stPipe("");
    unlink(stPipe.Path());
    ASSERT_EQ(mkfifo(stPipe.Path(), 0600), 0);
    for (const char *pszPath : {"/tmp", "/dev/null", "", "/nowhere/at/all", stPipe.Path()})
        EXPECT_EQ(ZYR_fopen(pszPath, "rb"), nullptr) << pszPath;
    for (const char *pszMode : {"wb", "r+", "rb+", ""})
        EXPECT_EQ(ZYR_fopen(stFile.Path(), pszMode), nullptr) << pszMode;
    EXPECT_EQ(ZYR_fopen(nullptr, "rb"), nullptr);
}

// Positions past two gigabytes, a file that grows and shrinks while open.
TEST_F(HostFile, SizesOfOpenFilesChange)
{
    const TempFile stFile("abc");
    void *hFile = ZYR_fopen(stFile.Path(), "rb");
    EXPECT_EQ(Read_Text(hFile, 10), "abc");
    std::ofstream(stFile.Path(), std::ios::app) << "def";
    EXPECT_EQ(Read_Text(hFile, 10), "def");
    EXPECT_EQ(ZYR_fseek(hFile, -1, 2), 0);
    EXPECT_EQ(ZYR_ftell(hFile), 5);
    ASSERT_EQ(truncate(stFile.Path(), 2), 0);
    EXPECT_EQ(Read_Text(hFile, 10), "");
    EXPECT_EQ(ZYR_fseek(hFile, 0, 0), 0);
    EXPECT_EQ(Read_Text(hFile, 10), "ab");

    ASSERT_EQ(truncate(stFile.Path(), (1LL << 31) + 100), 0);
    EXPECT_EQ(ZYR_fseek(hFile, 0, 2), 0);
    EXPECT_EQ(ZYR_ftell(hFile), -1);
    EXPECT_EQ(ZYR_fseek(hFile, -101, 2), 0);
    EXPECT_EQ(ZYR_ftell(hFile), INT_MAX);
    EXPECT_EQ(Read_Text(hFile, 200).size(), 101u);
    ZYR_fclose(hFile);
    zyr_host_setLineEnds(1);
    EXPECT_EQ(ZYR_fopen(stFile.Path(), "rb"), nullptr);
}

// A reader that jumps about must not pay a system call a read, one that goes straight on must not read the
// file twice, and neither may notice.
TEST_F(HostFile, ScatteredReadsCostFewSystemCalls)
{
    constexpr uint32_t FILE_BYTES = 1 << 20, READ_BYTES = 512, READS = 4000;
    if (Get_IoCount("syscr:") < 0) GTEST_SKIP() << "this system does not count its calls";
    Random stRandom(7);
    std::string strNoise(FILE_BYTES, '\0');
    for (char &cByte : strNoise) cByte = static_cast<char>(stRandom());
    const TempFile stFile(strNoise);
    void *hFile = ZYR_fopen(stFile.Path(), "rb");

    const long long llBytesBefore = Get_IoCount("rchar:");
    for (uint32_t uiPos = 0; uiPos < FILE_BYTES / 2; uiPos += READ_BYTES)
        ASSERT_TRUE(Read_Text(hFile, READ_BYTES) == strNoise.substr(uiPos, READ_BYTES));
    EXPECT_LT(Get_IoCount("rchar:") - llBytesBefore, FILE_BYTES / 2 + 4096);

    const long long llCallsBefore = Get_IoCount("syscr:");
    for (uint32_t uiRead = 0; uiRead < READS; ++uiRead) {
        const uint32_t uiPos = stRandom() % (FILE_BYTES + READ_BYTES);
        ZYR_fseek(hFile, static_cast<int32_t>(uiPos), 0);
        ASSERT_TRUE(Read_Text(hFile, READ_BYTES) == strNoise.substr(std::min(uiPos, FILE_BYTES), READ_BYTES));
    }
    EXPECT_LT(Get_IoCount("syscr:") - llCallsBefore, READS / 4);

    std::ofstream(stFile.Path(), std::ios::app) << "grown";
    ZYR_fseek(hFile, FILE_BYTES - 1, 0);
    EXPECT_EQ(Read_Text(hFile, 10), strNoise.back() + std::string("grown"));
    ZYR_fclose(hFile);
}

TEST_F(HostFile, MappedNames)
{
    const TempFile stFile("from the file");
    const auto Map_Memory = [](const char *pszName, const char *pszBytes, uint32_t uiBytes) {
        EXPECT_EQ(zyr_host_mapMemory(pszName, pszBytes, uiBytes), 0);
        return Read_Name(pszName);
    };
    EXPECT_EQ(zyr_host_mapFile("zyrhost:a.smi", stFile.Path()), 0);
    EXPECT_EQ(Read_Name("zyrhost:a.smi"), "from the file");
    EXPECT_EQ(Read_Name("zyrhost:a.srt"), "(none)");
    EXPECT_EQ(Map_Memory("zyrhost:a.smi", "from memory", 11), "from memory");
    EXPECT_EQ(Map_Memory("zyrhost:a.smi", "", 0), "");
    EXPECT_EQ(Map_Memory("zyrhost:a.smi", nullptr, 5), "(none)");
    EXPECT_EQ(Map_Memory(stFile.Path(), "instead", 7), "instead");
    zyr_host_reset();
    EXPECT_EQ(Read_Name(stFile.Path()), "from the file");
    EXPECT_EQ(zyr_host_mapFile("never mapped", nullptr), 0);
    EXPECT_EQ(zyr_host_mapFile("", stFile.Path()), -1);
    EXPECT_EQ(zyr_host_mapMemory(nullptr, "x", 1), -1);
}

// A private name never reaches a file, though one of that very name stands in the folder.
TEST_F(HostFile, PrivateNamesExistOnlyWhenMapped)
{
    ASSERT_EQ(chdir(testing::TempDir().c_str()), 0);
    const std::string strName = "zyrhost:" + std::to_string(getpid());
    std::ofstream(strName) << "x";
    EXPECT_EQ(Read_Name(strName.c_str()), "(none)");
    EXPECT_EQ(zyr_host_mapFile("zyrhost:y", strName.c_str()), 0);
    EXPECT_EQ(Read_Name("zyrhost:y"), "x");
    unlink(strName.c_str());
}

} // namespace

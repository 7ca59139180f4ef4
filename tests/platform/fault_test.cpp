#include "host_test.h"
#include "zyr_properties.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

static bool s_bNoMemory; // the layer's own containers get none while it is set

[[gnu::noinline]] void *operator new(size_t uiBytes)
{
    void *pvBlock = s_bNoMemory ? nullptr : malloc(uiBytes);
    if (pvBlock == nullptr) throw std::bad_alloc();
    return pvBlock;
}
[[gnu::noinline]] void operator delete(void *pvBlock) noexcept
{
    free(pvBlock);
}
[[gnu::noinline]] void operator delete(void *pvBlock, size_t /*uiBytes*/) noexcept
{
    free(pvBlock);
}

namespace
{

class Fault : public HostTest
{
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        zyr_host_mapMemory("zyrhost:ten", "0123456789", 10);
        m_hFile = ZYR_fopen("zyrhost:ten", "rb");
    }
    void TearDown() override
    {
        ZYR_fclose(m_hFile);
        HostTest::TearDown();
    }
    void *m_hFile = nullptr;
};

// Which of six calls fail, as a text of '+' and '-'.
template <typename Call>
std::string Try_SixTimes(Call pfCall)
{
    std::string strResults;
    for (int iCall = 0; iCall < 6; ++iCall) strResults += pfCall() ? '+' : '-';
    return strResults;
}

bool Allocate()
{
    void *pvBlock = ZYR_malloc(8);
    ZYR_free(pvBlock);
    return pvBlock != nullptr;
}

TEST_F(Fault, NthCall)
{
    static constexpr struct {
        uint32_t uiNth;
        int iFromThenOn;
        const char *pszExpected;
    } astCases[] = {{0, 0, "++++++"}, {0, 1, "++++++"}, {1, 0, "-+++++"}, {1, 1, "------"},
                    {3, 0, "++-+++"}, {3, 1, "++----"}, {7, 1, "++++++"}};
    for (const auto &stCase : astCases) {
        zyr_host_failAllocation(stCase.uiNth, stCase.iFromThenOn);
        EXPECT_EQ(Try_SixTimes(Allocate), stCase.pszExpected);
        zyr_host_failFile(ZYR_HOST_OPEN, stCase.uiNth, 1, stCase.iFromThenOn);
        EXPECT_EQ(Try_SixTimes([] { return Read_Name("zyrhost:ten") != "(none)"; }), stCase.pszExpected);
    }
    EXPECT_EQ(zyr_host_allocations(), 42u);
    EXPECT_EQ(zyr_host_fileCalls(ZYR_HOST_OPEN), 43u);
    zyr_host_failAllocation(1, 1);
    zyr_host_failFile(ZYR_HOST_SEEK, 1, -1, 1);
    zyr_host_reset();
    EXPECT_EQ(ZYR_fseek(m_hFile, 0, 0), 0);
    EXPECT_TRUE(Allocate());
    EXPECT_EQ(zyr_host_allocations(), 1u);
    EXPECT_EQ(zyr_host_fileCalls(ZYR_HOST_OPEN), 0u);
}

TEST_F(Fault, LiveBytesAreExact)
{
    std::vector<void *> apvBlocks;
    uint64_t ullExpected = 0;
    for (const uint32_t uiBytes : {0u, 1u, 15u, 16u, 17u, 65536u, 1000000u}) {
        apvBlocks.push_back(ZYR_malloc(uiBytes));
        EXPECT_EQ(reinterpret_cast<uintptr_t>(apvBlocks.back()) % alignof(std::max_align_t), 0u);
        memset(apvBlocks.back(), 0xA5, uiBytes);
        ullExpected += uiBytes;
        EXPECT_EQ(zyr_host_liveBytes(), ullExpected);
    }
    zyr_host_failAllocation(1, 0);
    EXPECT_EQ(ZYR_malloc(99), nullptr);
    ZYR_free(nullptr);
    zyr_host_reset(); // forgets the calls, not the blocks
    EXPECT_EQ(zyr_host_liveBytes(), ullExpected);
    for (void *pvBlock : apvBlocks) ZYR_free(pvBlock);
}

TEST_F(Fault, ReadsGiveTheResultOrAreShort)
{
    static constexpr struct {
        int32_t iResult, iPosition;
        const char *pszRead;
    } astCases[] = {{-5, 2, "error -5"}, {0, 2, ""}, {1, 3, "2"}, {3, 5, "234"}, {100, 6, "2345"}};
    for (const auto &stCase : astCases) {
        ZYR_fseek(m_hFile, 2, 0);
        zyr_host_failFile(ZYR_HOST_READ, 1, stCase.iResult, 0);
        EXPECT_EQ(Read_Text(m_hFile, 4), stCase.pszRead);
        EXPECT_EQ(ZYR_ftell(m_hFile), stCase.iPosition);
        EXPECT_EQ(Read_Text(m_hFile, 1).size(), 1u);
    }
}

TEST_F(Fault, SeeksAndTells)
{
    zyr_host_failFile(ZYR_HOST_SEEK, 2, 7, 0);
    zyr_host_failFile(ZYR_HOST_TELL, 2, -9, 1);
    zyr_host_failFile(4, 1, -1, 1); // no such calls
    zyr_host_failFile(-1, 1, -1, 1);
    EXPECT_EQ(ZYR_fseek(m_hFile, 1, 0), 0);
    EXPECT_EQ(ZYR_fseek(m_hFile, 5, 0), 7);
    EXPECT_EQ(ZYR_ftell(m_hFile), 1); // the seek that failed moved nothing
    EXPECT_EQ(ZYR_ftell(m_hFile), -9);
    EXPECT_EQ(ZYR_ftell(m_hFile), -9);
    EXPECT_EQ(zyr_host_fileCalls(ZYR_HOST_SEEK), 2u);
    EXPECT_EQ(zyr_host_fileCalls(ZYR_HOST_TELL), 3u);
    EXPECT_EQ(zyr_host_fileCalls(4) + zyr_host_fileCalls(-1), 0u);
}

// What a hook answers, and what it was asked last: call, asked, real.
struct HookRecord {
    int32_t iAnswer;
    std::vector<int64_t> allAsked;
};

int32_t Answer_Hook(int iCall, uint32_t uiAsked, int32_t iReal, void *pContext)
{
    static_cast<HookRecord *>(pContext)->allAsked = {iCall, uiAsked, iReal};
    return static_cast<HookRecord *>(pContext)->iAnswer;
}

TEST_F(Fault, HookDecidesReads)
{
    static constexpr struct {
        int32_t iAnswer, iFrom, iTold, iPosition;
        const char *pszBuffer; // '.' = not written
    } astCases[] = {{4, 2, 4, 6, "2345...."},   {2, 2, 2, 4, "23......"},   {0, 2, 0, 2, "........"},
                    {-3, 2, -3, 6, "2345...."}, {50, 2, 50, 6, "2345...."}, {4, 8, 2, 10, "89......"}};
    for (const auto &stCase : astCases) {
        HookRecord stRecord = {stCase.iAnswer, {}};
        ZYR_fseek(m_hFile, stCase.iFrom, 0);
        zyr_host_setFileHook(Answer_Hook, &stRecord);
        char acBuffer[] = "........";
        EXPECT_EQ(ZYR_fread(acBuffer, 1, 4, m_hFile), stCase.iTold);
        EXPECT_STREQ(acBuffer, stCase.pszBuffer);
        EXPECT_EQ(stRecord.allAsked, (std::vector<int64_t>{ZYR_HOST_READ, 4, 4}));
        zyr_host_setFileHook(nullptr, nullptr);
        EXPECT_EQ(ZYR_ftell(m_hFile), stCase.iPosition);
    }
}

TEST_F(Fault, HookSeesTheOtherCallsDone)
{
    HookRecord stRecord = {-1, {}};
    zyr_host_setFileHook(Answer_Hook, &stRecord);
    EXPECT_EQ(ZYR_fseek(m_hFile, -4, 2), -1);
    EXPECT_EQ(stRecord.allAsked, (std::vector<int64_t>{ZYR_HOST_SEEK, 0xFFFFFFFC, 0}));
    EXPECT_EQ(ZYR_ftell(m_hFile), -1);
    EXPECT_EQ(stRecord.allAsked, (std::vector<int64_t>{ZYR_HOST_TELL, 0, 6}));
    EXPECT_EQ(ZYR_fopen("zyrhost:none", "rb"), nullptr);
    EXPECT_EQ(stRecord.allAsked, (std::vector<int64_t>{ZYR_HOST_OPEN, 0, 0}));
    stRecord.iAnswer = 0;
    EXPECT_EQ(ZYR_fopen("zyrhost:ten", "rb"), nullptr);
    EXPECT_EQ(stRecord.allAsked, (std::vector<int64_t>{ZYR_HOST_OPEN, 0, 1}));
    EXPECT_EQ(zyr_host_openFiles(), 1u);
    stRecord.allAsked = {};
    zyr_host_failFile(ZYR_HOST_TELL, 1, -8, 0);
    EXPECT_EQ(ZYR_ftell(m_hFile), -8);
    EXPECT_TRUE(stRecord.allAsked.empty());
}

TEST_F(Fault, NoMemoryForTheLayerItself)
{
    const TempFile stProperties("a.key=a value that needs memory of its own, because it is long\n");
    char acValue[ZYR_PROPERTY_VALUE_MAX];
    zyr_host_setProperty("kept", "old");
    s_bNoMemory = true;
    const int iResults =
        zyr_host_mapFile("zyrhost:ten", "/a/path/that/is/too/long/to/stand/in/the/object/itself") +
        zyr_host_mapMemory("zyrhost:a-name-that-needs-memory-of-its-own", "x", 1) +
        zyr_host_setProperty("kept", "a new value that needs memory of its own") +
        zyr_host_loadProperties(stProperties.Path());
    s_bNoMemory = false;
    EXPECT_EQ(iResults, -4);
    EXPECT_EQ(property_get("kept", acValue, ""), 3);
    EXPECT_EQ(Read_Name("zyrhost:ten"), "0123456789");
}

} // namespace

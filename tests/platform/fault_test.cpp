#include "host_test.h"
#include "zyr_properties.h"

#include <cstddef>
#include <cstdlib>
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
    Fault()
    {
        zyr_host_mapMemory("zyrhost:ten", "0123456789", 10);
        m_hFile = ZYR_fopen("zyrhost:ten", "rb");
    }
    ~Fault() override { ZYR_fclose(m_hFile); }

    // From now on calls get m_iAnswer, and what they asked is written down: call, asked, real.
    void Set_Hook()
    {
        const auto pfAnswer = [](int iCall, uint32_t uiAsked, int32_t iReal, void *pvTest) {
            const std::string strAsked = std::to_string(iCall) + " " + std::to_string(uiAsked) + " ";
            static_cast<Fault *>(pvTest)->m_stLog.Add(strAsked + std::to_string(iReal));
            return static_cast<Fault *>(pvTest)->m_iAnswer;
        };
        zyr_host_setFileHook(pfAnswer, this);
    }
    void *m_hFile = nullptr;
    int32_t m_iAnswer = 0;
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
    static constexpr std::tuple<uint32_t, int, const char *> astCases[] = {
        {0, 0, "++++++"}, {0, 1, "++++++"}, {1, 0, "-+++++"}, {1, 1, "------"},
        {3, 0, "++-+++"}, {3, 1, "++----"}, {7, 1, "++++++"}};
    for (const auto &[uiNth, iFromThenOn, pszExpected] : astCases) {
        zyr_host_failAllocation(uiNth, iFromThenOn);
        EXPECT_EQ(Try_SixTimes(Allocate), pszExpected);
        zyr_host_failFile(ZYR_HOST_OPEN, uiNth, 1, iFromThenOn);
        EXPECT_EQ(Try_SixTimes([] { return Read_Name("zyrhost:ten") != "(none)"; }), pszExpected);
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
        void *pvBlock = apvBlocks.emplace_back(ZYR_malloc(uiBytes));
        EXPECT_EQ(reinterpret_cast<uintptr_t>(pvBlock) % alignof(std::max_align_t), 0u);
        memset(pvBlock, 0xA5, uiBytes);
        EXPECT_EQ(zyr_host_liveBytes(), ullExpected += uiBytes);
    }
    zyr_host_failAllocation(1, 0);
    EXPECT_EQ(ZYR_malloc(99), nullptr);
    ZYR_free(nullptr);
    zyr_host_reset(); // forgets the calls, not the blocks
    EXPECT_EQ(zyr_host_liveBytes(), ullExpected);
    for (void *pvBlock : apvBlocks) ZYR_free(pvBlock);
}

// A set result that is positive shortens the read; a hook may also lie about a whole one.
TEST_F(Fault, ReadsGiveTheResultOrAreShort)
{
    static constexpr struct {
        bool bHook;
        int32_t iAnswer, iFrom, iTold, iPosition;
        const char *pszBuffer; // '.' = not written
    } astCases[] = {{false, -5, 2, -5, 2, "........"}, {false, 0, 2, 0, 2, "........"},
                    {false, 1, 2, 1, 3, "2......."},   {false, 3, 2, 3, 5, "234....."},
                    {false, 100, 2, 4, 6, "2345...."}, {true, 4, 2, 4, 6, "2345...."},
                    {true, 2, 2, 2, 4, "23......"},    {true, 0, 2, 0, 2, "........"},
                    {true, -3, 2, -3, 6, "2345...."},  {true, 50, 2, 50, 6, "2345...."},
                    {true, 4, 8, 2, 10, "89......"}};
    for (const auto &[bHook, iAnswer, iFrom, iTold, iPosition, pszBuffer] : astCases) {
        char acBuffer[] = "........";
        ZYR_fseek(m_hFile, iFrom, 0);
        m_iAnswer = iAnswer;
        if (bHook) Set_Hook();
        zyr_host_failFile(ZYR_HOST_READ, bHook ? 0 : 1, iAnswer, 0);
        EXPECT_EQ(ZYR_fread(acBuffer, 1, 4, m_hFile), iTold);
        EXPECT_STREQ(acBuffer, pszBuffer);
        EXPECT_EQ(m_stLog.Take(), bHook ? "1 4 4|" : "");
        zyr_host_setFileHook(nullptr, nullptr);
        EXPECT_EQ(ZYR_ftell(m_hFile), iPosition) << iAnswer;
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

TEST_F(Fault, HookSeesTheOtherCallsDone)
{
    Set_Hook();
    m_iAnswer = -1;
    EXPECT_EQ(ZYR_fseek(m_hFile, -4, 2), -1);
    EXPECT_EQ(ZYR_ftell(m_hFile), -1);
    EXPECT_EQ(ZYR_fopen("zyrhost:none", "rb"), nullptr);
    m_iAnswer = 0;
    EXPECT_EQ(ZYR_fopen("zyrhost:ten", "rb"), nullptr);
    EXPECT_EQ(zyr_host_openFiles(), 1u);
    zyr_host_failFile(ZYR_HOST_TELL, 1, -8, 0);
    EXPECT_EQ(ZYR_ftell(m_hFile), -8); // the hook is not asked
    EXPECT_EQ(m_stLog.Take(), "2 4294967292 0|3 0 6|0 0 0|0 0 1|");
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

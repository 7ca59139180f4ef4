// What the tests of the host platform share, and with them those of what stands on it.
#ifndef ZYR_TESTS_HOST_TEST_H
#define ZYR_TESTS_HOST_TEST_H

#include "zyr/zyr_host.h"
#include "zyr_base.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <tuple>
#include <unistd.h>
#include <utility>

constexpr uint32_t PLANE_BYTES = 4 * 1024 * 1024; // the caption memory
constexpr uint32_t PLANE_PHYS = 0x9C000000;

// The same numbers in every run.
using Random = std::independent_bits_engine<std::mt19937, 32, uint32_t>;

// What happened as one text, each entry before a bar.
class Transcript
{
public:
    void Add(const std::string &strEntry) { m_strText.append(strEntry).append("|"); }

    /** @return what came since the last call, but for the first entries */
    std::string Take(uint32_t uiSkip = 0)
    {
        std::string strTaken = std::exchange(m_strText, {});
        for (; uiSkip > 0; --uiSkip) strTaken.erase(0, strTaken.find('|') + 1);
        return strTaken;
    }

    /** A log sink. A message stands behind its priority and its tag: "6:text", "6:TAG!text". */
    static void Take_Log(int iPriority, const char *pszTag, const char *pszText, void *pvTranscript)
    {
        const std::string strTag = pszTag != nullptr ? std::string(pszTag) + "!" : "";
        static_cast<Transcript *>(pvTranscript)->Add(std::to_string(iPriority) + ":" + strTag + pszText);
    }

    /** A device trace. A step is its name and its argument's words, addresses counted from PLANE_PHYS. */
    static void Take_Step(uint32_t uiStep, const void *pvArgument, uint32_t uiBytes, void *pvTranscript)
    {
        static std::map<uint32_t, std::string> s_astrNames = {
            {1, "open"},    {2, "region "},  {3, "map"},    {4, "unmap"},  {5, "close"},
            {0x103, "set"}, {0x104, "show"}, {0x105, "on"}, {0x106, "off"}};
        const std::string_view strArgument(static_cast<const char *>(pvArgument), uiBytes);
        std::string strStep = s_astrNames[uiStep];
        if (uiStep == 2) strStep += strArgument;
        for (uint32_t uiByte = 0; uiStep != 2 && uiByte < uiBytes; uiByte += 4) {
            uint32_t uiWord = 0;
            memcpy(&uiWord, &strArgument[uiByte], sizeof(uiWord));
            if (uiWord - PLANE_PHYS < PLANE_BYTES) uiWord -= PLANE_PHYS;
            strStep += " " + std::to_string(static_cast<int32_t>(uiWord));
        }
        static_cast<Transcript *>(pvTranscript)->Add(strStep);
    }

private:
    std::string m_strText;
};

// Begins with a fresh platform whose log is written down; nothing may be left behind at the end.
class HostTest : public testing::Test
{
protected:
    HostTest()
    {
        zyr_host_reset();
        zyr_host_setLogSink(Transcript::Take_Log, &m_stLog);
    }
    ~HostTest() override
    {
        zyr_host_reset();
        EXPECT_EQ(zyr_host_openFiles(), 0u);
        EXPECT_EQ(zyr_host_liveBytes(), 0u);
        EXPECT_EQ(Get_FreeDescriptor(), m_iFreeDescriptor) << "a descriptor was left open";
    }
    /** Compare a call's result and what it wrote down, but for the first entries. */
    void Expect(int32_t iResult, int32_t iExpected, const std::string &strExpected, uint32_t uiSkip = 0)
    {
        const std::string strWritten = m_stLog.Take(uiSkip);
        EXPECT_EQ(iResult, iExpected) << strExpected;
        EXPECT_EQ(strWritten, strExpected);
    }
    Transcript m_stLog;

private:
    static int Get_FreeDescriptor()
    {
        const int iDescriptor = dup(STDERR_FILENO);
        close(iDescriptor);
        return iDescriptor;
    }
    const int m_iFreeDescriptor = Get_FreeDescriptor();
};

// A file that is gone with the object.
struct TempFile {
    explicit TempFile(std::string_view strBytes) { std::ofstream(strPath, std::ios::binary) << strBytes; }
    TempFile(const TempFile &) = delete;
    TempFile &operator=(const TempFile &) = delete;
    ~TempFile() { unlink(Path()); }
    const char *Path() const { return strPath.c_str(); }

    static inline int s_iNumber = 0;
    const std::string strPath =
        testing::TempDir() + "zyrhost_" + std::to_string(getpid()) + "_" + std::to_string(++s_iNumber);
};

/** Read up to uiBytes in one call. @return what was read; "error -1" and so on for a negative result */
inline std::string Read_Text(void *hFile, uint32_t uiBytes)
{
    std::string strText(uiBytes, '\0');
    const int32_t iRead = ZYR_fread(strText.data(), 1, uiBytes, hFile);
    if (iRead < 0) return "error " + std::to_string(iRead);
    strText.resize(static_cast<size_t>(iRead));
    return strText;
}

/** @return up to 100 bytes of a file, "(none)" when it does not open */
inline std::string Read_Name(const char *pszName)
{
    void *hFile = ZYR_fopen(pszName, "rb");
    if (hFile == nullptr) return "(none)";
    std::string strText = Read_Text(hFile, 100);
    ZYR_fclose(hFile);
    return strText;
}

#endif

// What the tests of the host layer share: the layer at its start for every test, and files of the test's own.
#ifndef ZYR_TESTS_HOST_TEST_H
#define ZYR_TESTS_HOST_TEST_H

#include "zyr/zyr_host.h"
#include "zyr_base.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

class HostTest : public testing::Test
{
protected:
    void SetUp() override
    {
        zyr_host_reset();
        m_iFreeDescriptor = Get_FreeDescriptor();
    }
    void TearDown() override
    {
        zyr_host_reset();
        EXPECT_EQ(zyr_host_openFiles(), 0u);
        EXPECT_EQ(zyr_host_liveBytes(), 0u);
        EXPECT_EQ(Get_FreeDescriptor(), m_iFreeDescriptor) << "a descriptor was left open";
    }

private:
    static int Get_FreeDescriptor()
    {
        const int iDescriptor = dup(STDERR_FILENO);
        close(iDescriptor);
        return iDescriptor;
    }
    int m_iFreeDescriptor = -1;
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

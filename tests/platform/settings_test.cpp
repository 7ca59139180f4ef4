#include "host_test.h"
#include "zyr_ccfb.h"
#include "zyr_log.h"
#include "zyr_properties.h"

#include <cstdlib>

namespace
{

using Settings = HostTest;

std::string Get_Property(const std::string &strKey, const char *pszDefault = "(unset)")
{
    char acValue[ZYR_PROPERTY_VALUE_MAX];
    const int iLength = property_get(strKey.c_str(), acValue, pszDefault);
    EXPECT_EQ(static_cast<size_t>(iLength), strlen(acValue));
    return acValue;
}

TEST_F(Settings, Properties)
{
    static const std::string s_strKey31(31, 'k'), s_strValue91(91, 'v');
    // Key, value, result, a look at the key afterwards.
    static const std::tuple<std::string, std::string, int, std::string> astSteps[] = {
        {"a", "1", 0, "1"},
        {"a", "2", 0, "2"},
        {"a", s_strValue91, 0, s_strValue91},
        {"a", s_strValue91 + "v", -1, s_strValue91},
        {s_strKey31, "x", 0, "x"},
        {s_strKey31 + "k", "x", -1, "(unset)"},
        {"", "x", -1, "(unset)"},
        {"b", "", 0, ""},
    };
    for (const auto &[strKey, strValue, iResult, strAfter] : astSteps) {
        EXPECT_EQ(zyr_host_setProperty(strKey.c_str(), strValue.c_str()), iResult) << strKey << strValue;
        EXPECT_EQ(Get_Property(strKey), strAfter);
    }
    for (uint32_t uiRound = 0; uiRound < 2; ++uiRound) { // unset, and unset again
        EXPECT_EQ(zyr_host_setProperty("a", nullptr), 0);
        EXPECT_EQ(Get_Property("a", (s_strValue91 + "more").c_str()),
                  s_strValue91); // within the caller's room
        EXPECT_EQ(Get_Property("a", nullptr), "");
    }
    EXPECT_EQ(zyr_host_setProperty(nullptr, "x"), -1);
    zyr_host_reset();
    EXPECT_EQ(Get_Property(s_strKey31), "(unset)");
}

TEST_F(Settings, PropertiesFile)
{
    const TempFile stGood("# a comment\n\n  mode = 1 \r\nempty=\neq=a=b\nhash=1 # 2\nlast=no newline");
    const TempFile stBad("mode=2\nno equal sign\n=no key\n" + std::string(32, 'k') + "=1\nafter=3\n");
    EXPECT_EQ(zyr_host_loadProperties(stGood.Path()), 0);
    static constexpr const char *apszExpected[][2] = {{"mode", "1"},          {"empty", ""},
                                                      {"eq", "a=b"},          {"hash", "1 # 2"},
                                                      {"last", "no newline"}, {"# a comment", "(unset)"}};
    for (const auto &[pszKey, pszValue] : apszExpected) EXPECT_EQ(Get_Property(pszKey), pszValue);
    EXPECT_EQ(zyr_host_loadProperties(stBad.Path()), -1);
    EXPECT_EQ(Get_Property("mode") + Get_Property("after"), "23");
    for (const char *pszPath : {"/tmp", "/nowhere"}) EXPECT_EQ(zyr_host_loadProperties(pszPath), -1);
}

TEST_F(Settings, LogSinkGetsEveryMessageWhole)
{
    __android_log_print(3, nullptr, "[%s] %d\n", "step", -4);
    EXPECT_EQ(m_stLog.Take(), "3:[step] -4\n|");
    for (const size_t uiLength : {0u, 1023u, 1024u, 5000u}) {
        const std::string strText(uiLength, 'y');
        __android_log_print(6, "TAG", "%s", strText.c_str());
        EXPECT_EQ(m_stLog.Take(), "6:TAG!" + strText + "|");
    }
    zyr_host_reset();
    __android_log_print(6, "TAG", "no more");
    EXPECT_EQ(m_stLog.Take(), "");
}

TEST_F(Settings, DefaultLogSinkFilters)
{
    static constexpr const char *apszCases[][2] = {
        {"off", ""}, {"nonsense", ""}, {"error", "E TAG: e\n"}, {"debug", "D -: d\nE TAG: e\n"}};
    for (const auto &[pszLevel, pszWritten] : apszCases) {
        setenv("ZYR_LOG", pszLevel, 1);
        zyr_host_setLogSink(nullptr, nullptr);
        testing::internal::CaptureStderr();
        __android_log_print(3, nullptr, "%c", 'd');
        __android_log_print(6, "TAG", "e\n");
        EXPECT_EQ(testing::internal::GetCapturedStderr(), pszWritten) << pszLevel;
    }
    unsetenv("ZYR_LOG");
}

TEST_F(Settings, FontIsTheOneSetThenOfTheEnvironmentThenOfTheSystem)
{
    unsetenv("ZYR_FONT");
    static constexpr char szBox[] = "/system/fonts/DroidSansFallback.ttf";
    static constexpr char szDesktop[] = "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc";
    EXPECT_STREQ(zyr_platform_fontPath(), access(szBox, R_OK) == 0 ? szBox : szDesktop);
    setenv("ZYR_FONT", "/from/environment.ttf", 1);
    std::string strPath = "/set.ttf";
    zyr_host_setFontFile(strPath.c_str());
    strPath = "/gone.ttf";
    EXPECT_STREQ(zyr_platform_fontPath(), "/set.ttf");
    zyr_host_reset();
    EXPECT_STREQ(zyr_platform_fontPath(), "/from/environment.ttf");
    unsetenv("ZYR_FONT");
}

} // namespace

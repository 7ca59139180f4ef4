#include "host_test.h"
#include "zyr_ccfb.h"
#include "zyr_log.h"
#include "zyr_properties.h"

#include <cstdlib>
#include <cstring>
#include <vector>

namespace
{

using Settings = HostTest;

std::string Get_Property(const char *pszKey, const char *pszDefault = "(unset)")
{
    char acValue[ZYR_PROPERTY_VALUE_MAX];
    const int iLength = property_get(pszKey, acValue, pszDefault);
    EXPECT_EQ(static_cast<size_t>(iLength), strlen(acValue));
    return acValue;
}

TEST_F(Settings, Properties)
{
    const std::string strKey(31, 'k'), strValue(91, 'v');
    const struct {
        const char *pszKey, *pszValue;
        int iResult;
        std::string strAfter; // a look at the key afterwards
    } astSteps[] = {
        {"a", "1", 0, "1"},
        {"a", "2", 0, "2"},
        {"a", strValue.c_str(), 0, strValue},
        {"a", "92 bytes: vvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvvv",
         -1, strValue},
        {"a", "", 0, ""},
        {"a", nullptr, 0, "(unset)"},
        {"a", nullptr, 0, "(unset)"},
        {strKey.c_str(), "x", 0, "x"},
        {"kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk", "32 bytes", -1, "(unset)"},
        {"", "x", -1, "(unset)"},
        {nullptr, "x", -1, "(unset)"},
    };
    for (const auto &stStep : astSteps) {
        SCOPED_TRACE(&stStep - astSteps);
        EXPECT_EQ(zyr_host_setProperty(stStep.pszKey, stStep.pszValue), stStep.iResult);
        EXPECT_EQ(Get_Property(stStep.pszKey), stStep.strAfter);
    }
    EXPECT_EQ(Get_Property("a", (strValue + "more").c_str()), strValue); // never past the caller's room
    EXPECT_EQ(Get_Property("a", nullptr), "");
    zyr_host_reset();
    EXPECT_EQ(Get_Property(strKey.c_str()), "(unset)");
}

TEST_F(Settings, PropertiesFile)
{
    const TempFile stGood("# a comment\n\n  mode = 1 \r\nempty=\neq=a=b\nhash=1 # 2\nlast=no newline");
    const TempFile stBad("mode=2\nno equal sign\n=no key\n" + std::string(32, 'k') + "=1\nafter=3\n");
    EXPECT_EQ(zyr_host_loadProperties(stGood.Path()), 0);
    static constexpr const char *apszExpected[][2] = {{"mode", "1"},          {"empty", ""},
                                                      {"eq", "a=b"},          {"hash", "1 # 2"},
                                                      {"last", "no newline"}, {"# a comment", "(unset)"}};
    for (const auto &apszRow : apszExpected) EXPECT_EQ(Get_Property(apszRow[0]), apszRow[1]) << apszRow[0];
    EXPECT_EQ(zyr_host_loadProperties(stBad.Path()), -1);
    EXPECT_EQ(Get_Property("mode") + Get_Property("after"), "23");
    for (const char *pszPath : {"/tmp", "/nowhere/at/all"})
        EXPECT_EQ(zyr_host_loadProperties(pszPath), -1) << pszPath;
}

void Record_Message(int iPriority, const char *pszTag, const char *pszText, void *pContext)
{
    const std::string strHead = std::to_string(iPriority) + (pszTag != nullptr ? pszTag : "(null)");
    static_cast<std::vector<std::string> *>(pContext)->push_back(strHead + "|" + pszText);
}

TEST_F(Settings, LogSinkGetsEveryMessageWhole)
{
    std::vector<std::string> astrMessages;
    zyr_host_setLogSink(Record_Message, &astrMessages);
    __android_log_print(3, nullptr, "[%s] %d\n", "step", -4);
    EXPECT_EQ(astrMessages.back(), "3(null)|[step] -4\n");
    for (const size_t uiLength : {0u, 1023u, 1024u, 5000u}) {
        const std::string strText(uiLength, 'y');
        __android_log_print(6, "TAG", "%s", strText.c_str());
        EXPECT_EQ(astrMessages.back(), "6TAG|" + strText);
    }
    zyr_host_reset();
    __android_log_print(6, "TAG", "no more");
    EXPECT_EQ(astrMessages.size(), 5u);
}

TEST_F(Settings, DefaultLogSinkFilters)
{
    static constexpr const char *apszCases[][2] = {
        {"off", ""}, {"nonsense", ""}, {"error", "E TAG: e\n"}, {"debug", "D -: d\nE TAG: e\n"}};
    for (const auto &apszCase : apszCases) {
        setenv("ZYR_LOG", apszCase[0], 1);
        zyr_host_setLogSink(nullptr, nullptr);
        testing::internal::CaptureStderr();
        __android_log_print(3, nullptr, "%c", 'd');
        __android_log_print(6, "TAG", "e\n");
        EXPECT_EQ(testing::internal::GetCapturedStderr(), apszCase[1]) << apszCase[0];
    }
    unsetenv("ZYR_LOG");
}

TEST_F(Settings, FontIsTheOneSetThenOfTheEnvironmentThenOfTheSystem)
{
    unsetenv("ZYR_FONT");
    const bool bBox = access("/system/fonts/DroidSansFallback.ttf", R_OK) == 0;
    EXPECT_STREQ(zyr_platform_fontPath(), bBox ? "/system/fonts/DroidSansFallback.ttf"
                                               : "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc");
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

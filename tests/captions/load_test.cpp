// Loads: what they refuse, what they tell of an encoding, and that they leave everything else alone.
#include "captions_kit.h"

#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "zyr/zyr_host.h"
#include "zyr/zyr_subtitle.h"

namespace
{

// A folder of this test alone, removed when it goes.
struct TestFolder {
    TestFolder()
        : stPath(std::filesystem::temp_directory_path() / ("captions_test-" + std::to_string(getpid())))
    {
        std::filesystem::create_directories(stPath);
    }
    ~TestFolder() { std::filesystem::remove_all(stPath); }
    std::string Write(const std::string &strName, const std::string &strBytes) const
    {
        std::ofstream(stPath / strName, std::ios::binary) << strBytes;
        return (stPath / strName).string();
    }
    std::filesystem::path stPath;
};

std::string Describe(const ListPtr &pstList)
{
    std::ostringstream stOut;
    stOut << zyrCaptions_getError(pstList.get()) << '\n';
    for (uint32_t uiIndex = 0; uiIndex < zyrCaptions_count(pstList.get()); ++uiIndex) {
        const ZyrCaption stCaption = Get(pstList, uiIndex);
        stOut << stCaption.iStart << ' ' << stCaption.iEnd << ' ' << stCaption.uiClass << ' '
              << stCaption.pszText << '\n';
    }
    return stOut.str();
}

} // namespace

TEST(CaptionLoad, EveryFailureNamesTheFileAndSaysWhatIsWrong)
{
    const TestFolder stFolder;
    const std::string strFolder = stFolder.stPath.string();
    const std::string strPipe = strFolder + "/pipe.srt";
    ASSERT_EQ(mkfifo(strPipe.c_str(), 0600), 0);
    const struct {
        std::string strPath;
        int iError;
        const char *pszSays;
        ZyrCaptionsOptions stOptions = {};
    } astCases[] = {
        {strFolder + "/none.srt", ZYR_CAPTIONS_NOT_FOUND, "no such file"},
        {strFolder + "/none.avi", ZYR_CAPTIONS_NOT_FOUND, "no readable subtitle beside it"},
        {strFolder, ZYR_CAPTIONS_FOLDER, "a folder"},
        {strPipe, ZYR_CAPTIONS_UNREADABLE, "no regular file"},
        {stFolder.Write("a.ass", "[Script Info]"), ZYR_CAPTIONS_NO_FORMAT, "ASS"},
        {stFolder.Write("a.vtt", "WEBVTT"), ZYR_CAPTIONS_NO_FORMAT, "WebVTT"},
        {stFolder.Write("empty.srt", ""), ZYR_CAPTIONS_EMPTY, "empty"},
        {Sample("subviewer-no-header.sub"), ZYR_CAPTIONS_MALFORMED, "not a subtitle"},
        {Sample("subrip-lf.srt"), ZYR_CAPTIONS_NO_CODE_PAGE, "no code page 'CP0'", {"CP0", nullptr, 0, 0, 0}},
        {Sample("sami-seven.smi"), ZYR_CAPTIONS_BAD_ARGUMENT, "option", {nullptr, nullptr, 1, 0, 0}},
        {Sample("sami-seven.smi"), ZYR_CAPTIONS_BAD_ARGUMENT, "option", {nullptr, nullptr, 0, 0x80, 0}},
    };
    for (const auto &stCase : astCases) {
        const ListPtr pstList = Load(stCase.strPath, stCase.stOptions);
        const std::string strText = zyrCaptions_getErrorText(pstList.get());
        EXPECT_EQ(zyrCaptions_getError(pstList.get()), stCase.iError) << strText;
        EXPECT_NE(strText.find(stCase.pszSays), std::string::npos) << strText;
        EXPECT_EQ(zyrCaptions_count(pstList.get()), 0U);
        ZyrCaption stCaption;
        EXPECT_NE(zyrCaptions_get(pstList.get(), 0, &stCaption), ZYR_CAPTIONS_OK);
        EXPECT_STREQ(stCaption.pszText, "");
    }
    const char *const apszNone[] = {"NOCC"};
    const ListPtr pstList = Load(Sample("sami-interleaved.smi"), {nullptr, apszNone, 1, 0, 0});
    EXPECT_STREQ(
        zyrCaptions_getErrorText(pstList.get()),
        (Sample("sami-interleaved.smi") + ": no language class 'NOCC'; there are: 0 KRCC, 1 ENCC").c_str());
}

TEST(CaptionLoad, NothingIsAnEmptyList)
{
    EXPECT_EQ(zyrCaptions_getError(nullptr), ZYR_CAPTIONS_NO_MEMORY);
    EXPECT_STRNE(zyrCaptions_getErrorText(nullptr), "");
    EXPECT_EQ(zyrCaptions_count(nullptr), 0U);
    EXPECT_EQ(zyrCaptions_getAt(nullptr, 0, 0, nullptr, 0), 0U);
    EXPECT_EQ(zyrCaptions_getNext(nullptr, 0, 0), ZYR_CAPTIONS_NONE);
    EXPECT_EQ(zyrCaptions_getPrevious(nullptr, 0, 0), ZYR_CAPTIONS_NONE);
    EXPECT_EQ(zyrCaptions_getNextChange(nullptr, 0), ZYR_CAPTIONS_OPEN_END);
    ZyrCaptionsFile stFile;
    EXPECT_EQ(zyrCaptions_getFile(nullptr, &stFile), ZYR_CAPTIONS_OK);
    EXPECT_STREQ(stFile.pszFormat, "none");
    EXPECT_EQ(zyrCaptions_getFoldedName(nullptr, 0, 0), nullptr);
    zyrCaptions_free(nullptr);
    EXPECT_EQ(zyrCaptions_getError(Load_Text("hello", nullptr).get()), ZYR_CAPTIONS_NO_FORMAT);
}

TEST(CaptionLoad, WhyTheEncoding)
{
    const struct {
        const char *pszWhy;
        std::string strText;
        const char *pszEncoding;
        uint32_t uiRule, uiCharacters, uiInvalid;
        size_t uiFirstInvalid, uiUnreadable;
        uint32_t uiBad; // in the captions
        const char *pszCodePage = "CP949";
    } astCases[] = {
        {"a mark", "caf\xC3\xA9", "UTF-8", ZYR_CAPTIONS_BY_MARK, 0, 0, ZYR_CAPTIONS_NOWHERE,
         ZYR_CAPTIONS_NOWHERE, 0},
        {"plain", "plain", "ANSI", ZYR_CAPTIONS_BY_FALLBACK, 0, 0, ZYR_CAPTIONS_NOWHERE, ZYR_CAPTIONS_NOWHERE,
         0},
        {"one character", "caf\xC3\xA9", "UTF-8", ZYR_CAPTIONS_BY_SCAN, 1, 0, ZYR_CAPTIONS_NOWHERE,
         ZYR_CAPTIONS_NOWHERE, 0},
        {"a stray byte", "caf\xC3\xA9 \xFF", "ANSI", ZYR_CAPTIONS_BY_FALLBACK, 1, 1, 40, 40, 1},
        {"many stray bytes", std::string(30, '\xFF'), "ANSI", ZYR_CAPTIONS_BY_SCAN, 0, 21, 34, 34, 30},
        {"a character that another breaks off", "\xE2\x82\xC3\xA9 \xC3\xA9", "ANSI", ZYR_CAPTIONS_BY_FALLBACK,
         1, 2, 36, 34, 2},
        {"bytes that no one ever writes", "\xF0\x9F\x90\x8B\xC0\xF5", "ANSI", ZYR_CAPTIONS_BY_FALLBACK, 1, 2,
         38, 39, 1, "CP932"},
    };
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.pszWhy);
        const bool bMark = stCase.uiRule == ZYR_CAPTIONS_BY_MARK;
        ZyrCaptionsOptions stOptions = {};
        stOptions.pszCodePage = stCase.pszCodePage;
        const ListPtr pstList = Load_Text(
            (bMark ? "\xEF\xBB\xBF" : "") + SubRip_Entry(1000, 2000, stCase.strText), "x.srt", stOptions);
        const ZyrCaptionsFile stFile = Get_File(pstList);
        EXPECT_STREQ(stFile.pszEncoding, stCase.pszEncoding);
        EXPECT_EQ(stFile.uiRule, stCase.uiRule);
        EXPECT_EQ(stFile.uiUtf8Characters, stCase.uiCharacters);
        EXPECT_EQ(stFile.uiNotUtf8, stCase.uiInvalid);
        EXPECT_EQ(stFile.uiFirstNotUtf8, stCase.uiFirstInvalid);
        EXPECT_EQ(stFile.uiFirstUnreadable, stCase.uiUnreadable);
        EXPECT_EQ(stFile.uiBadCharacters, stCase.uiBad);
        EXPECT_EQ(Get(pstList, 0).uiBadCharacters, stCase.uiBad);
    }
}

TEST(CaptionLoad, CodePagesAreFoundOut)
{
    const struct {
        std::string strText;
        const char *pszName;
        const char *pszRead;
        uint32_t bSingle;
    } astCases[] = {
        {"\xBF\xEC\xB8\xAE\xB4\xC2 \xB9\xD9\xB4\xD9\xB7\xCE \xB0\xA1\xBC\xAD \xB3\xEB\xB7\xA1\xB8\xA6",
         "CP949", "우리는 바다로 가서 노래를", 0},
        {"\xD3\xEE\xD6\xE6\xCA\xD8\xBB\xA4\xC9\xF1\xB1\xA3\xBB\xA4\xCE\xD2\xC3\xC7\xD4\xB6\xC0\xEB\xD0\xB0"
         "\xB6\xF1"
         "\xBD\xF1\xCC\xEC\xCC\xEC\xC6\xF8\xBA\xDC\xBA\xC3",
         "GB18030", "宇宙守护神保护我们远离邪恶今天天气很好", 0},
        {"\xCA\xEE\xE3\xE4\xE0 \xF1\xEE\xEB\xED\xF6\xE5 \xF1\xE0\xE4\xE8\xF2\xF1\xFF, "
         "\xE7\xE0\xE6\xE8\xE3\xE0\xE5"
         "\xF2\xF1\xFF \xF1\xE2\xE5\xF2",
         "WINDOWS-1251", "Когда солнце садится, зажигается свет", 1},
    };
    for (const auto &stCase : astCases) {
        const ListPtr pstList = Load_Text(SubRip_Entry(1000, 2000, stCase.strText), "x.srt");
        const ZyrCaptionsFile stFile = Get_File(pstList);
        EXPECT_STREQ(stFile.pszCodePage, stCase.pszName);
        EXPECT_EQ(stFile.bGuessed, 1U);
        EXPECT_EQ(stFile.bSingleByte, stCase.bSingle);
        EXPECT_STREQ(Get(pstList, 0).pszText, stCase.pszRead);
        ZyrCaptionCodePage stPage;
        ASSERT_EQ(zyrCaptions_getCodePage(pstList.get(), 0, &stPage), ZYR_CAPTIONS_OK);
        EXPECT_STREQ(stPage.pszName, stCase.pszName);
        EXPECT_STREQ(stPage.pszPreview, stCase.pszRead);
        EXPECT_EQ(stPage.bInUse, 1U);
    }
}

TEST(CaptionLoad, LineEndsOfTheBox)
{
    ZyrCaptionsOptions stOptions = {};
    stOptions.uiFlags = ZYR_CAPTIONS_BOX_LINE_ENDS;
    zyr_host_setLineEnds(1); // the program's own choice has no say in it
    EXPECT_NE(Describe(Load(Sample("subrip-lf.srt"), stOptions)), Describe(Load(Sample("subrip-lf.srt"))));
    EXPECT_EQ(zyr_host_getLineEnds(), 1);
    zyr_host_reset();
    EXPECT_EQ(Describe(Load(Sample("subrip-crlf.srt"), stOptions)), Describe(Load(Sample("subrip-lf.srt"))));
}

static void Count_Message(int /*iPriority*/, const char * /*pszTag*/, const char * /*pszText*/, void *pvCount)
{
    ++*static_cast<int *>(pvCount);
}

TEST(CaptionLoad, LeavesTheProgramsEngineAndHostLayerAlone)
{
    int iMessages = 0;
    void *pvContext = nullptr;
    zyr_host_setLogSink(Count_Message, &iMessages);
    const uint64_t ullLive = zyr_host_liveBytes();
    EXPECT_EQ(zyrCaptions_getError(Load(Sample("subrip-malformed.srt")).get()), ZYR_CAPTIONS_OK);
    EXPECT_EQ(iMessages, 0) << "the messages of a load are the list's";
    EXPECT_EQ(zyr_host_getLogSink(&pvContext), &Count_Message);
    EXPECT_EQ(pvContext, &iMessages);
    EXPECT_EQ(zyr_host_getLineEnds(), 0);
    EXPECT_EQ(zyr_host_liveBytes(), ullLive);
    EXPECT_EQ(zyr_host_openFiles(), 0U);
    ASSERT_EQ(zyrSubtitle_open(Sample("sami-interleaved.avi").c_str(), 0), 0U);
    const ListPtr pstBusy = Load(Sample("subrip-crlf.srt"));
    EXPECT_EQ(zyrCaptions_getError(pstBusy.get()), ZYR_CAPTIONS_BUSY);
    uint32_t uiClasses = 0;
    EXPECT_EQ(zyrSubtitle_getClassNums(&uiClasses), 0U) << "what was open is still open";
    zyrSubtitle_close();
    zyr_host_reset();
}

// With each allocation of the engine failing in turn a load fails with a code, or gives the same list.
TEST(CaptionLoad, EveryFailingAllocation)
{
    for (const char *pszSample : {"sami-seven.smi", "ssa-styles.ssa", "subviewer.sub"}) {
        const std::string strGood = Describe(Load(Sample(pszSample)));
        uint32_t uiFailed = 0;
        for (uint32_t uiNth = 1; uiNth < 200; ++uiNth) {
            zyr_host_failAllocation(uiNth, 1);
            const ListPtr pstList = Load(Sample(pszSample));
            zyr_host_failAllocation(0, 0);
            const bool bGood = zyrCaptions_getError(pstList.get()) == ZYR_CAPTIONS_OK;
            uiFailed += bGood ? 0 : 1;
            EXPECT_EQ(bGood ? Describe(pstList) : strGood, strGood) << pszSample << uiNth;
            EXPECT_EQ(zyr_host_liveBytes(), 0U);
        }
        EXPECT_GT(uiFailed, 3U) << pszSample;
    }
    zyr_host_reset();
}

TEST(CaptionLoad, EightThreadsGetTheSameLists)
{
    const std::vector<std::string> astrFiles = List_Samples();
    std::vector<std::string> astrAlone;
    for (const std::string &strFile : astrFiles) astrAlone.push_back(Describe(Load(strFile)));
    std::vector<size_t> auiDifferent(8, 0);
    std::vector<std::thread> astThreads;
    for (size_t uiThread = 0; uiThread < auiDifferent.size(); ++uiThread)
        astThreads.emplace_back([&, uiThread] {
            for (size_t uiLoad = 0; uiLoad < 130; ++uiLoad) {
                const size_t uiFile = (uiThread * 5 + uiLoad) % astrFiles.size();
                if (Describe(Load(astrFiles[uiFile])) != astrAlone[uiFile]) ++auiDifferent[uiThread];
            }
        });
    for (std::thread &stThread : astThreads) stThread.join();
    EXPECT_EQ(auiDifferent, std::vector<size_t>(8, 0));
}

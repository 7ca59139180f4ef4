// Captions by time, against a look at every one of them.
#include "captions_kit.h"

#include <algorithm>
#include <climits>
#include <random>

static std::vector<ZyrCaption> Get_All(const ListPtr &pstList)
{
    std::vector<ZyrCaption> astCaptions;
    for (uint32_t uiIndex = 0; uiIndex < zyrCaptions_count(pstList.get()); ++uiIndex)
        astCaptions.push_back(Get(pstList, uiIndex));
    return astCaptions;
}

static bool Is_Wanted(const ZyrCaption &stCaption, uint32_t uiClass)
{
    return uiClass == ZYR_CAPTIONS_ALL || stCaption.uiClass == uiClass;
}

static std::vector<uint32_t> Ask_At(const ListPtr &pstList, uint32_t uiClass, int32_t iTime)
{
    std::vector<uint32_t> auiFound(zyrCaptions_getAt(pstList.get(), uiClass, iTime, nullptr, 0));
    zyrCaptions_getAt(pstList.get(), uiClass, iTime, auiFound.data(), static_cast<uint32_t>(auiFound.size()));
    return auiFound;
}

// The four answers for one time.
static void Check_Time(const ListPtr &pstList, const std::vector<ZyrCaption> &astAll, uint32_t uiClass,
                       int32_t iTime)
{
    SCOPED_TRACE(testing::Message() << "class " << uiClass << " at " << iTime);
    std::vector<uint32_t> auiShown;
    int64_t llNext = INT64_MAX;
    int64_t llPrevious = INT64_MIN;
    int64_t llChange = ZYR_CAPTIONS_OPEN_END;
    for (uint32_t uiIndex = 0; uiIndex < astAll.size(); ++uiIndex) {
        const ZyrCaption &stCaption = astAll[uiIndex];
        for (const int32_t iMoment : {stCaption.iStart, stCaption.iShownUntil})
            if (iMoment > iTime) llChange = std::min<int64_t>(llChange, iMoment);
        if (!Is_Wanted(stCaption, uiClass)) continue;
        if (stCaption.iStart <= iTime && stCaption.iShownUntil > iTime) auiShown.push_back(uiIndex);
        if (stCaption.iStart > iTime) llNext = std::min<int64_t>(llNext, stCaption.iStart);
        if (stCaption.iStart < iTime) llPrevious = std::max<int64_t>(llPrevious, stCaption.iStart);
    }
    std::vector<uint32_t> auiFound = Ask_At(pstList, uiClass, iTime);
    std::sort(auiFound.begin(), auiFound.end());
    EXPECT_EQ(auiFound, auiShown);
    const uint32_t uiNext = zyrCaptions_getNext(pstList.get(), uiClass, iTime);
    EXPECT_EQ(uiNext == ZYR_CAPTIONS_NONE ? INT64_MAX : int64_t{astAll[uiNext].iStart}, llNext);
    const uint32_t uiPrevious = zyrCaptions_getPrevious(pstList.get(), uiClass, iTime);
    EXPECT_EQ(uiPrevious == ZYR_CAPTIONS_NONE ? INT64_MIN : int64_t{astAll[uiPrevious].iStart}, llPrevious);
    EXPECT_EQ(zyrCaptions_getNextChange(pstList.get(), iTime), llChange);
}

TEST(CaptionIndex, AnswersAsALookAtEveryCaption)
{
    std::mt19937 stRandom(20261123);
    for (const uint32_t uiCaptions : {0U, 1U, 2U, 3U, 7U, 64U, 200U}) {
        std::string strText;
        for (uint32_t uiCaption = 0; uiCaption < uiCaptions; ++uiCaption) {
            const auto iStart = static_cast<int32_t>(stRandom() % 500);
            const auto iLength = static_cast<int32_t>(stRandom() % (uiCaption % 9 == 0 ? 400 : 20)) - 3;
            strText += SubRip_Entry(iStart, std::max(iStart + iLength, 0), "x");
        }
        const ListPtr pstList = Load_Text(strText + "\r\n", "x.srt");
        const std::vector<ZyrCaption> astAll = Get_All(pstList);
        EXPECT_EQ(astAll.size(), uiCaptions);
        for (int32_t iTime = -1; iTime < 900; iTime += 7)
            Check_Time(pstList, astAll, ZYR_CAPTIONS_ALL, iTime);
    }
    for (const char *pszSample : {"sami-interleaved.smi", "sami-seven.smi", "sami-unnamed.smi"}) {
        const ListPtr pstList = Load(Sample(pszSample));
        const std::vector<ZyrCaption> astAll = Get_All(pstList);
        for (const uint32_t uiClass : {0U, 1U, 6U, 7U, ZYR_CAPTIONS_ALL})
            for (const int32_t iTime : {INT32_MIN, 0, 999, 1000, 1001, 3500, 6999, 12000, INT32_MAX})
                Check_Time(pstList, astAll, uiClass, iTime);
    }
}

// An open end lasts until its class's next start, and only the last of a class is open for good.
TEST(CaptionIndex, OpenEndsAreKnownAsSuch)
{
    const ListPtr pstList = Load_Text("<SAMI><BODY><SYNC Start=1000><P Class=A>a<SYNC Start=2000><P Class=B>b"
                                      "<SYNC Start=3000><P Class=A>c</BODY></SAMI>",
                                      "x.smi");
    static constexpr struct {
        int32_t iStart, iShownUntil;
        uint32_t uiClass;
    } astExpected[] = {{1000, 3000, 0}, {2000, ZYR_CAPTIONS_OPEN_END, 1}, {3000, ZYR_CAPTIONS_OPEN_END, 0}};
    ASSERT_EQ(zyrCaptions_count(pstList.get()), 3U);
    for (uint32_t uiIndex = 0; uiIndex < 3; ++uiIndex) {
        const ZyrCaption stCaption = Get(pstList, uiIndex);
        EXPECT_EQ(stCaption.iStart, astExpected[uiIndex].iStart);
        EXPECT_EQ(stCaption.iShownUntil, astExpected[uiIndex].iShownUntil);
        EXPECT_EQ(stCaption.uiClass, astExpected[uiIndex].uiClass);
    }
    EXPECT_EQ(Get_File(pstList).iLastEnd, 3000);
}

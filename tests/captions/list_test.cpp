// A list is what the engine delivers: every shipped sample read both ways.
#include "captions_kit.h"

#include <iconv.h>
#include <span>

#include "zyr/quib_caption.h"
#include "zyr/zyr_host.h"
#include "zyr/zyr_subtitle.h"

extern "C" uint32_t Count_FromC(const char *pszPath);

// As UTF-8, by the plainest way there is. The samples hold nothing that could not be read.
static std::string Convert(const char *pszFrom, std::string strBytes)
{
    const iconv_t hIconv = iconv_open("UTF-8", pszFrom);
    std::string strOut(strBytes.size() * 4 + 1, '\0');
    char *pcIn = strBytes.data();
    char *pcOut = strOut.data();
    size_t uiLeft = strBytes.size();
    size_t uiRoom = strOut.size();
    EXPECT_EQ(iconv(hIconv, &pcIn, &uiLeft, &pcOut, &uiRoom), 0U);
    iconv_close(hIconv);
    strOut.resize(strOut.size() - uiRoom);
    return strOut;
}

// In code pages a zero stands before each single byte from 0x80 on: of the code page where all are single, else of an
// entity.
static std::string Decode(uint32_t uiCharset, const std::string &strBytes, const char *pszCodePage,
                          bool bSingle)
{
    if (uiCharset != 1) return Convert(uiCharset == 2 ? "UTF-16LE" : "UTF-8", strBytes);
    std::string strOut;
    for (size_t uiByte = 0; uiByte < strBytes.size(); ++uiByte) {
        const bool bPair = (strBytes[uiByte] & 0x80) != 0;
        const bool bHigh = strBytes[uiByte] == 0;
        const std::string strOne = strBytes.substr(uiByte + (bHigh ? 1 : 0), bPair ? 2 : 1);
        strOut += Convert(bHigh && !bSingle ? "LATIN1" : pszCodePage, strOne);
        uiByte += bPair || bHigh ? 1 : 0;
    }
    return strOut;
}

// One caption of either reading.
struct Told {
    int32_t iStart, iEnd;
    uint32_t uiClass, uiLines, uiFontSize, uiMode, uiHighlight, uiColor, uiOutline;
    std::string strText;
    bool operator==(const Told &) const = default;
};

static std::ostream &operator<<(std::ostream &stOut, const Told &stTold)
{
    return stOut << stTold.iStart << ".." << stTold.iEnd << " class " << stTold.uiClass << ": "
                 << stTold.strText;
}

static std::vector<Told> Read_Engine(const std::string &strFile, const char *pszCodePage, bool bSingle)
{
    std::vector<Told> astTold;
    zyr_host_setLineEnds(1);
    EXPECT_EQ(zyr_host_mapFile(("zyrhost:test" + std::filesystem::path(strFile).extension().string()).c_str(),
                               strFile.c_str()),
              0);
    if (zyrSubtitle_open("zyrhost:test.avi", bSingle ? 1 : 0) == 0 && zyrSubtitle_seek(0) == 0) {
        uint32_t uiStream = 0, uiLines = 0, uiBytes = 0;
        int32_t iStart = 0, iEnd = 0;
        uint8_t *pucText = nullptr;
        while (zyrSubtitle_getFrame(&uiStream, &iStart, &iEnd, &uiLines, &uiBytes, &pucText) == 0) {
            const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
            astTold.push_back({iStart, iEnd, stInfo.astStreamState[uiStream].uiClassIndex, uiLines,
                               stInfo.uiFontSize, stInfo.uiDisplayMode, stInfo.uiHighlight,
                               stInfo.usFontColor, stInfo.usOutlineColor,
                               Decode(stInfo.uiOutputTextCharacterSet, {pucText, pucText + uiBytes},
                                      pszCodePage, bSingle)});
        }
    }
    zyrSubtitle_close();
    zyr_host_reset();
    return astTold;
}

static std::vector<Told> Read_List(const ListPtr &pstList)
{
    std::vector<Told> astTold;
    for (uint32_t uiIndex = 0; uiIndex < zyrCaptions_count(pstList.get()); ++uiIndex) {
        const ZyrCaption stCaption = Get(pstList, uiIndex);
        const ZyrCaptionStyle &stStyle = *stCaption.pstStyle;
        EXPECT_EQ(stCaption.pszText[stCaption.uiTextBytes], '\0');
        astTold.push_back({stCaption.iStart,
                           stCaption.iEnd,
                           stCaption.uiClass,
                           stCaption.uiLines,
                           stStyle.uiFontSize,
                           stStyle.uiDisplayMode,
                           stStyle.uiHighlight,
                           stStyle.usColor,
                           stStyle.usOutlineColor,
                           {stCaption.pszText, stCaption.uiTextBytes}});
    }
    return astTold;
}

TEST(CaptionList, IsWhatTheEngineDelivers)
{
    size_t uiAll = 0;
    for (const std::string &strFile : List_Samples()) {
        SCOPED_TRACE(strFile);
        const bool bWestern = strFile.find("cp1252") != std::string::npos;
        ZyrCaptionsOptions stOptions = {};
        stOptions.pszCodePage = bWestern ? "cp1252" : "CP949";
        const ListPtr pstList = Load(strFile, stOptions);
        std::vector<Told> astEngine = Read_Engine(strFile, stOptions.pszCodePage, bWestern);
        std::vector<Told> astList = Read_List(pstList);
        if (Get_File(pstList).uiClasses > ZYR_STREAM_MAX) // the engine reads so many; the list reads all
            std::erase_if(astList, [](const Told &stTold) { return stTold.uiClass >= ZYR_STREAM_MAX; });
        EXPECT_EQ(astList, astEngine);
        uiAll += astList.size();
        const std::string strBytes = Read_File(strFile);
        EXPECT_EQ(Read_List(Load_Text(strBytes, strFile.c_str(), stOptions)), Read_List(pstList));
        EXPECT_EQ(Read_List(Load_Text(strBytes, nullptr, stOptions)).size(),
                  strFile.ends_with("no-header.sub") ? 0 : zyrCaptions_count(pstList.get()));
    }
    EXPECT_GT(uiAll, 350U);
}

TEST(CaptionList, MoreClassesThanTheEngineReadsSideBySide)
{
    const ListPtr pstList = Load(Sample("sami-seven.smi"));
    int32_t iLast = 0;
    for (uint32_t uiClass = 0; uiClass < 7; ++uiClass) {
        ZyrCaptionClass stClass;
        ASSERT_EQ(zyrCaptions_getClass(pstList.get(), uiClass, &stClass), ZYR_CAPTIONS_OK);
        EXPECT_EQ(stClass.uiCaptions, 3U) << stClass.pszName;
    }
    for (uint32_t uiIndex = 0; uiIndex < zyrCaptions_count(pstList.get()); ++uiIndex) {
        EXPECT_GE(Get(pstList, uiIndex).iStart, iLast);
        iLast = Get(pstList, uiIndex).iStart;
    }
}

// A caption that the file breaks off before is lost; those that are due after it are not.
TEST(CaptionList, GoesOnBehindACaptionThatCannotBeRead)
{
    const ListPtr pstList =
        Load_Text("<SAMI><BODY><SYNC Start=3000><P>c<SYNC Start=4000><P>d<SYNC Start=2000>", "x.smi");
    std::string strTexts;
    for (uint32_t uiIndex = 0; uiIndex < zyrCaptions_count(pstList.get()); ++uiIndex)
        strTexts += Get(pstList, uiIndex).pszText;
    EXPECT_EQ(strTexts, "cd");
}

// Without its [Events] line an SSA file has no first place to go to, and is played all the same.
TEST(CaptionList, ReadsWhatHasNoPlaceToGoTo)
{
    const ListPtr pstList = Load_Text("[Script Info]\r\n[V4 Styles]\r\n"
                                      "Dialogue: Marked=0,0:00:01.00,0:00:02.00,x,,0,0,0,,a\r\n"
                                      "Dialogue: Marked=0,0:00:03.00,0:00:04.00,x,,0,0,0,,b\r\n",
                                      "x.ssa");
    ASSERT_EQ(zyrCaptions_count(pstList.get()), 2U);
    EXPECT_STREQ(Get(pstList, 1).pszText, "b");
}

// What stands at a caption's place, whatever the line ends and the width of a character.
TEST(CaptionList, CaptionsKnowTheirPlaceInTheFile)
{
    static constexpr std::pair<const char *, const char *> astSamples[] = {
        {"subrip-crlf.srt", "3\r\n00:00:07"},  {"subrip-lf.srt", "3\n00:00:07"},
        {"subrip-utf16be.srt", "3\r\n00:00:"}, {"subrip-utf16le.srt", "3\r\n00:00:"},
        {"sami-lf.smi", "<SYNC Start="},       {"sami-unordered.smi", "<SYNC Start="},
        {"ssa-lf.ssa", "Dialogue: "},          {"subviewer-lf.sub", "00:00:07"},
    };
    for (const auto &[pszSample, pszThere] : astSamples) {
        const std::string strBytes = Read_File(Sample(pszSample));
        std::string strThere = strBytes.substr(Get(Load(Sample(pszSample)), 2).uiSource, 40);
        std::erase(strThere, '\0');
        EXPECT_EQ(strThere.substr(0, std::string_view(pszThere).size()), pszThere) << pszSample;
    }
    const ListPtr pstList = Load_Text(
        "\n\r\r\n1\r00:00:01,000 --> 00:00:02,000\ra\r\r\r\n2\n00:00:03,000 --> 00:00:04,000\nb\n\n",
        "x.srt");
    EXPECT_EQ(Get(pstList, 1).uiSource, 41U);
}

TEST(CaptionList, FromC)
{
    EXPECT_EQ(Count_FromC(Sample("subrip-lf.srt").c_str()), 4U);
    EXPECT_EQ(Count_FromC(Sample("subrip-lf.avi").c_str()), 4U);
    EXPECT_EQ(Count_FromC("/nowhere/at/all.srt"), 0U);
}

TEST(CaptionList, ClassesByNameIndexAndOrder)
{
    const char *const apszNames[] = {"encc", "0", "ENCC"};
    ZyrCaptionsOptions stOptions = {};
    stOptions.ppszClasses = apszNames;
    stOptions.uiClasses = 3;
    const ListPtr pstList = Load(Sample("sami-interleaved.smi"), stOptions);
    ZyrCaptionClass stClass;
    ASSERT_EQ(zyrCaptions_getClass(pstList.get(), 1, &stClass), ZYR_CAPTIONS_OK);
    EXPECT_STREQ(stClass.pszName, "ENCC");
    EXPECT_STREQ(stClass.pszLanguage, "en");
    EXPECT_EQ(stClass.uiOrder, 0U);
    EXPECT_EQ(stClass.uiCaptions, 8U);
    char szText[200];
    zyrCaptions_getTextAt(pstList.get(), ZYR_CAPTIONS_ALL, 1000, szText, sizeof szText);
    EXPECT_STREQ(szText, "The lamp is lit at dusk.\n해가 지면 등을 켭니다.") << "in the order asked for";
    EXPECT_EQ(zyrCaptions_getTextAt(pstList.get(), 0, 1000, szText, 5), 31U);
    EXPECT_STREQ(szText, "해") << "cut between characters";
    stOptions.uiFlags = ZYR_CAPTIONS_TOGETHER;
    const ListPtr pstTogether = Load(Sample("sami-interleaved.smi"), stOptions);
    EXPECT_EQ(Get(pstTogether, 0).uiClass, ZYR_CAPTIONS_ALL);
    EXPECT_STREQ(Get(pstTogether, 0).pszText,
                 szText[0] == 0 ? "" : "The lamp is lit at dusk.\n해가 지면 등을 켭니다.");
}

TEST(CaptionList, LanguageTags)
{
    static constexpr std::pair<const char *, const char *> astNames[] = {
        {"KRCC", "ko"}, {"ENCC", "en"}, {"ENUSCC", "en-US"}, {"JPCC", "ja"}, {"Korean", "ko"},
        {"SUBCC", ""},  {"MAIN", ""},   {"XXCC", ""},        {"CC", ""},     {"KR", ""},
    };
    for (const auto &[pszName, pszTag] : astNames) {
        const ListPtr pstList = Load_Text(
            "<SAMI><BODY><SYNC Start=1><P Class=" + std::string(pszName) + ">a</BODY></SAMI>", "x.smi");
        ZyrCaptionClass stClass;
        ASSERT_EQ(zyrCaptions_getClass(pstList.get(), 0, &stClass), ZYR_CAPTIONS_OK);
        EXPECT_STREQ(stClass.pszLanguage == nullptr ? "" : stClass.pszLanguage, pszTag) << pszName;
    }
}

TEST(CaptionList, HeadersAndStyles)
{
    const ListPtr pstSsa = Load(Sample("ssa-styles.ssa"));
    const ZyrCaption stCaption = Get(pstSsa, 2);
    ZyrCaptionSsaStyle stStyle;
    ASSERT_EQ(zyrCaptions_getSsaStyle(pstSsa.get(), stCaption.pstStyle->uiSsaStyle, &stStyle),
              ZYR_CAPTIONS_OK);
    EXPECT_EQ(stStyle.uiFontSize, 28U);
    EXPECT_EQ(stCaption.pstStyle->uiFontSize, stStyle.uiFontSize);
    EXPECT_NE(zyrCaptions_getSsaStyle(pstSsa.get(), Get_File(pstSsa).uiSsaStyles, &stStyle), ZYR_CAPTIONS_OK);
    EXPECT_STREQ(Get_File(Load(Sample("ssa-cp949.ssa"))).pszTitle, "등대");
    const ListPtr pstViewer = Load(Sample("subviewer.sub"));
    EXPECT_EQ(Get_File(pstViewer).uiDelay, 250U);
    EXPECT_EQ(Get_File(pstViewer).uiColor, 0xFF8000U);
    EXPECT_STREQ(Get_File(pstViewer).pszFont, "Arial");
}

TEST(CaptionList, MessagesStandBeforeTheirCaption)
{
    const ListPtr pstList = Load_Text(SubRip_Entry(1000, 2000, "a") + "2\r\nno time at all\r\nx\r\n\r\n" +
                                          SubRip_Entry(3000, 4000, "b"),
                                      "film.srt");
    std::vector<uint32_t> auiBad;
    bool bNamed = false;
    ZyrCaptionLogLine stLine;
    for (uint32_t uiLine = 0; zyrCaptions_getLogLine(pstList.get(), uiLine, &stLine) == ZYR_CAPTIONS_OK;
         ++uiLine) {
        const std::string strText = stLine.pszText;
        if (strText.find("SUBRIP PTS FORMAT is BAD") != std::string::npos) auiBad.push_back(stLine.uiCaption);
        bNamed = bNamed || strText.find("filename = film.srt") != std::string::npos;
    }
    EXPECT_EQ(auiBad, std::vector<uint32_t>{1});
    EXPECT_TRUE(bNamed);
}

// zyrsubparse by itself: bytes in, and what its pads then say.
#include <gtest/gtest.h>

#include "gst_kit.h"
#include "run_program.h"

namespace
{

struct ParsedText {
    int64_t llStart; // ms
    int64_t llDuration;
    std::string strMarkup;
    bool operator==(const ParsedText &) const = default;
};

void PrintTo(const ParsedText &stText, std::ostream *pstOut)
{
    *pstOut << stText.llStart << " +" << stText.llDuration << " " << stText.strMarkup;
}

// The element with a harness on every pad that comes.
class Parser
{
public:
    explicit Parser(const char *pszLaunch)
        : m_pstElement(gst_parse_launch(pszLaunch, nullptr)),
          m_pstIn(gst_harness_new_with_element(m_pstElement, "sink", nullptr))
    {
        gst_element_set_bus(m_pstElement, m_pstBus);
        g_signal_connect(m_pstElement, "pad-added", G_CALLBACK(Add_Pad), this);
        gst_harness_set_src_caps_str(m_pstIn, "application/x-subtitle");
    }
    ~Parser()
    {
        gst_element_set_bus(m_pstElement, nullptr);
        for (GstHarness *const pstOut : m_apstOut) gst_harness_teardown(pstOut);
        gst_harness_teardown(m_pstIn);
        gst_object_unref(m_pstBus);
        gst_object_unref(m_pstElement);
    }
    Parser(const Parser &) = delete;
    Parser &operator=(const Parser &) = delete;

    void Feed(const std::string &strBytes, size_t uiPiece = SIZE_MAX) const
    {
        for (size_t ui = 0; ui < strBytes.size(); ui += std::min(uiPiece, strBytes.size())) {
            const std::string strPiece = strBytes.substr(ui, uiPiece);
            gst_harness_push(m_pstIn, gst_buffer_new_memdup(strPiece.data(), strPiece.size()));
        }
        gst_harness_push_event(m_pstIn, gst_event_new_eos());
    }
    size_t Count_Pads() const { return m_apstOut.size(); }

    // All texts up to the next end of the stream.
    std::vector<ParsedText> Read(size_t uiPad) const
    {
        GstHarness *const pstOut = m_apstOut.at(uiPad);
        for (GstEventType eType = GST_EVENT_UNKNOWN; eType != GST_EVENT_EOS;) {
            GstEvent *const pstEvent = gst_harness_pull_event(pstOut);
            if (pstEvent == nullptr) return {{-1, -1, "no end"}};
            eType = GST_EVENT_TYPE(pstEvent);
            gst_event_unref(pstEvent);
        }
        std::vector<ParsedText> astTexts;
        while (GstBuffer *const pstBuffer = gst_harness_try_pull(pstOut)) {
            GstMapInfo stMap;
            gst_buffer_map(pstBuffer, &stMap, GST_MAP_READ);
            astTexts.push_back({static_cast<int64_t>(GST_BUFFER_PTS(pstBuffer) / GST_MSECOND),
                                static_cast<int64_t>(GST_BUFFER_DURATION(pstBuffer) / GST_MSECOND),
                                std::string(reinterpret_cast<const char *>(stMap.data), stMap.size)});
            gst_buffer_unmap(pstBuffer, &stMap);
            gst_buffer_unref(pstBuffer);
        }
        return astTexts;
    }
    std::string Get_Tag(size_t uiPad, const char *pszTag) const
    {
        GstPad *const pstPad = gst_pad_get_peer(m_apstOut.at(uiPad)->sinkpad);
        GstEvent *const pstEvent = gst_pad_get_sticky_event(pstPad, GST_EVENT_TAG, 0);
        gst_object_unref(pstPad);
        GstTagList *pstTags = nullptr;
        gst_event_parse_tag(pstEvent, &pstTags);
        gchar *pszText = nullptr;
        gst_tag_list_get_string(pstTags, pszTag, &pszText);
        std::string strText = pszText == nullptr ? "" : pszText;
        g_free(pszText);
        gst_event_unref(pstEvent);
        return strText;
    }
    bool Seek(double dRate, int64_t llStart, int64_t llStop) const
    {
        const auto pfTime = [](int64_t llMs) {
            return llMs < 0 ? gint64{-1} : llMs * static_cast<gint64>(GST_MSECOND);
        };
        return gst_harness_push_upstream_event(m_apstOut.at(0),
                                               gst_event_new_seek(dRate, GST_FORMAT_TIME, GST_SEEK_FLAG_FLUSH,
                                                                  GST_SEEK_TYPE_SET, pfTime(llStart),
                                                                  GST_SEEK_TYPE_SET, pfTime(llStop)));
    }
    std::string Get_Error() const
    {
        GstMessage *const pstMessage = gst_bus_pop_filtered(m_pstBus, GST_MESSAGE_ERROR);
        if (pstMessage == nullptr) return "";
        GError *pstError = nullptr;
        gst_message_parse_error(pstMessage, &pstError, nullptr);
        std::string strText = pstError->message;
        g_error_free(pstError);
        gst_message_unref(pstMessage);
        return strText;
    }

private:
    static void Add_Pad(GstElement *pstElement, GstPad *pstPad, Parser *pstSelf)
    {
        GstHarness *const pstOut = gst_harness_new_with_element(pstElement, nullptr, GST_PAD_NAME(pstPad));
        gst_harness_play(pstOut);
        pstSelf->m_apstOut.push_back(pstOut);
    }

    GstElement *m_pstElement;
    GstHarness *m_pstIn;
    GstBus *m_pstBus = gst_bus_new();
    std::vector<GstHarness *> m_apstOut;
};

constexpr const char *THREE = "1\n00:00:01,000 --> 00:00:02,000\n<font color=red><i>Tom & Jerry\n\n"
                              "2\n00:00:03,000 --> 00:00:05,000\nlong\n\n"
                              "3\n00:00:04,000 --> 00:00:04,500\nshort\n\n";

TEST(SubParse, EachLanguageIsAStream)
{
    for (const size_t uiPiece : {SIZE_MAX, size_t{7}}) {
        Parser stParser("zyrsubparse");
        stParser.Feed(Read_File(Sample("sami-bilingual.smi")), uiPiece);
        ASSERT_EQ(stParser.Count_Pads(), 2U) << stParser.Get_Error();
        EXPECT_EQ(stParser.Get_Tag(0, GST_TAG_TITLE) + stParser.Get_Tag(0, GST_TAG_LANGUAGE_CODE), "KRCCko");
        EXPECT_EQ(stParser.Get_Tag(1, GST_TAG_TITLE) + stParser.Get_Tag(1, GST_TAG_LANGUAGE_CODE), "ENCCen");
        const std::vector<ParsedText> astEnglish = {
            {1000, 2500, "The lamp is lit at dusk."},
            {4000, 2500, "It turns once in ten seconds,\nand every ship counts along."},
            {7000, 2500, "Nobody counts aloud."},
            {9500, 2500, "The kettle is on."},
            {12000, 1000, "Good night."}};
        EXPECT_EQ(stParser.Read(1), astEnglish);
        EXPECT_EQ(stParser.Read(0).at(0), (ParsedText{1000, 2500, "해가 지면 등을 켭니다."}));
    }
}

TEST(SubParse, ChosenLanguage)
{
    for (const char *const pszClass : {"encc", "1"}) {
        Parser stParser((std::string("zyrsubparse class=") + pszClass).c_str());
        stParser.Feed(Read_File(Sample("sami-bilingual.smi")));
        ASSERT_EQ(stParser.Count_Pads(), 1U);
        EXPECT_EQ(stParser.Read(0).at(4).strMarkup, "Good night.");
    }
}

TEST(SubParse, MarkupAndCaptionsTogether)
{
    Parser stParser("zyrsubparse");
    stParser.Feed(THREE);
    const std::vector<ParsedText> astTexts = {
        {1000, 1000, "<span foreground=\"#FF0000\"><i>Tom &amp; Jerry</i></span>"},
        {3000, 1000, "long"},
        {4000, 500, "long\nshort"},
        {4500, 500, "long"}};
    EXPECT_EQ(stParser.Read(0), astTexts);
}

TEST(SubParse, CodePage)
{
    for (const char *const pszSet : {"code-page=CP1252", "subtitle-encoding=CP1252"}) {
        Parser stParser((std::string("zyrsubparse ") + pszSet).c_str());
        stParser.Feed("1\n00:00:01,000 --> 00:00:02,000\ncaf\xe9 \xfc\n\n");
        EXPECT_EQ(stParser.Read(0).at(0).strMarkup, "café ü");
    }
}

TEST(SubParse, Seeks)
{
    static const struct {
        double dRate;
        int64_t llStart;
        int64_t llStop;
        std::vector<ParsedText> astTexts;
    } astRows[] = {
        {1, 4600, -1, {{4600, 400, "long"}}}, // into a caption: the rest of it
        {1,
         1500,
         3500,
         {{1500, 500, "<span foreground=\"#FF0000\"><i>Tom &amp; Jerry</i></span>"}, {3000, 500, "long"}}},
        {-1,
         0,
         4200,
         {{4000, 200, "long\nshort"},
          {3000, 1000, "long"},
          {1000, 1000, "<span foreground=\"#FF0000\"><i>Tom &amp; Jerry</i></span>"}}},
        {2, 5000, -1, {}}, // behind all
        {1, 0, 900, {}},   // before all
        {1, 4400, -1, {{4400, 100, "long\nshort"}, {4500, 500, "long"}}},
    };
    Parser stParser("zyrsubparse");
    stParser.Feed(THREE);
    EXPECT_EQ(stParser.Read(0).size(), 4U);
    for (const auto &stRow : astRows) {
        ASSERT_TRUE(stParser.Seek(stRow.dRate, stRow.llStart, stRow.llStop));
        EXPECT_EQ(stParser.Read(0), stRow.astTexts) << stRow.dRate << " " << stRow.llStart;
    }
}

TEST(SubParse, Refusals)
{
    static const struct {
        const char *pszLaunch;
        std::string strBytes;
        const char *pszWord;
    } astRows[] = {
        {"zyrsubparse", "", "no data"},
        {"zyrsubparse", "once upon a time", "subtitle"},
        {"zyrsubparse class=frcc", THREE, "frcc"},
        {"zyrsubparse code-page=NOSUCH", "1\n00:00:01,000 --> 00:00:02,000\ncaf\xe9\n\n", "NOSUCH"},
        {"zyrsubparse", std::string((64U << 20U) + 1, ' '), "too large"},
    };
    for (const auto &stRow : astRows) {
        Parser stParser(stRow.pszLaunch);
        stParser.Feed(stRow.strBytes, 1U << 20U);
        EXPECT_NE(stParser.Get_Error().find(stRow.pszWord), std::string::npos) << stRow.pszWord;
        EXPECT_EQ(stParser.Count_Pads(), 0U);
    }
}

} // namespace

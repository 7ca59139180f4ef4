// A film with two languages beside it, played by GStreamer's own player.
#include <gst/app/gstappsink.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "gst_kit.h"
#include "run_program.h"

namespace
{

// 14 seconds of a moon that goes about the sky, with a hum, made once.
class Film : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_pstFolder = new TestFolder;
        std::filesystem::copy_file(Sample("sami-bilingual.smi"), s_pstFolder->Path("film.smi"));
        const Pipeline stPipeline(
            "videotestsrc num-buffers=140 pattern=ball background-color=0xff0c1830 "
            "foreground-color=0xffd0d4d8 ! video/x-raw,width=800,height=480,framerate=10/1 ! "
            "vp8enc "
            "deadline=1 keyframe-max-dist=30 ! matroskamux name=m ! filesink location=" +
            s_pstFolder->Path("film.mkv") +
            " audiotestsrc num-buffers=603 volume=0.01 ! audio/x-raw,rate=44100 ! vorbisenc ! queue ! m.");
        stPipeline.Go_To(GST_STATE_PLAYING);
        ASSERT_EQ(stPipeline.Wait_ForEnd(), "");
    }
    static void TearDownTestSuite() { delete s_pstFolder; }

    static std::string Get_Uri(const char *pszName) { return "file://" + s_pstFolder->Path(pszName); }

    static inline TestFolder *s_pstFolder = nullptr;
};

void Set_Rank(const char *pszFactory, guint uiRank)
{
    GstElementFactory *const pstFactory = gst_element_factory_find(pszFactory);
    ASSERT_NE(pstFactory, nullptr) << pszFactory;
    gst_plugin_feature_set_rank(GST_PLUGIN_FEATURE(pstFactory), uiRank);
    gst_object_unref(pstFactory);
}

void Play_For(const Pipeline &stPipeline, GstClockTime ullTime)
{
    stPipeline.Go_To(GST_STATE_PLAYING);
    g_usleep(ullTime / GST_USECOND);
}

// Where to, forward and back, and in which language, which is chosen while the film plays.
constexpr struct {
    int64_t llMs;
    const char *pszClass;
    const char *pszText;
} STOPS[] = {{4500, "KRCC", "열 초에 한 번 돌고,\n배들은 그 수를 셉니다."},
             {12500, "ENCC", "Good night."},
             {1200, "ENCC", "The lamp is lit at dusk."},
             {8000, "KRCC", "아무도 소리 내어 세지 않습니다."},
             {10000, "ENCC", "The kettle is on."}};

// What playbin shows at a time, with the overlay's captions or without.
class FilmScreen
{
public:
    explicit FilmScreen(const std::string &strUri)
        : m_stPipeline("playbin flags=video+audio+text uri=" + strUri +
                       " audio-sink=\"fakesink sync=true\" video-filter=\"zyrcaptionoverlay name=overlay\" "
                       "video-sink=\"videoconvert ! capsfilter caps=video/x-raw,format=RGBA ! appsink "
                       "name=screen max-buffers=1 drop=true wait-on-eos=false\"")
    {
        m_stPipeline.Go_To(GST_STATE_PAUSED);
    }
    const Pipeline &Get() const { return m_stPipeline; }
    void Set(const char *pszProperty, const char *pszValue) const
    {
        gst_util_set_object_arg(G_OBJECT(m_stPipeline.Find("overlay").get()), pszProperty, pszValue);
    }
    Picture See(int64_t llMs, bool bCaptions = true) const
    {
        Set("silent", bCaptions ? "false" : "true");
        EXPECT_TRUE(m_stPipeline.Go_To(GST_STATE_PAUSED));
        EXPECT_TRUE(m_stPipeline.Seek(1, llMs));
        return Take_Preroll(m_stPipeline.Find("screen").get());
    }

private:
    Pipeline m_stPipeline;
};

TEST_F(Film, OverlayShowsWhatTheBoxShows)
{
    const FilmScreen stScreen(Get_Uri("film.mkv"));
    for (const auto &stStop : STOPS) {
        Play_For(stScreen.Get(), 100 * GST_MSECOND);
        stScreen.Set("class", stStop.pszClass);
        Play_For(stScreen.Get(), 100 * GST_MSECOND);
        const Picture stFrame = stScreen.See(stStop.llMs);
        const Picture stPlain = stScreen.See(stStop.llMs, false);
        Write_Png(s_pstFolder->Path("plain.png"), stPlain);
        const Picture stExpected = Render("sami-bilingual.smi", stStop.llMs,
                                          std::string("--class ") + stStop.pszClass + " --background " +
                                              s_pstFolder->Path("plain.png"));
        EXPECT_GT(Count_Differences(stFrame, stPlain), 1000U) << stStop.pszText;
        EXPECT_EQ(Count_Differences(stFrame, stExpected), 0U) << stStop.pszText;
    }
    EXPECT_EQ(Count_Differences(stScreen.See(3700), stScreen.See(3700, false)), 0U) << "no caption";
    ASSERT_TRUE(stScreen.Get().Seek(-2, 13000)); // backwards, at twice the speed, to the start
    stScreen.Get().Go_To(GST_STATE_PLAYING);
    EXPECT_EQ(stScreen.Get().Wait_ForEnd(), "");
}

// Both languages; ZYR_PICTURES names a folder to take the picture anew.
TEST_F(Film, PictureOfTheReadme)
{
    const FilmScreen stScreen(Get_Uri("film.mkv"));
    const Picture stFrame = stScreen.See(6000);
    const char *const pszFolder = std::getenv("ZYR_PICTURES");
    if (pszFolder != nullptr) Write_Png(std::string(pszFolder) + "/film.png", stFrame);
    Picture stShown;
    ASSERT_TRUE(Read_Png(ZYR_SOURCE "/docs/film.png", stShown).IsGood());
    EXPECT_LT(Count_Differences(stFrame, stShown), 2000U) << "what encoders make of the moon's edge";
}

std::string Take_Text(GstElement *pstSink)
{
    GstSample *const pstSample = gst_app_sink_try_pull_preroll(GST_APP_SINK(pstSink), 10 * GST_SECOND);
    if (pstSample == nullptr) return "(nothing)";
    GstMapInfo stMap;
    gst_buffer_map(gst_sample_get_buffer(pstSample), &stMap, GST_MAP_READ);
    std::string strText(reinterpret_cast<const char *>(stMap.data), stMap.size);
    gst_buffer_unmap(gst_sample_get_buffer(pstSample), &stMap);
    gst_sample_unref(pstSample);
    return strText;
}

TEST_F(Film, LanguagesAreStreamsOfThePlayer)
{
    Set_Rank("zyrsubparse", GST_RANK_PRIMARY);
    Set_Rank("subparse", GST_RANK_NONE);
    const Pipeline stPipeline("playbin flags=video+audio+text uri=" + Get_Uri("film.mkv") +
                              " suburi=" + Get_Uri("film.smi") +
                              " audio-sink=\"fakesink sync=true\" video-sink=\"fakesink sync=true\" "
                              "text-sink=\"appsink name=text async=false wait-on-eos=false\"");
    ASSERT_TRUE(stPipeline.Go_To(GST_STATE_PAUSED));
    const ElementPtr pstText = stPipeline.Find("text");
    gint iStreams = 0;
    g_object_get(stPipeline.Get(), "n-text", &iStreams, nullptr);
    EXPECT_EQ(iStreams, 2);
    for (const auto &stStop : STOPS) {
        Play_For(stPipeline, 100 * GST_MSECOND);
        g_object_set(stPipeline.Get(), "current-text", std::string(stStop.pszClass) == "KRCC" ? 0 : 1,
                     nullptr);
        Play_For(stPipeline, 300 * GST_MSECOND);
        ASSERT_TRUE(stPipeline.Go_To(GST_STATE_PAUSED));
        ASSERT_TRUE(stPipeline.Seek(1, stStop.llMs));
        EXPECT_EQ(Take_Text(pstText.get()), stStop.pszText);
    }
    ASSERT_TRUE(stPipeline.Seek(1, 13500)); // behind all captions
    stPipeline.Go_To(GST_STATE_PLAYING);
    EXPECT_EQ(stPipeline.Wait_ForEnd(), "");
}

TEST_F(Film, ExampleOfAPlayer)
{
    const RunResult stRun =
        Run_Program("printf 'lllo s<q' | env -u GST_TRACERS -u GST_DEBUG " ZYR_EXAMPLE " " +
                    s_pstFolder->Path("film.mkv") + " lcd fakesink fakesink");
    EXPECT_EQ(stRun.iCode, 0) << stRun.strErr;
    EXPECT_EQ(stRun.strErr, "");
    EXPECT_EQ(stRun.strOut, "language: KRCC\nlanguage: ENCC\nlanguage: all\noutput: hdmi-1080p\npaused\n"
                            "captions: off\nat 0.0 s\n");
}

} // namespace

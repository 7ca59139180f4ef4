// zyrcaptionoverlay by itself: frames in, and what has become of them.
#include <gst/video/video-overlay-composition.h>
#include <gst/video/video.h>
#include <gtest/gtest.h>

#include "gst_kit.h"
#include "run_program.h"

namespace
{

constexpr int WIDTH = 800; // of the output "lcd", so that nothing is scaled
constexpr int HEIGHT = 480;
constexpr int64_t CAPTION = 8000; // ms; "Nobody counts aloud." stands here

// A frame in another format, by GStreamer's own conversion.
GstBuffer *Convert(GstBuffer *pstBuffer, const GstVideoInfo &stFrom, const GstVideoInfo &stTo)
{
    GstCaps *const pstFrom = gst_video_info_to_caps(&stFrom);
    GstCaps *const pstTo = gst_video_info_to_caps(&stTo);
    GstSample *const pstSample = gst_sample_new(pstBuffer, pstFrom, nullptr, nullptr);
    GstSample *const pstConverted = gst_video_convert_sample(pstSample, pstTo, GST_SECOND * 10, nullptr);
    GstBuffer *const pstResult = gst_buffer_copy_deep(gst_sample_get_buffer(pstConverted));
    gst_sample_unref(pstConverted);
    gst_sample_unref(pstSample);
    gst_caps_unref(pstFrom);
    gst_caps_unref(pstTo);
    return pstResult;
}

GstVideoInfo Make_RgbaInfo(gint iWidth, gint iHeight)
{
    GstVideoInfo stInfo;
    gst_video_info_set_format(&stInfo, GST_VIDEO_FORMAT_RGBA, static_cast<guint>(iWidth),
                              static_cast<guint>(iHeight));
    return stInfo;
}

// A dark frame, in a grey that captions do not have.
GstBuffer *Make_Frame(const GstVideoInfo &stInfo)
{
    const GstVideoInfo stRgba = Make_RgbaInfo(stInfo.width, stInfo.height);
    std::vector<uint8_t> aucRgba(stRgba.size, 0x30);
    for (size_t ui = 3; ui < aucRgba.size(); ui += 4) aucRgba[ui] = 0xFF;
    GstBuffer *const pstRgba = gst_buffer_new_memdup(aucRgba.data(), aucRgba.size());
    GstBuffer *const pstFrame = Convert(pstRgba, stRgba, stInfo);
    gst_buffer_unref(pstRgba);
    return pstFrame;
}

class Overlay
{
public:
    Overlay(const std::string &strProperties, const std::string &strCaps, bool bMeta = false)
        : m_pstHarness(gst_harness_new_parse(("zyrcaptionoverlay " + strProperties).c_str()))
    {
        if (bMeta)
            gst_harness_add_propose_allocation_meta(m_pstHarness, GST_VIDEO_OVERLAY_COMPOSITION_META_API_TYPE,
                                                    nullptr);
        GstCaps *const pstCaps = gst_caps_from_string(strCaps.c_str());
        gst_video_info_from_caps(&m_stInfo, pstCaps);
        gst_harness_set_src_caps(m_pstHarness, pstCaps);
        m_pstPlain = Make_Frame(m_stInfo);
    }
    ~Overlay()
    {
        gst_buffer_unref(m_pstPlain);
        gst_harness_teardown(m_pstHarness);
    }
    Overlay(const Overlay &) = delete;
    Overlay &operator=(const Overlay &) = delete;

    void Set(const char *pszProperty, const char *pszValue) const
    {
        gst_util_set_object_arg(G_OBJECT(Get_Element().get()), pszProperty, pszValue);
    }
    ElementPtr Get_Element() const
    {
        GstElement *const pstElement = gst_harness_find_element(m_pstHarness, "zyrcaptionoverlay");
        return ElementPtr(pstElement);
    }
    GstHarness *Get() const { return m_pstHarness; }

    // A frame through the element; the caller frees it.
    GstBuffer *Show(int64_t llMs) const
    {
        GstBuffer *const pstBuffer = gst_buffer_copy_deep(m_pstPlain);
        GST_BUFFER_PTS(pstBuffer) = static_cast<GstClockTime>(llMs) * GST_MSECOND;
        return gst_harness_push_and_pull(m_pstHarness, pstBuffer);
    }
    // By how much the element changes the frame, over all of its bytes.
    size_t Sum_Changes(int64_t llMs) const
    {
        GstBuffer *const pstBuffer = Show(llMs);
        GstMapInfo stPlain;
        GstMapInfo stShown;
        gst_buffer_map(m_pstPlain, &stPlain, GST_MAP_READ);
        gst_buffer_map(pstBuffer, &stShown, GST_MAP_READ);
        size_t uiChanged = 0;
        for (gsize ui = 0; ui < stPlain.size; ++ui)
            uiChanged += static_cast<size_t>(std::abs(stPlain.data[ui] - stShown.data[ui]));
        gst_buffer_unmap(pstBuffer, &stShown);
        gst_buffer_unmap(m_pstPlain, &stPlain);
        gst_buffer_unref(pstBuffer);
        return uiChanged;
    }
    // As a screen shows it.
    Picture See(int64_t llMs) const
    {
        GstBuffer *const pstShown = Show(llMs);
        GstBuffer *const pstRgba = Convert(pstShown, m_stInfo, Make_RgbaInfo(WIDTH, HEIGHT));
        Picture stPicture = Make_Picture(WIDTH, HEIGHT);
        gst_buffer_extract(pstRgba, 0, stPicture.aucRgba.data(), stPicture.aucRgba.size());
        gst_buffer_unref(pstRgba);
        gst_buffer_unref(pstShown);
        return stPicture;
    }

private:
    GstHarness *m_pstHarness;
    GstVideoInfo m_stInfo;
    GstBuffer *m_pstPlain;
};

std::string Make_Caps(const std::string &strFormat, int iWidth = WIDTH, int iHeight = HEIGHT)
{
    return "video/x-raw,framerate=25/1,format=" + strFormat + ",width=" + std::to_string(iWidth) +
           ",height=" + std::to_string(iHeight);
}

const std::string SUBTITLE = "location=" + Sample("subrip-lf.srt");

TEST(Overlay, EveryFormatShowsTheBoxsPicture)
{
    // Where colours are halved or left out, edges differ: bytes of 1,536,000.
    static const struct {
        const char *pszFormat;
        size_t uiMost;
    } astRows[] = {{"RGBA", 0}, {"BGRx", 0},  {"xRGB", 0}, {"RGB", 0},       {"BGR", 0},
                   {"Y444", 0}, {"AYUV", 0},  {"GBR", 0},  {"I420", 0},      {"YV12", 0},
                   {"NV12", 0}, {"NV21", 0},  {"YUY2", 0}, {"UYVY", 0},      {"Y42B", 0},
                   {"Y41B", 0}, {"GRAY8", 0}, {"v308", 0}, {"I420_10LE", 0}, {"P010_10LE", 0}};
    for (const auto &stRow : astRows) {
        const Overlay stOverlay(SUBTITLE + " position=33", Make_Caps(stRow.pszFormat));
        const Picture stPlain = stOverlay.See(0);
        const Picture stShown = stOverlay.See(CAPTION);
        const TestFolder stFolder;
        Write_Png(stFolder.Path("plain.png"), stPlain);
        const Picture stExpected =
            Render("subrip-lf.srt", CAPTION, "--position 33 --background " + stFolder.Path("plain.png"));
        EXPECT_GT(Count_Differences(stShown, stPlain), 3000U) << stRow.pszFormat;
        EXPECT_LE(Count_Differences(stShown, stExpected), stRow.uiMost) << stRow.pszFormat;
    }
}

TEST(Overlay, FollowsTheTimesOfFramesAndTheUsersWishes)
{
    const Overlay stOverlay(SUBTITLE, Make_Caps("I420"));
    const size_t uiCaption = stOverlay.Sum_Changes(CAPTION);
    EXPECT_GT(uiCaption, 1000U);
    EXPECT_EQ(stOverlay.Sum_Changes(9000), 0U) << "its end";
    EXPECT_EQ(stOverlay.Sum_Changes(8999), uiCaption) << "backwards";
    EXPECT_EQ(stOverlay.Sum_Changes(6999), 0U);
    EXPECT_EQ(stOverlay.Sum_Changes(7000), uiCaption) << "its start";

    stOverlay.Set("silent", "true");
    EXPECT_EQ(stOverlay.Sum_Changes(CAPTION), 0U);
    stOverlay.Set("silent", "false");
    stOverlay.Set("font-size", "40");
    EXPECT_GT(stOverlay.Sum_Changes(CAPTION), uiCaption);
    stOverlay.Set("location", Sample("sami-bilingual.smi").c_str());
    const size_t uiBoth = stOverlay.Sum_Changes(CAPTION);
    stOverlay.Set("class", "encc");
    const size_t uiEnglish = stOverlay.Sum_Changes(CAPTION);
    EXPECT_LT(uiEnglish, uiBoth);
    stOverlay.Set("class", "frcc");
    EXPECT_EQ(stOverlay.Sum_Changes(CAPTION), 0U) << "a language that the file does not have";
    stOverlay.Set("class", "1");
    EXPECT_EQ(stOverlay.Sum_Changes(CAPTION), uiEnglish);
    gchar **ppszClasses = nullptr;
    g_object_get(stOverlay.Get_Element().get(), "classes", &ppszClasses, nullptr);
    gchar *const pszJoined = g_strjoinv(" ", ppszClasses);
    EXPECT_STREQ(pszJoined, "KRCC ENCC");
    g_free(pszJoined);
    g_strfreev(ppszClasses);
}

TEST(Overlay, TimesAreThoseOfTheFilm)
{
    const Overlay stOverlay(SUBTITLE, Make_Caps("I420"));
    GstSegment stSegment;
    gst_segment_init(&stSegment, GST_FORMAT_TIME);
    stSegment.start = 100 * GST_SECOND; // frames count from 100 seconds on, the film from 5
    stSegment.time = 5 * GST_SECOND;
    gst_harness_push_event(stOverlay.Get(), gst_event_new_segment(&stSegment));
    EXPECT_GT(stOverlay.Sum_Changes(103000), 1000U);
    EXPECT_EQ(stOverlay.Sum_Changes(108000), 0U);
}

TEST(Overlay, ScalesToTheFilm)
{
    const Overlay stSmall(SUBTITLE, Make_Caps("GRAY8"));
    const Overlay stLarge(SUBTITLE, Make_Caps("GRAY8", 2 * WIDTH, 2 * HEIGHT));
    const auto dSmall = static_cast<double>(stSmall.Sum_Changes(CAPTION));
    const auto dLarge = static_cast<double>(stLarge.Sum_Changes(CAPTION));
    EXPECT_NEAR(dLarge / dSmall, 4, 0.1);
}

// Rectangles beside a frame.
GstVideoOverlayComposition *Get_Composition(GstBuffer *pstBuffer)
{
    const GstVideoOverlayCompositionMeta *const pstMeta =
        gst_buffer_get_video_overlay_composition_meta(pstBuffer);
    return pstMeta == nullptr ? nullptr : pstMeta->overlay;
}

TEST(Overlay, BesideTheFramesWhereThatIsWanted)
{
    const Overlay stOverlay(SUBTITLE, Make_Caps("NV12", 2 * WIDTH, 2 * HEIGHT), true);
    GstBuffer *const pstFirst = stOverlay.Show(CAPTION);
    GstBuffer *const pstSecond = stOverlay.Show(CAPTION + 40);
    GstBuffer *const pstEmpty = stOverlay.Show(9000);
    ASSERT_NE(Get_Composition(pstFirst), nullptr);
    EXPECT_EQ(Get_Composition(pstFirst), Get_Composition(pstSecond)) << "made once";
    EXPECT_EQ(Get_Composition(pstEmpty), nullptr);
    gint iX = 0;
    gint iY = 0;
    guint uiWidth = 0;
    guint uiHeight = 0;
    gst_video_overlay_rectangle_get_render_rectangle(
        gst_video_overlay_composition_get_rectangle(Get_Composition(pstFirst), 0), &iX, &iY, &uiWidth,
        &uiHeight);
    EXPECT_NEAR(2 * iX + static_cast<int>(uiWidth), 2 * WIDTH, 4) << "in the middle";
    EXPECT_NEAR(iY + static_cast<int>(uiHeight), 2 * (HEIGHT - 16), 2)
        << "16 pixels of the output above its bottom";
    EXPECT_EQ(stOverlay.Sum_Changes(CAPTION), 0U) << "the frame is left as it is";
    for (GstBuffer *const pstBuffer : {pstFirst, pstSecond, pstEmpty}) gst_buffer_unref(pstBuffer);
}

TEST(Overlay, KeepsWhatIsBesideTheFrameAlready)
{
    const Overlay stOverlay(
        SUBTITLE,
        "video/x-raw(meta:GstVideoOverlayComposition),framerate=25/1,format=NV12,width=800,height=480");
    GstBuffer *const pstFirst = stOverlay.Show(CAPTION); // gives a composition to begin with
    ASSERT_NE(Get_Composition(pstFirst), nullptr);
    GST_BUFFER_PTS(pstFirst) = 4500 * GST_MSECOND;
    GstBuffer *const pstBoth = gst_harness_push_and_pull(stOverlay.Get(), pstFirst);
    EXPECT_EQ(gst_video_overlay_composition_n_rectangles(Get_Composition(pstBoth)), 2U);
    gst_buffer_unref(pstBoth);
}

TEST(Overlay, FilmsWithoutSubtitlesPlay)
{
    for (const char *const pszProperties : {"", "location=/nowhere/film.avi", "location=/dev/null"}) {
        const Overlay stOverlay(pszProperties, Make_Caps("I420"));
        EXPECT_EQ(stOverlay.Sum_Changes(CAPTION), 0U) << pszProperties;
    }
}

TEST(Overlay, SeveralInOneProgram)
{
    const Overlay stOne(SUBTITLE, Make_Caps("I420"));
    const Overlay stOther(SUBTITLE + " output=hdmi-720p", Make_Caps("I420"));
    const size_t uiOne = stOne.Sum_Changes(CAPTION);
    EXPECT_GT(stOther.Sum_Changes(CAPTION), 1000U);
    EXPECT_EQ(stOne.Sum_Changes(CAPTION), uiOne);
}

} // namespace

// The module that plays films for zyrsub, by GStreamer: sound through its own sink, frames to the caller.
#include <gst/app/gstappsink.h>
#include <gst/gst.h>

#include <cstdio>
#include <cstring>

#include "film_calls.h"

struct FilmHandle {
    GstElement *pstPlaybin;
    GstElement *pstSize; // the filter that says how large frames are
    GstElement *pstScreen;
    uint32_t uiWidth;
    uint32_t uiHeight;
    double dSpeed;
    int64_t llTime; // the last that was known, ms
    bool bPaused;
};

static constexpr GstClockTime PATIENCE =
    10 * GST_SECOND; // for a film that is slow to open, or to find a place in
static constexpr int64_t NS_OF_MS = static_cast<int64_t>(GST_MSECOND);

static void Wait_ForState(FilmHandle *pstFilm)
{
    gst_element_get_state(pstFilm->pstPlaybin, nullptr, nullptr, PATIENCE);
}

static void Close_Film(FilmHandle *pstFilm)
{
    gst_element_set_state(pstFilm->pstPlaybin, GST_STATE_NULL);
    gst_object_unref(pstFilm->pstSize);
    gst_object_unref(pstFilm->pstScreen);
    gst_object_unref(pstFilm->pstPlaybin);
    delete pstFilm;
}

static void Set_Size(FilmHandle *pstFilm, uint32_t uiWidth, uint32_t uiHeight)
{
    pstFilm->uiWidth = uiWidth;
    pstFilm->uiHeight = uiHeight;
    GstCaps *const pstCaps =
        gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "RGBA", "width", G_TYPE_INT,
                            static_cast<gint>(uiWidth), "height", G_TYPE_INT, static_cast<gint>(uiHeight),
                            "pixel-aspect-ratio", GST_TYPE_FRACTION, 1, 1, nullptr);
    g_object_set(pstFilm->pstSize, "caps", pstCaps, nullptr);
    gst_caps_unref(pstCaps);
}

static void Seek_Film(FilmHandle *pstFilm, int64_t llTime)
{
    pstFilm->llTime = llTime;
    gst_element_seek(pstFilm->pstPlaybin, pstFilm->dSpeed, GST_FORMAT_TIME,
                     static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE),
                     GST_SEEK_TYPE_SET, llTime * NS_OF_MS, GST_SEEK_TYPE_NONE, 0);
    Wait_ForState(pstFilm);
}

static void Pause_Film(FilmHandle *pstFilm, bool bPause)
{
    if (pstFilm->bPaused == bPause) return;
    pstFilm->bPaused = bPause;
    gst_element_set_state(pstFilm->pstPlaybin, bPause ? GST_STATE_PAUSED : GST_STATE_PLAYING);
    Wait_ForState(pstFilm);
}

static int64_t Get_Time(FilmHandle *pstFilm)
{
    gint64 llTime = 0;
    if (gst_element_query_position(pstFilm->pstPlaybin, GST_FORMAT_TIME, &llTime))
        pstFilm->llTime = llTime / NS_OF_MS;
    return pstFilm->llTime;
}

static int64_t Get_Duration(FilmHandle *pstFilm)
{
    gint64 llDuration = 0;
    const bool bKnown =
        gst_element_query_duration(pstFilm->pstPlaybin, GST_FORMAT_TIME, &llDuration) != FALSE;
    return bKnown ? llDuration / NS_OF_MS : 0;
}

// While the film stands, its frame is the one that waits for it to go on; a look for others would lose it. A frame of
// the size before may come after a change.
static bool Take_Frame(FilmHandle *pstFilm, uint8_t *pucRgba)
{
    GstAppSink *const pstScreen = GST_APP_SINK(pstFilm->pstScreen);
    GstSample *pstSample = gst_app_sink_try_pull_preroll(pstScreen, 0);
    if (pstSample == nullptr) pstSample = gst_app_sink_try_pull_sample(pstScreen, 0);
    if (pstSample == nullptr) return false;
    const gsize uiBytes = gsize{pstFilm->uiWidth} * pstFilm->uiHeight * 4;
    const bool bFits = gst_buffer_get_size(gst_sample_get_buffer(pstSample)) == uiBytes;
    if (bFits) gst_buffer_extract(gst_sample_get_buffer(pstSample), 0, pucRgba, uiBytes);
    gst_sample_unref(pstSample);
    return bFits;
}

static FilmHandle *Make_Film(const char *pszPath, char *pszError, size_t uiRoom)
{
    GError *pstError = nullptr;
    GstElement *const pstSink =
        gst_parse_bin_from_description("videoconvert ! videoscale add-borders=true ! capsfilter name=size ! "
                                       "appsink name=screen max-buffers=1 "
                                       "drop=true sync=true wait-on-eos=false",
                                       TRUE, &pstError);
    GstElement *const pstPlaybin = gst_element_factory_make("playbin", nullptr);
    if (pstSink == nullptr || pstPlaybin == nullptr) {
        std::snprintf(pszError, uiRoom, "%s", pstError == nullptr ? "no playbin" : pstError->message);
        g_clear_error(&pstError);
        if (pstSink != nullptr) gst_object_unref(pstSink);
        if (pstPlaybin != nullptr) gst_object_unref(pstPlaybin);
        return nullptr;
    }
    gchar *const pszUri = gst_filename_to_uri(pszPath, nullptr);
    // Subtitles of the film itself would stand among ours.
    gst_util_set_object_arg(G_OBJECT(pstPlaybin), "flags", "video+audio+soft-volume");
    g_object_set(pstPlaybin, "uri", pszUri, "video-sink", pstSink, nullptr);
    g_free(pszUri);
    return new FilmHandle{pstPlaybin,
                          gst_bin_get_by_name(GST_BIN(pstSink), "size"),
                          gst_bin_get_by_name(GST_BIN(pstSink), "screen"),
                          0,
                          0,
                          1,
                          0,
                          true};
}

static void Tell_Error(FilmHandle *pstFilm, char *pszError, size_t uiRoom)
{
    GstBus *const pstBus = gst_element_get_bus(pstFilm->pstPlaybin);
    GstMessage *const pstMessage = gst_bus_pop_filtered(pstBus, GST_MESSAGE_ERROR);
    gst_object_unref(pstBus);
    std::snprintf(pszError, uiRoom, "the film does not open");
    if (pstMessage == nullptr) return;
    GError *pstError = nullptr;
    gst_message_parse_error(pstMessage, &pstError, nullptr);
    std::snprintf(pszError, uiRoom, "%s", pstError->message);
    g_error_free(pstError);
    gst_message_unref(pstMessage);
}

static FilmHandle *Open_Film(const char *pszPath, int64_t llFrom, double dSpeed, char *pszError,
                             size_t uiRoom)
{
    GError *pstError = nullptr;
    if (!gst_init_check(nullptr, nullptr, &pstError)) {
        std::snprintf(pszError, uiRoom, "%s", pstError->message);
        g_error_free(pstError);
        return nullptr;
    }
    FilmHandle *const pstFilm = Make_Film(pszPath, pszError, uiRoom);
    if (pstFilm == nullptr) return nullptr;
    gst_element_set_state(pstFilm->pstPlaybin, GST_STATE_PAUSED);
    if (gst_element_get_state(pstFilm->pstPlaybin, nullptr, nullptr, PATIENCE) != GST_STATE_CHANGE_SUCCESS) {
        Tell_Error(pstFilm, pszError, uiRoom);
        Close_Film(pstFilm);
        return nullptr;
    }
    pstFilm->dSpeed = dSpeed;
    if (llFrom > 0 || dSpeed != 1) Seek_Film(pstFilm, llFrom);
    return pstFilm;
}

extern "C" {
__attribute__((visibility("default"))) extern const FilmCalls zyrsub_film_calls_1;
const FilmCalls zyrsub_film_calls_1 = {Open_Film,  Close_Film, Set_Size, Take_Frame,
                                       Pause_Film, Seek_Film,  Get_Time, Get_Duration};
}

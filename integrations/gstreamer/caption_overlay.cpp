#include "caption_overlay.h"

#include <mutex>

#include "caption_blend.h"
#include "caption_track.h"
#include "overlay_caps.h"
#include "overlay_settings.h"

GST_DEBUG_CATEGORY_STATIC(zyr_caption_overlay_debug);
#define GST_CAT_DEFAULT zyr_caption_overlay_debug

// How captions come onto the frames of a film.
enum OverlayWay {
    E_WAY_NONE,      // memory that only its maker understands, before something that takes no compositions
    E_WAY_ATTACH,    // beside them: what follows puts them on
    E_WAY_BLEND,     // by our own marks
    E_WAY_BLEND_ANY, // by GStreamer's blending
};

struct CaptionOverlayState {
    std::mutex stLock; // of the settings and names
    OverlaySettings stNewSettings;
    bool bSettingsChanged = true;
    std::vector<std::string> astrClasses;

    // The streaming thread's own.
    OverlaySettings stSettings;
    bool bLoadDue = true;
    GstSegment stSegment;
    GstVideoInfo stInfo;
    bool bInfo = false;
    OverlayWay eWay = E_WAY_NONE;
    CaptionTrack stTrack;
    CaptionPicture stPicture;
    std::vector<PlaneMarks> astMarks;                     // E_WAY_BLEND
    GstVideoOverlayComposition *pstComposition = nullptr; // the other ways
};

struct ZyrCaptionOverlay {
    GstElement stElement;
    GstPad *pstSinkPad;
    GstPad *pstSourcePad;
    CaptionOverlayState *pstState;
};
struct ZyrCaptionOverlayClass {
    GstElementClass stParent;
};

G_DEFINE_TYPE_WITH_CODE(ZyrCaptionOverlay, zyr_caption_overlay, GST_TYPE_ELEMENT,
                        GST_DEBUG_CATEGORY_INIT(zyr_caption_overlay_debug, "zyrcaptionoverlay", 0,
                                                "captions of the box over a film"))
GST_ELEMENT_REGISTER_DEFINE(zyrcaptionoverlay, "zyrcaptionoverlay", GST_RANK_NONE, ZYR_TYPE_CAPTION_OVERLAY)

#define OVERLAY_CAPS                                                                                         \
    GST_VIDEO_CAPS_MAKE(GST_VIDEO_OVERLAY_COMPOSITION_BLEND_FORMATS)                                         \
    "; " GST_VIDEO_CAPS_MAKE_WITH_FEATURES("ANY", GST_VIDEO_FORMATS_ALL)

static GstStaticPadTemplate s_stSinkTemplate =
    GST_STATIC_PAD_TEMPLATE("sink", GST_PAD_SINK, GST_PAD_ALWAYS, GST_STATIC_CAPS(OVERLAY_CAPS));
static GstStaticPadTemplate s_stSourceTemplate =
    GST_STATIC_PAD_TEMPLATE("src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS(OVERLAY_CAPS));

static ZyrCaptionOverlay *Get_Overlay(gpointer pvObject)
{
    return G_TYPE_CHECK_INSTANCE_CAST(pvObject, ZYR_TYPE_CAPTION_OVERLAY, ZyrCaptionOverlay);
}

/* ---- The file. ---- */

// The movie that plays, as its source names it; empty when it is no file.
static std::string Find_Movie(ZyrCaptionOverlay *pstSelf)
{
    std::string strPath;
    GstQuery *const pstQuery = gst_query_new_uri();
    gchar *pszUri = nullptr;
    if (gst_pad_peer_query(pstSelf->pstSinkPad, pstQuery)) gst_query_parse_uri(pstQuery, &pszUri);
    gst_query_unref(pstQuery);
    gchar *const pszPath = pszUri == nullptr ? nullptr : g_filename_from_uri(pszUri, nullptr, nullptr);
    if (pszPath != nullptr) strPath = pszPath;
    g_free(pszPath);
    g_free(pszUri);
    return strPath;
}

static void Publish_Classes(ZyrCaptionOverlay *pstSelf)
{
    CaptionOverlayState &stState = *pstSelf->pstState;
    {
        const std::lock_guard<std::mutex> stGuard(stState.stLock);
        stState.astrClasses = stState.stTrack.List_Classes();
    }
    g_object_notify(G_OBJECT(pstSelf), "classes");
}

// A film without a subtitle beside it is a film like any other; a subtitle that cannot be shown is worth a word.
static void Load_Track(ZyrCaptionOverlay *pstSelf)
{
    CaptionOverlayState &stState = *pstSelf->pstState;
    stState.bLoadDue = false;
    stState.stTrack.Clear();
    const bool bBeside = stState.stSettings.strLocation.empty();
    const std::string strPath = bBeside ? Find_Movie(pstSelf) : stState.stSettings.strLocation;
    if (!strPath.empty()) {
        const int iError = stState.stTrack.Load(strPath, stState.stSettings.stSource);
        GST_INFO_OBJECT(pstSelf, "subtitle of %s: %d", strPath.c_str(), iError);
        if (iError == ZYR_CAPTIONS_NOT_FOUND && !bBeside)
            GST_ELEMENT_WARNING(pstSelf, RESOURCE, NOT_FOUND, ("%s", stState.stTrack.Get_ErrorText()),
                                (nullptr));
        else if (iError != ZYR_CAPTIONS_OK && iError != ZYR_CAPTIONS_NOT_FOUND)
            GST_ELEMENT_WARNING(pstSelf, STREAM, DECODE, ("%s", stState.stTrack.Get_ErrorText()), (nullptr));
    }
    Publish_Classes(pstSelf);
}

static bool Is_SameSource(const OverlaySettings &stOne, const OverlaySettings &stOther)
{
    return stOne.strLocation == stOther.strLocation &&
           stOne.stSource.strCodePage == stOther.stSource.strCodePage &&
           stOne.stSource.bBoxLineEnds == stOther.stSource.bBoxLineEnds;
}

// What a user has changed since the last frame.
static void Take_Settings(ZyrCaptionOverlay *pstSelf)
{
    CaptionOverlayState &stState = *pstSelf->pstState;
    bool bChanged = stState.bLoadDue;
    {
        const std::lock_guard<std::mutex> stGuard(stState.stLock);
        if (stState.bSettingsChanged) {
            if (!Is_SameSource(stState.stSettings, stState.stNewSettings)) stState.bLoadDue = true;
            stState.stSettings = stState.stNewSettings;
            stState.bSettingsChanged = false;
            bChanged = true;
        }
    }
    if (stState.bLoadDue) Load_Track(pstSelf);
    if (!bChanged || stState.stTrack.Choose_Class(stState.stSettings.strClass)) return;
    if (!stState.stTrack.List_Classes().empty())
        GST_ELEMENT_WARNING(pstSelf, STREAM, FAILED,
                            ("The subtitle has no language \"%s\".", stState.stSettings.strClass.c_str()),
                            (nullptr));
}

/* ---- The picture of the moment. ---- */

static void Drop_Picture(CaptionOverlayState &stState)
{
    stState.stPicture = {};
    stState.astMarks.clear();
    if (stState.pstComposition != nullptr) gst_video_overlay_composition_unref(stState.pstComposition);
    stState.pstComposition = nullptr;
}

static void Make_Picture(ZyrCaptionOverlay *pstSelf)
{
    CaptionOverlayState &stState = *pstSelf->pstState;
    Drop_Picture(stState);
    const int iError =
        Draw_Caption(stState.stSettings.stScreen, stState.stTrack.Get_Text(), stState.stPicture);
    if (iError == ZYR_CAPTIONS_BUSY) {
        GST_DEBUG_OBJECT(pstSelf, "the program draws captions itself just now");
        stState.stTrack.Forget_Text();
    } else if (iError != ZYR_CAPTIONS_OK) {
        GST_ELEMENT_WARNING(pstSelf, LIBRARY, FAILED,
                            ("The caption renderer does not start. Is the caption font installed?"),
                            ("Draw_Caption: %d", iError));
    }
    if (stState.stPicture.aucBgra.empty()) return;
    const auto uiWidth = static_cast<uint32_t>(GST_VIDEO_INFO_WIDTH(&stState.stInfo));
    const auto uiHeight = static_cast<uint32_t>(GST_VIDEO_INFO_HEIGHT(&stState.stInfo));
    GST_DEBUG_OBJECT(pstSelf, "caption of %u x %u pixels", stState.stPicture.stBox.uiWidth,
                     stState.stPicture.stBox.uiHeight);
    if (stState.eWay == E_WAY_BLEND)
        stState.astMarks = Make_Marks(Scale_Picture(stState.stPicture, uiWidth, uiHeight), stState.stInfo);
    else
        stState.pstComposition = Make_Composition(stState.stPicture, uiWidth, uiHeight);
}

// What another element has put beside the frame stays there, below the caption.
static GstBuffer *Attach_Caption(const CaptionOverlayState &stState, GstBuffer *pstBuffer)
{
    pstBuffer = gst_buffer_make_writable(pstBuffer);
    GstVideoOverlayCompositionMeta *const pstMeta = gst_buffer_get_video_overlay_composition_meta(pstBuffer);
    if (pstMeta == nullptr) {
        gst_buffer_add_video_overlay_composition_meta(pstBuffer, stState.pstComposition);
        return pstBuffer;
    }
    GstVideoOverlayComposition *const pstBoth = gst_video_overlay_composition_copy(pstMeta->overlay);
    gst_video_overlay_composition_add_rectangle(
        pstBoth, gst_video_overlay_composition_get_rectangle(stState.pstComposition, 0));
    gst_buffer_remove_video_overlay_composition_meta(pstBuffer, pstMeta);
    gst_buffer_add_video_overlay_composition_meta(pstBuffer, pstBoth);
    gst_video_overlay_composition_unref(pstBoth);
    return pstBuffer;
}

static GstBuffer *Blend_Caption(ZyrCaptionOverlay *pstSelf, GstBuffer *pstBuffer)
{
    CaptionOverlayState &stState = *pstSelf->pstState;
    pstBuffer = gst_buffer_make_writable(pstBuffer);
    GstVideoFrame stFrame;
    if (!gst_video_frame_map(&stFrame, &stState.stInfo, pstBuffer, GST_MAP_READWRITE)) {
        GST_WARNING_OBJECT(pstSelf, "a frame cannot be written to");
        return pstBuffer;
    }
    if (stState.eWay == E_WAY_BLEND)
        Blend_Marks(stState.astMarks, stFrame);
    else
        gst_video_overlay_composition_blend(stState.pstComposition, &stFrame);
    gst_video_frame_unmap(&stFrame);
    return pstBuffer;
}

static GstBuffer *Show_Caption(ZyrCaptionOverlay *pstSelf, GstBuffer *pstBuffer)
{
    CaptionOverlayState &stState = *pstSelf->pstState;
    const guint64 ullTime =
        gst_segment_to_stream_time(&stState.stSegment, GST_FORMAT_TIME, GST_BUFFER_PTS(pstBuffer));
    if (!GST_CLOCK_TIME_IS_VALID(ullTime) || stState.eWay == E_WAY_NONE || stState.stSettings.bSilent)
        return pstBuffer;
    const guint64 ullMs = MIN(ullTime / GST_MSECOND, static_cast<guint64>(G_MAXINT32 - 1));
    if (stState.stTrack.Move_To(static_cast<int32_t>(ullMs))) Make_Picture(pstSelf);
    if (stState.stPicture.aucBgra.empty()) return pstBuffer;
    return stState.eWay == E_WAY_ATTACH ? Attach_Caption(stState, pstBuffer)
                                        : Blend_Caption(pstSelf, pstBuffer);
}

/* ---- Caps. ---- */

static OverlayWay Get_BlendWay(ZyrCaptionOverlay *pstSelf, const GstCaps *pstCaps)
{
    const GstCapsFeatures *const pstFeatures = gst_caps_get_features(pstCaps, 0);
    if (!gst_caps_features_is_equal(pstFeatures, GST_CAPS_FEATURES_MEMORY_SYSTEM_MEMORY)) {
        GST_ELEMENT_WARNING(pstSelf, STREAM, FORMAT,
                            ("Captions cannot be put onto this film's frames; it plays without them."),
                            ("%" GST_PTR_FORMAT, static_cast<const void *>(pstCaps)));
        return E_WAY_NONE;
    }
    return Is_ByteFormat(pstSelf->pstState->stInfo.finfo) ? E_WAY_BLEND : E_WAY_BLEND_ANY;
}

// Beside the frames where what follows says both that it takes them so and that it will show them.
static bool Negotiate(ZyrCaptionOverlay *pstSelf, GstCaps *pstCaps)
{
    CaptionOverlayState &stState = *pstSelf->pstState;
    Drop_Picture(stState);
    stState.stTrack.Forget_Text();
    if (Has_CompositionFeature(pstCaps)) {
        stState.eWay = E_WAY_ATTACH;
        return gst_pad_set_caps(pstSelf->pstSourcePad, pstCaps);
    }
    GstCaps *const pstWith = Add_CompositionFeature(pstCaps);
    const bool bAttach = gst_pad_peer_query_accept_caps(pstSelf->pstSourcePad, pstWith) &&
                         gst_pad_set_caps(pstSelf->pstSourcePad, pstWith) &&
                         Asks_ForCompositions(pstSelf->pstSourcePad, pstWith);
    gst_caps_unref(pstWith);
    stState.eWay = bAttach ? E_WAY_ATTACH : Get_BlendWay(pstSelf, pstCaps);
    GST_DEBUG_OBJECT(pstSelf, "captions come %s", bAttach ? "beside the frames" : "onto the frames");
    return bAttach || gst_pad_set_caps(pstSelf->pstSourcePad, pstCaps);
}

static bool Set_Caps(ZyrCaptionOverlay *pstSelf, GstCaps *pstCaps)
{
    CaptionOverlayState &stState = *pstSelf->pstState;
    stState.bInfo = gst_video_info_from_caps(&stState.stInfo, pstCaps) != FALSE;
    if (!stState.bInfo) return false;
    gst_pad_check_reconfigure(pstSelf->pstSourcePad);
    return Negotiate(pstSelf, pstCaps);
}

static bool Negotiate_Again(ZyrCaptionOverlay *pstSelf)
{
    GstCaps *const pstCaps = gst_pad_get_current_caps(pstSelf->pstSinkPad);
    const bool bGood = pstCaps != nullptr && Negotiate(pstSelf, pstCaps);
    if (pstCaps != nullptr) gst_caps_unref(pstCaps);
    if (!bGood) gst_pad_mark_reconfigure(pstSelf->pstSourcePad);
    return bGood;
}

static void Answer_Caps(ZyrCaptionOverlay *pstSelf, GstPad *pstPad, GstQuery *pstQuery)
{
    const bool bSink = pstPad == pstSelf->pstSinkPad;
    GstPad *const pstOther = bSink ? pstSelf->pstSourcePad : pstSelf->pstSinkPad;
    GstCaps *pstFilter = nullptr;
    gst_query_parse_caps(pstQuery, &pstFilter);
    GstCaps *const pstOwn = gst_pad_get_pad_template_caps(pstPad);
    GstCaps *const pstPeer = gst_pad_peer_query_caps(pstOther, nullptr);
    GstCaps *pstResult =
        gst_caps_is_any(pstPeer) ? gst_caps_copy(pstOwn) : Merge_Caps(pstOwn, pstPeer, !bSink);
    if (pstFilter != nullptr) {
        GstCaps *const pstFiltered = gst_caps_intersect_full(pstFilter, pstResult, GST_CAPS_INTERSECT_FIRST);
        gst_caps_unref(pstResult);
        pstResult = pstFiltered;
    }
    gst_query_set_caps_result(pstQuery, pstResult);
    gst_caps_unref(pstResult);
    gst_caps_unref(pstPeer);
    gst_caps_unref(pstOwn);
}

/* ---- The pads. ---- */

static GstFlowReturn Take_Frame(GstPad *, GstObject *pstParent, GstBuffer *pstBuffer)
{
    ZyrCaptionOverlay *const pstSelf = Get_Overlay(pstParent);
    GstPad *const pstSourcePad = pstSelf->pstSourcePad;
    const bool bReady =
        pstSelf->pstState->bInfo && (!gst_pad_check_reconfigure(pstSourcePad) || Negotiate_Again(pstSelf));
    if (!bReady) {
        gst_buffer_unref(pstBuffer);
        return GST_PAD_IS_FLUSHING(pstSourcePad) ? GST_FLOW_FLUSHING : GST_FLOW_NOT_NEGOTIATED;
    }
    Take_Settings(pstSelf);
    return gst_pad_push(pstSourcePad, Show_Caption(pstSelf, pstBuffer));
}

static gboolean Handle_SinkEvent(GstPad *pstPad, GstObject *pstParent, GstEvent *pstEvent)
{
    ZyrCaptionOverlay *const pstSelf = Get_Overlay(pstParent);
    CaptionOverlayState &stState = *pstSelf->pstState;
    GstCaps *pstCaps = nullptr;
    switch (GST_EVENT_TYPE(pstEvent)) {
    case GST_EVENT_CAPS: {
        gst_event_parse_caps(pstEvent, &pstCaps);
        const bool bGood = Set_Caps(pstSelf, pstCaps);
        gst_event_unref(pstEvent);
        return bGood;
    }
    case GST_EVENT_STREAM_START: stState.bLoadDue = true; break;
    case GST_EVENT_SEGMENT: gst_event_copy_segment(pstEvent, &stState.stSegment); break;
    case GST_EVENT_FLUSH_STOP: gst_segment_init(&stState.stSegment, GST_FORMAT_TIME); break;
    default: break;
    }
    return gst_pad_event_default(pstPad, pstParent, pstEvent);
}

static gboolean Answer_Query(GstPad *pstPad, GstObject *pstParent, GstQuery *pstQuery)
{
    if (GST_QUERY_TYPE(pstQuery) != GST_QUERY_CAPS) return gst_pad_query_default(pstPad, pstParent, pstQuery);
    Answer_Caps(Get_Overlay(pstParent), pstPad, pstQuery);
    return TRUE;
}

/* ---- The element. ---- */

static GstStateChangeReturn Change_State(GstElement *pstElement, GstStateChange eChange)
{
    const GstStateChangeReturn eReturn =
        GST_ELEMENT_CLASS(zyr_caption_overlay_parent_class)->change_state(pstElement, eChange);
    if (eChange != GST_STATE_CHANGE_PAUSED_TO_READY) return eReturn;
    CaptionOverlayState &stState = *Get_Overlay(pstElement)->pstState;
    Drop_Picture(stState);
    stState.stTrack.Clear();
    stState.bLoadDue = true;
    stState.bInfo = false;
    gst_segment_init(&stState.stSegment, GST_FORMAT_TIME);
    return eReturn;
}

static void Set_Property(GObject *pstObject, guint uiProperty, const GValue *pstValue, GParamSpec *pstSpec)
{
    CaptionOverlayState &stState = *Get_Overlay(pstObject)->pstState;
    const std::lock_guard<std::mutex> stGuard(stState.stLock);
    if (Set_OverlaySetting(stState.stNewSettings, uiProperty, pstValue))
        stState.bSettingsChanged = true;
    else
        G_OBJECT_WARN_INVALID_PROPERTY_ID(pstObject, uiProperty, pstSpec);
}

static gchar **Make_Names(const std::vector<std::string> &astrNames)
{
    GStrvBuilder *const pstBuilder = g_strv_builder_new();
    for (const std::string &strName : astrNames) g_strv_builder_add(pstBuilder, strName.c_str());
    gchar **const ppszNames = g_strv_builder_end(pstBuilder);
    g_strv_builder_unref(pstBuilder);
    return ppszNames;
}

static void Get_Property(GObject *pstObject, guint uiProperty, GValue *pstValue, GParamSpec *pstSpec)
{
    CaptionOverlayState &stState = *Get_Overlay(pstObject)->pstState;
    const std::lock_guard<std::mutex> stGuard(stState.stLock);
    if (uiProperty == E_OVERLAY_CLASSES)
        g_value_take_boxed(pstValue, Make_Names(stState.astrClasses));
    else if (!Get_OverlaySetting(stState.stNewSettings, uiProperty, pstValue))
        G_OBJECT_WARN_INVALID_PROPERTY_ID(pstObject, uiProperty, pstSpec);
}

static void Finalize(GObject *pstObject)
{
    CaptionOverlayState *const pstState = Get_Overlay(pstObject)->pstState;
    Drop_Picture(*pstState);
    delete pstState;
    G_OBJECT_CLASS(zyr_caption_overlay_parent_class)->finalize(pstObject);
}

static void zyr_caption_overlay_init(ZyrCaptionOverlay *pstSelf)
{
    pstSelf->pstState = new CaptionOverlayState;
    gst_segment_init(&pstSelf->pstState->stSegment, GST_FORMAT_TIME);
    gst_video_info_init(&pstSelf->pstState->stInfo);
    pstSelf->pstSinkPad = gst_pad_new_from_static_template(&s_stSinkTemplate, "sink");
    gst_pad_set_chain_function(pstSelf->pstSinkPad, Take_Frame);
    gst_pad_set_event_function(pstSelf->pstSinkPad, Handle_SinkEvent);
    gst_pad_set_query_function(pstSelf->pstSinkPad, Answer_Query);
    GST_PAD_SET_PROXY_ALLOCATION(pstSelf->pstSinkPad);
    gst_element_add_pad(&pstSelf->stElement, pstSelf->pstSinkPad);
    pstSelf->pstSourcePad = gst_pad_new_from_static_template(&s_stSourceTemplate, "src");
    gst_pad_set_query_function(pstSelf->pstSourcePad, Answer_Query);
    gst_element_add_pad(&pstSelf->stElement, pstSelf->pstSourcePad);
}

static void zyr_caption_overlay_class_init(ZyrCaptionOverlayClass *pstClass)
{
    GObjectClass *const pstObject = G_OBJECT_CLASS(pstClass);
    pstObject->set_property = Set_Property;
    pstObject->get_property = Get_Property;
    pstObject->finalize = Finalize;
    Install_OverlayProperties(pstObject);
    GstElementClass *const pstElement = GST_ELEMENT_CLASS(pstClass);
    pstElement->change_state = Change_State;
    gst_element_class_add_static_pad_template(pstElement, &s_stSinkTemplate);
    gst_element_class_add_static_pad_template(pstElement, &s_stSourceTemplate);
    gst_element_class_set_static_metadata(
        pstElement, "Captions of a set-top box", "Filter/Editor/Video",
        "Shows a film's SAMI, SubRip, SubViewer or SSA captions as an output of a set-top box does",
        "libZYRsubtitle authors");
}

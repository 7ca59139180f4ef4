#include "sub_parse.h"

#include <gst/base/gstadapter.h>
#include <gst/base/gstflowcombiner.h>

#include <mutex>

#include "text_stream.h"

GST_DEBUG_CATEGORY_STATIC(zyr_sub_parse_debug);
#define GST_CAT_DEFAULT zyr_sub_parse_debug

// A film's subtitle has a few hundred kilobytes; what goes on for longer is something else.
static constexpr gsize MOST_BYTES = 64U << 20U;

enum SubParseProperty { E_PARSE_CLASS = 1, E_PARSE_CODE_PAGE, E_PARSE_SUBTITLE_ENCODING, E_PARSE_LINE_ENDS };

// The file is collected until its end. Then the pads come, and a task of the element's own passes the spans on, so
// that seeks are answered from the list and nothing is read again.
struct SubParseState {
    std::mutex stLock; // of the settings, and of the last seek
    SourceSettings stSettings;
    std::string strClass;
    guint32 uiLastSeek = GST_SEQNUM_INVALID;

    GstAdapter *pstAdapter = gst_adapter_new();
    bool bRefused = false; // more came than is read
    CaptionsPtr pstCaptions{nullptr, zyrCaptions_free};

    GRecMutex stTaskLock; // of all below, once the task is there
    GstTask *pstTask = nullptr;
    GstFlowCombiner *pstFlows = gst_flow_combiner_new();
    GstSegment stSegment;
    guint32 uiSeqnum = GST_SEQNUM_INVALID; // of the seek that made the segment
    std::vector<TextStream> astStreams;
};

struct ZyrSubParse {
    GstElement stElement;
    GstPad *pstSinkPad;
    SubParseState *pstState;
};
struct ZyrSubParseClass {
    GstElementClass stParent;
};

G_DEFINE_TYPE_WITH_CODE(ZyrSubParse, zyr_sub_parse, GST_TYPE_ELEMENT,
                        GST_DEBUG_CATEGORY_INIT(zyr_sub_parse_debug, "zyrsubparse", 0,
                                                "subtitle files to timed text"))
GST_ELEMENT_REGISTER_DEFINE(zyrsubparse, "zyrsubparse", GST_RANK_NONE, ZYR_TYPE_SUB_PARSE)

static GstStaticPadTemplate s_stSinkTemplate = GST_STATIC_PAD_TEMPLATE(
    "sink", GST_PAD_SINK, GST_PAD_ALWAYS,
    GST_STATIC_CAPS("application/x-subtitle-sami; application/x-subtitle; application/x-ssa"));
static GstStaticPadTemplate s_stSourceTemplate = GST_STATIC_PAD_TEMPLATE(
    "src_%u", GST_PAD_SRC, GST_PAD_SOMETIMES, GST_STATIC_CAPS("text/x-raw, format=(string)pango-markup"));

static ZyrSubParse *Get_SubParse(gpointer pvObject)
{
    return G_TYPE_CHECK_INSTANCE_CAST(pvObject, ZYR_TYPE_SUB_PARSE, ZyrSubParse);
}

/* ---- The task: spans in the order of their times, over all languages. ---- */

static TextStream *Find_NextStream(SubParseState &stState)
{
    TextStream *pstNext = nullptr;
    GstClockTime ullNext = 0;
    for (TextStream &stStream : stState.astStreams) {
        const auto ullTime = Get_NextTime(stStream, stState.stSegment);
        if (!ullTime) continue;
        const bool bSooner = stState.stSegment.rate < 0 ? *ullTime > ullNext : *ullTime < ullNext;
        if (pstNext != nullptr && !bSooner) continue;
        pstNext = &stStream;
        ullNext = *ullTime;
    }
    return pstNext;
}

static void Push_ToAll(SubParseState &stState, GstEvent *pstEvent)
{
    if (stState.uiSeqnum != GST_SEQNUM_INVALID) gst_event_set_seqnum(pstEvent, stState.uiSeqnum);
    for (const TextStream &stStream : stState.astStreams)
        gst_pad_push_event(stStream.pstPad, gst_event_ref(pstEvent));
    gst_event_unref(pstEvent);
}

static void Finish_Segment(ZyrSubParse *pstSelf)
{
    SubParseState &stState = *pstSelf->pstState;
    const GstSegment &stSegment = stState.stSegment;
    for (TextStream &stStream : stState.astStreams) Push_Segment(stStream, stSegment);
    if (!(stSegment.flags & GST_SEGMENT_FLAG_SEGMENT)) return Push_ToAll(stState, gst_event_new_eos());
    const gint64 llEnd = static_cast<gint64>(stSegment.rate < 0 ? stSegment.start : stSegment.stop);
    GstElement *const pstElement = &pstSelf->stElement;
    gst_element_post_message(pstElement,
                             gst_message_new_segment_done(GST_OBJECT(pstElement), GST_FORMAT_TIME, llEnd));
    Push_ToAll(stState, gst_event_new_segment_done(GST_FORMAT_TIME, llEnd));
}

static void Run_Task(gpointer pvSelf)
{
    ZyrSubParse *const pstSelf = Get_SubParse(pvSelf);
    SubParseState &stState = *pstSelf->pstState;
    TextStream *const pstStream = Find_NextStream(stState);
    if (pstStream == nullptr) {
        GST_DEBUG_OBJECT(pstSelf, "all captions are passed on");
        gst_task_pause(stState.pstTask);
        return Finish_Segment(pstSelf);
    }
    const GstFlowReturn eFlow = gst_flow_combiner_update_pad_flow(stState.pstFlows, pstStream->pstPad,
                                                                  Push_Next(*pstStream, stState.stSegment));
    if (eFlow == GST_FLOW_OK) return;
    GST_DEBUG_OBJECT(pstSelf, "stopped: %s", gst_flow_get_name(eFlow));
    gst_task_pause(stState.pstTask);
    if (eFlow == GST_FLOW_FLUSHING) return;
    if (eFlow == GST_FLOW_EOS) return Finish_Segment(pstSelf);
    GST_ELEMENT_FLOW_ERROR(pstSelf, eFlow);
    Push_ToAll(stState, gst_event_new_eos());
}

/* ---- What comes from downstream. ---- */

static GstClockTime Get_Duration(const SubParseState &stState)
{
    GstClockTime ullEnd = 0;
    for (const TextStream &stStream : stState.astStreams) ullEnd = std::max(ullEnd, Get_EndTime(stStream));
    return ullEnd;
}

static bool Set_Segment(SubParseState &stState, GstEvent *pstSeek)
{
    gdouble dRate = 1;
    GstFormat eFormat = GST_FORMAT_UNDEFINED;
    GstSeekFlags eFlags = GST_SEEK_FLAG_NONE;
    GstSeekType eStartType = GST_SEEK_TYPE_NONE;
    GstSeekType eStopType = GST_SEEK_TYPE_NONE;
    gint64 llStart = 0;
    gint64 llStop = 0;
    gst_event_parse_seek(pstSeek, &dRate, &eFormat, &eFlags, &eStartType, &llStart, &eStopType, &llStop);
    GstSegment stSegment = stState.stSegment;
    if (!gst_segment_do_seek(&stSegment, dRate, eFormat, eFlags, eStartType, static_cast<guint64>(llStart),
                             eStopType, static_cast<guint64>(llStop), nullptr))
        return false;
    stState.stSegment = stSegment;
    stState.uiSeqnum = gst_event_get_seqnum(pstSeek);
    for (TextStream &stStream : stState.astStreams) Rewind_Stream(stStream, stSegment, stState.uiSeqnum);
    gst_flow_combiner_reset(stState.pstFlows);
    return true;
}

static void Push_Flush(SubParseState &stState, GstEvent *pstEvent, guint32 uiSeqnum)
{
    gst_event_set_seqnum(pstEvent, uiSeqnum);
    for (const TextStream &stStream : stState.astStreams)
        gst_pad_push_event(stStream.pstPad, gst_event_ref(pstEvent));
    gst_event_unref(pstEvent);
}

// Every language's pad is asked for the same seek; the first one is enough.
static gboolean Handle_Seek(ZyrSubParse *pstSelf, GstEvent *pstSeek)
{
    SubParseState &stState = *pstSelf->pstState;
    GstFormat eFormat = GST_FORMAT_UNDEFINED;
    GstSeekFlags eFlags = GST_SEEK_FLAG_NONE;
    gst_event_parse_seek(pstSeek, nullptr, &eFormat, &eFlags, nullptr, nullptr, nullptr, nullptr);
    if (eFormat != GST_FORMAT_TIME || (eFlags & GST_SEEK_FLAG_INSTANT_RATE_CHANGE)) return FALSE;
    const guint32 uiSeqnum = gst_event_get_seqnum(pstSeek);
    const bool bFlush = (eFlags & GST_SEEK_FLAG_FLUSH) != 0;
    {
        const std::lock_guard<std::mutex> stGuard(stState.stLock);
        if (uiSeqnum == stState.uiLastSeek) return TRUE;
        stState.uiLastSeek = uiSeqnum;
    }
    if (bFlush) Push_Flush(stState, gst_event_new_flush_start(), uiSeqnum);
    gst_task_pause(stState.pstTask);
    g_rec_mutex_lock(&stState.stTaskLock);
    const bool bGood = Set_Segment(stState, pstSeek);
    if (bFlush) Push_Flush(stState, gst_event_new_flush_stop(TRUE), uiSeqnum);
    gst_task_start(stState.pstTask);
    g_rec_mutex_unlock(&stState.stTaskLock);
    GST_DEBUG_OBJECT(pstSelf, "seek to %" GST_SEGMENT_FORMAT, static_cast<void *>(&stState.stSegment));
    return bGood ? TRUE : FALSE;
}

static gboolean Handle_SourceEvent(GstPad *pstPad, GstObject *pstParent, GstEvent *pstEvent)
{
    if (GST_EVENT_TYPE(pstEvent) != GST_EVENT_SEEK) return gst_pad_event_default(pstPad, pstParent, pstEvent);
    const gboolean bGood = Handle_Seek(Get_SubParse(pstParent), pstEvent);
    gst_event_unref(pstEvent);
    return bGood;
}

static gboolean Answer_SourceQuery(GstPad *pstPad, GstObject *pstParent, GstQuery *pstQuery)
{
    const SubParseState &stState = *Get_SubParse(pstParent)->pstState;
    GstFormat eFormat = GST_FORMAT_UNDEFINED;
    const auto llDuration = static_cast<gint64>(Get_Duration(stState));
    switch (GST_QUERY_TYPE(pstQuery)) {
    case GST_QUERY_DURATION:
        gst_query_parse_duration(pstQuery, &eFormat, nullptr);
        if (eFormat != GST_FORMAT_TIME) return FALSE;
        gst_query_set_duration(pstQuery, GST_FORMAT_TIME, llDuration);
        return TRUE;
    case GST_QUERY_SEEKING:
        gst_query_parse_seeking(pstQuery, &eFormat, nullptr, nullptr, nullptr);
        gst_query_set_seeking(pstQuery, eFormat, eFormat == GST_FORMAT_TIME, 0, llDuration);
        return TRUE;
    default: return gst_pad_query_default(pstPad, pstParent, pstQuery);
    }
}

/* ---- What comes from upstream. ---- */

static GstFlowReturn Collect_Bytes(GstPad *, GstObject *pstParent, GstBuffer *pstBuffer)
{
    ZyrSubParse *const pstSelf = Get_SubParse(pstParent);
    SubParseState &stState = *pstSelf->pstState;
    if (gst_adapter_available(stState.pstAdapter) + gst_buffer_get_size(pstBuffer) > MOST_BYTES) {
        gst_buffer_unref(pstBuffer);
        stState.bRefused = true;
        GST_ELEMENT_ERROR(pstSelf, STREAM, WRONG_TYPE, ("This is too large to be a subtitle."), (nullptr));
        return GST_FLOW_ERROR;
    }
    gst_adapter_push(stState.pstAdapter, pstBuffer);
    return GST_FLOW_OK;
}

static void Load_Captions(SubParseState &stState)
{
    const gsize uiBytes = gst_adapter_available(stState.pstAdapter);
    SourceSettings stSettings;
    {
        const std::lock_guard<std::mutex> stGuard(stState.stLock);
        stSettings = stState.stSettings;
    }
    const void *const pvBytes = uiBytes == 0 ? nullptr : gst_adapter_map(stState.pstAdapter, uiBytes);
    stState.pstCaptions = Load_Bytes(pvBytes, uiBytes, stSettings);
    if (uiBytes > 0) gst_adapter_unmap(stState.pstAdapter);
    gst_adapter_clear(stState.pstAdapter);
}

static void Add_Stream(ZyrSubParse *pstSelf, uint32_t uiClass)
{
    SubParseState &stState = *pstSelf->pstState;
    TextStream stStream{nullptr, List_Spans(stState.pstCaptions.get(), uiClass)};
    if (stStream.astSpans.empty()) return; // a language without a caption
    gchar *const pszName = g_strdup_printf("src_%u", uiClass);
    stStream.pstPad = gst_pad_new_from_static_template(&s_stSourceTemplate, pszName);
    g_free(pszName);
    gst_pad_set_event_function(stStream.pstPad, Handle_SourceEvent);
    gst_pad_set_query_function(stStream.pstPad, Answer_SourceQuery);
    gst_pad_use_fixed_caps(stStream.pstPad);
    gst_flow_combiner_add_pad(stState.pstFlows, stStream.pstPad);
    stState.astStreams.push_back(std::move(stStream));
}

static guint Get_Group(GstPad *pstSinkPad)
{
    guint uiGroup = GST_GROUP_ID_INVALID;
    GstEvent *const pstStart = gst_pad_get_sticky_event(pstSinkPad, GST_EVENT_STREAM_START, 0);
    if (pstStart != nullptr) {
        if (!gst_event_parse_group_id(pstStart, &uiGroup)) uiGroup = GST_GROUP_ID_INVALID;
        gst_event_unref(pstStart);
    }
    return uiGroup == GST_GROUP_ID_INVALID ? gst_util_group_id_next() : uiGroup;
}

// Pads are added when the last of them is known: what asks one for a seek reaches all.
static void Add_Streams(ZyrSubParse *pstSelf, uint32_t uiChosen)
{
    SubParseState &stState = *pstSelf->pstState;
    ZyrCaptionsFile stFile;
    zyrCaptions_getFile(stState.pstCaptions.get(), &stFile);
    std::vector<uint32_t> auiClasses;
    for (uint32_t ui = 0; ui < stFile.uiClasses; ++ui) {
        if (uiChosen != ZYR_CAPTIONS_ALL && uiChosen != ui) continue;
        const size_t uiBefore = stState.astStreams.size();
        Add_Stream(pstSelf, ui);
        if (stState.astStreams.size() > uiBefore) auiClasses.push_back(ui);
    }
    const guint uiGroup = Get_Group(pstSelf->pstSinkPad);
    for (size_t ui = 0; ui < auiClasses.size(); ++ui) {
        const TextStream &stStream = stState.astStreams[ui];
        gst_pad_set_active(stStream.pstPad, TRUE);
        Announce_Stream(stStream, &pstSelf->stElement, stState.pstCaptions.get(), auiClasses[ui], uiGroup);
        gst_element_add_pad(&pstSelf->stElement, stStream.pstPad);
    }
}

static void Start_Streams(ZyrSubParse *pstSelf)
{
    SubParseState &stState = *pstSelf->pstState;
    std::string strClass;
    {
        const std::lock_guard<std::mutex> stGuard(stState.stLock);
        strClass = stState.strClass;
    }
    const auto uiChosen = Find_Class(stState.pstCaptions.get(), strClass);
    if (!uiChosen) {
        GST_ELEMENT_ERROR(pstSelf, STREAM, FAILED, ("The subtitle has no language \"%s\".", strClass.c_str()),
                          (nullptr));
        return;
    }
    gst_segment_init(&stState.stSegment, GST_FORMAT_TIME);
    stState.pstTask = gst_task_new(Run_Task, pstSelf, nullptr);
    gst_task_set_lock(stState.pstTask, &stState.stTaskLock);
    Add_Streams(pstSelf, *uiChosen);
    stState.stSegment.duration = Get_Duration(stState);
    gst_element_no_more_pads(&pstSelf->stElement);
    if (stState.astStreams.empty())
        GST_ELEMENT_ERROR(pstSelf, STREAM, DECODE, ("The subtitle has no captions."), (nullptr));
    else
        gst_task_start(stState.pstTask);
}

static void Handle_End(ZyrSubParse *pstSelf)
{
    SubParseState &stState = *pstSelf->pstState;
    if (stState.pstTask != nullptr || stState.bRefused) return;
    Load_Captions(stState);
    if (zyrCaptions_getError(stState.pstCaptions.get()) == ZYR_CAPTIONS_OK) return Start_Streams(pstSelf);
    GST_ELEMENT_ERROR(pstSelf, STREAM, DECODE, ("%s", zyrCaptions_getErrorText(stState.pstCaptions.get())),
                      (nullptr));
}

// Nothing of the file's bytes goes on downstream: streams, segments and ends are the element's own.
static gboolean Handle_SinkEvent(GstPad *, GstObject *pstParent, GstEvent *pstEvent)
{
    ZyrSubParse *const pstSelf = Get_SubParse(pstParent);
    if (GST_EVENT_TYPE(pstEvent) == GST_EVENT_EOS) Handle_End(pstSelf);
    if (GST_EVENT_TYPE(pstEvent) == GST_EVENT_FLUSH_STOP) gst_adapter_clear(pstSelf->pstState->pstAdapter);
    gst_event_unref(pstEvent);
    return TRUE;
}

/* ---- The element. ---- */

static void Stop_Streams(ZyrSubParse *pstSelf)
{
    SubParseState &stState = *pstSelf->pstState;
    if (stState.pstTask != nullptr) {
        gst_task_join(stState.pstTask);
        gst_clear_object(&stState.pstTask);
    }
    for (const TextStream &stStream : stState.astStreams) {
        gst_flow_combiner_remove_pad(stState.pstFlows, stStream.pstPad);
        gst_element_remove_pad(&pstSelf->stElement, stStream.pstPad);
    }
    stState.astStreams.clear();
    stState.pstCaptions.reset();
    stState.uiSeqnum = stState.uiLastSeek = GST_SEQNUM_INVALID;
    stState.bRefused = false;
    gst_adapter_clear(stState.pstAdapter);
}

static GstStateChangeReturn Change_State(GstElement *pstElement, GstStateChange eChange)
{
    const GstStateChangeReturn eReturn =
        GST_ELEMENT_CLASS(zyr_sub_parse_parent_class)->change_state(pstElement, eChange);
    if (eChange == GST_STATE_CHANGE_PAUSED_TO_READY) Stop_Streams(Get_SubParse(pstElement));
    return eReturn;
}

static void Set_Property(GObject *pstObject, guint uiProperty, const GValue *pstValue, GParamSpec *pstSpec)
{
    SubParseState &stState = *Get_SubParse(pstObject)->pstState;
    const std::lock_guard<std::mutex> stGuard(stState.stLock);
    const auto pfText = [&] {
        const char *const pszText = g_value_get_string(pstValue);
        return std::string(pszText == nullptr ? "" : pszText);
    };
    switch (uiProperty) {
    case E_PARSE_CLASS: stState.strClass = pfText(); break;
    case E_PARSE_CODE_PAGE: stState.stSettings.strCodePage = pfText(); break;
    case E_PARSE_SUBTITLE_ENCODING: // players set it to nothing where their user has not chosen
        if (!pfText().empty()) stState.stSettings.strCodePage = pfText();
        break;
    case E_PARSE_LINE_ENDS: stState.stSettings.bBoxLineEnds = g_value_get_boolean(pstValue); break;
    default: G_OBJECT_WARN_INVALID_PROPERTY_ID(pstObject, uiProperty, pstSpec);
    }
}

static void Get_Property(GObject *pstObject, guint uiProperty, GValue *pstValue, GParamSpec *pstSpec)
{
    SubParseState &stState = *Get_SubParse(pstObject)->pstState;
    const std::lock_guard<std::mutex> stGuard(stState.stLock);
    const auto pfGive = [&](const std::string &strText) {
        g_value_set_string(pstValue, strText.empty() ? nullptr : strText.c_str());
    };
    switch (uiProperty) {
    case E_PARSE_CLASS: pfGive(stState.strClass); break;
    case E_PARSE_CODE_PAGE:
    case E_PARSE_SUBTITLE_ENCODING: pfGive(stState.stSettings.strCodePage); break;
    case E_PARSE_LINE_ENDS: g_value_set_boolean(pstValue, stState.stSettings.bBoxLineEnds); break;
    default: G_OBJECT_WARN_INVALID_PROPERTY_ID(pstObject, uiProperty, pstSpec);
    }
}

static void Finalize(GObject *pstObject)
{
    SubParseState *const pstState = Get_SubParse(pstObject)->pstState;
    g_object_unref(pstState->pstAdapter);
    gst_flow_combiner_free(pstState->pstFlows);
    g_rec_mutex_clear(&pstState->stTaskLock);
    delete pstState;
    G_OBJECT_CLASS(zyr_sub_parse_parent_class)->finalize(pstObject);
}

static void zyr_sub_parse_init(ZyrSubParse *pstSelf)
{
    pstSelf->pstState = new SubParseState;
    g_rec_mutex_init(&pstSelf->pstState->stTaskLock);
    pstSelf->pstSinkPad = gst_pad_new_from_static_template(&s_stSinkTemplate, "sink");
    gst_pad_set_chain_function(pstSelf->pstSinkPad, Collect_Bytes);
    gst_pad_set_event_function(pstSelf->pstSinkPad, Handle_SinkEvent);
    gst_element_add_pad(&pstSelf->stElement, pstSelf->pstSinkPad);
}

static void Install_Properties(GObjectClass *pstClass)
{
    const auto eFlags = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
    g_object_class_install_property(
        pstClass, E_PARSE_CLASS,
        g_param_spec_string("class", "Class",
                            "Language class to read, by name or number; without it each class gets a pad",
                            nullptr, eFlags));
    g_object_class_install_property(
        pstClass, E_PARSE_CODE_PAGE,
        g_param_spec_string("code-page", "Code page",
                            "Code page of text without a Unicode encoding, as iconv names it; without it "
                            "the bytes tell",
                            nullptr, eFlags));
    g_object_class_install_property(pstClass, E_PARSE_SUBTITLE_ENCODING,
                                    g_param_spec_string("subtitle-encoding", "Subtitle encoding",
                                                        "The code page by the name that playbin sets it by",
                                                        nullptr, eFlags));
    g_object_class_install_property(
        pstClass, E_PARSE_LINE_ENDS,
        g_param_spec_boolean("box-line-ends", "Box line ends",
                             "Only CR LF ends a line, as on the box; otherwise LF and CR do as well", FALSE,
                             eFlags));
}

static void zyr_sub_parse_class_init(ZyrSubParseClass *pstClass)
{
    GObjectClass *const pstObject = G_OBJECT_CLASS(pstClass);
    pstObject->set_property = Set_Property;
    pstObject->get_property = Get_Property;
    pstObject->finalize = Finalize;
    Install_Properties(pstObject);
    GstElementClass *const pstElement = GST_ELEMENT_CLASS(pstClass);
    pstElement->change_state = Change_State;
    gst_element_class_add_static_pad_template(pstElement, &s_stSinkTemplate);
    gst_element_class_add_static_pad_template(pstElement, &s_stSourceTemplate);
    // Several streams come out, and so it is a demuxer to those who plug elements by themselves. What they call a
    // subtitle parser has one.
    gst_element_class_set_static_metadata(
        pstElement, "Subtitle file parser", "Codec/Demuxer/Subtitle",
        "Reads SAMI, SubRip, SubViewer and SSA files as set-top boxes do, each language a stream",
        "libZYRsubtitle authors");
}

#include "text_stream.h"

#include <gst/tag/tag.h>

#include <algorithm>
#include <cstring>

static GstClockTime Make_ClockTime(int32_t iMs)
{
    return static_cast<GstClockTime>(iMs) * GST_MSECOND;
}

// GStreamer names languages without their country: "zh" of "zh-CN".
static std::string Get_LanguageCode(const char *pszTag)
{
    return std::string(pszTag, std::strcspn(pszTag, "-"));
}

static GstTagList *Make_Tags(const ZyrCaptions *pstCaptions, uint32_t uiClass)
{
    ZyrCaptionsFile stFile;
    zyrCaptions_getFile(pstCaptions, &stFile);
    ZyrCaptionClass stClass;
    zyrCaptions_getClass(pstCaptions, uiClass, &stClass);
    GstTagList *const pstTags = gst_tag_list_new(GST_TAG_SUBTITLE_CODEC, stFile.pszFormat, nullptr);
    gst_tag_list_set_scope(pstTags, GST_TAG_SCOPE_STREAM);
    if (*stClass.pszName != '\0')
        gst_tag_list_add(pstTags, GST_TAG_MERGE_REPLACE, GST_TAG_TITLE, stClass.pszName, nullptr);
    if (stClass.pszLanguage != nullptr)
        gst_tag_list_add(pstTags, GST_TAG_MERGE_REPLACE, GST_TAG_LANGUAGE_CODE,
                         Get_LanguageCode(stClass.pszLanguage).c_str(), nullptr);
    return pstTags;
}

void Announce_Stream(const TextStream &stStream, GstElement *pstElement, const ZyrCaptions *pstCaptions,
                     uint32_t uiClass, guint uiGroup)
{
    // Players list streams by their ids.
    gchar *const pszId = gst_pad_create_stream_id_printf(stStream.pstPad, pstElement, "%03u:%s", uiClass,
                                                         Get_ClassTitle(pstCaptions, uiClass).c_str());
    GstEvent *const pstStart = gst_event_new_stream_start(pszId);
    g_free(pszId);
    gst_event_set_group_id(pstStart, uiGroup);
    gst_event_set_stream_flags(pstStart, GST_STREAM_FLAG_SPARSE);
    gst_pad_push_event(stStream.pstPad, pstStart);

    GstCaps *const pstCaps =
        gst_caps_new_simple("text/x-raw", "format", G_TYPE_STRING, "pango-markup", nullptr);
    gst_pad_push_event(stStream.pstPad, gst_event_new_caps(pstCaps));
    gst_caps_unref(pstCaps);
    gst_pad_push_event(stStream.pstPad, gst_event_new_tag(Make_Tags(pstCaptions, uiClass)));
}

static bool Is_Backwards(const GstSegment &stSegment)
{
    return stSegment.rate < 0;
}

static const CaptionSpan &Get_NextSpan(const TextStream &stStream, const GstSegment &stSegment)
{
    const size_t uiSpans = stStream.astSpans.size();
    return stStream.astSpans[Is_Backwards(stSegment) ? uiSpans - 1 - stStream.uiNext : stStream.uiNext];
}

void Rewind_Stream(TextStream &stStream, const GstSegment &stSegment, guint32 uiSeqnum)
{
    stStream.bSegmentDue = true;
    stStream.uiSeqnum = uiSeqnum;
    const auto &astSpans = stStream.astSpans;
    const GstClockTime ullStart = stSegment.start;
    const GstClockTime ullStop = stSegment.stop;
    const auto pfOver = [&](const CaptionSpan &stSpan) { return Make_ClockTime(stSpan.iEnd) <= ullStart; };
    const auto pfBefore = [&](const CaptionSpan &stSpan) { return Make_ClockTime(stSpan.iStart) < ullStop; };
    if (Is_Backwards(stSegment))
        stStream.uiNext = static_cast<size_t>(
            astSpans.end() - std::partition_point(astSpans.begin(), astSpans.end(), pfBefore));
    else
        stStream.uiNext = static_cast<size_t>(std::partition_point(astSpans.begin(), astSpans.end(), pfOver) -
                                              astSpans.begin());
}

std::optional<GstClockTime> Get_NextTime(const TextStream &stStream, const GstSegment &stSegment)
{
    if (stStream.uiNext >= stStream.astSpans.size()) return std::nullopt;
    const CaptionSpan &stSpan = Get_NextSpan(stStream, stSegment);
    if (Is_Backwards(stSegment)) {
        const GstClockTime ullEnd = Make_ClockTime(stSpan.iEnd);
        return ullEnd > stSegment.start ? std::optional(ullEnd) : std::nullopt;
    }
    const GstClockTime ullStart = Make_ClockTime(stSpan.iStart);
    return ullStart < stSegment.stop ? std::optional(ullStart) : std::nullopt;
}

static GstFlowReturn Push_Text(const TextStream &stStream, const CaptionSpan &stSpan, GstClockTime ullStart,
                               GstClockTime ullDuration)
{
    GstBuffer *const pstBuffer =
        gst_buffer_new_memdup(stSpan.strMarkup.c_str(), stSpan.strMarkup.size() + 1); // closed by a zero,
    gst_buffer_set_size(pstBuffer, static_cast<gssize>(stSpan.strMarkup.size()));     // which is no text
    GST_BUFFER_PTS(pstBuffer) = ullStart;
    GST_BUFFER_DURATION(pstBuffer) = ullDuration;
    return gst_pad_push(stStream.pstPad, pstBuffer);
}

void Push_Segment(TextStream &stStream, const GstSegment &stSegment)
{
    if (!stStream.bSegmentDue) return;
    stStream.bSegmentDue = false;
    GstEvent *const pstEvent = gst_event_new_segment(&stSegment);
    if (stStream.uiSeqnum != GST_SEQNUM_INVALID) gst_event_set_seqnum(pstEvent, stStream.uiSeqnum);
    gst_pad_push_event(stStream.pstPad, pstEvent);
}

GstFlowReturn Push_Next(TextStream &stStream, const GstSegment &stSegment)
{
    Push_Segment(stStream, stSegment);
    const CaptionSpan &stSpan = Get_NextSpan(stStream, stSegment);
    ++stStream.uiNext;
    const bool bOpen = stSpan.iEnd == ZYR_CAPTIONS_OPEN_END;
    guint64 ullStart = 0;
    guint64 ullStop = 0;
    const GstClockTime ullEnd = bOpen ? GST_CLOCK_TIME_NONE : Make_ClockTime(stSpan.iEnd);
    if (!gst_segment_clip(&stSegment, GST_FORMAT_TIME, Make_ClockTime(stSpan.iStart), ullEnd, &ullStart,
                          &ullStop))
        return GST_FLOW_OK;
    const GstClockTime ullDuration =
        GST_CLOCK_TIME_IS_VALID(ullStop) ? ullStop - ullStart : GST_CLOCK_TIME_NONE;
    if (!stSpan.strMarkup.empty()) return Push_Text(stStream, stSpan, ullStart, ullDuration);
    gst_pad_push_event(stStream.pstPad, gst_event_new_gap(ullStart, ullDuration));
    return GST_FLOW_OK;
}

GstClockTime Get_EndTime(const TextStream &stStream)
{
    if (stStream.astSpans.empty()) return 0;
    const CaptionSpan &stLast = stStream.astSpans.back();
    return Make_ClockTime(stLast.iEnd == ZYR_CAPTIONS_OPEN_END ? stLast.iStart : stLast.iEnd);
}

// A language of zyrsubparse: its pad, its spans, and which of them comes next.
#ifndef ZYR_GST_TEXT_STREAM_H
#define ZYR_GST_TEXT_STREAM_H

#include <gst/gst.h>

#include "caption_source.h"

struct TextStream {
    GstPad *pstPad; // the element's
    std::vector<CaptionSpan> astSpans;
    size_t uiNext = 0; // spans that were passed on, counted from the end where the film runs backwards
    bool bSegmentDue = true;
    guint32 uiSeqnum = GST_SEQNUM_INVALID; // of the seek that led here
};

// What a pad says of itself before it is added: stream, caps, and the language's tags.
void Announce_Stream(const TextStream &stStream, GstElement *pstElement, const ZyrCaptions *pstCaptions,
                     uint32_t uiClass, guint uiGroup);

// To the first span that a segment shows.
void Rewind_Stream(TextStream &stStream, const GstSegment &stSegment, guint32 uiSeqnum);

// When the next span is due, in the order of a segment's direction; none when all are passed on.
std::optional<GstClockTime> Get_NextTime(const TextStream &stStream, const GstSegment &stSegment);

// Tell of the segment where that has not been done.
void Push_Segment(TextStream &stStream, const GstSegment &stSegment);

// Pass the next span on: text, or word that there is none for a while.
GstFlowReturn Push_Next(TextStream &stStream, const GstSegment &stSegment);

GstClockTime Get_EndTime(const TextStream &stStream);

#endif

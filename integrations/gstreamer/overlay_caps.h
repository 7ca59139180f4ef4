// Caps of zyrcaptionoverlay: films as they are, or with the word that captions come beside their frames.
#ifndef ZYR_GST_OVERLAY_CAPS_H
#define ZYR_GST_OVERLAY_CAPS_H

#include <gst/gst.h>

// A copy with the feature of overlay compositions on every structure, or without it.
GstCaps *Add_CompositionFeature(const GstCaps *pstCaps);
GstCaps *Remove_CompositionFeature(const GstCaps *pstCaps);

bool Has_CompositionFeature(const GstCaps *pstCaps);

// What a pad may take, of what stands on the other side: the same, and with (or without) the feature.
GstCaps *Merge_Caps(GstCaps *pstOwn, const GstCaps *pstOther, bool bWith);

// True when what comes behind a pad takes these caps and puts compositions over the frames itself. The caps have
// been sent.
bool Asks_ForCompositions(GstPad *pstPad, GstCaps *pstCaps);

#endif

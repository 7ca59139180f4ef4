#include "overlay_caps.h"

#include <gst/video/video-overlay-composition.h>
#include <gst/video/video.h>

static constexpr const char *FEATURE = GST_CAPS_FEATURE_META_GST_VIDEO_OVERLAY_COMPOSITION;

static GstCaps *Change_Features(const GstCaps *pstCaps, void (*pfChange)(GstCapsFeatures *, const gchar *))
{
    GstCaps *const pstNew = gst_caps_copy(pstCaps);
    for (guint ui = 0; ui < gst_caps_get_size(pstNew); ++ui) {
        GstCapsFeatures *const pstFeatures = gst_caps_get_features(pstNew, ui);
        if (!gst_caps_features_is_any(pstFeatures)) pfChange(pstFeatures, FEATURE);
    }
    return pstNew;
}

static void Add_Feature(GstCapsFeatures *pstFeatures, const gchar *pszFeature)
{
    if (!gst_caps_features_contains(pstFeatures, pszFeature)) gst_caps_features_add(pstFeatures, pszFeature);
}

GstCaps *Add_CompositionFeature(const GstCaps *pstCaps)
{
    return Change_Features(pstCaps, Add_Feature);
}

GstCaps *Remove_CompositionFeature(const GstCaps *pstCaps)
{
    return Change_Features(pstCaps, gst_caps_features_remove);
}

bool Has_CompositionFeature(const GstCaps *pstCaps)
{
    const GstCapsFeatures *const pstFeatures = gst_caps_get_features(pstCaps, 0);
    return !gst_caps_features_is_any(pstFeatures) && gst_caps_features_contains(pstFeatures, FEATURE);
}

GstCaps *Merge_Caps(GstCaps *pstOwn, const GstCaps *pstOther, bool bWith)
{
    GstCaps *const pstChanged =
        bWith ? Add_CompositionFeature(pstOther) : Remove_CompositionFeature(pstOther);
    // With the feature first, where it may be chosen: what comes first is preferred.
    GstCaps *const pstBoth = bWith ? gst_caps_merge(pstChanged, gst_caps_copy(pstOther))
                                   : gst_caps_merge(gst_caps_copy(pstOther), pstChanged);
    GstCaps *const pstResult = gst_caps_intersect_full(pstBoth, pstOwn, GST_CAPS_INTERSECT_FIRST);
    gst_caps_unref(pstBoth);
    return pstResult;
}

bool Asks_ForCompositions(GstPad *pstPad, GstCaps *pstCaps)
{
    GstQuery *const pstQuery = gst_query_new_allocation(pstCaps, FALSE);
    const bool bAsks =
        gst_pad_peer_query(pstPad, pstQuery) &&
        gst_query_find_allocation_meta(pstQuery, GST_VIDEO_OVERLAY_COMPOSITION_META_API_TYPE, nullptr);
    gst_query_unref(pstQuery);
    return bAsks;
}

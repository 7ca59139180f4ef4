// zyrcaptionoverlay: a film's captions over its frames, as an output of the box shows them.
#ifndef ZYR_GST_CAPTION_OVERLAY_H
#define ZYR_GST_CAPTION_OVERLAY_H

#include <gst/gst.h>

G_BEGIN_DECLS

#define ZYR_TYPE_CAPTION_OVERLAY (zyr_caption_overlay_get_type())
GType zyr_caption_overlay_get_type(void);

GST_ELEMENT_REGISTER_DECLARE(zyrcaptionoverlay)

G_END_DECLS

#endif

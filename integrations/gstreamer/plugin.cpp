// The plugin: its elements, each with a rank that leaves it alone until it is asked for.
#include <gst/gst.h>

#include "caption_overlay.h"
#include "sub_parse.h"

#define PACKAGE "zyrsubtitle"

static gboolean Init_Plugin(GstPlugin *pstPlugin)
{
    const gboolean bParse = GST_ELEMENT_REGISTER(zyrsubparse, pstPlugin);
    const gboolean bOverlay = GST_ELEMENT_REGISTER(zyrcaptionoverlay, pstPlugin);
    return bParse && bOverlay;
}

GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, zyr,
                  "Subtitles of set-top boxes: timed text of their files, and captions as they show them",
                  Init_Plugin, ZYR_GST_VERSION, "MIT/X11", "libZYRsubtitle", "https://zyrsubtitle.example/")

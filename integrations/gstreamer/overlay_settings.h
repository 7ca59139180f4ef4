// The properties of zyrcaptionoverlay.
#ifndef ZYR_GST_OVERLAY_SETTINGS_H
#define ZYR_GST_OVERLAY_SETTINGS_H

#include <glib-object.h>

#include "caption_picture.h"
#include "caption_source.h"

struct OverlaySettings {
    std::string strLocation; // empty: beside the movie
    std::string strClass;    // empty: all
    SourceSettings stSource;
    ScreenSettings stScreen;
    bool bSilent = false;
};

enum OverlayProperty {
    E_OVERLAY_LOCATION = 1,
    E_OVERLAY_CLASS,
    E_OVERLAY_CODE_PAGE,
    E_OVERLAY_LINE_ENDS,
    E_OVERLAY_OUTPUT,
    E_OVERLAY_FONT_SIZE,
    E_OVERLAY_POSITION,
    E_OVERLAY_SILENT,
    E_OVERLAY_CLASSES, // of the file: to read only, and not of the settings
};

void Install_OverlayProperties(GObjectClass *pstClass);

// False: there is no such property here.
bool Set_OverlaySetting(OverlaySettings &stSettings, guint uiProperty, const GValue *pstValue);
bool Get_OverlaySetting(const OverlaySettings &stSettings, guint uiProperty, GValue *pstValue);

#endif

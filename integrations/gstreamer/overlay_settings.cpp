#include "overlay_settings.h"

#include <gst/gst.h>

// The outputs as an enumeration, so that tools list them.
static GType Get_OutputType()
{
    static const GType s_uiType = [] {
        auto *const pastValues = new std::vector<GEnumValue>; // stays as long as the type
        ZyrCaptionOutput stOutput;
        for (gint i = 0; zyrCaptions_getOutput(static_cast<uint32_t>(i), &stOutput) == ZYR_CAPTIONS_OK; ++i) {
            gchar *const pszSize = g_strdup_printf("%u x %u pixels", stOutput.uiWidth, stOutput.uiHeight);
            pastValues->push_back({i, g_intern_string(pszSize), stOutput.pszName});
            g_free(pszSize);
        }
        pastValues->push_back({0, nullptr, nullptr});
        return g_enum_register_static("ZyrCaptionOverlayOutput", pastValues->data());
    }();
    return s_uiType;
}

static constexpr auto STATIC_READWRITE =
    static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS | GST_PARAM_MUTABLE_PLAYING);
static constexpr auto STATIC_READ = static_cast<GParamFlags>(G_PARAM_READABLE | G_PARAM_STATIC_STRINGS);

static void Install_SourceProperties(GObjectClass *pstClass)
{
    g_object_class_install_property(
        pstClass, E_OVERLAY_LOCATION,
        g_param_spec_string("location", "Location",
                            "Subtitle file, or a movie that has one beside it; without it the subtitle "
                            "beside the movie that plays",
                            nullptr, STATIC_READWRITE));
    g_object_class_install_property(
        pstClass, E_OVERLAY_CLASS,
        g_param_spec_string("class", "Class",
                            "Language class to show, by name or number; without it all of them", nullptr,
                            STATIC_READWRITE));
    g_object_class_install_property(
        pstClass, E_OVERLAY_CODE_PAGE,
        g_param_spec_string("code-page", "Code page",
                            "Code page of text without a Unicode encoding, as iconv names it; without it "
                            "the bytes tell",
                            nullptr, STATIC_READWRITE));
    g_object_class_install_property(
        pstClass, E_OVERLAY_LINE_ENDS,
        g_param_spec_boolean("box-line-ends", "Box line ends",
                             "Only CR LF ends a line, as on the box; otherwise LF and CR do as well", FALSE,
                             STATIC_READWRITE));
    g_object_class_install_property(pstClass, E_OVERLAY_CLASSES,
                                    g_param_spec_boxed("classes", "Classes",
                                                       "Language classes of the subtitle that is shown",
                                                       G_TYPE_STRV, STATIC_READ));
}

static void Install_ScreenProperties(GObjectClass *pstClass)
{
    g_object_class_install_property(pstClass, E_OVERLAY_OUTPUT,
                                    g_param_spec_enum("output", "Output",
                                                      "Output of the box whose captions are shown",
                                                      Get_OutputType(), 0, STATIC_READWRITE));
    g_object_class_install_property(
        pstClass, E_OVERLAY_FONT_SIZE,
        g_param_spec_uint(
            "font-size", "Font size",
            "28, 32, 36 or 40: 4, 8, 12 or 16 pixels above the output's own size; else that size", 0, 100, 0,
            STATIC_READWRITE));
    g_object_class_install_property(
        pstClass, E_OVERLAY_POSITION,
        g_param_spec_int("position", "Position",
                         "Pixels of the output between the caption and its bottom; -1: the output's own", -1,
                         2000, -1, STATIC_READWRITE));
    g_object_class_install_property(
        pstClass, E_OVERLAY_SILENT,
        g_param_spec_boolean("silent", "Silent", "Show no captions", FALSE, STATIC_READWRITE));
}

void Install_OverlayProperties(GObjectClass *pstClass)
{
    Install_SourceProperties(pstClass);
    Install_ScreenProperties(pstClass);
}

static std::string Get_Text(const GValue *pstValue)
{
    const char *const pszText = g_value_get_string(pstValue);
    return pszText == nullptr ? "" : pszText;
}

bool Set_OverlaySetting(OverlaySettings &stSettings, guint uiProperty, const GValue *pstValue)
{
    switch (uiProperty) {
    case E_OVERLAY_LOCATION: stSettings.strLocation = Get_Text(pstValue); return true;
    case E_OVERLAY_CLASS: stSettings.strClass = Get_Text(pstValue); return true;
    case E_OVERLAY_CODE_PAGE: stSettings.stSource.strCodePage = Get_Text(pstValue); return true;
    case E_OVERLAY_LINE_ENDS: stSettings.stSource.bBoxLineEnds = g_value_get_boolean(pstValue); return true;
    case E_OVERLAY_OUTPUT:
        stSettings.stScreen.uiOutput = static_cast<uint32_t>(g_value_get_enum(pstValue));
        return true;
    case E_OVERLAY_FONT_SIZE: stSettings.stScreen.uiFontSize = g_value_get_uint(pstValue); return true;
    case E_OVERLAY_POSITION: stSettings.stScreen.iPosition = g_value_get_int(pstValue); return true;
    case E_OVERLAY_SILENT: stSettings.bSilent = g_value_get_boolean(pstValue); return true;
    default: return false;
    }
}

static void Give_Text(GValue *pstValue, const std::string &strText)
{
    g_value_set_string(pstValue, strText.empty() ? nullptr : strText.c_str());
}

bool Get_OverlaySetting(const OverlaySettings &stSettings, guint uiProperty, GValue *pstValue)
{
    switch (uiProperty) {
    case E_OVERLAY_LOCATION: Give_Text(pstValue, stSettings.strLocation); return true;
    case E_OVERLAY_CLASS: Give_Text(pstValue, stSettings.strClass); return true;
    case E_OVERLAY_CODE_PAGE: Give_Text(pstValue, stSettings.stSource.strCodePage); return true;
    case E_OVERLAY_LINE_ENDS: g_value_set_boolean(pstValue, stSettings.stSource.bBoxLineEnds); return true;
    case E_OVERLAY_OUTPUT:
        g_value_set_enum(pstValue, static_cast<gint>(stSettings.stScreen.uiOutput));
        return true;
    case E_OVERLAY_FONT_SIZE: g_value_set_uint(pstValue, stSettings.stScreen.uiFontSize); return true;
    case E_OVERLAY_POSITION: g_value_set_int(pstValue, stSettings.stScreen.iPosition); return true;
    case E_OVERLAY_SILENT: g_value_set_boolean(pstValue, stSettings.bSilent); return true;
    default: return false;
    }
}

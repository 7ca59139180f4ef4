#include "caption_source.h"

#include <glib.h>

#include <algorithm>
#include <charconv>

static constexpr const char *UNNAMED = "(unnamed)";
static constexpr uint16_t USUAL_COLOR = 0xFFFF; // what text has that nobody has given a colour

// Captions on screen at one time; a file with more of them is no film's, and its text would grow with their square.
static constexpr uint32_t MOST_TOGETHER = 16;

static ZyrCaptionsOptions Make_Options(const SourceSettings &stSettings)
{
    ZyrCaptionsOptions stOptions = {};
    if (!stSettings.strCodePage.empty()) stOptions.pszCodePage = stSettings.strCodePage.c_str();
    if (stSettings.bBoxLineEnds) stOptions.uiFlags = ZYR_CAPTIONS_BOX_LINE_ENDS;
    return stOptions;
}

CaptionsPtr Load_File(const std::string &strPath, const SourceSettings &stSettings)
{
    const ZyrCaptionsOptions stOptions = Make_Options(stSettings);
    return {zyrCaptions_load(strPath.c_str(), &stOptions), zyrCaptions_free};
}

CaptionsPtr Load_Bytes(const void *pvData, size_t uiBytes, const SourceSettings &stSettings)
{
    const ZyrCaptionsOptions stOptions = Make_Options(stSettings);
    return {zyrCaptions_loadMemory(pvData, uiBytes, nullptr, &stOptions), zyrCaptions_free};
}

static bool Is_NameOfClass(const ZyrCaptions *pstCaptions, uint32_t uiClass, const char *pszName)
{
    ZyrCaptionClass stClass;
    zyrCaptions_getClass(pstCaptions, uiClass, &stClass);
    if (*stClass.pszName == '\0') return g_ascii_strcasecmp(pszName, UNNAMED) == 0;
    if (g_ascii_strcasecmp(pszName, stClass.pszName) == 0) return true;
    for (uint32_t ui = 0; ui < stClass.uiFolded; ++ui)
        if (g_ascii_strcasecmp(pszName, zyrCaptions_getFoldedName(pstCaptions, uiClass, ui)) == 0)
            return true;
    return false;
}

std::optional<uint32_t> Find_Class(const ZyrCaptions *pstCaptions, const std::string &strName)
{
    if (strName.empty()) return ZYR_CAPTIONS_ALL;
    ZyrCaptionsFile stFile;
    if (zyrCaptions_getFile(pstCaptions, &stFile) != ZYR_CAPTIONS_OK) return std::nullopt;
    for (uint32_t ui = 0; ui < stFile.uiClasses; ++ui)
        if (Is_NameOfClass(pstCaptions, ui, strName.c_str())) return ui;
    uint32_t uiNumber = 0;
    const char *const pcEnd = strName.data() + strName.size();
    const auto [pcRead, eError] = std::from_chars(strName.data(), pcEnd, uiNumber);
    if (eError != std::errc() || pcRead != pcEnd || uiNumber >= stFile.uiClasses) return std::nullopt;
    return uiNumber;
}

std::string Get_ClassTitle(const ZyrCaptions *pstCaptions, uint32_t uiClass)
{
    ZyrCaptionClass stClass;
    const bool bNamed =
        zyrCaptions_getClass(pstCaptions, uiClass, &stClass) == ZYR_CAPTIONS_OK && *stClass.pszName != '\0';
    return bNamed ? stClass.pszName : UNNAMED;
}

static std::string Make_ColorTag(uint16_t usColor)
{
    const uint32_t uiRed = usColor >> 11;
    const uint32_t uiGreen = (usColor >> 5) & 0x3FU;
    const uint32_t uiBlue = usColor & 0x1FU;
    char szTag[40];
    g_snprintf(szTag, sizeof szTag, "<span foreground=\"#%02X%02X%02X\">", uiRed << 3 | uiRed >> 2,
               uiGreen << 2 | uiGreen >> 4, uiBlue << 3 | uiBlue >> 2);
    return szTag;
}

// The style that a caption ends with stands for all of it.
static std::string Make_Markup(const ZyrCaption &stCaption)
{
    char *const pszEscaped =
        g_markup_escape_text(stCaption.pszText, static_cast<gssize>(stCaption.uiTextBytes));
    std::string strMarkup = pszEscaped;
    g_free(pszEscaped);
    const uint32_t uiMode = stCaption.pstStyle->uiDisplayMode;
    if (uiMode & ZYR_CAPTIONS_UNDERLINE) strMarkup = "<u>" + strMarkup + "</u>";
    if (uiMode & ZYR_CAPTIONS_ITALIC) strMarkup = "<i>" + strMarkup + "</i>";
    if (uiMode & ZYR_CAPTIONS_BOLD) strMarkup = "<b>" + strMarkup + "</b>";
    if (stCaption.pstStyle->usColor != USUAL_COLOR)
        strMarkup = Make_ColorTag(stCaption.pstStyle->usColor) + strMarkup + "</span>";
    return strMarkup;
}

static std::string Make_MarkupAt(const ZyrCaptions *pstCaptions, uint32_t uiClass, int32_t iTime)
{
    uint32_t auiShown[MOST_TOGETHER];
    const uint32_t uiShown = zyrCaptions_getAt(pstCaptions, uiClass, iTime, auiShown, MOST_TOGETHER);
    std::string strMarkup;
    for (uint32_t ui = 0; ui < std::min(uiShown, MOST_TOGETHER); ++ui) {
        ZyrCaption stCaption;
        zyrCaptions_get(pstCaptions, auiShown[ui], &stCaption);
        if (stCaption.uiTextBytes == 0) continue;
        if (!strMarkup.empty()) strMarkup += '\n';
        strMarkup += Make_Markup(stCaption);
    }
    return strMarkup;
}

// When captions of the class come and go, each time once and in order.
static std::vector<int32_t> List_Changes(const ZyrCaptions *pstCaptions, uint32_t uiClass)
{
    std::vector<int32_t> aiTimes = {0};
    ZyrCaption stCaption;
    for (uint32_t ui = 0; zyrCaptions_get(pstCaptions, ui, &stCaption) == ZYR_CAPTIONS_OK; ++ui) {
        if (stCaption.uiClass != uiClass) continue;
        aiTimes.push_back(std::max(stCaption.iStart, 0));
        aiTimes.push_back(std::max(stCaption.iShownUntil, 0));
    }
    std::sort(aiTimes.begin(), aiTimes.end());
    aiTimes.erase(std::unique(aiTimes.begin(), aiTimes.end()), aiTimes.end());
    return aiTimes;
}

std::vector<CaptionSpan> List_Spans(const ZyrCaptions *pstCaptions, uint32_t uiClass)
{
    const std::vector<int32_t> aiTimes = List_Changes(pstCaptions, uiClass);
    std::vector<CaptionSpan> astSpans;
    for (size_t ui = 0; ui + 1 < aiTimes.size(); ++ui)
        astSpans.push_back({aiTimes[ui], aiTimes[ui + 1], Make_MarkupAt(pstCaptions, uiClass, aiTimes[ui])});
    return astSpans;
}

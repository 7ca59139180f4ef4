#include "report_json.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "report_text.h"
#include "style_text.h"
#include "time_text.h"

using nlohmann::ordered_json;

JsonReport::JsonReport()
    : m_pstDocument(std::make_unique<ordered_json>(
          ordered_json{{"schema", 1}, {"files", ordered_json::array()}, {"errors", ordered_json::array()}}))
{
}

JsonReport::~JsonReport() = default;

static ordered_json &Get_Last(ordered_json &jsDocument)
{
    return jsDocument["files"].back();
}

static ordered_json Describe_Error(const Outcome &stOutcome)
{
    return {{"code", static_cast<int>(stOutcome.eCode)}, {"message", stOutcome.strText}};
}

void JsonReport::Begin_File(const std::string &strMovie)
{
    (*m_pstDocument)["files"].push_back({{"movie", strMovie}});
}

void JsonReport::Add_Failure(const Outcome &stOutcome)
{
    ordered_json &jsFile = Get_Last(*m_pstDocument);
    jsFile["error"] = Describe_Error(stOutcome);
    ordered_json jsError = {{"movie", jsFile["movie"]}};
    jsError.update(jsFile["error"]);
    (*m_pstDocument)["errors"].push_back(std::move(jsError));
}

void JsonReport::Add_Error(const Outcome &stOutcome)
{
    (*m_pstDocument)["errors"].push_back(Describe_Error(stOutcome));
}

void JsonReport::Add_Output(const ConvertedFile &stOutput)
{
    ordered_json jsLosses = ordered_json::array();
    for (const auto &[strWhat, stLoss] : stOutput.stLosses.Get())
        jsLosses.push_back({{"what", strWhat}, {"captions", stLoss.uiTimes}, {"text", stLoss.bText}});
    ordered_json jsOutput = {{"file", stOutput.strFile},
                             {"format", stOutput.pszFormat},
                             {"captions", stOutput.uiFrames},
                             {"text_lost", stOutput.stLosses.Has_Text()},
                             {"losses", std::move(jsLosses)}};
    if (!stOutput.stOutcome.IsGood()) {
        jsOutput["error"] = Describe_Error(stOutput.stOutcome);
        Add_Error(stOutput.stOutcome);
    }
    (*m_pstDocument)["outputs"].push_back(std::move(jsOutput));
}

static bool Is_Ansi(const ZyrCaptionsFile &stFile)
{
    return stFile.pszCodePage != nullptr;
}

static const char *Get_OutputName(const ZyrCaptionsFile &stFile)
{
    if (Is_Ansi(stFile)) return "code page";
    return std::string_view(stFile.pszEncoding) == "UTF-8" ? "UTF-8" : "UTF-16";
}

void JsonReport::Add_Source(const CaptionFile &stCaptions, bool bFrames)
{
    ordered_json &jsFile = Get_Last(*m_pstDocument);
    const ZyrCaptionsFile stFile = stCaptions.Get_File();
    jsFile["subtitle"] = stFile.pszFile;
    jsFile["format"] = stFile.pszFormat;
    jsFile["encoding"] = stFile.pszEncoding;
    jsFile["byte_order_mark"] = stFile.uiRule == ZYR_CAPTIONS_BY_MARK;
    jsFile["output_charset"] = Get_OutputName(stFile);
    jsFile["code_page"] = Is_Ansi(stFile) ? ordered_json(stFile.pszCodePage) : ordered_json();
    if (bFrames) jsFile["frames"] = ordered_json::array();
}

static ordered_json Describe_Classes(const CaptionFile &stCaptions)
{
    ordered_json jsClasses = ordered_json::array();
    for (const uint32_t uiClass : stCaptions.List_Classes()) {
        const ZyrCaptionClass stClass = stCaptions.Get_Class(uiClass);
        const bool bAny = stClass.uiCaptions > 0;
        ordered_json jsFolded = ordered_json::array();
        for (uint32_t uiName = 0; uiName < stClass.uiFolded; ++uiName)
            jsFolded.push_back(zyrCaptions_getFoldedName(stCaptions.Get_List(), uiClass, uiName));
        jsClasses.push_back({{"index", uiClass},
                             {"name", stClass.pszName},
                             {"language", stClass.pszLanguage == nullptr ? ordered_json()
                                                                         : ordered_json(stClass.pszLanguage)},
                             {"folded", std::move(jsFolded)},
                             {"frames", stClass.uiCaptions},
                             {"first", bAny ? ordered_json(stClass.iFirstStart) : ordered_json()},
                             {"last", bAny ? ordered_json(stClass.iLastStart) : ordered_json()}});
    }
    return jsClasses;
}

static ordered_json Describe_Style(const ZyrCaptionSsaStyle &stStyle)
{
    return {{"name", stStyle.pszName},
            {"font", stStyle.pszFont},
            {"font_size", stStyle.uiFontSize},
            {"primary_colour", stStyle.uiPrimaryColour},
            {"secondary_colour", stStyle.uiSecondaryColour},
            {"tertiary_colour", stStyle.uiTertiaryColour},
            {"back_colour", stStyle.uiBackColour},
            {"bold", stStyle.uiBold},
            {"italic", stStyle.uiItalic},
            {"border_style", stStyle.uiBorderStyle},
            {"outline", stStyle.uiOutline},
            {"shadow", stStyle.uiShadow},
            {"alignment", stStyle.uiAlignment},
            {"margin_left", stStyle.uiMarginLeft},
            {"margin_right", stStyle.uiMarginRight},
            {"margin_vertical", stStyle.uiMarginVertical},
            {"alpha_level", stStyle.uiAlphaLevel},
            {"encoding", stStyle.uiEncoding}};
}

static ordered_json Describe_Ssa(const CaptionFile &stCaptions)
{
    const ZyrCaptionsFile stFile = stCaptions.Get_File();
    ordered_json jsStyles = ordered_json::array();
    ZyrCaptionSsaStyle stStyle;
    for (uint32_t ui = 0; zyrCaptions_getSsaStyle(stCaptions.Get_List(), ui, &stStyle) == ZYR_CAPTIONS_OK;
         ++ui)
        jsStyles.push_back(Describe_Style(stStyle));
    return {{"title", stFile.pszTitle},
            {"original_script", stFile.pszOriginalScript},
            {"script_type", stFile.pszScriptType},
            {"styles", jsStyles}};
}

static ordered_json Describe_SubViewer(const ZyrCaptionsFile &stFile)
{
    return {{"delay", stFile.uiDelay},
            {"colour", Format_Color24(stFile.uiColor)},
            {"colour_raw", stFile.uiColor},
            {"size", stFile.uiFontSize},
            {"font", stFile.pszFont}};
}

static ordered_json Describe_Byte(size_t uiOffset, uint8_t ucByte)
{
    return uiOffset == ZYR_CAPTIONS_NOWHERE ? ordered_json()
                                            : ordered_json{{"offset", uiOffset}, {"byte", ucByte}};
}

static ordered_json Describe_Encoding(const CaptionFile &stCaptions)
{
    const ZyrCaptionsFile stFile = stCaptions.Get_File();
    ordered_json jsPages = ordered_json::array();
    ZyrCaptionCodePage stPage;
    for (uint32_t ui = 0; zyrCaptions_getCodePage(stCaptions.Get_List(), ui, &stPage) == ZYR_CAPTIONS_OK;
         ++ui)
        jsPages.push_back(
            {{"name", stPage.pszName}, {"preview", stPage.pszPreview}, {"in_use", stPage.bInUse != 0}});
    ordered_json jsScan;
    if (stFile.uiRule != ZYR_CAPTIONS_BY_MARK)
        jsScan = {{"bytes", stFile.uiScanned},
                  {"utf8_characters", stFile.uiUtf8Characters},
                  {"invalid_bytes", stFile.uiNotUtf8},
                  {"first_invalid", Describe_Byte(stFile.uiFirstNotUtf8, stFile.ucFirstNotUtf8)}};
    return {{"decided_by", Get_RuleName(stFile.uiRule)},
            {"scan", jsScan},
            {"first_undecodable", Describe_Byte(stFile.uiFirstUnreadable, stFile.ucFirstUnreadable)},
            {"single_byte", stFile.bSingleByte != 0},
            {"likely_code_pages", jsPages}};
}

void JsonReport::Add_Info(const CaptionFile &stCaptions, const LineEnds &stEnds)
{
    const ZyrCaptionsFile stFile = stCaptions.Get_File();
    Add_Source(stCaptions, false);
    ordered_json &jsFile = Get_Last(*m_pstDocument);
    jsFile["encoding_details"] = Describe_Encoding(stCaptions);
    if (stFile.uiFormat == ZYR_CAPTIONS_SSA) jsFile["ssa"] = Describe_Ssa(stCaptions);
    if (stFile.uiFormat == ZYR_CAPTIONS_SUBVIEWER) jsFile["subviewer"] = Describe_SubViewer(stFile);
    jsFile["line_ends"] = {{"cr_lf", stEnds.uiCrLf},
                           {"lf", stEnds.uiLf},
                           {"cr", stEnds.uiCr},
                           {"captions_on_the_box", stEnds.uiBoxCaptions}};
    jsFile["with_text"] = stFile.uiWithText;
    if (stCaptions.Count() == 0) jsFile["no_caption"] = stCaptions.Explain_Empty();
    jsFile["classes"] = Describe_Classes(stCaptions);
}

void JsonReport::Add_Frame(const CaptionFile &stCaptions, const Frame &stFrame)
{
    const bool bOne = stFrame.uiClass != ZYR_CAPTIONS_ALL;
    const ZyrCaptionStyle &stStyle = stFrame.stStyle;
    ordered_json jsStyle = {{"font_size", stStyle.uiFontSize},
                            {"colour", Format_Color(stStyle.usColor)},
                            {"colour_raw", stStyle.usColor},
                            {"outline_colour", Format_Color(stStyle.usOutlineColor)},
                            {"outline_colour_raw", stStyle.usOutlineColor},
                            {"highlight", stStyle.uiHighlight},
                            {"display_mode", List_DisplayModes(stStyle.uiDisplayMode)},
                            {"display_mode_raw", stStyle.uiDisplayMode}};
    Get_Last(*m_pstDocument)["frames"].push_back(
        {{"stream", bOne ? ordered_json(stCaptions.Get_Class(stFrame.uiClass).uiOrder) : ordered_json()},
         {"class", bOne ? ordered_json(stCaptions.Get_ClassName(stFrame.uiClass)) : ordered_json()},
         {"start", stFrame.iStart},
         {"end", stFrame.iEnd == OPEN_END ? ordered_json() : ordered_json(stFrame.iEnd)},
         {"lines", stFrame.astrLines},
         {"style", std::move(jsStyle)}});
}

void JsonReport::Add_Search(const MovieSearch &stSearch, const std::string &strVerdict)
{
    ordered_json jsTried = ordered_json::array();
    for (const TriedName &stName : stSearch.astTried)
        jsTried.push_back({{"name", stName.strFile}, {"opens", stName.bOpens}, {"state", stName.strState}});
    ordered_json jsSiblings = ordered_json::array();
    for (const Sibling &stSibling : stSearch.astSiblings)
        jsSiblings.push_back({{"name", stSibling.strFile}, {"why", stSibling.strWhy}});
    ordered_json &jsFile = Get_Last(*m_pstDocument);
    jsFile["subtitle"] =
        stSearch.uiWinner ? ordered_json(stSearch.astTried[*stSearch.uiWinner].strFile) : ordered_json();
    jsFile["why"] = strVerdict;
    jsFile["tried"] = std::move(jsTried);
    jsFile["never_asked_for"] = std::move(jsSiblings);
}

// File names are bytes: what is not UTF-8 in them shows as U+FFFD and never spoils the document.
static void Print_Document(const ordered_json &jsDocument)
{
    const std::string strText = jsDocument.dump(2, ' ', false, ordered_json::error_handler_t::replace);
    std::printf("%s\n", strText.c_str());
}

void JsonReport::Print() const
{
    Print_Document(*m_pstDocument);
}

void JsonReport::Print_Line() const
{
    ordered_json jsLine = m_pstDocument->at("files").back();
    if (m_pstDocument->contains("outputs")) jsLine["outputs"] = m_pstDocument->at("outputs");
    std::printf("%s\n", jsLine.dump(-1, ' ', false, ordered_json::error_handler_t::replace).c_str());
}

void Print_JsonFailure(ExitCode eCode, const std::string &strText)
{
    Print_Document({{"schema", 1},
                    {"files", ordered_json::array()},
                    {"errors", {{{"code", static_cast<int>(eCode)}, {"message", strText}}}}});
}

#include "report_json.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "encoding_report.h"
#include "format_details.h"
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
    for (const auto &[strWhat, uiTimes] : stOutput.stLosses.Get())
        jsLosses.push_back({{"what", strWhat}, {"captions", uiTimes}});
    ordered_json jsOutput = {{"file", stOutput.strFile},
                             {"format", stOutput.pszFormat},
                             {"captions", stOutput.uiFrames},
                             {"losses", std::move(jsLosses)}};
    if (!stOutput.stOutcome.IsGood()) {
        jsOutput["error"] = Describe_Error(stOutput.stOutcome);
        Add_Error(stOutput.stOutcome);
    }
    (*m_pstDocument)["outputs"].push_back(std::move(jsOutput));
}

static const char *Get_OutputName(const std::string &strEncoding)
{
    if (strEncoding == "ANSI") return "code page";
    return strEncoding == "UTF-8" ? "UTF-8" : "UTF-16";
}

void JsonReport::Add_Source(const SubtitleSource &stSource, bool bFrames)
{
    ordered_json &jsFile = Get_Last(*m_pstDocument);
    const std::string strEncoding = stSource.Get_Encoding();
    jsFile["subtitle"] = stSource.Get_FileName();
    jsFile["format"] = Get_FormatName(stSource.Get_Format());
    jsFile["encoding"] = strEncoding;
    jsFile["byte_order_mark"] = stSource.Has_Mark();
    jsFile["output_charset"] = Get_OutputName(strEncoding);
    jsFile["code_page"] = strEncoding == "ANSI" ? ordered_json(stSource.Get_CodePage()) : ordered_json();
    if (bFrames) jsFile["frames"] = ordered_json::array();
}

static ordered_json Describe_Classes(const SubtitleSource &stSource)
{
    ordered_json jsClasses = ordered_json::array();
    for (const LanguageClass &stClass : stSource.List_Classes()) {
        const bool bAny = stClass.uiFrames > 0;
        jsClasses.push_back({{"index", jsClasses.size()},
                             {"name", stClass.strName},
                             {"folded", stClass.astrFolded},
                             {"frames", stClass.uiFrames},
                             {"first", bAny ? ordered_json(stClass.iFirst) : ordered_json()},
                             {"last", bAny ? ordered_json(stClass.iLast) : ordered_json()}});
    }
    return jsClasses;
}

static ordered_json Describe_Style(const SsaStyle &stStyle)
{
    const SSAStyleInfo &stNumbers = *stStyle.pstNumbers;
    return {{"name", stStyle.strName},
            {"font", stStyle.strFont},
            {"font_size", stNumbers.uiFontSize},
            {"primary_colour", stNumbers.uiPrimaryColour},
            {"secondary_colour", stNumbers.uiSecondaryColour},
            {"tertiary_colour", stNumbers.uiTertiaryColour},
            {"back_colour", stNumbers.uiBackColour},
            {"bold", stNumbers.uiBold},
            {"italic", stNumbers.uiItalic},
            {"border_style", stNumbers.uiBorderStyle},
            {"outline", stNumbers.uiOutline},
            {"shadow", stNumbers.uiShadow},
            {"alignment", stNumbers.uiAlignment},
            {"margin_left", stNumbers.uiMarginL},
            {"margin_right", stNumbers.uiMarginR},
            {"margin_vertical", stNumbers.uiMarginV},
            {"alpha_level", stNumbers.uiAlphaLevel},
            {"encoding", stNumbers.uiEncoding}};
}

static ordered_json Describe_Ssa(const TextDecoder &stDecoder)
{
    const SsaHeader stHeader = Read_SsaHeader(stDecoder);
    ordered_json jsStyles = ordered_json::array();
    for (const SsaStyle &stStyle : stHeader.astStyles) jsStyles.push_back(Describe_Style(stStyle));
    return {{"title", stHeader.strTitle},
            {"original_script", stHeader.strScript},
            {"script_type", stHeader.strType},
            {"styles", jsStyles}};
}

static ordered_json Describe_SubViewer(const TextDecoder &stDecoder)
{
    const SubViewerHeader stHeader = Read_SubViewerHeader(stDecoder);
    return {{"delay", stHeader.uiDelay},
            {"colour", Format_Color24(stHeader.uiColor)},
            {"colour_raw", stHeader.uiColor},
            {"size", stHeader.uiSize},
            {"font", stHeader.strFont}};
}

static ordered_json Describe_BadByte(const std::optional<BadByte> &stBad)
{
    return stBad ? ordered_json{{"offset", stBad->uiOffset}, {"byte", stBad->ucByte}} : ordered_json();
}

static ordered_json Describe_Encoding(const SubtitleSource &stSource)
{
    const EncodingReport stReport = Explain_Encoding(stSource);
    ordered_json jsGuesses = ordered_json::array();
    for (const CodePageGuess &stGuess : stReport.astGuesses)
        jsGuesses.push_back(
            {{"name", stGuess.strName}, {"preview", stGuess.strPreview}, {"in_use", stGuess.bInUse}});
    ordered_json jsScan;
    if (stReport.eRule != E_RULE_MARK)
        jsScan = {{"bytes", stReport.uiScanned},
                  {"utf8_characters", stReport.stCount.uiSequences},
                  {"invalid_bytes", stReport.stCount.uiInvalid},
                  {"first_invalid", Describe_BadByte(stReport.stNotUtf8)}};
    return {{"decided_by", Get_RuleName(stReport.eRule)},
            {"scan", jsScan},
            {"first_undecodable", Describe_BadByte(stReport.stUndecodable)},
            {"single_byte", stSource.Is_SingleByteRead()},
            {"likely_code_pages", jsGuesses}};
}

void JsonReport::Add_Info(const SubtitleSource &stSource)
{
    Add_Source(stSource, false);
    ordered_json &jsFile = Get_Last(*m_pstDocument);
    jsFile["encoding_details"] = Describe_Encoding(stSource);
    if (stSource.Get_Format() == E_CAPTION_FORMAT_SSA) jsFile["ssa"] = Describe_Ssa(stSource.Get_Decoder());
    if (stSource.Get_Format() == E_CAPTION_FORMAT_SUBVIEWER)
        jsFile["subviewer"] = Describe_SubViewer(stSource.Get_Decoder());
    jsFile["classes"] = Describe_Classes(stSource);
}

void JsonReport::Add_Frame(const SubtitleSource &stSource, const Frame &stFrame)
{
    const bool bOne = stFrame.uiStream != ALL_STREAMS;
    const FrameStyle &stStyle = stFrame.stStyle;
    ordered_json jsStyle = {{"font_size", stStyle.uiFontSize},
                            {"colour", Format_Color(stStyle.usColor)},
                            {"colour_raw", stStyle.usColor},
                            {"outline_colour", Format_Color(stStyle.usOutline)},
                            {"outline_colour_raw", stStyle.usOutline},
                            {"highlight", stStyle.uiHighlight},
                            {"display_mode", List_DisplayModes(stStyle.uiDisplayMode)},
                            {"display_mode_raw", stStyle.uiDisplayMode}};
    Get_Last(*m_pstDocument)["frames"].push_back(
        {{"stream", bOne ? ordered_json(stFrame.uiStream) : ordered_json()},
         {"class", bOne ? ordered_json(stSource.Get_ClassName(stFrame.uiClass)) : ordered_json()},
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

void Print_JsonFailure(ExitCode eCode, const std::string &strText)
{
    Print_Document({{"schema", 1},
                    {"files", ordered_json::array()},
                    {"errors", {{{"code", static_cast<int>(eCode)}, {"message", strText}}}}});
}

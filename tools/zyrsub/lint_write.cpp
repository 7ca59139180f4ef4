// Findings as programs read them: JSON, SARIF, JUnit.
#include "lint_write.h"

#include <nlohmann/json.hpp>

#include "text_tools.h"

using nlohmann::ordered_json;

static constexpr uint32_t SEVERITIES[] = {ZYR_FINDING_LOST, ZYR_FINDING_CHANGED, ZYR_FINDING_DOUBTFUL};

static const char *Get_SeverityName(uint32_t uiSeverity)
{
    return uiSeverity == ZYR_FINDING_LOST      ? "lost"
           : uiSeverity == ZYR_FINDING_CHANGED ? "changed"
                                               : "doubtful";
}

static std::string Dump(const ordered_json &jsDocument)
{
    return jsDocument.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

static ordered_json Describe_Finding(const LintFile &stFile, const ZyrFinding &stFinding)
{
    const bool bCaption = stFinding.uiCaption != ZYR_CAPTIONS_NONE;
    return {{"code", stFinding.pszCode},
            {"severity", Get_SeverityName(stFinding.uiSeverity)},
            {"line", stFinding.uiLine},
            {"column", stFinding.uiColumn},
            {"columns", stFinding.uiColumns},
            {"offset", stFinding.uiOffset},
            {"caption", bCaption ? ordered_json(stFinding.uiCaption) : ordered_json()},
            {"start", bCaption ? ordered_json(stFile.Get_Caption(stFinding).iStart) : ordered_json()},
            {"message", stFinding.pszSentence},
            {"text", stFinding.pszText}};
}

static ordered_json Describe_Outcome(const Outcome &stOutcome)
{
    return {{"code", static_cast<int>(stOutcome.eCode)}, {"message", stOutcome.strText}};
}

static ordered_json Describe_File(const LintResult &stResult)
{
    const LintFile &stFile = stResult.stFile;
    ordered_json jsFile = {{"movie", stFile.Get_Movie()}};
    if (!stResult.stOutcome.IsGood()) {
        jsFile["error"] = Describe_Outcome(stResult.stOutcome);
        return jsFile;
    }
    jsFile["subtitle"] = stFile.Get_File().pszFile;
    jsFile["format"] = stFile.Get_File().pszFormat;
    for (const uint32_t uiSeverity : SEVERITIES)
        jsFile[Get_SeverityName(uiSeverity)] = stFile.Count(uiSeverity);
    jsFile["findings"] = ordered_json::array();
    for (const ZyrFinding &stFinding : stFile.Get_Findings())
        jsFile["findings"].push_back(Describe_Finding(stFile, stFinding));
    return jsFile;
}

std::string Write_LintJson(const std::vector<LintResult> &astResults)
{
    ordered_json jsDocument = {
        {"schema", 1}, {"files", ordered_json::array()}, {"errors", ordered_json::array()}};
    for (const LintResult &stResult : astResults) {
        jsDocument["files"].push_back(Describe_File(stResult));
        if (stResult.stOutcome.IsGood()) continue;
        ordered_json jsError = {{"movie", stResult.stFile.Get_Movie()}};
        jsError.update(Describe_Outcome(stResult.stOutcome));
        jsDocument["errors"].push_back(std::move(jsError));
    }
    return Dump(jsDocument);
}

std::string Write_LintLine(const LintResult &stResult)
{
    return Describe_File(stResult).dump(-1, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

static const char *Get_SarifLevel(uint32_t uiSeverity)
{
    return uiSeverity == ZYR_FINDING_LOST ? "error" : uiSeverity == ZYR_FINDING_CHANGED ? "warning" : "note";
}

// The characters of a URI that need no escape, and the "/" of paths.
static std::string Make_Uri(const std::string &strPath)
{
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    std::string strUri = strPath.starts_with('/') ? "file://" : "";
    for (const char cByte : strPath) {
        const auto ucByte = static_cast<uint8_t>(cByte);
        const bool bPlain = (cByte >= '0' && cByte <= '9') || (cByte >= 'a' && cByte <= 'z') ||
                            (cByte >= 'A' && cByte <= 'Z') ||
                            std::string_view("/-._~").find(cByte) != std::string::npos;
        strUri +=
            bPlain ? std::string(1, cByte) : std::string("%") + DIGITS[ucByte >> 4] + DIGITS[ucByte & 15];
    }
    return strUri;
}

static ordered_json Describe_Place(const LintFile &stFile, const ZyrFinding &stFinding)
{
    ordered_json jsPlace = {{"artifactLocation", {{"uri", Make_Uri(stFile.Get_Movie())}}}};
    if (stFinding.uiLine > 0)
        jsPlace["region"] = {{"startLine", stFinding.uiLine},
                             {"startColumn", stFinding.uiColumn},
                             {"endColumn", stFinding.uiColumn + stFinding.uiColumns},
                             {"byteOffset", stFinding.uiOffset},
                             {"snippet", {{"text", Cut_Line(stFinding).strText}}}};
    return ordered_json::array({{{"physicalLocation", std::move(jsPlace)}}});
}

static ordered_json Describe_Rules()
{
    ordered_json jsRules = ordered_json::array();
    ZyrFindingRule stRule;
    for (uint32_t ui = 0; zyrFindings_getRule(ui, &stRule) == ZYR_CAPTIONS_OK; ++ui)
        jsRules.push_back({{"id", stRule.pszCode},
                           {"shortDescription", {{"text", stRule.pszTitle}}},
                           {"fullDescription", {{"text", stRule.pszExplanation}}},
                           {"defaultConfiguration", {{"level", Get_SarifLevel(stRule.uiSeverity)}}}});
    return jsRules;
}

static ordered_json Describe_Failures(const std::vector<LintResult> &astResults)
{
    ordered_json jsFailures = ordered_json::array();
    for (const LintResult &stResult : astResults)
        if (!stResult.stOutcome.IsGood())
            jsFailures.push_back(
                {{"level", "error"},
                 {"message", {{"text", stResult.stFile.Get_Movie() + ": " + stResult.stOutcome.strText}}}});
    return jsFailures;
}

std::string Write_LintSarif(const std::vector<LintResult> &astResults)
{
    ordered_json jsResults = ordered_json::array();
    for (const LintResult &stResult : astResults)
        for (const ZyrFinding &stFinding : stResult.stFile.Get_Findings())
            jsResults.push_back({{"ruleId", stFinding.pszCode},
                                 {"ruleIndex", stFinding.uiRule},
                                 {"level", Get_SarifLevel(stFinding.uiSeverity)},
                                 {"message", {{"text", stFinding.pszSentence}}},
                                 {"locations", Describe_Place(stResult.stFile, stFinding)}});
    ordered_json jsFailures = Describe_Failures(astResults);
    const bool bGood = jsFailures.empty();
    const ordered_json jsDriver = {
        {"name", "zyrsub"}, {"version", ZYRSUB_VERSION}, {"rules", Describe_Rules()}};
    ordered_json jsRun = {{"tool", {{"driver", jsDriver}}},
                          {"columnKind", "unicodeCodePoints"},
                          {"invocations", ordered_json::array({{{"executionSuccessful", bGood}}})},
                          {"results", std::move(jsResults)}};
    if (!bGood) jsRun["invocations"][0]["toolExecutionNotifications"] = std::move(jsFailures);
    return Dump({{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                 {"version", "2.1.0"},
                 {"runs", ordered_json::array({std::move(jsRun)})}});
}

// XML has no control characters, also not escaped.
static std::string Escape_Xml(const std::string &strText)
{
    std::string strOut;
    for (const char cChar : Make_Printable(strText)) {
        switch (cChar) {
        case '&': strOut += "&amp;"; break;
        case '<': strOut += "&lt;"; break;
        case '>': strOut += "&gt;"; break;
        case '"': strOut += "&quot;"; break;
        case '\n': strOut += "&#10;"; break;
        default: strOut += cChar;
        }
    }
    return strOut;
}

static std::string Write_Case(const LintFile &stFile, const ZyrFinding &stFinding)
{
    const std::string strPlace = stFinding.uiLine == 0 ? ""
                                                       : " line " + std::to_string(stFinding.uiLine) +
                                                             " column " + std::to_string(stFinding.uiColumn);
    const std::string strFile = Escape_Xml(stFile.Get_Movie());
    return "    <testcase classname=\"" + strFile + "\" name=\"" + stFinding.pszCode + strPlace +
           "\" file=\"" + strFile + "\" line=\"" + std::to_string(stFinding.uiLine) +
           "\">\n      <failure type=\"" + Get_SeverityName(stFinding.uiSeverity) + "\" message=\"" +
           Escape_Xml(stFinding.pszSentence) + "\">" + Escape_Xml(Cut_Line(stFinding).strText) +
           "</failure>\n    </testcase>\n";
}

// A file is a suite; each finding is a test that failed, and a file without any is one that passed.
static std::string Write_Suite(const LintResult &stResult)
{
    const std::vector<ZyrFinding> &astFindings = stResult.stFile.Get_Findings();
    const std::string strFile = Escape_Xml(stResult.stFile.Get_Movie());
    const bool bGood = stResult.stOutcome.IsGood();
    const size_t uiTests = astFindings.empty() ? 1 : astFindings.size();
    std::string strText = "  <testsuite name=\"" + strFile + "\" tests=\"" + std::to_string(uiTests) +
                          "\" failures=\"" + std::to_string(astFindings.size()) + "\" errors=\"" +
                          (bGood ? "0" : "1") + "\">\n";
    if (!bGood)
        strText += "    <testcase classname=\"" + strFile + "\" name=\"read\"><error message=\"" +
                   Escape_Xml(stResult.stOutcome.strText) + "\"/></testcase>\n";
    else if (astFindings.empty())
        strText += "    <testcase classname=\"" + strFile + "\" name=\"no findings\"/>\n";
    for (const ZyrFinding &stFinding : astFindings) strText += Write_Case(stResult.stFile, stFinding);
    return strText + "  </testsuite>\n";
}

std::string Write_LintJunit(const std::vector<LintResult> &astResults)
{
    std::string strText = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"zyrsub lint\">\n";
    for (const LintResult &stResult : astResults) strText += Write_Suite(stResult);
    return strText + "</testsuites>\n";
}

#include "page_data.h"

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <unordered_map>

#include "caption_screen.h"
#include "line_ends.h"
#include "report_text.h"
#include "text_tools.h"
#include "time_text.h"
#include "zyr/zyr_findings.h"

using nlohmann::ordered_json;

static constexpr int32_t OPEN_MS = 5000; // how long the timeline shows what nothing ends

using FindingsPtr = std::unique_ptr<ZyrFindings, void (*)(ZyrFindings *)>;

// Those of the first output, if there is one; the captions of the two loads have the same numbers.
static FindingsPtr Load_Findings(const Options &stOptions, const CaptionFile &stFile)
{
    const LoadOptions stLoad(stOptions.stSource);
    ZyrFindingsOptions stFind = {};
    stFind.pstCaptions = stLoad.Get();
    stFind.uiFontSize = stOptions.stScreen.uiFontSize;
    if (!stOptions.stPage.auiOutputs.empty())
        stFind.pszOutput = Get_Output(stOptions.stPage.auiOutputs.front()).pszName;
    const std::string strBytes = stFile.Is_Input() ? stFile.Read_Bytes() : "";
    ZyrFindings *const pstFindings =
        stFile.Is_Input() ? zyrFindings_loadMemory(strBytes.data(), strBytes.size(), nullptr, &stFind)
                          : zyrFindings_load(stFile.Get_File().pszFile, &stFind);
    return {pstFindings, zyrFindings_free};
}

// SAMI clears the screen by captions without text: they are ends, and not worth a place of their own.
static bool Is_Listed(const CaptionFile &stFile, uint32_t uiIndex)
{
    return stFile.Get_File().uiFormat != ZYR_CAPTIONS_SAMI ||
           Has_VisibleText(stFile.Get_Caption(uiIndex).pszText);
}

// The places of captions on the page; null for those that have none.
static std::vector<ordered_json> List_Places(const CaptionFile &stFile)
{
    std::vector<ordered_json> ajsPlaces;
    size_t uiListed = 0;
    for (uint32_t uiIndex = 0; uiIndex < stFile.Count(); ++uiIndex)
        ajsPlaces.push_back(Is_Listed(stFile, uiIndex) ? ordered_json(uiListed++) : ordered_json());
    return ajsPlaces;
}

static ordered_json Describe_Findings(const ZyrFindings *pstFindings, const CaptionFile &stFile)
{
    const std::vector<ordered_json> ajsPlaces = List_Places(stFile);
    ordered_json jsFindings = ordered_json::array();
    for (uint32_t uiIndex = 0; uiIndex < zyrFindings_count(pstFindings); ++uiIndex) {
        ZyrFinding stFinding;
        ZyrFindingRule stRule;
        zyrFindings_get(pstFindings, uiIndex, &stFinding);
        zyrFindings_getRule(stFinding.uiRule, &stRule);
        const bool bCaption = stFinding.uiCaption < ajsPlaces.size();
        jsFindings.push_back({{"code", stRule.pszCode},
                              {"severity", stRule.pszSeverity},
                              {"title", stRule.pszTitle},
                              {"sentence", stFinding.pszSentence},
                              {"line", stFinding.uiLine},
                              {"column", stFinding.uiColumn},
                              {"offset", stFinding.uiOffset},
                              {"text", stFinding.pszText},
                              {"caption", bCaption ? ajsPlaces[stFinding.uiCaption] : ordered_json()}});
    }
    return jsFindings;
}

// Each text once, in the order of the captions: films repeat themselves.
class TextTable
{
public:
    ordered_json Add(const std::string &strText)
    {
        if (!Has_VisibleText(strText)) return nullptr;
        const auto [stPlace, bNew] = m_auiPlaces.try_emplace(strText, m_astrTexts.size());
        if (bNew) m_astrTexts.push_back(strText);
        return stPlace->second;
    }
    const std::vector<std::string> &Get() const { return m_astrTexts; }

private:
    std::unordered_map<std::string, size_t> m_auiPlaces;
    std::vector<std::string> m_astrTexts;
};

// A class by name, for classes need not have the same numbers where the file is read otherwise.
using Moment = std::pair<std::string, int32_t>;
struct BoxCaption {
    int32_t iEnd;
    std::string strText;
};
using BoxCaptions = std::multimap<Moment, BoxCaption>;

static BoxCaptions Read_BoxCaptions(const CaptionFile &stFile, SourceOptions stSource)
{
    stSource.bRawLineEnds = true;
    stSource.bVerbose = false;
    CaptionFile stBox;
    BoxCaptions astCaptions;
    if (!stBox.Open(stFile.Get_File().pszFile, stSource).IsGood()) return astCaptions;
    for (uint32_t uiIndex = 0; uiIndex < stBox.Count(); ++uiIndex) {
        const ZyrCaption stCaption = stBox.Get_Caption(uiIndex);
        astCaptions.emplace(Moment(stBox.Get_ClassName(stCaption.uiClass), stCaption.iStart),
                            BoxCaption{stCaption.iEnd, stCaption.pszText});
    }
    return astCaptions;
}

// What the box gets at that moment; a caption that it shows alike is taken, so that a second one needs its own.
static void Compare_Box(const CaptionFile &stFile, const ZyrCaption &stCaption, BoxCaptions &astBox,
                        ordered_json &jsCaption)
{
    const auto [stFirst, stLast] =
        astBox.equal_range({stFile.Get_ClassName(stCaption.uiClass), stCaption.iStart});
    jsCaption["box"] = stFirst == stLast ? "missing" : "differs";
    for (auto stPlace = stFirst; stPlace != stLast; ++stPlace) {
        if (stPlace->second.iEnd != stCaption.iEnd || stPlace->second.strText != stCaption.pszText) continue;
        jsCaption["box"] = "same";
        astBox.erase(stPlace);
        return;
    }
    if (stFirst != stLast) jsCaption["boxLines"] = Split_Lines(stFirst->second.strText);
}

static ordered_json Describe_Caption(const ZyrCaption &stCaption, TextTable &stTexts)
{
    const bool bOpen = stCaption.iEnd == ZYR_CAPTIONS_OPEN_END;
    const bool bStays = stCaption.iShownUntil == ZYR_CAPTIONS_OPEN_END;
    const int64_t llUntil = bStays ? int64_t{stCaption.iStart} + OPEN_MS : stCaption.iShownUntil;
    return {{"start", stCaption.iStart},
            {"end", bOpen ? ordered_json() : ordered_json(stCaption.iEnd)},
            {"until", std::max<int64_t>(llUntil, stCaption.iStart)},
            {"class", stCaption.uiClass},
            {"lines", Split_Lines({stCaption.pszText, stCaption.uiTextBytes})},
            {"source", stCaption.uiSource},
            {"picture", stTexts.Add(stCaption.pszText)},
            {"box", "same"}};
}

static ordered_json Describe_Captions(const CaptionFile &stFile, const SourceOptions &stSource,
                                      bool bBoxReads, TextTable &stTexts)
{
    BoxCaptions astBox;
    if (!bBoxReads) astBox = Read_BoxCaptions(stFile, stSource);
    ordered_json jsCaptions = ordered_json::array();
    for (uint32_t uiIndex = 0; uiIndex < stFile.Count(); ++uiIndex) {
        if (!Is_Listed(stFile, uiIndex)) continue;
        const ZyrCaption stCaption = stFile.Get_Caption(uiIndex);
        ordered_json jsCaption = Describe_Caption(stCaption, stTexts);
        if (!bBoxReads) Compare_Box(stFile, stCaption, astBox, jsCaption);
        jsCaptions.push_back(std::move(jsCaption));
    }
    return jsCaptions;
}

static ordered_json Describe_Classes(const CaptionFile &stFile)
{
    ordered_json jsClasses = ordered_json::array();
    for (const uint32_t uiClass : stFile.List_Classes()) {
        const ZyrCaptionClass stClass = stFile.Get_Class(uiClass);
        jsClasses.push_back({{"index", uiClass},
                             {"name", stClass.pszName},
                             {"language", stClass.pszLanguage == nullptr ? "" : stClass.pszLanguage}});
    }
    return jsClasses;
}

static std::string Describe_Languages(const CaptionFile &stFile)
{
    std::vector<std::string> astrNames;
    for (const uint32_t uiClass : stFile.List_Classes())
        astrNames.push_back(Show_ClassName(stFile.Get_ClassName(uiClass)));
    return Join_Lines(astrNames, ", ");
}

// Rows for the page's head, each a name and a value.
static ordered_json Describe_Facts(const CaptionFile &stFile, const LineEnds &stEnds, size_t uiListed)
{
    const ZyrCaptionsFile stInfo = stFile.Get_File();
    ordered_json jsFacts = ordered_json::array();
    jsFacts.push_back({"format", stInfo.pszFormat});
    jsFacts.push_back({"encoding", Describe_Encoding(stInfo)});
    jsFacts.push_back({"line ends", Describe_LineEnds(stEnds, stFile.Count())});
    if (*stInfo.pszTitle != '\0') jsFacts.push_back({"title", stInfo.pszTitle});
    jsFacts.push_back({"captions", std::to_string(uiListed)});
    if (uiListed == 0) jsFacts.push_back({"no caption", stFile.Explain_Empty()});
    if (stInfo.uiClasses > 1) jsFacts.push_back({"languages", Describe_Languages(stFile)});
    if (uiListed > 0)
        jsFacts.push_back({"last caption ends", Format_Time(static_cast<int32_t>(stFile.Get_End()))});
    return jsFacts;
}

static std::string Get_FileName(const CaptionFile &stFile)
{
    const std::string strPath = stFile.Get_File().pszFile;
    return strPath.substr(strPath.rfind('/') + 1);
}

ordered_json Describe_File(const Options &stOptions, const CaptionFile &stFile,
                           std::vector<std::string> &astrTexts)
{
    TextTable stTexts;
    const LineEnds stEnds = Find_LineEnds(stFile, stOptions.stSource);
    const bool bBoxReads =
        stOptions.stSource.bRawLineEnds || stFile.Is_Input() || stEnds.uiLf + stEnds.uiCr == 0;
    ordered_json jsCaptions = Describe_Captions(stFile, stOptions.stSource, bBoxReads, stTexts);
    ordered_json jsPage = {{"schema", 1},
                           {"file",
                            {{"name", Get_FileName(stFile)},
                             {"format", stFile.Get_File().pszFormat},
                             {"end", stFile.Get_End()}}},
                           {"facts", Describe_Facts(stFile, stEnds, jsCaptions.size())},
                           {"classes", Describe_Classes(stFile)},
                           {"findings", Describe_Findings(Load_Findings(stOptions, stFile).get(), stFile)}};
    jsPage["captions"] = std::move(jsCaptions);
    astrTexts = stTexts.Get();
    return jsPage;
}

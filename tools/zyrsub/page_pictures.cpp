#include "page_data.h"

#include <nlohmann/json.hpp>

#include "base64.h"
#include "caption_screen.h"
#include "progress.h"

using nlohmann::ordered_json;

static ordered_json Describe_Picture(CaptionScreen &stScreen, const std::string &strText)
{
    ZyrCaptionBox stBox = {};
    const Picture stPicture = stScreen.Draw_Alone(strText, stBox);
    if (stPicture.aucRgba.empty()) return nullptr;
    return {{"x", stBox.uiX},
            {"y", stBox.uiY},
            {"width", stBox.uiWidth},
            {"height", stBox.uiHeight},
            {"png", Encode_Base64(Encode_Png(stPicture))}};
}

static Outcome Describe_Outputs(const Options &stOptions, const std::vector<std::string> &astrTexts,
                                ordered_json &jsOutputs)
{
    const std::vector<uint32_t> &auiOutputs = stOptions.stPage.auiOutputs;
    size_t uiDone = 0;
    jsOutputs = ordered_json::array();
    for (const uint32_t uiOutput : auiOutputs) {
        ScreenOptions stWanted = stOptions.stScreen;
        stWanted.uiOutput = uiOutput;
        CaptionScreen stScreen;
        Outcome stOpened = stScreen.Open(stWanted);
        if (!stOpened.IsGood()) return stOpened;
        ordered_json jsPictures = ordered_json::array();
        for (const std::string &strText : astrTexts) {
            jsPictures.push_back(Describe_Picture(stScreen, strText));
            Show_Progress(++uiDone, astrTexts.size() * auiOutputs.size());
        }
        jsOutputs.push_back({{"name", Get_Output(uiOutput).pszName},
                             {"width", stScreen.Get_Width()},
                             {"height", stScreen.Get_Height()},
                             {"pictures", std::move(jsPictures)}});
    }
    return {};
}

Outcome Describe_Page(const Options &stOptions, const CaptionFile &stFile, ordered_json &jsPage)
{
    std::vector<std::string> astrTexts;
    jsPage = Describe_File(stOptions, stFile, astrTexts);
    return Describe_Outputs(stOptions, astrTexts, jsPage["outputs"]);
}

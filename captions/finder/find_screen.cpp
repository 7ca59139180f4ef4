// How an output shows the captions: what the font lacks, what is too wide, what is too tall.
#include <algorithm>
#include <string>
#include <vector>

#include "finder.h"
#include "text_decode.h"

namespace
{

constexpr uint32_t POSITION = 16; // pixels below a caption

struct CloseScreen {
    void operator()(ZyrCaptionScreen *pstScreen) const { zyrCaptions_closeScreen(pstScreen); }
};

// An output, and how high a row of text is on it.
struct Screen {
    std::unique_ptr<ZyrCaptionScreen, CloseScreen> pstScreen;
    uint32_t uiHeight; // pixels, as below
    uint32_t uiOne;    // a box of one row
    uint32_t uiStep;   // each further row

    uint32_t Measure(const std::string &strText) const
    {
        ZyrCaptionBox stBox;
        return zyrCaptions_draw(pstScreen.get(), strText.c_str(), nullptr, &stBox) == ZYR_CAPTIONS_OK
                   ? stBox.uiHeight
                   : 0;
    }
};

uint32_t Find_Height(const char *pszOutput)
{
    ZyrCaptionOutput stOutput;
    for (uint32_t ui = 0; zyrCaptions_getOutput(ui, &stOutput) == ZYR_CAPTIONS_OK; ++ui)
        if (std::string_view(stOutput.pszName) == pszOutput) return stOutput.uiHeight;
    return 0;
}

// A place in the caption's own text where a piece of what is shown stands; else the caption's beginning.
void Add_At(Finder &stFinder, FindingRule eRule, uint32_t uiCaption, const std::string &strPiece,
            std::string strSentence)
{
    const size_t uiFirst = stFinder.auiPlaces[uiCaption];
    const size_t uiEnd =
        uiCaption + 1 < stFinder.auiPlaces.size() ? stFinder.auiPlaces[uiCaption + 1] : SIZE_MAX;
    const size_t uiFound = stFinder.stFile.Get_Text().find(strPiece, uiFirst);
    const bool bFound = uiFound != std::string::npos && (uiEnd <= uiFirst || uiFound < uiEnd);
    stFinder.Add(eRule, bFound ? uiFound : uiFirst, bFound ? strPiece.size() : 1, uiCaption,
                 std::move(strSentence));
}

void Find_Glyphs(Finder &stFinder, const Screen &stScreen, uint32_t uiCaption)
{
    const char *const pszText = stFinder.astCaptions[uiCaption].pszText;
    std::vector<uint32_t> auiMissing(zyrCaptions_getMissing(stScreen.pstScreen.get(), pszText, nullptr, 0));
    zyrCaptions_getMissing(stScreen.pstScreen.get(), pszText, auiMissing.data(),
                           static_cast<uint32_t>(auiMissing.size()));
    for (const uint32_t uiCharacter : auiMissing) {
        std::string strOne;
        Append_Character(uiCharacter, strOne);
        Add_At(stFinder, E_RULE_OUT_GLYPH, uiCaption, strOne,
               "the font has no " + Quote(strOne) + ", and a hollow shape is drawn for it");
    }
}

void Find_Rows(Finder &stFinder, const Screen &stScreen, uint32_t uiCaption)
{
    const std::string strText = stFinder.astCaptions[uiCaption].pszText;
    uint32_t uiRows = 0;
    for (size_t uiFirst = 0; uiFirst < strText.size();) {
        const size_t uiEnd = std::min(strText.find('\n', uiFirst), strText.size());
        const std::string strLine = strText.substr(uiFirst, uiEnd - uiFirst);
        const uint32_t uiHigh = std::max(stScreen.Measure(strLine), stScreen.uiOne);
        const uint32_t uiOwn = 1 + (uiHigh - stScreen.uiOne + stScreen.uiStep / 2) / stScreen.uiStep;
        if (uiOwn > 1)
            Add_At(stFinder, E_RULE_OUT_WRAPPED, uiCaption, strLine,
                   Quote(strLine) + " is too wide for " + stFinder.stOptions.pszOutput + " and takes " +
                       Show_Count(uiOwn, "row"));
        uiRows += uiOwn;
        uiFirst = uiEnd + 1;
    }
    const uint32_t uiAll = uiRows == 0 ? 0 : stScreen.uiOne + (uiRows - 1) * stScreen.uiStep;
    if (uiAll + POSITION > stScreen.uiHeight)
        Add_At(stFinder, E_RULE_OUT_TALL, uiCaption, strText.substr(0, strText.find('\n')),
               "the caption takes " + std::to_string(uiAll) + " pixels and " + stFinder.stOptions.pszOutput +
                   " has " + std::to_string(stScreen.uiHeight) + ": not all of its rows are on the display");
}

} // namespace

int Find_OnOutput(Finder &stFinder)
{
    ZyrCaptionScreen *pstOpen = nullptr;
    const int iResult = zyrCaptions_openScreen(stFinder.stOptions.pszOutput, stFinder.stOptions.uiFontSize,
                                               static_cast<int32_t>(POSITION), &pstOpen);
    if (iResult != ZYR_CAPTIONS_OK) return iResult;
    Screen stScreen{{}, Find_Height(stFinder.stOptions.pszOutput), 0, 0};
    stScreen.pstScreen.reset(pstOpen);
    stScreen.uiOne = stScreen.Measure("A");
    stScreen.uiStep = std::max(stScreen.Measure("A\nA"), stScreen.uiOne + 1) - stScreen.uiOne;
    for (uint32_t uiCaption = 0; uiCaption < stFinder.astCaptions.size(); ++uiCaption) {
        Find_Glyphs(stFinder, stScreen, uiCaption);
        Find_Rows(stFinder, stScreen, uiCaption);
    }
    return ZYR_CAPTIONS_OK;
}

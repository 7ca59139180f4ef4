// zyrsub render: a caption, or all of them, as the box would show them.
#include "commands.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>

#include "caption_screen.h"
#include "movie_search.h"
#include "progress.h"
#include "safe_file.h"
#include "text_tools.h"
#include "time_text.h"

static constexpr uint32_t SHEET_COLUMNS = 4;
static constexpr uint32_t CELL_WIDTH = 384; // pixels of a small picture; its height follows the display's
static constexpr uint32_t CELL_GAP = 12;
static constexpr uint32_t LABEL_HEIGHT = 40;
static constexpr uint32_t RULE_HEIGHT = 2;
static constexpr uint32_t SHEET_WIDTH = SHEET_COLUMNS * (CELL_WIDTH + CELL_GAP) + CELL_GAP;
static constexpr uint32_t MAX_SHEET_HEIGHT = 8192; // pixels; what viewers and phones still open

// movie.srt at 1500 ms becomes movie-1500-lcd.png, in the current folder.
static std::string Make_PictureName(const std::string &strMovie, int64_t llMs,
                                    const ZyrCaptionOutput &stOutput)
{
    const size_t uiSlash = strMovie.rfind('/');
    const std::string strName = uiSlash == std::string::npos ? strMovie : strMovie.substr(uiSlash + 1);
    return strName.substr(0, strName.rfind('.')) + "-" + std::to_string(llMs) + "-" + stOutput.pszName +
           ".png";
}

// In the order of their starts; a clear alone is nothing to draw.
static std::vector<ZyrCaption> List_Visible(const CaptionFile &stFile)
{
    std::vector<ZyrCaption> astCaptions;
    for (uint32_t uiIndex = 0; uiIndex < stFile.Count(); ++uiIndex)
        if (stFile.Get_Caption(uiIndex).uiTextBytes > 0) astCaptions.push_back(stFile.Get_Caption(uiIndex));
    std::stable_sort(astCaptions.begin(), astCaptions.end(),
                     [](const ZyrCaption &stA, const ZyrCaption &stB) { return stA.iStart < stB.iStart; });
    return astCaptions;
}

static int64_t Find_FirstCaption(const CaptionFile &stFile)
{
    const std::vector<ZyrCaption> astCaptions = List_Visible(stFile);
    return astCaptions.empty() ? 0 : astCaptions.front().iStart;
}

// A picture that is there already may be worth more than this one.
static Outcome Check_Free(const std::string &strFile, bool bForce)
{
    std::error_code stIgnored;
    if (bForce || strFile == "-" || !std::filesystem::is_regular_file(strFile, stIgnored)) return {};
    return {E_EXIT_SOME_FAILED, strFile + " is there already; --force replaces it"};
}

// The characters that a caption's font does not have, once for the run.
static void Warn_Missing(const CaptionFile &stFile, const CaptionScreen &stScreen,
                         const std::string &strMovie)
{
    std::string strAll;
    for (uint32_t uiIndex = 0; uiIndex < stFile.Count(); ++uiIndex)
        strAll += stFile.Get_Caption(uiIndex).pszText;
    const std::vector<std::string> astrMissing = stScreen.List_Missing(strAll);
    static constexpr size_t SHOWN = 20;
    if (astrMissing.empty()) return;
    const size_t uiShown = std::min(astrMissing.size(), SHOWN);
    Report_Problem(strMovie, "the font lacks " + std::to_string(astrMissing.size()) + " of its characters: " +
                                 Join_Lines(std::span(astrMissing).first(uiShown), " ") +
                                 (uiShown < astrMissing.size() ? " ..." : ""));
}

// For players that lay a picture over their film: marks alone, multiplied by their alpha, as blue, green, red, alpha.
static bool Is_RawName(const std::string &strFile)
{
    return strFile.ends_with(".bgra");
}

static std::string Make_RawBytes(const Picture &stPicture)
{
    std::string strBytes(stPicture.aucRgba.begin(), stPicture.aucRgba.end());
    for (size_t uiPixel = 0; uiPixel < strBytes.size(); uiPixel += 4)
        std::swap(strBytes[uiPixel], strBytes[uiPixel + 2]);
    return strBytes;
}

static Outcome Write_Picture(const RenderOptions &stRender, const std::string &strFile,
                             const std::string &strCaption, CaptionScreen &stScreen)
{
    const bool bRaw = Is_RawName(strFile);
    Picture stPicture = bRaw ? stScreen.Draw_Marks(strCaption) : stScreen.Draw(strCaption);
    if (stRender.uiWidth > 0) stPicture = Scale_Picture(stPicture, stRender.uiWidth, stRender.uiHeight);
    return bRaw ? Write_Safely(strFile, Make_RawBytes(stPicture), stRender.bForce)
                : Write_Png(strFile, stPicture);
}

static Outcome Render_One(const Options &stOptions, const CaptionFile &stFile, CaptionScreen &stScreen)
{
    const RenderOptions &stRender = stOptions.stRender;
    const ZyrCaptionOutput stOutput = Get_Output(stOptions.stScreen.uiOutput);
    const int64_t llMs = stRender.uiAt ? *stRender.uiAt : Find_FirstCaption(stFile);
    const std::string strCaption = Get_TextAt(stFile.Get_List(), llMs);
    const std::string strFile = stRender.strPicture.empty()
                                    ? Make_PictureName(stOptions.astrMovies.front(), llMs, stOutput)
                                    : stRender.strPicture;
    Outcome stWritten = Check_Free(strFile, stRender.bForce);
    if (stWritten.IsGood()) stWritten = Write_Picture(stRender, strFile, strCaption, stScreen);
    if (!stWritten.IsGood() || strFile == "-") return stWritten;
    const std::string strShown =
        strCaption.empty() ? "(no caption)" : Join_Lines(Split_Lines(strCaption), " / ");
    std::printf("%s  %s  %s %ux%u  %s\n", strFile.c_str(), Format_Time(static_cast<int32_t>(llMs)).c_str(),
                stOutput.pszName, stRender.uiWidth > 0 ? stRender.uiWidth : stScreen.Get_Width(),
                stRender.uiWidth > 0 ? stRender.uiHeight : stScreen.Get_Height(),
                Make_Printable(strShown).c_str());
    return {};
}

// What separates the pictures on a sheet.
static Picture Make_Grey(uint32_t uiWidth, uint32_t uiHeight)
{
    static constexpr uint8_t GREY = 0x30;
    Picture stPicture = Make_Picture(uiWidth, uiHeight);
    for (size_t uiByte = 0; uiByte < stPicture.aucRgba.size(); ++uiByte)
        if (uiByte % 4 != 3) stPicture.aucRgba[uiByte] = GREY;
    return stPicture;
}

// One cell: the display made small, and the caption's time below it. One that ends before it begins is never on
// screen, and is drawn all the same.
static Picture Draw_Cell(const CaptionFile &stFile, const ZyrCaption &stCaption, CaptionScreen &stScreen)
{
    const uint32_t uiHeight = CELL_WIDTH * stScreen.Get_Height() / stScreen.Get_Width();
    Picture stCell = Make_Picture(CELL_WIDTH, uiHeight + LABEL_HEIGHT);
    const std::string strText = Get_TextAt(stFile.Get_List(), stCaption.iStart);
    const Picture stShown = stScreen.Draw(strText.empty() ? stCaption.pszText : strText);
    Paste_Picture(stCell, Scale_Picture(stShown, CELL_WIDTH, uiHeight), 0, 0);
    Paste_Picture(stCell, Make_Grey(CELL_WIDTH, RULE_HEIGHT), 0, uiHeight);
    const Picture stLabel = stScreen.Draw_Label(Format_Time(stCaption.iStart));
    const uint32_t uiLabelX = stLabel.uiWidth < CELL_WIDTH ? (CELL_WIDTH - stLabel.uiWidth) / 2 : 0;
    Paste_Picture(stCell, stLabel, uiLabelX,
                  uiHeight + (LABEL_HEIGHT - std::min(LABEL_HEIGHT, stLabel.uiHeight)) / 2);
    return stCell;
}

// One caption for every time at which one starts.
static std::vector<ZyrCaption> List_Moments(const CaptionFile &stFile)
{
    std::vector<ZyrCaption> astCaptions = List_Visible(stFile);
    const auto pfSame = [](const ZyrCaption &stA, const ZyrCaption &stB) { return stA.iStart == stB.iStart; };
    astCaptions.erase(std::unique(astCaptions.begin(), astCaptions.end(), pfSame), astCaptions.end());
    return astCaptions;
}

// sheet.png, sheet-2.png ...
static std::string Make_PageName(const std::string &strSheet, size_t uiPage)
{
    if (uiPage == 0) return strSheet;
    const std::filesystem::path stPath(strSheet);
    const std::string strName =
        stPath.stem().string() + "-" + std::to_string(uiPage + 1) + stPath.extension().string();
    return (stPath.parent_path() / strName).string();
}

// Row by row, so that a long film needs no more memory than a short one.
static Outcome Render_Page(const std::string &strFile, const CaptionFile &stFile,
                           std::span<const ZyrCaption> astCaptions, CaptionScreen &stScreen,
                           const std::function<void()> &pfDone)
{
    const uint32_t uiRowHeight =
        CELL_WIDTH * stScreen.Get_Height() / stScreen.Get_Width() + LABEL_HEIGHT + CELL_GAP;
    const size_t uiRows = (astCaptions.size() + SHEET_COLUMNS - 1) / SHEET_COLUMNS;
    PngWriter stWriter(strFile, SHEET_WIDTH, static_cast<uint32_t>(uiRows) * uiRowHeight + CELL_GAP);
    for (size_t uiFrame = 0; uiFrame < astCaptions.size(); uiFrame += SHEET_COLUMNS) {
        Picture stBand = Make_Grey(SHEET_WIDTH, uiRowHeight);
        for (uint32_t uiColumn = 0; uiColumn < SHEET_COLUMNS && uiFrame + uiColumn < astCaptions.size();
             ++uiColumn) {
            const Picture stCell = Draw_Cell(stFile, astCaptions[uiFrame + uiColumn], stScreen);
            Paste_Picture(stBand, stCell, CELL_GAP + uiColumn * (CELL_WIDTH + CELL_GAP), CELL_GAP);
            pfDone();
        }
        stWriter.Write_Band(stBand);
    }
    stWriter.Write_Band(Make_Grey(SHEET_WIDTH, CELL_GAP));
    return stWriter.Finish();
}

static Outcome Render_Sheet(const Options &stOptions, const CaptionFile &stFile, CaptionScreen &stScreen)
{
    const std::vector<ZyrCaption> astCaptions = List_Moments(stFile);
    if (astCaptions.empty()) return {E_EXIT_SOME_FAILED, "there is no caption to draw"};
    const uint32_t uiRowHeight =
        CELL_WIDTH * stScreen.Get_Height() / stScreen.Get_Width() + LABEL_HEIGHT + CELL_GAP;
    const size_t uiPerPage = size_t{(MAX_SHEET_HEIGHT - CELL_GAP) / uiRowHeight} * SHEET_COLUMNS;
    size_t uiDone = 0;
    for (size_t uiPage = 0; uiDone < astCaptions.size(); ++uiPage) {
        const std::string strFile = Make_PageName(stOptions.stRender.strSheet, uiPage);
        const std::span<const ZyrCaption> astPage = std::span(astCaptions).subspan(uiDone);
        const std::span<const ZyrCaption> astShown = astPage.first(std::min(uiPerPage, astPage.size()));
        Outcome stWritten = Check_Free(strFile, stOptions.stRender.bForce);
        if (stWritten.IsGood())
            stWritten = Render_Page(strFile, stFile, astShown, stScreen,
                                    [&] { Show_Progress(++uiDone, astCaptions.size()); });
        if (!stWritten.IsGood()) return stWritten;
        std::printf("%s  %zu captions  %s\n", strFile.c_str(), astShown.size(),
                    Get_Output(stOptions.stScreen.uiOutput).pszName);
    }
    return {};
}

// A slip of the fingers must not cost a subtitle.
static Outcome Check_Target(const RenderOptions &stRender)
{
    if (Is_SubtitleName(stRender.strPicture) || Is_SubtitleName(stRender.strSheet))
        return {E_EXIT_USAGE, "a picture is not written under a subtitle's name"};
    return {};
}

ExitCode Run_Render(const Options &stOptions)
{
    const std::string &strMovie = stOptions.astrMovies.front();
    CaptionFile stFile;
    Outcome stOutcome = Check_Target(stOptions.stRender);
    if (stOutcome.IsGood()) stOutcome = stFile.Open(strMovie, stOptions.stSource);
    if (stOutcome.IsGood()) {
        CaptionScreen stScreen;
        stOutcome = stScreen.Open(stOptions.stScreen);
        if (stOutcome.IsGood()) Warn_Missing(stFile, stScreen, strMovie);
        if (stOutcome.IsGood())
            stOutcome = stOptions.stRender.strSheet.empty() ? Render_One(stOptions, stFile, stScreen)
                                                            : Render_Sheet(stOptions, stFile, stScreen);
    }
    if (!stOutcome.IsGood()) Report_Problem(strMovie, stOutcome.strText);
    return stOutcome.eCode;
}

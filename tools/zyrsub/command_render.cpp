// zyrsub render: a caption, or all of them, as the box would show them.
#include "commands.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

#include "caption_screen.h"
#include "movie_search.h"
#include "text_tools.h"
#include "time_text.h"

static constexpr uint32_t SHEET_COLUMNS = 4;
static constexpr uint32_t CELL_WIDTH = 384; // pixels of a small picture; its height follows the display's
static constexpr uint32_t CELL_GAP = 12;
static constexpr uint32_t LABEL_HEIGHT = 40;
static constexpr uint32_t RULE_HEIGHT = 2;
static constexpr uint32_t SHEET_WIDTH = SHEET_COLUMNS * (CELL_WIDTH + CELL_GAP) + CELL_GAP;
static constexpr uint32_t MAX_SHEET_ROWS = 2500; // a PNG is at most a million pixels high

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

static Outcome Render_One(const Options &stOptions, const CaptionFile &stFile, CaptionScreen &stScreen)
{
    const ZyrCaptionOutput stOutput = Get_Output(stOptions.stScreen.uiOutput);
    const int64_t llMs = stOptions.stRender.uiAt ? *stOptions.stRender.uiAt : Find_FirstCaption(stFile);
    const std::string strCaption = Get_TextAt(stFile.Get_List(), llMs);
    const std::string strFile = stOptions.stRender.strPicture.empty()
                                    ? Make_PictureName(stOptions.astrMovies.front(), llMs, stOutput)
                                    : stOptions.stRender.strPicture;
    Outcome stWritten = Write_Png(strFile, stScreen.Draw(strCaption));
    if (!stWritten.IsGood()) return stWritten;
    const std::string strShown =
        strCaption.empty() ? "(no caption)" : Join_Lines(Split_Lines(strCaption), " / ");
    std::printf("%s  %s  %s %ux%u  %s\n", strFile.c_str(), Format_Time(static_cast<int32_t>(llMs)).c_str(),
                stOutput.pszName, stScreen.Get_Width(), stScreen.Get_Height(),
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

static void Show_Progress(size_t uiDone, size_t uiAll)
{
    static constexpr size_t BAR = 40;
    if (isatty(STDERR_FILENO) == 0) return;
    const std::string strBar(BAR * uiDone / uiAll, '#');
    std::fprintf(stderr, "\r[%-40s] %zu of %zu%s", strBar.c_str(), uiDone, uiAll,
                 uiDone == uiAll ? "\n" : "");
}

// One caption for every time at which one starts.
static std::vector<ZyrCaption> List_Moments(const CaptionFile &stFile)
{
    std::vector<ZyrCaption> astCaptions = List_Visible(stFile);
    const auto pfSame = [](const ZyrCaption &stA, const ZyrCaption &stB) { return stA.iStart == stB.iStart; };
    astCaptions.erase(std::unique(astCaptions.begin(), astCaptions.end(), pfSame), astCaptions.end());
    return astCaptions;
}

// Row by row, so that a long film needs no more memory than a short one.
static Outcome Render_Sheet(const Options &stOptions, const CaptionFile &stFile, CaptionScreen &stScreen)
{
    const std::vector<ZyrCaption> astCaptions = List_Moments(stFile);
    if (astCaptions.empty()) return {E_EXIT_SOME_FAILED, "there is no caption to draw"};
    const size_t uiRows = (astCaptions.size() + SHEET_COLUMNS - 1) / SHEET_COLUMNS;
    if (uiRows > MAX_SHEET_ROWS) return {E_EXIT_SOME_FAILED, "too many frames for one sheet"};
    const uint32_t uiRowHeight =
        CELL_WIDTH * stScreen.Get_Height() / stScreen.Get_Width() + LABEL_HEIGHT + CELL_GAP;
    PngWriter stWriter(stOptions.stRender.strSheet, SHEET_WIDTH,
                       static_cast<uint32_t>(uiRows) * uiRowHeight + CELL_GAP);
    for (size_t uiFrame = 0; uiFrame < astCaptions.size(); uiFrame += SHEET_COLUMNS) {
        Picture stBand = Make_Grey(SHEET_WIDTH, uiRowHeight);
        for (uint32_t uiColumn = 0; uiColumn < SHEET_COLUMNS && uiFrame + uiColumn < astCaptions.size();
             ++uiColumn) {
            const Picture stCell = Draw_Cell(stFile, astCaptions[uiFrame + uiColumn], stScreen);
            Paste_Picture(stBand, stCell, CELL_GAP + uiColumn * (CELL_WIDTH + CELL_GAP), CELL_GAP);
            Show_Progress(uiFrame + uiColumn + 1, astCaptions.size());
        }
        stWriter.Write_Band(stBand);
    }
    stWriter.Write_Band(Make_Grey(SHEET_WIDTH, CELL_GAP));
    Outcome stWritten = stWriter.Finish();
    if (stWritten.IsGood())
        std::printf("%s  %zu captions  %s\n", stOptions.stRender.strSheet.c_str(), astCaptions.size(),
                    Get_Output(stOptions.stScreen.uiOutput).pszName);
    return stWritten;
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
        if (stOutcome.IsGood())
            stOutcome = stOptions.stRender.strSheet.empty() ? Render_One(stOptions, stFile, stScreen)
                                                            : Render_Sheet(stOptions, stFile, stScreen);
    }
    if (!stOutcome.IsGood()) Report_Problem(strMovie, stOutcome.strText);
    return stOutcome.eCode;
}

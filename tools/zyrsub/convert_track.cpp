#include "convert_track.h"

#include <algorithm>
#include <cmath>

#include "source_text.h"
#include "text_tools.h"
#include "time_text.h"

void Losses::Add_Loss(const std::string &strWhat, Loss stLoss)
{
    if (stLoss.uiTimes == 0) return;
    m_astLosses[strWhat].uiTimes += stLoss.uiTimes;
    m_astLosses[strWhat].bText = stLoss.bText;
}

bool Losses::Has_Text() const
{
    return std::any_of(m_astLosses.begin(), m_astLosses.end(),
                       [](const auto &stEntry) { return stEntry.second.bText; });
}

std::vector<std::string> Losses::List() const
{
    std::vector<std::string> astrLines;
    for (const auto &[strWhat, stLoss] : m_astLosses)
        astrLines.push_back(std::to_string(stLoss.uiTimes) +
                            (stLoss.uiTimes == 1 ? " caption: " : " captions: ") + strWhat);
    return astrLines;
}

// The words that the author wrote and the engine does not deliver, by the reason.
static void Note_Missing(const ZyrCaption &stCaption, const AuthorText &stAuthor, Losses &stLosses)
{
    static constexpr uint32_t LINES_MOST = 6;
    const MissingCharacters stMissing = Find_Missing(stAuthor.strText, stCaption.pszText);
    if (stMissing.uiAstral > 0)
        stLosses.Add_Text("characters beyond U+FFFF, such as emoji, are not read from UTF-8");
    if (stMissing.uiAll == stMissing.uiAstral) return;
    if (stCaption.uiLines >= LINES_MOST)
        stLosses.Add_Text("what stands behind its sixth line is not read");
    else if (stAuthor.bBareSign)
        stLosses.Add_Text("what stands behind a '<' that begins no tag is not read");
    else
        stLosses.Add_Text("a part of its text is not read");
}

// A style is kept where it holds for the whole caption: the list tells only the one that the text ended with.
static Frame Read_Caption(const CaptionFile &stFile, const SourceText &stSource, uint32_t uiIndex,
                          Losses &stLosses)
{
    const ZyrCaption stCaption = stFile.Get_Caption(uiIndex);
    Frame stFrame = stFile.Read_Frame(uiIndex);
    if (!Has_VisibleText(stCaption.pszText)) stFrame.astrLines.clear();
    const AuthorText stAuthor = stSource.Read_Caption(stCaption);
    Note_Missing(stCaption, stAuthor, stLosses);
    if (stCaption.uiBadCharacters > 0)
        stLosses.Add_Text("characters that cannot be read in the encoding are written as U+FFFD");
    const bool bPlain = stFrame.stStyle.uiDisplayMode == 0 && stFrame.stStyle.usColor == WHITE;
    stFrame.bPartStyled = stAuthor.bMixed || (stAuthor.bStyled && bPlain);
    if (stFrame.bPartStyled) stFrame.stStyle = {};
    if (stFrame.bPartStyled) stFrame.stStyle.usColor = WHITE;
    return stFrame;
}

// What a file's bytes speak for is not what it would be read in: nobody wants the result.
static Outcome Check_CodePage(const CaptionFile &stFile, const SourceOptions &stOptions)
{
    ZyrCaptionCodePage stPage;
    if (!stOptions.strCodePage.empty() ||
        zyrCaptions_getCodePage(stFile.Get_List(), 0, &stPage) != ZYR_CAPTIONS_OK || stPage.bInUse != 0)
        return {};
    return {E_EXIT_USAGE, std::string("its text looks like ") + stPage.pszName + ", not " +
                              stFile.Get_File().pszCodePage + "; say which it is (--codepage " +
                              stPage.pszName + ", or --codepage auto)"};
}

Outcome Read_Tracks(const SourceOptions &stOptions, const std::string &strMovie,
                    std::vector<Track> &astTracks)
{
    CaptionFile stFile;
    Outcome stOpened = stFile.Open(strMovie, stOptions);
    if (stOpened.IsGood()) stOpened = Check_CodePage(stFile, stOptions);
    if (stOpened.IsGood() && stFile.Count() == 0)
        stOpened = {E_EXIT_SOME_FAILED, "no captions to convert: " + stFile.Explain_Empty()};
    if (!stOpened.IsGood()) return stOpened;
    const SourceText stSource(stFile);
    const size_t uiFirst = astTracks.size();
    for (const uint32_t uiClass : stFile.List_Classes())
        astTracks.push_back({stFile.Get_ClassName(uiClass), strMovie, {}});
    for (uint32_t uiIndex = 0; uiIndex < stFile.Count(); ++uiIndex) {
        const uint32_t uiOrder = stFile.Get_Class(stFile.Get_Caption(uiIndex).uiClass).uiOrder;
        Track &stTrack = astTracks[uiFirst + uiOrder];
        stTrack.astFrames.push_back(Read_Caption(stFile, stSource, uiIndex, stTrack.stLosses));
    }
    if (astTracks.size() > uiFirst)
        astTracks[uiFirst].stLosses.Add_Text(
            "text is no caption's: its times are not understood, or an empty line "
            "parts it from its caption",
            stSource.Count_Stray());
    return {};
}

void Retime_Track(Track &stTrack, double dScale, int64_t llShift)
{
    std::vector<Frame> astKept;
    for (Frame &stFrame : stTrack.astFrames) {
        const bool bOpen = stFrame.iEnd == OPEN_END;
        const double dStart = std::round(stFrame.iStart * dScale) + static_cast<double>(llShift);
        const double dEnd = std::round(stFrame.iEnd * dScale) + static_cast<double>(llShift);
        const bool bBefore = !bOpen && dStart < 0 && dEnd <= 0;
        if (bBefore || dStart >= OPEN_END || (!bOpen && dEnd >= OPEN_END)) {
            stTrack.stLosses.Add_LeftOut("--shift and --scale move it out of the movie");
            continue;
        }
        if (dStart < 0) stTrack.stLosses.Add("--shift and --scale move its start before 0; it starts at 0");
        stFrame.iStart = static_cast<int32_t>(std::max(dStart, 0.0));
        if (!bOpen) stFrame.iEnd = static_cast<int32_t>(std::max(dEnd, 0.0));
        astKept.push_back(std::move(stFrame));
    }
    stTrack.astFrames = std::move(astKept);
}

#include "format/subviewer/subviewer_usual.h"

#include "format/usual_text.h"
#include "text/digit_pattern.h"

namespace
{

constexpr DigitPattern TIME_LINE("00:00:00.00,00:00:00.00\r\n");
constexpr uint32_t END_PLACE = 12; // of the end time
constexpr uint32_t HEAD_UNITS = DigitPattern::BYTES_MAX;
constexpr uint32_t HUNDREDTH_MS = 10;

uint32_t Read_Time(const uint8_t *pucTime)
{
    return Read_Seconds(pucTime) * 1000 + Read_Pair(pucTime + 9) * HUNDREDTH_MS;
}

/** @return the time line as bytes, in pucHead where the text is none; NULL when it is not the usual one */
inline const uint8_t *Match_Head(const UsualText &stText, uint8_t *pucHead)
{
    const uint8_t *const pucTime = Get_UsualHead(stText, pucHead, HEAD_UNITS);
    return pucTime != nullptr && Match_Pattern<TIME_LINE>(pucTime) ? pucTime : nullptr;
}

/** "[BR]" breaks a line; what cannot become one is text, and so is any bracket that begins a line of the file. */
UsualStep Take_Bracket(UsualText &stText)
{
    static constexpr UsualWord BREAK("[br]", true);
    const bool bFirst = stText.pucByte == stText.pucFileLine;
    if (!bFirst && BREAK.Begins(stText.Get_Eight())) {
        stText.Take_Units(4);
        return Break_UsualLine(stText);
    }
    const uint32_t uiNext = stText.Get_Unit(1);
    if (!bFirst && (uiNext <= ' ' || uiNext == '[' || uiNext == 'B' || uiNext == 'b')) return E_USUAL_ODD;
    stText.Take_Units(1);
    return Put_UsualUnit(stText, '[');
}

UsualStep Take_SubViewerStop(UsualText &stText, uint32_t uiUnit)
{
    switch (uiUnit) {
    case '[': return Take_Bracket(stText);
    case '\t': return stText.pucByte == stText.pucFileLine ? E_USUAL_ODD : Take_UsualTab(stText);
    default: return E_USUAL_ODD;
    }
}

constexpr UsualForm SUBVIEWER_FORM = {{'[', '['}, Take_SubViewerStop, nullptr, true};

} // namespace

bool Take_UsualSubViewer()
{
    uint8_t aucHead[HEAD_UNITS];
    UsualText stText;
    if (!Begin_UsualText(&stText, 0)) return false;
    const uint8_t *const pucTime = Match_Head(stText, aucHead);
    if (pucTime == nullptr) return false;
    stText.Take_Head(TIME_LINE.uiBytes);
    const bool bEmpty = pucTime[TIME_LINE.uiBytes] == '\r'; // an empty line follows: its CR at least
    if (!(bEmpty ? Take_UsualEmptyLine(stText) : Take_UsualText(stText, SUBVIEWER_FORM))) return false;
    Commit_UsualText(stText, SUBVIEWER_FORM);
    Set_FrameTimes(Read_Time(pucTime), Read_Time(pucTime + END_PLACE));
    return true;
}

bool Pass_UsualSubViewer(uint32_t *puiStart)
{
    uint8_t aucHead[HEAD_UNITS];
    UsualText stText;
    const uint8_t *const pucTime = Point_UsualText(&stText) ? Match_Head(stText, aucHead) : nullptr;
    if (pucTime == nullptr) return false;
    *puiStart = Read_Time(pucTime);
    return Pass_UsualText(stText, TIME_LINE.uiBytes, '\n'); // a lone LF ends a line here
}

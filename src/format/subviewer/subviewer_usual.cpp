#include "format/subviewer/subviewer_usual.h"

#include "format/usual_text.h"
#include "text/digit_pattern.h"
#include "text/find_unit.h"

namespace
{

constexpr DigitPattern TIME_LINE("00:00:00.00,00:00:00.00\r\n");
constexpr uint32_t END_PLACE = 12; // of the end time
constexpr uint32_t HEAD_UNITS = DigitPattern::BYTES_MAX;
constexpr uint32_t HUNDREDTH_MS = 10;

struct SubViewerHead {
    uint32_t uiStart; // ms
    uint32_t uiEnd;
    bool bEmpty; // an empty line follows: its CR at least
};

uint32_t Read_Time(const uint8_t *pucTime)
{
    return Read_Seconds(pucTime) * 1000 + Read_Pair(pucTime + 9) * HUNDREDTH_MS;
}

bool Match_Head(SubViewerHead *pstHead)
{
    uint8_t aucHead[HEAD_UNITS];
    const uint8_t *const pucHead = Get_UsualHead(aucHead, HEAD_UNITS);
    if (pucHead == nullptr || !Match_Pattern<TIME_LINE>(pucHead)) return false;
    pstHead->uiStart = Read_Time(pucHead);
    pstHead->uiEnd = Read_Time(pucHead + END_PLACE);
    pstHead->bEmpty = pucHead[TIME_LINE.uiBytes] == '\r';
    return true;
}

/** "[BR]" breaks a line; what cannot become one is text, and so is any bracket that begins a line of the file. */
UsualStep Take_Bracket(UsualText &stText)
{
    const bool bFirst = stText.pucByte == stText.pucFileLine;
    if (!bFirst && Is_UsualAhead(stText, "[br]")) {
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
    SubViewerHead stHead;
    UsualText stText;
    if (!Match_Head(&stHead) || !Begin_UsualText(&stText, TIME_LINE.uiBytes)) return false;
    if (!(stHead.bEmpty ? Take_UsualEmptyLine(stText) : Take_UsualText(stText, SUBVIEWER_FORM))) return false;
    Commit_UsualText(stText, SUBVIEWER_FORM);
    Set_FrameTimes(stHead.uiStart, stHead.uiEnd);
    return true;
}

bool Pass_UsualSubViewer(uint32_t *puiStart)
{
    SubViewerHead stHead;
    if (!s_bUsualReading || !Match_Head(&stHead)) return false;
    const int32_t iBehind = Find_EmptyLine(TIME_LINE.uiBytes - 2, '\n'); // a lone LF ends a line here
    if (iBehind < 0) return false;
    *puiStart = stHead.uiStart;
    Get_StreamInfo().iStreamBufIndex = iBehind;
    return true;
}

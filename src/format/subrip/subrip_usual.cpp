#include "format/subrip/subrip_usual.h"

#include "format/usual_text.h"
#include "markup/caption_text.h"
#include "text/digit_pattern.h"

namespace
{

constexpr DigitPattern TIME_LINE("00:00:00,000 --> 00:00:00,000\r\n");
constexpr uint32_t END_PLACE = 17; // of the end time
constexpr uint32_t DIGITS_MAX = 8; // of an entry's number
constexpr uint32_t HEAD_UNITS = DIGITS_MAX + 2 + DigitPattern::BYTES_MAX + 1;

/** Number line and time line. */
struct SubRipHead {
    uint8_t aucUnits[HEAD_UNITS];
    const uint8_t *pucTime; // the time line, in bytes
    uint32_t uiUnits;       // of both

    /** @return whether an empty line follows: its CR at least. */
    bool Is_Empty() const { return pucTime[TIME_LINE.uiBytes] == '\r'; }
};

uint32_t Read_Time(const uint8_t *pucTime)
{
    return Read_Seconds(pucTime) * 1000 + Read_Pair(pucTime + 9) * 10 + pucTime[11] - '0';
}

inline bool Match_Head(const UsualText &stText, SubRipHead *pstHead)
{
    const uint8_t *const pucHead = Get_UsualHead(stText, pstHead->aucUnits, HEAD_UNITS);
    if (pucHead == nullptr) return false;
    const uint32_t uiPos = Count_Digits(pucHead);
    pstHead->pucTime = pucHead + uiPos + 2;
    pstHead->uiUnits = uiPos + 2 + TIME_LINE.uiBytes;
    return uiPos > 0 && pucHead[uiPos] == '\r' && pucHead[uiPos + 1] == '\n' &&
           Match_Pattern<TIME_LINE>(pstHead->pucTime);
}

UsualStep Take_SubRipStop(UsualText &stText, uint32_t uiUnit)
{
    switch (uiUnit) {
    case '<': return Take_UsualHtmlTag(stText);
    case '&': return Take_UsualEntity(stText);
    case '\t': return Take_UsualTab(stText);
    default: return E_USUAL_ODD;
    }
}

void Apply_SubRipTag(uint32_t /*uiUnits*/)
{
    Apply_HtmlTag("FrameParser_SubRip");
}

constexpr UsualForm SUBRIP_FORM = {{'<', '&'}, Take_SubRipStop, Apply_SubRipTag, true};

} // namespace

bool Take_UsualSubRip()
{
    SubRipHead stHead;
    UsualText stText;
    if (!Begin_UsualText(&stText, 0) || !Match_Head(stText, &stHead)) return false;
    stText.Take_Head(stHead.uiUnits);
    if (!(stHead.Is_Empty() ? Take_UsualEmptyLine(stText) : Take_UsualText(stText, SUBRIP_FORM)))
        return false;
    Commit_UsualText(stText, SUBRIP_FORM);
    Set_FrameTimes(Read_Time(stHead.pucTime), Read_Time(stHead.pucTime + END_PLACE));
    return true;
}

bool Pass_UsualSubRip(uint32_t *puiStart)
{
    SubRipHead stHead;
    UsualText stText;
    if (!Point_UsualText(&stText) || !Match_Head(stText, &stHead)) return false;
    *puiStart = Read_Time(stHead.pucTime);
    return Pass_UsualText(stText, stHead.uiUnits, '\r');
}

#include "format/sami/sami_usual.h"

#include <algorithm>
#include <cstring>

#include "format/sami/sami_index.h"
#include "markup/caption_text.h"
#include "markup/html_tag.h"
#include "text/char_reader.h"
#include "text/digit_pattern.h"
#include "text/find_unit.h"
#include "text/text_helpers.h"

namespace
{

constexpr uint32_t HEAD_UNITS = sizeof(SamiTagFinder::aucNarrow); // more than two usual tags have
constexpr uint32_t DIGITS_MAX = 8;                                // of a time

/** A text in upper case of up to 16 bytes, and the bits of them that count: of a letter all but the case. */
struct CaselessText {
    uint32_t uiUnits;
    uint64_t aullText[2];
    uint64_t aullBits[2];

    template <uint32_t BYTES>
    consteval explicit CaselessText(const char (&szText)[BYTES]) : uiUnits(BYTES - 1), aullText(), aullBits()
    {
        static_assert(BYTES - 1 <= 16);
        for (uint32_t uiPos = 0; uiPos < BYTES - 1; ++uiPos) {
            const uint64_t ullByte = static_cast<uint8_t>(szText[uiPos]);
            const bool bLetter = ullByte - 'A' < 26;
            aullText[uiPos / 8] |= ullByte << uiPos % 8 * 8;
            aullBits[uiPos / 8] |= uint64_t{bLetter ? 0xDFu : 0xFFu} << uiPos % 8 * 8;
        }
    }
};

constexpr CaselessText SYNC_START("<SYNC START=");
constexpr CaselessText PARAGRAPH_CLASS("<P CLASS=");

static_assert(12 + DIGITS_MAX + 1 + 2 + 9 + 16 <= HEAD_UNITS);

/** @return whether sixteen bytes begin with a text. */
inline bool Begins_With(const uint8_t *pucBytes, const CaselessText &stText)
{
    uint64_t aullBytes[2];
    std::memcpy(aullBytes, pucBytes, sizeof(aullBytes));
    return (((aullBytes[0] ^ stText.aullText[0]) & stText.aullBits[0]) |
            ((aullBytes[1] ^ stText.aullText[1]) & stText.aullBits[1])) == 0;
}

inline bool Begins_With(const uint8_t *pucBytes, const SamiClassForm &stForm)
{
    uint64_t aullBytes[2];
    std::memcpy(aullBytes, pucBytes, sizeof(aullBytes));
    return (((aullBytes[0] | stForm.aullAny[0]) ^ stForm.aullText[0]) |
            ((aullBytes[1] | stForm.aullAny[1]) ^ stForm.aullText[1])) == 0;
}

bool Is_LetterByte(uint32_t uiByte)
{
    return To_Upper(uiByte) - 'A' < 26;
}

/** @return whether a tag says nothing to the header's scan, and leads no frame to or from its text. */
bool Is_OtherTag(const uint8_t *pucTag)
{
    // From 0x80 on a byte may be one that is dropped, and the name be any.
    switch (To_Upper(pucTag[1])) {
    case 'S': return Is_LetterByte(pucTag[2]) && To_Upper(pucTag[2]) != 'Y';
    case 'P': return Is_LetterByte(pucTag[2]);
    case '/': break;
    default: return pucTag[1] < 0x80;
    }
    switch (To_Upper(pucTag[2])) {
    case 'B': return pucTag[3] < 0x80 && To_Upper(pucTag[3]) != 'O';
    case 'S': return pucTag[3] < 0x80 && To_Upper(pucTag[3]) != 'A';
    default: return pucTag[2] < 0x80;
    }
}

/** Match "1000>". @return its units, or 0 */
inline uint32_t Match_Start(const uint8_t *pucDigits, uint32_t *puiStart)
{
    const uint32_t uiDigits = Count_Digits(pucDigits);
    if (uiDigits == 0 || pucDigits[uiDigits] != '>') return 0;
    *puiStart = Read_Number(pucDigits, uiDigits);
    return uiDigits + 1;
}

/** Match "KRCC>". @return its units, or 0 */
[[gnu::noinline]] uint32_t Match_NewName(const uint8_t *pucName, SamiTag *pstTag)
{
    uint32_t uiUnits = 0;
    for (; uiUnits < ZYR_CLASS_NAME_UNITS; ++uiUnits) {
        const uint32_t uiUnit = To_Upper(pucName[uiUnits]);
        if (!Is_Digit(uiUnit) && uiUnit - 'A' >= 26) break;
        pstTag->ausName[uiUnits] = static_cast<uint16_t>(uiUnit);
    }
    pstTag->uiNameUnits = uiUnits;
    return uiUnits > 0 && pucName[uiUnits] == '>' ? uiUnits + 1 : 0;
}

/** The same of a name that has been seen. */
inline uint32_t Match_SeenName(const SamiTagFinder &stFinder, SamiTag *pstTag)
{
    const SamiClassForms &stForms = *stFinder.pstForms;
    for (uint32_t uiClass = 0; uiClass < stForms.uiNums; ++uiClass) {
        const SamiClassForm &stForm = stForms.astForm[uiClass];
        if (!Begins_With(pstTag->pucName, stForm)) continue;
        pstTag->uiClass = uiClass;
        return stForm.uiUnits;
    }
    return 0;
}

/** @return whether two bytes are CR LF. */
inline bool Is_CrLf(const uint8_t *pucBytes)
{
    uint16_t usBytes;
    std::memcpy(&usBytes, pucBytes, sizeof(usBytes));
    return usBytes == ('\n' << 8 | '\r');
}

/** @return the place behind a line end, if there is one. */
inline uint32_t Pass_LineEnd(const uint8_t *pucTag, uint32_t uiUnit)
{
    return Is_CrLf(pucTag + uiUnit) ? uiUnit + 2 : uiUnit;
}

/** Match a P tag and the line end behind it. @return its units, or 0 */
inline uint32_t Match_Paragraph(const SamiTagFinder &stFinder, const uint8_t *pucTag, SamiTag *pstTag)
{
    if (!Begins_With(pucTag, PARAGRAPH_CLASS)) return 0;
    pstTag->pucName = pucTag + PARAGRAPH_CLASS.uiUnits;
    uint32_t uiName = Match_SeenName(stFinder, pstTag);
    if (uiName == 0) uiName = Match_NewName(pstTag->pucName, pstTag);
    if (uiName == 0) return 0;
    return Pass_LineEnd(pucTag, PARAGRAPH_CLASS.uiUnits + uiName);
}

/** @return the units of a usual tag, or 0 */
inline uint32_t Match_Tag(const SamiTagFinder &stFinder, const uint8_t *pucTag, SamiTag *pstTag)
{
    pstTag->bSync = Begins_With(pucTag, SYNC_START);
    pstTag->bParagraph = true;
    pstTag->uiClass = ZYR_CLASS_MAX;
    if (!pstTag->bSync) return Match_Paragraph(stFinder, pucTag, pstTag);
    const uint32_t uiStart = Match_Start(pucTag + SYNC_START.uiUnits, &pstTag->uiStart);
    if (uiStart == 0) return 0;
    const uint32_t uiSync = SYNC_START.uiUnits + uiStart;
    const uint32_t uiBehind = Pass_LineEnd(pucTag, uiSync);
    const uint32_t uiParagraph = Match_Paragraph(stFinder, pucTag + uiBehind, pstTag);
    pstTag->bParagraph = uiParagraph > 0;
    return pstTag->bParagraph ? uiBehind + uiParagraph : uiSync;
}

/** @return bytes of a line end right before a tag that has been found. */
inline uint32_t Get_LineEndBefore(const UsualText &stText, const uint8_t *pucFrom)
{
    const uint32_t uiBytes = 2 * stText.uiUnitBytes;
    const uint8_t *const pucEnd = stText.pucByte - uiBytes;
    if (pucEnd < pucFrom) return 0;
    if (uiBytes == 2) return Is_CrLf(pucEnd) ? 2 : 0;
    return stText.Get_UnitAt(pucEnd) == '\r' && stText.Get_UnitAt(pucEnd + 2) == '\n' ? 4 : 0;
}

// ---- Text ----

UsualStep Take_SamiStop(UsualText &stText, uint32_t uiUnit)
{
    if (stText.pucByte >= stText.Get_TextEnd())
        return stText.pucByte == stText.Get_TextEnd() ? E_USUAL_END : E_USUAL_ODD;
    switch (uiUnit) {
    case '<': return Take_UsualHtmlTag(stText);
    case '&': return Take_UsualEntity(stText);
    case '\t': return Take_UsualTab(stText);
    case '\r':
    case '\n': // line ends of the file are none of the caption
        stText.Take_Units(1);
        stText.bPrevBlank = stText.Is_LineEmpty();
        return E_USUAL_ON;
    default: return E_USUAL_ODD;
    }
}

void Apply_SamiTag(uint32_t /*uiUnits*/)
{
    Apply_HtmlTag("FrameParser_SAMI");
}

/** Half of the captions only take the one before away. @return whether this one does */
inline bool Take_ClearingText(UsualText &stText)
{
    const uint8_t *const pucBehind = stText.pucByte + size_t{NO_BREAK_SPACE_UNITS} * stText.uiUnitBytes;
    if (pucBehind != stText.Get_TextEnd() || !NO_BREAK_SPACE.Begins(stText.Get_Eight())) return false;
    stText.pucByte = pucBehind;
    return true;
}

constexpr UsualForm SAMI_FORM = {{'<', '&'}, Take_SamiStop, Apply_SamiTag};

} // namespace

bool Begin_SamiTags(SamiTagFinder *pstFinder, const SamiClassForms *pstForms)
{
    UsualText &stText = pstFinder->stText;
    if (!Point_UsualText(&stText)) return false;
    const auto iHeadBytes = static_cast<ptrdiff_t>(HEAD_UNITS * stText.uiUnitBytes);
    stText.pucEnd = Look_Ahead().pucEnd;
    if (stText.pucEnd - stText.pucByte < iHeadBytes) return false;
    pstFinder->pucLast = stText.pucEnd - iHeadBytes;
    pstFinder->pstForms = pstForms;
    return true;
}

bool Find_SamiTag(SamiTagFinder &stFinder, SamiTag *pstTag)
{
    UsualText &stText = stFinder.stText;
    const uint8_t *const pucFrom = stText.pucByte;
    uint32_t uiUnits = 0;
    pstTag->bOthersBefore = false;
    for (;;) {
        const uint8_t *const pucFound = Find_TagOpen(stText.eKind, stText.pucByte, stText.pucEnd);
        if (pucFound == nullptr || !Is_CountedAlone(stText.eKind, stText.pucByte, pucFound)) break;
        stText.pucByte = pucFound;
        if (pucFound > stFinder.pucLast) break;
        const uint8_t *const pucTag =
            stText.uiUnitBytes == 1 ? pucFound : Get_UsualHead(stText, stFinder.aucNarrow, HEAD_UNITS);
        uiUnits = Match_Tag(stFinder, pucTag, pstTag);
        if (uiUnits > 0 || !Is_OtherTag(pucTag)) break;
        pstTag->bOthersBefore = true;
        stText.Take_Units(1);
    }
    pstTag->pucTag = stText.pucByte;
    pstTag->uiLineEndBytes = Get_LineEndBefore(stText, pucFrom);
    stText.Take_Units(uiUnits);
    pstTag->pucBehind = stText.pucByte;
    return uiUnits > 0;
}

void Note_ClassForm(const SamiTag &stTag, uint32_t uiClass, SamiClassForms *pstForms)
{
    SamiClassForm &stForm = pstForms->astForm[uiClass];
    pstForms->uiNums = std::max(pstForms->uiNums, uiClass + 1);
    stForm.uiUnits = stTag.uiNameUnits + 1;
    uint8_t aucAny[16];
    uint8_t aucName[16];
    for (uint32_t uiByte = 0; uiByte < 16; ++uiByte) {
        aucAny[uiByte] = uiByte < stForm.uiUnits ? 0 : 0xFF;
        aucName[uiByte] = aucAny[uiByte] | stTag.pucName[uiByte];
    }
    std::memcpy(stForm.aullText, aucName, sizeof(aucName));
    std::memcpy(stForm.aullAny, aucAny, sizeof(aucAny));
}

bool Take_UsualSami(const SamiFrameInfo &stEntry)
{
    UsualText stText;
    if (stEntry.usTextEnd == 0 || !Is_IndexedOption() || !Begin_UsualText(&stText, 0)) return false;
    const uint8_t *const pucEnd = stText.pucByte + stEntry.usTextEnd + USUAL_AHEAD;
    if (stText.pucEnd < pucEnd) return false;
    stText.pucEnd = pucEnd;
    stText.pucByte += stEntry.usTextBytes;
    if (!Take_ClearingText(stText) && !Take_UsualText(stText, SAMI_FORM)) return false;
    Commit_UsualText(stText, SAMI_FORM);
    return true;
}

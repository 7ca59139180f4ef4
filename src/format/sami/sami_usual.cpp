#include "format/sami/sami_usual.h"

#include <cstring>

#include "format/sami/sami_index.h"
#include "markup/caption_text.h"
#include "markup/html_tag.h"
#include "text/find_unit.h"
#include "text/text_helpers.h"

namespace
{

constexpr uint32_t TAG_UNITS = 32; // more than a usual tag has
constexpr uint32_t DIGITS_MAX = 9; // of a time: no overflow

/** A text in upper case of up to 16 units, and the bits of its bytes that count: of a letter all but the case. */
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

/** The units at a place of the read buffer. */
struct TagUnits {
    const uint8_t *pucByte;
    uint32_t uiUnitBytes;
    uint32_t uiLow; // byte of a unit that holds its low half

    uint32_t operator[](uint32_t uiPos) const
    {
        if (uiUnitBytes == 1) return pucByte[uiPos];
        return pucByte[2 * uiPos + uiLow] | static_cast<uint32_t>(pucByte[2 * uiPos + 1 - uiLow]) << 8;
    }
    bool Begin_With(const CaselessText &stText) const
    {
        if (uiUnitBytes == 1) {
            uint64_t aullBytes[2];
            std::memcpy(aullBytes, pucByte, sizeof(aullBytes));
            return ((aullBytes[0] ^ stText.aullText[0]) & stText.aullBits[0]) == 0 &&
                   ((aullBytes[1] ^ stText.aullText[1]) & stText.aullBits[1]) == 0;
        }
        for (uint32_t uiPos = 0; uiPos < stText.uiUnits; ++uiPos)
            if (To_Upper((*this)[uiPos]) != (stText.aullText[uiPos / 8] >> uiPos % 8 * 8 & 0xFF))
                return false;
        return true;
    }
};

TagUnits Get_TagUnits(const uint8_t *pucByte)
{
    return {pucByte, Get_UnitBytes(), s_uiTextEncoding == E_TEXT_ENCODING_UTF16BE ? 1u : 0u};
}

/** @return units of "<SYNC Start=1000>", or 0 */
uint32_t Match_SyncTag(const TagUnits &stUnits, SamiTag *pstTag)
{
    if (!stUnits.Begin_With(SYNC_START)) return 0;
    uint32_t uiPos = SYNC_START.uiUnits;
    pstTag->uiStart = 0;
    for (; uiPos < SYNC_START.uiUnits + DIGITS_MAX && Is_Digit(stUnits[uiPos]); ++uiPos)
        pstTag->uiStart = pstTag->uiStart * 10 + (stUnits[uiPos] - '0');
    return uiPos > SYNC_START.uiUnits && stUnits[uiPos] == '>' ? uiPos + 1 : 0;
}

/** @return units of "<P Class=KRCC>", or 0 */
uint32_t Match_ParagraphTag(const TagUnits &stUnits, SamiTag *pstTag)
{
    if (!stUnits.Begin_With(PARAGRAPH_CLASS)) return 0;
    uint32_t uiNums = 0;
    for (; uiNums < ZYR_CLASS_NAME_UNITS; ++uiNums) {
        const uint32_t uiUnit = To_Upper(stUnits[PARAGRAPH_CLASS.uiUnits + uiNums]);
        if (!Is_Digit(uiUnit) && uiUnit - 'A' >= 26) break;
        pstTag->ausName[uiNums] = static_cast<uint16_t>(uiUnit);
    }
    pstTag->uiNameUnits = uiNums;
    return uiNums > 0 && stUnits[PARAGRAPH_CLASS.uiUnits + uiNums] == '>'
               ? PARAGRAPH_CLASS.uiUnits + uiNums + 1
               : 0;
}

/** @return whether a tag says nothing to the header's scan. */
bool Is_OtherTag(const TagUnits &stUnits)
{
    // From 0x80 on a byte may be one that is dropped, and the name be any.
    const uint32_t uiFirst = To_Upper(stUnits[1]);
    if (uiFirst != '/') return uiFirst != 'S' && uiFirst != 'P' && uiFirst < 0x80;
    const uint32_t uiSecond = To_Upper(stUnits[2]);
    return uiSecond != 'B' && uiSecond != 'S' && uiSecond < 0x80;
}

bool Match_Tag(const TagUnits &stUnits, SamiTag *pstTag)
{
    uint32_t uiUnits = 1;
    if (stUnits[0] != '<') return false;
    if (Is_OtherTag(stUnits))
        pstTag->eKind = E_SAMI_TAG_OTHER;
    else if (uiUnits = Match_SyncTag(stUnits, pstTag); uiUnits > 0)
        pstTag->eKind = E_SAMI_TAG_SYNC;
    else if (uiUnits = Match_ParagraphTag(stUnits, pstTag); uiUnits > 0)
        pstTag->eKind = E_SAMI_TAG_P;
    else
        return false;
    pstTag->uiBytes = uiUnits * stUnits.uiUnitBytes;
    return true;
}

// ---- Text ----

bool Is_OwnClass(uint32_t uiClass)
{
    return uiClass == pstQuibCaptionParserInfo->uiCurrClass;
}

/** Take the P tag at the next byte. @return its class, or ZYR_CLASS_MAX when it is not usual */
uint32_t Take_Paragraph(UsualText &stText)
{
    SamiTag stTag;
    const bool bHeld = stText.pucEnd - stText.pucByte >= static_cast<int32_t>(TAG_UNITS * stText.uiUnitBytes);
    if (!bHeld || !Match_Tag(Get_TagUnits(stText.pucByte), &stTag) || stTag.eKind != E_SAMI_TAG_P)
        return ZYR_CLASS_MAX;
    stText.pucByte += stTag.uiBytes;
    return Find_NamedClass(stTag.ausName, stTag.uiNameUnits);
}

bool Is_ParagraphAhead(const UsualText &stText)
{
    return Is_UsualAhead(stText, "<p") && Is_TagSpace(stText.Get_Unit(2));
}

/** @return whether no byte that may be dropped stands in the tag's name, or ends it. */
bool Is_NameSure(const UsualText &stText)
{
    uint32_t uiUnit = 1;
    while (uiUnit < USUAL_AHEAD / 4 && To_Upper(stText.Get_Unit(uiUnit)) - 'A' < 26) ++uiUnit;
    return stText.Get_Unit(uiUnit) < 0x80;
}

/**
 * Pass over paragraphs of other classes, to behind a P tag of the frame's own or to before a SYNC tag.
 *
 * @return E_USUAL_ON or E_USUAL_END; E_USUAL_ODD when neither is there or something else is not usual
 */
UsualStep Pass_Paragraphs(UsualText &stText)
{
    for (;;) {
        const uint8_t *const pucFound = Find_Unit(stText.eKind, stText.pucByte, stText.pucEnd, '<', '<');
        if (pucFound == nullptr) return E_USUAL_ODD;
        stText.pucByte = pucFound;
        if (Is_UsualAhead(stText, "<sync")) return E_USUAL_END;
        if (!Is_NameSure(stText) || Is_UsualAhead(stText, "</body>") || Is_UsualAhead(stText, "</sami>"))
            return E_USUAL_ODD;
        if (!Is_ParagraphAhead(stText)) {
            stText.Take_Units(1);
            continue;
        }
        const uint32_t uiClass = Take_Paragraph(stText);
        if (uiClass == ZYR_CLASS_MAX) return E_USUAL_ODD;
        if (Is_OwnClass(uiClass)) return E_USUAL_ON;
    }
}

UsualStep Take_TextTag(UsualText &stText)
{
    if (Is_UsualAhead(stText, "<sync")) return E_USUAL_END;
    if (!Is_ParagraphAhead(stText)) return Take_UsualHtmlTag(stText);
    stText.bPrevBlank = false;
    const uint32_t uiClass = Take_Paragraph(stText);
    if (uiClass == ZYR_CLASS_MAX) return E_USUAL_ODD;
    return Is_OwnClass(uiClass) ? E_USUAL_ON : Pass_Paragraphs(stText);
}

/** Line ends of the file are none of the caption. */
UsualStep Pass_LineEnds(UsualText &stText)
{
    while (stText.pucEnd - stText.pucByte >= USUAL_AHEAD && Is_LineEnd(stText.Get_Unit(0)))
        stText.Take_Units(1);
    stText.bPrevBlank = false;
    return E_USUAL_ON;
}

UsualStep Take_SamiStop(UsualText &stText, uint32_t uiUnit)
{
    switch (uiUnit) {
    case '<': return Take_TextTag(stText);
    case '&': return Take_UsualEntity(stText);
    case '\t': return Take_UsualTab(stText);
    case '\r':
    case '\n': return Pass_LineEnds(stText);
    default: return E_USUAL_ODD;
    }
}

void Apply_SamiTag(uint32_t /*uiUnits*/)
{
    Apply_HtmlTag("FrameParser_SAMI");
}

constexpr UsualForm SAMI_FORM = {{'<', '&'}, Take_SamiStop, Apply_SamiTag};

/** Take the SYNC tag and the P tags before the text. @return whether they lead to the text of the frame's class */
bool Take_Head(UsualText &stText)
{
    SamiTag stTag;
    const bool bHeld = stText.pucEnd - stText.pucByte >= static_cast<int32_t>(TAG_UNITS * stText.uiUnitBytes);
    if (!bHeld || !Match_Tag(Get_TagUnits(stText.pucByte), &stTag) || stTag.eKind != E_SAMI_TAG_SYNC)
        return false;
    const uint8_t *const pucFound =
        Find_Unit(stText.eKind, stText.pucByte + stTag.uiBytes, stText.pucEnd, '<', '<');
    if (pucFound == nullptr) return false;
    stText.pucByte = pucFound;
    const uint32_t uiClass = Is_ParagraphAhead(stText) ? Take_Paragraph(stText) : uint32_t{ZYR_CLASS_MAX};
    if (uiClass == ZYR_CLASS_MAX) return false;
    return Is_OwnClass(uiClass) || Pass_Paragraphs(stText) == E_USUAL_ON;
}

} // namespace

bool Match_SamiTag(SamiTag *pstTag)
{
    const CaptionStreamInfo &stStream = Get_StreamInfo();
    if (Get_HeldBytes(stStream) < static_cast<int32_t>(TAG_UNITS * Get_UnitBytes())) return false;
    return Match_Tag(Get_TagUnits(stStream.pucStreamBuf + stStream.iStreamBufIndex), pstTag);
}

bool Take_UsualSami(const SamiFrameInfo &stEntry)
{
    UsualText stText;
    if (!Begin_UsualText(&stText, 0)) return false;
    const bool bKnown = stEntry.uiTextBytes != 0 && Is_IndexedOption() &&
                        stText.pucEnd - stText.pucByte >= static_cast<int64_t>(stEntry.uiTextBytes);
    if (bKnown)
        stText.pucByte += stEntry.uiTextBytes;
    else if (!Take_Head(stText))
        return false;
    if (!Take_UsualText(stText, SAMI_FORM)) return false;
    Commit_UsualText(stText, SAMI_FORM);
    return true;
}

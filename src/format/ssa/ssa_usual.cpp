#include "format/ssa/ssa_usual.h"

#include <cstring>

#include "format/ssa/ssa_fields.h"
#include "format/ssa/ssa_override.h"
#include "format/usual_text.h"
#include "text/char_reader.h"
#include "text/digit_pattern.h"
#include "text/find_unit.h"
#include "text/text_helpers.h"

namespace
{

// A line up to its first time, by the two forms of its first field.
constexpr DigitPattern MARKED_HEAD("Dialogue: Marked=0,0:00:00.00,");
constexpr DigitPattern LAYER_HEAD("Dialogue: 0,0:00:00.00,");
constexpr DigitPattern TIME("0:00:00.00,");
constexpr uint32_t MARK_AHEAD = 2; // places from the digit of the first field to the time
constexpr uint32_t FIELD_UNITS_MAX = 60;

/** A line up to its times. */
struct DialogueHead {
    uint32_t uiUnits;
    uint32_t uiMarked;
    uint32_t uiStart; // ms
    uint32_t uiEnd;   // only where the frame is wanted
};

/** @return ms of the time at a place of a pattern. */
uint32_t Get_Time(const PatternDigits &stDigits, uint32_t uiPlace)
{
    const uint32_t uiMinutes = stDigits.aucDigit[uiPlace] * 60u + stDigits.Get_Pair(uiPlace + 2);
    const uint32_t uiSeconds = uiMinutes * 60 + stDigits.Get_Pair(uiPlace + 5);
    return uiSeconds * 1000 + stDigits.Get_Pair(uiPlace + 8) * 10;
}

/** Look at BYTES_MAX bytes. */
bool Match_Head(const uint8_t *pucHead, DialogueHead *pstHead)
{
    PatternDigits stDigits;
    pstHead->uiUnits = MARKED_HEAD.uiBytes;
    if (!Match_Pattern<MARKED_HEAD>(pucHead, &stDigits)) {
        pstHead->uiUnits = LAYER_HEAD.uiBytes;
        if (!Match_Pattern<LAYER_HEAD>(pucHead, &stDigits)) return false;
    }
    const uint32_t uiPlace = pstHead->uiUnits - TIME.uiBytes;
    pstHead->uiMarked = stDigits.aucDigit[uiPlace - MARK_AHEAD];
    pstHead->uiStart = Get_Time(stDigits, uiPlace);
    return pstHead->uiStart != 0;
}

/** Take the line up to its end time. */
bool Take_Head(UsualText &stText, DialogueHead &stHead)
{
    constexpr uint32_t HEAD_UNITS = MARKED_HEAD.uiBytes + DigitPattern::BYTES_MAX;
    uint8_t aucHead[HEAD_UNITS];
    const uint8_t *const pucHead = Get_UsualHead(aucHead, HEAD_UNITS);
    PatternDigits stDigits;
    if (pucHead == nullptr || !Match_Head(pucHead, &stHead) ||
        !Match_Pattern<TIME>(pucHead + stHead.uiUnits, &stDigits))
        return false;
    stHead.uiEnd = Get_Time(stDigits, 0);
    stText.Take_Units(stHead.uiUnits + TIME.uiBytes);
    return stHead.uiEnd != 0;
}

/** Bring a field into the tag buffer. @return whether it is as usual */
bool Take_Field(UsualText &stText, bool bAscii)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    stTag.uiTagLength = 0;
    while (stTag.uiTagLength < FIELD_UNITS_MAX && stText.pucEnd - stText.pucByte >= USUAL_AHEAD) {
        uint16_t usUnit = static_cast<uint16_t>(stText.Get_Unit(0));
        if (usUnit < 0x80)
            stText.Take_Units(1);
        else if (bAscii || !Take_UsualUnit(stText, &usUnit))
            return false;
        if (usUnit == ',') return true;
        if (usUnit < ' ') return false;
        if (usUnit != ' ') stTag.ausTagBuf[stTag.uiTagLength++] = usUnit;
    }
    return false;
}

/** The fields from the style to the effect as bytes, and as they were taken: a file has few different ones. */
struct KnownFields {
    static constexpr uint32_t BYTES_MAX = 128;
    uint32_t uiBytes; // 0 = none
    uint8_t aucBytes[BYTES_MAX];
    SSAFrameInfo stFrame;
};

constexpr uint32_t KNOWN_BITS = 3;
KnownFields s_astKnownFields[1u << KNOWN_BITS] = {};

/** @return the place where fields that begin with these 16 bytes are kept. */
KnownFields &Get_KnownPlace(const uint8_t *pucFields)
{
    constexpr uint64_t SPREAD = 0x9E3779B97F4A7C15u;
    uint64_t aullBegin[2];
    std::memcpy(aullBegin, pucFields, sizeof(aullBegin));
    return s_astKnownFields[(aullBegin[0] + aullBegin[1] * 3) * SPREAD >> (64 - KNOWN_BITS)];
}

/** Take the fields behind the times. @return them; NULL where they are not as usual */
SSAFrameInfo *Take_Fields(UsualText &stText)
{
    const uint8_t *const pucFrom = stText.pucByte;
    if (stText.pucEnd - pucFrom < USUAL_AHEAD) return nullptr;
    KnownFields &stKnown = Get_KnownPlace(pucFrom);
    if (stKnown.uiBytes != 0 && stText.pucEnd - pucFrom >= static_cast<int32_t>(stKnown.uiBytes) &&
        std::memcmp(pucFrom, stKnown.aucBytes, stKnown.uiBytes) == 0) {
        stText.pucByte += stKnown.uiBytes;
        return &stKnown.stFrame;
    }
    stKnown = {};
    for (uint32_t eField = E_SSA_FIELD_STYLE; eField < E_SSA_FIELDS; ++eField) {
        if (!Take_Field(stText, eField == E_SSA_FIELD_EFFECT))
            return nullptr; // the log tells others than ASCII
        Finish_SSAField(eField, stKnown.stFrame);
    }
    const size_t uiBytes = static_cast<size_t>(stText.pucByte - pucFrom);
    if (uiBytes <= KnownFields::BYTES_MAX) {
        std::memcpy(stKnown.aucBytes, pucFrom, uiBytes);
        stKnown.uiBytes = static_cast<uint32_t>(uiBytes);
    }
    return &stKnown.stFrame;
}

/** A line break; of any other escape the backslash stays and the unit behind it goes. */
UsualStep Take_Escape(UsualText &stText)
{
    const uint32_t uiUnit = stText.Get_Unit(1);
    if (uiUnit >= 0x80) return E_USUAL_ODD; // may be more than a byte
    stText.Take_Units(2);
    return To_Upper(uiUnit) == 'N' ? Break_UsualLine(stText) : Put_UsualUnit(stText, '\\');
}

UsualStep Take_LineEnd(UsualText &stText)
{
    if (stText.Get_Unit(1) != '\n') return E_USUAL_ODD;
    stText.Take_Units(2);
    return E_USUAL_END;
}

UsualStep Take_DialogueStop(UsualText &stText, uint32_t uiUnit)
{
    switch (uiUnit) {
    case '\r': return Take_LineEnd(stText);
    case '\\': return Take_Escape(stText);
    case '{': return Note_UsualTag(stText, '{', '}');
    case '\t': return Take_UsualTab(stText);
    default: return E_USUAL_ODD;
    }
}

void Apply_Override(uint32_t uiUnits)
{
    Apply_SSAOverride(s_pstTagControlInfo->ausTagBuf + 1, uiUnits - 1);
}

constexpr UsualForm DIALOGUE_FORM = {{'{', '\\'}, Take_DialogueStop, Apply_Override};

} // namespace

const SSAFrameInfo *Take_UsualDialogue()
{
    UsualText stText;
    DialogueHead stHead;
    if (!Begin_UsualText(&stText, 0) || !Take_Head(stText, stHead)) return nullptr;
    SSAFrameInfo *const pstFrame = Take_Fields(stText);
    if (pstFrame == nullptr || !Take_UsualText(stText, DIALOGUE_FORM)) return nullptr;
    pstFrame->uiMarked = stHead.uiMarked;
    pstFrame->uiStartPTS = stHead.uiStart;
    pstFrame->uiEndPTS = stHead.uiEnd;
    Begin_SSAText(*pstFrame);
    Commit_UsualText(stText, DIALOGUE_FORM);
    return pstFrame;
}

uint32_t Pass_UsualDialogue(uint32_t *puiStart)
{
    uint8_t aucHead[DigitPattern::BYTES_MAX];
    const uint8_t *const pucHead = Get_UsualHead(aucHead, DigitPattern::BYTES_MAX);
    DialogueHead stHead;
    if (!s_bUsualReading || pucHead == nullptr || !Match_Head(pucHead, &stHead)) return 0;
    const uint32_t uiBytes = Find_LineEnd(stHead.uiUnits);
    Take_HeldBytes(uiBytes);
    *puiStart = stHead.uiStart;
    return uiBytes;
}

void Forget_UsualFields()
{
    for (KnownFields &stKnown : s_astKnownFields) stKnown.uiBytes = 0;
}

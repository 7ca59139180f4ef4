#include "format/usual_text.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <initializer_list>
#include <iterator>

#include "markup/entity.h"
#include "text/find_unit.h"
#include "text/text_block.h"
#include "text/text_helpers.h"

bool s_bUsualReading = true;
uint32_t s_uiUsualEntries = 0;

namespace
{

constexpr uint32_t BLANK = 0x20;
constexpr uint32_t CONTROLS = 0x20;     // units below are none of a run of characters
constexpr ptrdiff_t ENTRY_BYTES = 8192; // of a usual entry's text
constexpr uint32_t RUN_UNITS_MAX = 250; // of a line of the file: more are laid out in several steps
constexpr ptrdiff_t TAG_BYTES_MAX = 200;
constexpr uint32_t ENTITY_UNITS_MAX = 12;
constexpr uint32_t BLOCK_BITS = (1u << BLOCK_BYTES) - 1;

static_assert(USUAL_AHEAD + BLOCK_BYTES <= STREAM_PAD_BYTES); // a block may begin at the last byte to look at

// No byte of an entry becomes more than two, and a block is stored whole.
static_assert(2 * ENTRY_BYTES + BLOCK_BYTES <= TEXT_BUF_UNITS * sizeof(uint16_t));

constexpr bool Is_Surrogate(uint32_t uiUnit)
{
    return uiUnit - 0xD800 < 0x800;
}

// ---- Characters, sixteen bytes at a step ----

/** What stands in a block, a bit for each byte. */
struct BlockLook {
    uint32_t uiStop; // where the run of characters ends
    uint32_t uiBlank;
    uint32_t uiTrail; // bytes that begin no unit
    uint32_t uiOdd;   // bytes that only the literal reading can tell
};

/** Bits that are set in each byte. */
struct BitTable {
    uint8_t aucBits[256];
    consteval BitTable() : aucBits()
    {
        for (uint32_t uiByte = 0; uiByte < 256; ++uiByte)
            aucBits[uiByte] = static_cast<uint8_t>(std::popcount(uiByte));
    }
};
constexpr BitTable BITS;

uint32_t Count_Bits(uint32_t uiBits) // 16 of them
{
    return BITS.aucBits[uiBits & 0xFF] + uint32_t{BITS.aucBits[uiBits >> 8]};
}

/**
 * Tell the bytes of UTF-8 characters up to U+FFFF in good form; all others are odd.
 *
 * @param[in,out] uiCarry  bytes at the block's start that must continue a character, a bit for each
 */
void Look_AtUtf8(const TextBlock &stBlock, const uint8_t *pucByte, uint32_t uiHigh, uint32_t &uiCarry,
                 BlockLook &stLook)
{
    const auto stHighNext = TextBlock::Load(pucByte + 1).Find_AtLeast(0xA0);
    const auto stOverlong = stBlock.Find_Equal(0xE0).Without(stHighNext);
    const auto stSurrogate = stBlock.Find_Equal(0xED) & stHighNext;
    const uint32_t uiThree = TextBlock::Get_Bits(stBlock.Find_AtLeast(0xE0));
    stLook.uiTrail = TextBlock::Get_Bits(stBlock.Find_Continuations());
    const uint32_t uiLead = uiHigh & ~stLook.uiTrail;
    const uint32_t uiWanted = uiLead << 1 | uiThree << 2 | uiCarry;
    stLook.uiOdd = TextBlock::Get_Bits(stOverlong | stSurrogate) |
                   ((uiWanted ^ stLook.uiTrail) & BLOCK_BITS) |
                   (uiLead ^ TextBlock::Get_Bits(stBlock.Find_Between(0xC2, 0xEF)));
    uiCarry = uiWanted >> BLOCK_BYTES;
}

/** What Take_Characters() looks for: copies, so that no byte written can change them. */
struct RunStops {
    uint8_t ucFirst;
    uint8_t ucSecond;
    bool bBigEndian;
};

template <TextKind KIND>
inline TextBlock Load_Block(const uint8_t *pucByte, RunStops stStops)
{
    const TextBlock stBlock = TextBlock::Load(pucByte);
    return KIND == E_TEXT_UTF16 && stStops.bBigEndian ? stBlock.Get_SwappedUnits() : stBlock;
}

/** @param[in,out] uiCarry  the bits that one block leaves for the next one; 0 at first */
template <TextKind KIND>
inline BlockLook Look_AtBlock(const TextBlock &stBlock, const uint8_t *pucByte, RunStops stStops,
                              uint32_t &uiCarry)
{
    BlockLook stLook = {};
    if constexpr (KIND == E_TEXT_UTF16) {
        stLook.uiStop =
            TextBlock::Get_Bits(stBlock.Find_BelowUnit(CONTROLS) | stBlock.Find_EqualUnit(stStops.ucFirst) |
                                stBlock.Find_EqualUnit(stStops.ucSecond));
        stLook.uiBlank = TextBlock::Get_Bits(stBlock.Find_EqualUnit(BLANK));
        return stLook;
    }
    stLook.uiStop = TextBlock::Get_Bits(stBlock.Find_Below(CONTROLS) | stBlock.Find_Equal(stStops.ucFirst) |
                                        stBlock.Find_Equal(stStops.ucSecond));
    stLook.uiBlank = TextBlock::Get_Bits(stBlock.Find_Equal(BLANK));
    const uint32_t uiHigh = stBlock.Get_HighBits();
    if (KIND == E_TEXT_SINGLE) stLook.uiStop |= uiHigh;
    if ((uiHigh | uiCarry) == 0) return stLook;
    if constexpr (KIND == E_TEXT_UTF8) Look_AtUtf8(stBlock, pucByte, uiHigh, uiCarry, stLook);
    if constexpr (KIND == E_TEXT_DOUBLE) {
        stLook.uiTrail = Find_SecondBytes(uiHigh, uiCarry);
        stLook.uiStop &= ~stLook.uiTrail;
        stLook.uiBlank &= ~stLook.uiTrail;
    }
    return stLook;
}

/** @return a bit for each byte of a block that stops; those from 0x80 on all do but in UTF-16. */
template <TextKind KIND>
inline uint32_t Find_Stop(const uint8_t *pucByte, RunStops stStops)
{
    static_assert(KIND == E_TEXT_SINGLE || KIND == E_TEXT_UTF16);
    uint32_t uiCarry = 0;
    return Look_AtBlock<KIND>(Load_Block<KIND>(pucByte, stStops), pucByte, stStops, uiCarry).uiStop;
}

/** Take characters up to a stop. @return whether all of them are sure and the buffer holds the stop */
template <TextKind KIND>
inline bool Take_Characters(UsualText &stText, RunStops stStops)
{
    constexpr uint32_t UNIT_BYTES = KIND == E_TEXT_UTF16 ? 2 : 1;
    constexpr uint32_t UNIT_BITS = (1u << UNIT_BYTES) - 1;
    const uint8_t *pucByte = stText.pucByte;
    const uint8_t *const pucLast = stText.pucEnd - USUAL_AHEAD;
    uint8_t *pucOut = stText.pucOut;
    uint32_t uiPrevBlank = stText.bPrevBlank ? UNIT_BITS : 0;
    uint32_t uiCarry = 0;
    uint32_t uiTrails = 0;
    for (;; pucByte += BLOCK_BYTES, pucOut += BLOCK_BYTES) {
        if (pucByte > pucLast) return false;
        const TextBlock stBlock = Load_Block<KIND>(pucByte, stStops);
        stBlock.Store(pucOut);
        const BlockLook stLook = Look_AtBlock<KIND>(stBlock, pucByte, stStops, uiCarry);
        const uint32_t uiAfterBlank = stLook.uiBlank << UNIT_BYTES | uiPrevBlank;
        const uint32_t uiStop = stLook.uiStop | (stLook.uiBlank & uiAfterBlank);
        if (uiStop == 0) {
            if (stLook.uiOdd != 0) return false;
            if (stLook.uiTrail != 0) uiTrails += Count_Bits(stLook.uiTrail);
            uiPrevBlank = uiAfterBlank >> BLOCK_BYTES;
            continue;
        }
        const uint32_t uiBytes = static_cast<uint32_t>(std::countr_zero(uiStop));
        const uint32_t uiBefore = (uiStop - 1) & ~uiStop;
        if ((stLook.uiOdd & (uiBefore << 1 | 1)) != 0) return false;
        if (stLook.uiTrail != 0) uiTrails += Count_Bits(stLook.uiTrail & uiBefore);
        uiPrevBlank = uiAfterBlank >> uiBytes & UNIT_BITS;
        pucByte += uiBytes;
        pucOut += uiBytes;
        break;
    }
    stText.uiTrails += uiTrails;
    stText.pucByte = pucByte;
    stText.pucOut = pucOut;
    stText.bPrevBlank = uiPrevBlank != 0;
    return true;
}

/** Pass over blanks of the text that go: a line's first ones, and all but the first of a run. */
void Skip_Blanks(UsualText &stText)
{
    while (stText.pucEnd - stText.pucByte >= USUAL_AHEAD && stText.Get_Unit(0) == BLANK) stText.Take_Units(1);
}

/** Single bytes go out as two, the first one a zero. */
UsualStep Take_HighBytes(UsualText &stText)
{
    while (stText.pucEnd - stText.pucByte >= USUAL_AHEAD && *stText.pucByte >= 0x80) {
        *stText.pucOut++ = 0;
        *stText.pucOut++ = *stText.pucByte++;
        ++stText.uiTrails;
    }
    stText.bPrevBlank = false;
    return E_USUAL_ON;
}

// ---- Units one by one: where a line is long, and in tags ----

/** A unit of a line as it goes out. */
struct LineUnit {
    uint32_t uiBytes;
    bool bBlank;
};

LineUnit Get_LineUnit(TextKind eKind, const uint8_t *pucUnit)
{
    switch (eKind) {
    case E_TEXT_UTF16: return {2, pucUnit[0] == BLANK && pucUnit[1] == 0};
    case E_TEXT_UTF8: return {pucUnit[0] < 0x80 ? 1u : pucUnit[0] < 0xE0 ? 2u : 3u, pucUnit[0] == BLANK};
    default: return {pucUnit[0] - 1u < 0x7F ? 1u : 2u, pucUnit[0] == BLANK}; // a zero goes before a high byte
    }
}

// ---- Lines ----

/** End a line, which goes to pucEnd, with a newline. @return false where there is no room for it */
inline bool Add_Line(UsualText &stText, uint8_t *pucEnd, uint32_t uiUnits, uint32_t uiUnitBytes)
{
    if (stText.uiLines == ZYR_LINE_MAX) return false;
    stText.pstLines[stText.uiLines++] = {static_cast<uint32_t>(stText.pucLine - stText.pucStore), uiUnits,
                                         uiUnits, static_cast<uint32_t>(pucEnd - stText.pucLine)};
    *pucEnd++ = '\n';
    if (uiUnitBytes == 2) *pucEnd++ = 0;
    stText.pucLine = pucEnd;
    return true;
}

/** Take the last blanks off the current line. @return false where its last byte may be half of a character */
bool Trim_Blanks(UsualText &stText)
{
    const bool bHalves = stText.eKind == E_TEXT_DOUBLE && stText.uiTrails > 0;
    while (!stText.Is_LineEmpty()) {
        const LineUnit stLast = Get_LineUnit(stText.eKind, stText.pucOut - stText.uiUnitBytes);
        if (!stLast.bBlank) break;
        if (bHalves && !stText.bPrevBlank) return false;
        stText.bPrevBlank = false;
        stText.pucOut -= stText.uiUnitBytes;
    }
    return true;
}

/** Close the current line, which is too long for one, with line breaks in the place of blanks. */
bool Close_WrappedLine(UsualText &stText)
{
    uint8_t *pucBreak = nullptr; // the last blank
    uint32_t uiBreakUnits = 0;
    uint32_t uiUnits = 0;
    bool bPrevBlank = false;
    for (uint8_t *pucUnit = stText.pucLine; pucUnit < stText.pucOut;) {
        const LineUnit stUnit = Get_LineUnit(stText.eKind, pucUnit);
        if (stUnit.bBlank) {
            if (bPrevBlank) return false; // more goes there than a line break has room for
            pucBreak = pucUnit;
            uiBreakUnits = uiUnits;
        }
        bPrevBlank = stUnit.bBlank;
        if (uiUnits == LINE_UNITS) {
            const bool bRoom = stText.uiLines + 1 < ZYR_LINE_MAX; // else the log tells that
            if (pucBreak == nullptr || !bRoom ||
                !Add_Line(stText, pucBreak, uiBreakUnits, stText.uiUnitBytes))
                return false;
            uiUnits -= uiBreakUnits + 1;
            pucBreak = nullptr;
        }
        ++uiUnits;
        pucUnit += stUnit.uiBytes;
    }
    return Add_Line(stText, stText.pucOut, uiUnits, stText.uiUnitBytes);
}

inline uint32_t Count_LineUnits(const UsualText &stText, uint32_t uiUnitBytes)
{
    return (static_cast<uint32_t>(stText.pucOut - stText.pucLine) - stText.uiTrails) >> (uiUnitBytes - 1);
}

/** Close the current line, which may be too long or end with a blank. */
[[gnu::noinline]] bool Close_OddLine(UsualText &stText)
{
    const uint32_t uiAllUnits = Count_LineUnits(stText, stText.uiUnitBytes);
    if (!Trim_Blanks(stText)) return false;
    const uint32_t uiUnits = Count_LineUnits(stText, stText.uiUnitBytes);
    if (uiUnits == 0) return true;
    const bool bGood = uiUnits <= LINE_UNITS ? Add_Line(stText, stText.pucOut, uiUnits, stText.uiUnitBytes)
                                             : uiUnits <= RUN_UNITS_MAX && Close_WrappedLine(stText);
    // A blank behind a full last line has no line to go to: the log tells that.
    const bool bFull =
        stText.uiLines == ZYR_LINE_MAX && stText.pstLines[ZYR_LINE_MAX - 1].uiLength == LINE_UNITS;
    return bGood && (!bFull || uiAllUnits == uiUnits);
}

/** Close the current line, if there is anything on it. uiUnitBytes stands here for what is often a constant.
 *
 * @return false where there is no room for it */
inline bool Close_Line(UsualText &stText, uint32_t uiUnitBytes)
{
    const uint32_t uiUnits = Count_LineUnits(stText, uiUnitBytes);
    bool bGood = true;
    if (uiUnits > 0) {
        const bool bBlank = stText.pucOut[-static_cast<ptrdiff_t>(uiUnitBytes)] == BLANK; // or half of one
        bGood = bBlank || uiUnits > LINE_UNITS ? Close_OddLine(stText)
                                               : Add_Line(stText, stText.pucOut, uiUnits, uiUnitBytes);
    }
    stText.pucOut = stText.pucLine;
    stText.uiTrails = 0;
    stText.bPrevBlank = true;
    return bGood;
}

UsualStep Put_Bytes(UsualText &stText, std::initializer_list<uint32_t> listBytes)
{
    for (const uint32_t uiByte : listBytes) *stText.pucOut++ = static_cast<uint8_t>(uiByte);
    stText.uiTrails += static_cast<uint32_t>(listBytes.size()) - stText.uiUnitBytes;
    return E_USUAL_ON;
}

inline UsualStep Break_Line(UsualText &stText, uint32_t uiUnitBytes)
{
    if (stText.uiLines == ZYR_LINE_MAX) return E_USUAL_ODD; // the log tells that
    return Close_Line(stText, uiUnitBytes) ? E_USUAL_ON : E_USUAL_ODD;
}

/** @return a unit behind the next byte. */
template <TextKind KIND>
inline uint32_t Get_Unit(const UsualText &stText, uint32_t uiUnit)
{
    if (KIND != E_TEXT_UTF16) return stText.pucByte[uiUnit];
    return Get_Utf16Unit(stText.pucByte + size_t{2} * uiUnit, stText.bBigEndian);
}

/** CR LF, or CR LF CR LF, which ends the entry. */
template <TextKind KIND>
inline UsualStep Take_LineEnd(UsualText &stText)
{
    constexpr uint32_t UNIT_BYTES = KIND == E_TEXT_UTF16 ? 2 : 1;
    if (Get_Unit<KIND>(stText, 1) != '\n') return E_USUAL_ODD;
    if (Get_Unit<KIND>(stText, 2) != '\r') {
        stText.pucByte += 2 * UNIT_BYTES;
        stText.pucFileLine = stText.pucByte;
        return Break_Line(stText, UNIT_BYTES);
    }
    if (Get_Unit<KIND>(stText, 3) != '\n') return E_USUAL_ODD;
    stText.pucByte += 4 * UNIT_BYTES;
    return E_USUAL_END;
}

template <TextKind KIND>
inline UsualStep Take_Stop(UsualText &stText, const UsualForm &stForm)
{
    const uint32_t uiUnit = Get_Unit<KIND>(stText, 0);
    if (uiUnit == '\r' && stForm.bLines) return Take_LineEnd<KIND>(stText);
    if (uiUnit == BLANK) {
        Skip_Blanks(stText);
        return E_USUAL_ON;
    }
    if (uiUnit >= 0x80) return Take_HighBytes(stText);
    return stForm.pfTakeStop(stText, uiUnit);
}

template <TextKind KIND>
bool Take_Entry(UsualText &stText, const UsualForm &stForm)
{
    const RunStops stStops = {stForm.aucStop[0], stForm.aucStop[1], stText.bBigEndian};
    UsualStep eStep = E_USUAL_ON;
    while (eStep == E_USUAL_ON) {
        if (!Take_Characters<KIND>(stText, stStops)) return false;
        eStep = Take_Stop<KIND>(stText, stForm);
    }
    // The last byte that was read may be half of a unit.
    const bool bWhole = KIND != E_TEXT_UTF16 || stText.pucByte <= stText.Get_TextEnd();
    return eStep == E_USUAL_END && bWhole && Close_Line(stText, KIND == E_TEXT_UTF16 ? 2 : 1);
}

const uint8_t *Narrow_Head(const UsualText &stText, uint8_t *pucTarget, uint32_t uiUnits)
{
    const RunStops stOrder = {0, 0, stText.bBigEndian};
    for (uint32_t uiUnit = 0; uiUnit < uiUnits; uiUnit += BLOCK_BYTES) {
        uiUnit = std::min(uiUnit, uiUnits - BLOCK_BYTES); // the last block may overlap
        const uint8_t *const pucUnit = stText.pucByte + size_t{2} * uiUnit;
        TextBlock::Narrow_Units(Load_Block<E_TEXT_UTF16>(pucUnit, stOrder),
                                Load_Block<E_TEXT_UTF16>(pucUnit + BLOCK_BYTES, stOrder))
            .Store(pucTarget + uiUnit);
    }
    return pucTarget;
}

inline bool Point_Text(UsualText &stText)
{
    const CaptionStreamInfo &stStream = Get_StreamInfo();
    stText.eKind = Get_TextKind();
    if (!s_bUsualReading || stText.eKind == E_TEXT_OTHER) return false;
    stText.uiUnitBytes = stText.eKind == E_TEXT_UTF16 ? 2 : 1;
    stText.bBigEndian = s_uiTextEncoding == E_TEXT_ENCODING_UTF16BE;
    stText.pucByte = stStream.pucStreamBuf + stStream.iStreamBufIndex;
    stText.pucEnd = std::min<const uint8_t *>(stStream.pucStreamBuf + stStream.iStreamDataSize,
                                              stText.pucByte + ENTRY_BYTES) +
                    USUAL_AHEAD;
    return true;
}

/** Let the noted tags take effect. */
[[gnu::noinline]] void Apply_Tags(const UsualText &stText, const UsualForm &stForm)
{
    TagControlInfo &stTagControl = *s_pstTagControlInfo;
    for (uint32_t uiTag = 0; uiTag < stText.uiTags; ++uiTag) {
        const UsualTag &stTag = stText.astTag[uiTag];
        const uint32_t uiUnits = stTag.uiUnits;
        for (uint32_t uiUnit = 0; uiUnit < uiUnits; ++uiUnit)
            stTagControl.ausTagBuf[uiUnit] =
                static_cast<uint16_t>(stText.Get_UnitAt(stTag.pucTag + size_t{uiUnit} * stText.uiUnitBytes));
        stTagControl.uiTagLength = uiUnits;
        stForm.pfApplyTag(uiUnits);
        stTagControl.uiTagLength = 0;
    }
}

/** A unit of the file's text: its bytes, 0 where it is none that is sure. */
uint32_t Decode_Unit(const UsualText &stText, const uint8_t *pucByte, uint16_t *pusUnit)
{
    const uint32_t uiFirst = pucByte[0];
    const uint32_t uiSecond = pucByte[1];
    if (stText.eKind == E_TEXT_UTF16) {
        *pusUnit =
            static_cast<uint16_t>(stText.bBigEndian ? uiFirst << 8 | uiSecond : uiSecond << 8 | uiFirst);
        return 2;
    }
    *pusUnit = static_cast<uint16_t>(uiFirst);
    if (uiFirst < 0x80 || stText.eKind == E_TEXT_SINGLE) return 1;
    if (stText.eKind == E_TEXT_DOUBLE) {
        *pusUnit = static_cast<uint16_t>(uiFirst << 8 | uiSecond);
        return 2;
    }
    const bool bThree = uiFirst >= 0xE0;
    if ((uiSecond & 0xC0) != 0x80 || (bThree && (pucByte[2] & 0xC0) != 0x80) || uiFirst >= 0xF0 ||
        uiFirst < 0xC2)
        return 0;
    const uint32_t uiCode = bThree ? (uiFirst & 0x0F) << 12 | (uiSecond & 0x3F) << 6 | (pucByte[2] & 0x3Fu)
                                   : (uiFirst & 0x1F) << 6 | (uiSecond & 0x3F);
    *pusUnit = static_cast<uint16_t>(uiCode);
    return bThree ? (uiCode < 0x800 ? 0 : 3) : 2;
}

/**
 * Drop the last tag when the one at the next byte is its end, as "</i>" is that of "<i>": together they change nothing,
 * for the style of a frame is that behind its text.
 *
 * @param[in] ullEight  the next units
 */
bool Drop_Pair(UsualText &stText, uint64_t ullEight)
{
    constexpr UsualWord NAMES[] = {{"</i>", true}, {"</b>", true}, {"</u>", true}};
    const bool bNamed = std::any_of(std::begin(NAMES), std::end(NAMES),
                                    [=](const UsualWord &stWord) { return stWord.Begins(ullEight); });
    if (!bNamed || stText.uiTags == 0) return false;
    const UsualTag &stLast = stText.astTag[stText.uiTags - 1];
    const uint32_t uiName = static_cast<uint32_t>(ullEight >> 16 & 0xFF);
    if (stLast.uiUnits != 3 ||
        To_Upper(stText.Get_UnitAt(stLast.pucTag + stText.uiUnitBytes)) != To_Upper(uiName))
        return false;
    --stText.uiTags;
    stText.Take_Units(4);
    stText.bPrevBlank = stText.Is_LineEmpty();
    return true;
}

} // namespace

uint64_t UsualText::Narrow_Eight() const
{
    uint8_t aucBytes[BLOCK_BYTES];
    const TextBlock stUnits = Load_Block<E_TEXT_UTF16>(pucByte, {0, 0, bBigEndian});
    TextBlock::Narrow_Units(stUnits, stUnits).Store(aucBytes);
    uint64_t ullBytes;
    std::memcpy(&ullBytes, aucBytes, sizeof(ullBytes));
    return ullBytes;
}

bool Point_UsualText(UsualText *pstText)
{
    return Point_Text(*pstText);
}

bool Begin_UsualText(UsualText *pstText, uint32_t uiSkipUnits)
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    const bool bFresh = stInfo.uiLineIndex == 0 && stInfo.puiLineLength[0] == 0;
    const bool bFull = s_uiMaxLineNums == ZYR_LINE_MAX && s_uiConvBufSize == CONV_BUF_UNITS;
    const bool bShowTags = (s_uiParsingOption & E_PARSING_OPTION_SHOW_UNKNOWN_TAGS) != 0;
    if (!bFresh || !bFull || bShowTags || !Point_Text(*pstText)) return false;
    CaptionLineTable &stTable = s_astLineTable[stInfo.uiCurrStream];
    UsualText &stText = *pstText;
    stText.Take_Head(uiSkipUnits);
    stText.pucStore = reinterpret_cast<uint8_t *>(stTable.pusTextBuf);
    stText.pucLine = stText.pucStore;
    stText.pucOut = stText.pucStore;
    stText.uiTrails = 0;
    stText.bPrevBlank = true;
    stText.uiLines = 0;
    stText.uiTags = 0;
    stText.pstLines = stTable.astLine;
    return true;
}

bool Pass_UsualText(const UsualText &stText, uint32_t uiHeadUnits, uint8_t ucOdd)
{
    const uint8_t *const pucLine = stText.pucByte + size_t{uiHeadUnits} * stText.uiUnitBytes;
    const uint8_t *const pucBehind = Find_EmptyLine(stText.eKind, pucLine, stText.Get_TextEnd(), ucOdd);
    if (pucBehind == nullptr) return false;
    Get_StreamInfo().iStreamBufIndex += static_cast<int32_t>(pucBehind - stText.pucByte);
    return true;
}

bool Take_UsualText(UsualText &stText, const UsualForm &stForm)
{
    switch (stText.eKind) {
    case E_TEXT_UTF8: return Take_Entry<E_TEXT_UTF8>(stText, stForm);
    case E_TEXT_DOUBLE: return Take_Entry<E_TEXT_DOUBLE>(stText, stForm);
    case E_TEXT_SINGLE: return Take_Entry<E_TEXT_SINGLE>(stText, stForm);
    default: return Take_Entry<E_TEXT_UTF16>(stText, stForm);
    }
}

void Commit_UsualText(const UsualText &stText, const UsualForm &stForm)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    CaptionLineTable &stTable = s_astLineTable[stInfo.uiCurrStream];
    CaptionStreamInfo &stStream = Get_StreamInfo();
    for (uint32_t uiLine = 0; uiLine < stText.uiLines; ++uiLine)
        stInfo.puiLineLength[uiLine] = stTable.astLine[uiLine].uiLength;
    stInfo.uiLineIndex = stText.uiLines;
    stInfo.uiConvLength = 0;
    const uint32_t uiBytes = static_cast<uint32_t>(stText.pucOut - stText.pucStore);
    stTable.uiWritePos = (uiBytes + 1) / 2;
    stTable.uiOutBytes = uiBytes == 0 ? 0 : uiBytes - stText.uiUnitBytes; // without the last newline
    stStream.iStreamBufIndex = static_cast<int32_t>(stText.pucByte - stStream.pucStreamBuf);
    ++s_uiUsualEntries;
    if (stText.uiTags > 0) Apply_Tags(stText, stForm);
}

bool Take_UsualUnit(UsualText &stText, uint16_t *pusUnit)
{
    if (stText.pucEnd - stText.pucByte < USUAL_AHEAD) return false;
    const uint32_t uiBytes = Decode_Unit(stText, stText.pucByte, pusUnit);
    stText.pucByte += uiBytes;
    return uiBytes != 0;
}

UsualStep Break_UsualLine(UsualText &stText)
{
    return Break_Line(stText, stText.uiUnitBytes);
}

UsualStep Put_UsualUnit(UsualText &stText, uint32_t uiUnit)
{
    if (uiUnit == BLANK && stText.Is_LineEmpty()) return E_USUAL_ON;
    stText.bPrevBlank = false;
    if (uiUnit < CONTROLS || Is_Surrogate(uiUnit)) return E_USUAL_ODD;
    if (stText.eKind == E_TEXT_UTF16) return Put_Bytes(stText, {uiUnit, uiUnit >> 8});
    if (uiUnit < 0x80) return Put_Bytes(stText, {uiUnit});
    if (stText.eKind != E_TEXT_UTF8) return uiUnit > 0xFF ? E_USUAL_ODD : Put_Bytes(stText, {0, uiUnit});
    const uint32_t uiLast = 0x80 | (uiUnit & 0x3F);
    if (uiUnit < 0x800) return Put_Bytes(stText, {0xC0 | uiUnit >> 6, uiLast});
    return Put_Bytes(stText, {0xE0 | uiUnit >> 12, 0x80 | (uiUnit >> 6 & 0x3F), uiLast});
}

UsualStep Take_UsualTab(UsualText &stText)
{
    stText.Take_Units(1);
    if (stText.bPrevBlank) return E_USUAL_ON;
    const UsualStep eStep = Put_UsualUnit(stText, BLANK);
    stText.bPrevBlank = true;
    return eStep;
}

UsualStep Note_UsualTag(UsualText &stText, uint32_t uiOpen, uint32_t uiClose)
{
    const RunStops stStops = {static_cast<uint8_t>(uiOpen), static_cast<uint8_t>(uiClose), stText.bBigEndian};
    const uint8_t *pucByte = stText.pucByte + stText.uiUnitBytes;
    const uint8_t *const pucLast = std::min(stText.pucEnd - USUAL_AHEAD, pucByte + TAG_BYTES_MAX);
    uint32_t uiStop = 0;
    for (;; pucByte += BLOCK_BYTES) {
        if (pucByte > pucLast) return E_USUAL_ODD;
        uiStop = stText.eKind == E_TEXT_UTF16 ? Find_Stop<E_TEXT_UTF16>(pucByte, stStops)
                                              : Find_Stop<E_TEXT_SINGLE>(pucByte, stStops);
        if (uiStop != 0) break;
    }
    pucByte += std::countr_zero(uiStop);
    if (stText.Get_UnitAt(pucByte) != uiClose || stText.uiTags == UsualText::TAGS_MAX) return E_USUAL_ODD;
    pucByte += stText.uiUnitBytes;
    const uint32_t uiBytes = static_cast<uint32_t>(pucByte - stText.pucByte);
    stText.astTag[stText.uiTags++] = {stText.pucByte, uiBytes >> (stText.uiUnitBytes - 1)};
    stText.pucByte = pucByte;
    stText.bPrevBlank = stText.Is_LineEmpty();
    return E_USUAL_ON;
}

UsualStep Take_UsualHtmlTag(UsualText &stText)
{
    static constexpr UsualWord BREAK("<br>", true);
    static constexpr UsualWord BREAK_OPEN("<br", true);
    static constexpr UsualWord BREAK_CLOSE("</br", true);
    const uint64_t ullEight = stText.Get_Eight();
    if (BREAK.Begins(ullEight)) {
        stText.Take_Units(4);
        return Break_Line(stText, stText.uiUnitBytes);
    }
    if (Drop_Pair(stText, ullEight)) return E_USUAL_ON;
    if (BREAK_OPEN.Begins(ullEight) || BREAK_CLOSE.Begins(ullEight))
        return E_USUAL_ODD; // may break a line as well
    return Note_UsualTag(stText, '<', '>');
}

UsualStep Take_UsualEntity(UsualText &stText)
{
    if (NO_BREAK_SPACE.Begins(stText.Get_Eight())) {
        stText.Take_Units(NO_BREAK_SPACE_UNITS);
        return Put_UsualUnit(stText, BLANK);
    }
    uint16_t ausEntity[ENTITY_UNITS_MAX];
    uint32_t uiUnits = 0;
    do {
        if (uiUnits == ENTITY_UNITS_MAX) return E_USUAL_ODD;
        const uint32_t uiUnit = stText.Get_Unit(uiUnits);
        const bool bInEntity = Is_Digit(uiUnit) || uiUnit - 'a' < 26 || (uiUnit == '#' && uiUnits == 1);
        if (uiUnits > 0 && uiUnit != ';' && !bInEntity) return E_USUAL_ODD;
        ausEntity[uiUnits++] = static_cast<uint16_t>(uiUnit);
    } while (ausEntity[uiUnits - 1] != ';');
    const uint16_t usCode = Get_EntityCharCode(ausEntity, static_cast<int32_t>(uiUnits));
    if (usCode == 0) return E_USUAL_ODD;
    stText.Take_Units(uiUnits);
    return Put_UsualUnit(stText, usCode);
}

bool Take_UsualEmptyLine(UsualText &stText)
{
    if (stText.pucEnd - stText.pucByte < USUAL_AHEAD || stText.Get_Unit(1) != '\n') return false;
    stText.Take_Units(2);
    return stText.pucByte <= stText.Get_TextEnd();
}

const uint8_t *Get_UsualHead(const UsualText &stText, uint8_t *pucTarget, uint32_t uiUnits)
{
    if (stText.pucEnd - stText.pucByte < static_cast<ptrdiff_t>(uiUnits * stText.uiUnitBytes)) return nullptr;
    return stText.uiUnitBytes == 1 ? stText.pucByte : Narrow_Head(stText, pucTarget, uiUnits);
}

const uint8_t *Get_UsualHead(uint8_t *pucTarget, uint32_t uiUnits)
{
    UsualText stText;
    return Point_UsualText(&stText) ? Get_UsualHead(stText, pucTarget, uiUnits) : nullptr;
}

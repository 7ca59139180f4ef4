#include "lines/line_output.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "record/engine_log.h"
#include "record/parser_state.h"
#include "text/text_helpers.h"

namespace
{

constexpr uint32_t TEXT_BYTES = ZYR_OUT_TEXT_BYTES - 2; // the text itself; two zero bytes follow
constexpr uint32_t LAST_PAIR_POS = TEXT_BYTES - 2;      // the last place where two bytes fit
constexpr uint32_t COPY_BYTES = 16;                     // of a line at a step
constexpr uint16_t BLANK = 0x20;

/** Laying out the units of one call: the record, the stream's table and the line being filled. */
struct LineWriter {
    QuibCaptionParserInfo &stInfo;
    CaptionLineTable &stTable;
    uint32_t uiLine;   // line being filled
    uint32_t uiLength; // its units

    CaptionLine &Get_Line() { return stTable.astLine[uiLine]; }
};

/** Begin a line of units. */
void Begin_Line(CaptionLineTable &stTable, uint32_t uiLine, uint32_t uiStart, uint32_t uiWordUnits)
{
    stTable.uiOutBytes = 0;
    stTable.astLine[uiLine] = {uiStart, uiWordUnits, 0, 0};
}

/** Begin a line at the write position. */
void Start_EmptyLine(LineWriter &stWriter)
{
    QuibCaptionParserInfo &stInfo = stWriter.stInfo;
    Begin_Line(stWriter.stTable, stWriter.uiLine, stWriter.stTable.uiWritePos, 0);
    stInfo.ucPrevBlank = 0;
    stInfo.uiBreakLength = 0;
    stInfo.uiWordUnits = 0;
    stInfo.uiWordUnitsAtBreak = 0;
}

/** Keep track of blank runs and words as a unit is about to be stored. */
void Note_Unit(LineWriter &stWriter, bool bBlank)
{
    QuibCaptionParserInfo &stInfo = stWriter.stInfo;
    CaptionLineTable &stTable = stWriter.stTable;
    if (!bBlank) {
        if (stTable.uiInBlank != 0) stTable.uiWordStart = stWriter.uiLength;
        stTable.uiInBlank = 0;
        ++stWriter.Get_Line().uiWordUnits;
        ++stInfo.uiWordUnits;
    } else if (stTable.uiInBlank == 0) {
        stTable.uiInBlank = 1;
        stTable.uiWordStart = 0;
        stInfo.uiWordUnitsAtBreak = stInfo.uiWordUnits;
        stInfo.uiBreakLength = stWriter.uiLength;
    }
}

/** Move the word at the end of the full line to a new line, without copying it. */
void Wrap_Word(LineWriter &stWriter)
{
    const QuibCaptionParserInfo &stInfo = stWriter.stInfo;
    CaptionLine &stOld = stWriter.Get_Line();
    const uint32_t uiWordStart = stWriter.stTable.uiWordStart;
    Begin_Line(stWriter.stTable, stWriter.uiLine + 1, stOld.uiStart + uiWordStart,
               stOld.uiWordUnits - stInfo.uiWordUnitsAtBreak);
    stOld.uiWordUnits = stInfo.uiWordUnitsAtBreak;
    stInfo.puiLineLength[stWriter.uiLine] = stInfo.uiBreakLength;
    stWriter.uiLength -= uiWordStart;
}

/** Cut a word that is longer than a line; the unit that did not fit begins the new line. */
void Wrap_HardBreak(LineWriter &stWriter, bool bBlank)
{
    Begin_Line(stWriter.stTable, stWriter.uiLine + 1, stWriter.stTable.uiWritePos, bBlank ? 0 : 1);
    stWriter.stInfo.puiLineLength[stWriter.uiLine] = stWriter.uiLength;
    stWriter.uiLength = 0;
}

/** Cut the full line at its trailing blanks. */
void Wrap_AtBlanks(LineWriter &stWriter)
{
    Begin_Line(stWriter.stTable, stWriter.uiLine + 1, stWriter.stTable.uiWritePos, 0);
    stWriter.stInfo.puiLineLength[stWriter.uiLine] = stWriter.stInfo.uiBreakLength;
    stWriter.uiLength = 0;
}

enum WrapResult : uint32_t {
    E_WRAP_STORE, // the unit goes on the new line
    E_WRAP_BLANK, // the line was cut at the blank that did not fit
    E_WRAP_FULL,  // there is no further line
};

/** Begin a new line for a unit that did not fit on the current one. */
WrapResult Wrap_Line(LineWriter &stWriter, bool bBlank)
{
    QuibCaptionParserInfo &stInfo = stWriter.stInfo;
    if (stWriter.uiLine + 1 >= ZYR_LINE_MAX) {
        stInfo.puiLineLength[stWriter.uiLine] = stWriter.uiLength;
        stInfo.uiLineIndex = stWriter.uiLine + 1;
        LOG_HANDLER("Line Count is MAXIMUM COUNT!\n");
        return E_WRAP_FULL;
    }
    const bool bBlankRun = stInfo.uiBreakLength != 0;
    const bool bAtBlanks = bBlankRun && stInfo.uiWordUnitsAtBreak == stInfo.uiWordUnits;
    if (bAtBlanks)
        Wrap_AtBlanks(stWriter);
    else if (bBlankRun)
        Wrap_Word(stWriter);
    else
        Wrap_HardBreak(stWriter, bBlank);
    ++stWriter.uiLine;
    stInfo.ucPrevBlank = 0;
    stInfo.uiBreakLength = 0;
    stInfo.uiWordUnitsAtBreak = 0;
    stInfo.uiWordUnits = stWriter.Get_Line().uiWordUnits;
    return bAtBlanks ? E_WRAP_BLANK : E_WRAP_STORE;
}

/** Store a unit that has been noted. */
void Store_Unit(LineWriter &stWriter, uint16_t usUnit)
{
    CaptionLineTable &stTable = stWriter.stTable;
    stTable.pusTextBuf[stTable.uiWritePos++] = usUnit;
    ++stWriter.uiLength;
}

/** Lay the units out until there are no more, or the frame is full. */
void Lay_Out(LineWriter &stWriter, const uint16_t *pusUnit, const uint16_t *pusEnd)
{
    while (pusUnit < pusEnd) {
        const bool bBlank = Is_Blank(*pusUnit);
        Note_Unit(stWriter, bBlank);
        if (stWriter.uiLength >= LINE_UNITS) {
            const WrapResult eResult = Wrap_Line(stWriter, bBlank);
            if (eResult == E_WRAP_FULL) return;
            if (eResult == E_WRAP_BLANK) {
                // Blanks behind the cut go; a tab begins the new line.
                while (pusUnit < pusEnd && *pusUnit == BLANK) ++pusUnit;
                continue;
            }
        }
        if (stWriter.stTable.uiWritePos >= TEXT_BUF_UNITS) break;
        Store_Unit(stWriter, bBlank ? BLANK : *pusUnit);
        ++pusUnit;
    }
    stWriter.stInfo.puiLineLength[stWriter.uiLine] = stWriter.uiLength;
    stWriter.stInfo.uiLineIndex = stWriter.uiLine;
}

/** How a line went into the output text. */
enum AppendResult : uint32_t { E_APPEND_DONE, E_APPEND_STOP };

void Put_Byte(QuibCaptionParserInfo &stInfo, uint32_t uiByte)
{
    stInfo.aucOutText[stInfo.uiOutTextLength++] = static_cast<uint8_t>(uiByte);
}

/** A line's text: units, or bytes as they go out. */
struct LineText {
    const uint16_t *pusUnits;
    uint32_t uiUnits;
    const uint8_t *pucBytes;
    uint32_t uiBytes; // 0 = the line stands as units
};

LineText Get_LineText(const CaptionLineTable &stTable, const CaptionLine &stLine)
{
    if (stLine.uiOutBytes == 0) return {stTable.pusTextBuf + stLine.uiStart, stLine.uiLength, nullptr, 0};
    const uint8_t *const pucStore = reinterpret_cast<const uint8_t *>(stTable.pusTextBuf);
    return {nullptr, stLine.uiLength, pucStore + stLine.uiStart, stLine.uiOutBytes};
}

/** Put a character of code-page text behind the output text, as far as there is room for two bytes. */
bool Put_AnsiUnit(QuibCaptionParserInfo &stInfo, uint32_t uiUnit)
{
    if (stInfo.uiOutTextLength > LAST_PAIR_POS) return false;
    if (uiUnit >= 0x80) Put_Byte(stInfo, uiUnit >> 8); // double-byte, or a high single byte
    Put_Byte(stInfo, uiUnit & 0xFF);
    return true;
}

void Put_AnsiText(QuibCaptionParserInfo &stInfo, const LineText &stText)
{
    if (stText.uiBytes != 0 && stInfo.uiOutTextLength + stText.uiBytes <= LAST_PAIR_POS) {
        std::memcpy(stInfo.aucOutText + stInfo.uiOutTextLength, stText.pucBytes, stText.uiBytes);
        stInfo.uiOutTextLength += stText.uiBytes;
        return;
    }
    const uint8_t *pucByte = stText.pucBytes;
    for (uint32_t uiUnit = 0; uiUnit < stText.uiUnits; ++uiUnit) {
        uint32_t uiCode = 0;
        if (stText.uiBytes == 0)
            uiCode = stText.pusUnits[uiUnit];
        else if (uiCode = *pucByte++; uiCode == 0 || uiCode >= 0x80)
            uiCode = uiCode << 8 | *pucByte++;
        if (!Put_AnsiUnit(stInfo, uiCode)) return;
    }
}

AppendResult Append_AnsiLine(QuibCaptionParserInfo &stInfo, const LineText &stText, bool bMerged)
{
    if (stInfo.uiOutTextLength > 0) {
        if (stInfo.uiOutTextLength > LAST_PAIR_POS) {
            if (bMerged)
                __android_log_print(ZYR_LOG_ERROR, HANDLER_LOG_TAG, "TextLength:%d", stInfo.uiOutTextLength);
            return E_APPEND_STOP;
        }
        Put_Byte(stInfo, '\n');
    }
    Put_AnsiText(stInfo, stText);
    return E_APPEND_DONE;
}

AppendResult Append_Utf16Line(QuibCaptionParserInfo &stInfo, const LineText &stText)
{
    const uint32_t uiBytes = 2 * stText.uiUnits;
    if (stInfo.uiOutTextLength > 0) {
        if (stInfo.uiOutTextLength > LAST_PAIR_POS - 2) return E_APPEND_STOP;
        Put_Byte(stInfo, '\n');
        Put_Byte(stInfo, 0);
    }
    if (stInfo.uiOutTextLength + uiBytes > TEXT_BYTES) return E_APPEND_STOP;
    const void *const pvText =
        stText.uiBytes == 0 ? static_cast<const void *>(stText.pusUnits) : stText.pucBytes;
    std::memcpy(stInfo.aucOutText + stInfo.uiOutTextLength, pvText, uiBytes);
    stInfo.uiOutTextLength += uiBytes;
    return E_APPEND_DONE;
}

/** Copy UTF-8 text with room for a zero behind it. @return its bytes; 0 without room */
uint32_t Put_Utf8Text(uint8_t *pucTarget, uint32_t uiRoom, const LineText &stText)
{
    if (stText.uiBytes == 0)
        return static_cast<uint32_t>(_UnicodeToUTF8(stText.pusUnits, static_cast<int32_t>(stText.uiUnits),
                                                    pucTarget, static_cast<int32_t>(uiRoom)));
    if (stText.uiBytes >= uiRoom) return 0;
    std::memcpy(pucTarget, stText.pucBytes, stText.uiBytes);
    return stText.uiBytes;
}

AppendResult Append_Utf8Line(QuibCaptionParserInfo &stInfo, const LineText &stText)
{
    if (stInfo.uiOutTextLength > 0) {
        if (stInfo.uiOutTextLength + 1 > TEXT_BYTES) return E_APPEND_STOP;
        Put_Byte(stInfo, '\n');
    }
    if (stInfo.uiOutTextLength + 2 * stText.uiUnits > TEXT_BYTES) return E_APPEND_STOP;
    uint8_t *const pucTarget = stInfo.aucOutText + stInfo.uiOutTextLength;
    const uint32_t uiRoom = TEXT_BYTES - stInfo.uiOutTextLength;
    const uint32_t uiBytes = Put_Utf8Text(pucTarget, uiRoom, stText);
    if (uiBytes == 0) std::memset(pucTarget, 0, uiRoom);
    stInfo.uiOutTextLength += uiBytes;
    return E_APPEND_DONE;
}

/** Put one line behind the output text. */
AppendResult Append_Line(const CaptionLineTable &stTable, uint32_t uiLine, bool bMerged)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    const LineText stText = Get_LineText(stTable, stTable.astLine[uiLine]);
    AppendResult eResult = E_APPEND_DONE;
    switch (stInfo.uiOutputTextCharacterSet) {
    case E_OUTPUT_CHARSET_ANSI: eResult = Append_AnsiLine(stInfo, stText, bMerged); break;
    case E_OUTPUT_CHARSET_UTF16: eResult = Append_Utf16Line(stInfo, stText); break;
    default: eResult = Append_Utf8Line(stInfo, stText); break;
    }
    if (eResult == E_APPEND_DONE) ++stInfo.uiOutLineNums;
    return eResult;
}

// A whole frame of such lines needs no tests of the room: a unit is three bytes at most.
static_assert(ZYR_LINE_MAX * (LINE_UNITS * 3 + 2) + COPY_BYTES <= TEXT_BYTES);

/** Fill the output text with a frame that stands as it goes out, in so many bytes. */
void Copy_OutText(QuibCaptionParserInfo &stInfo, CaptionLineTable &stTable, uint32_t uiBytes)
{
    const uint8_t *const pucStore = reinterpret_cast<const uint8_t *>(stTable.pusTextBuf);
    uint8_t *const pucOut = stInfo.aucOutText;
    const uint32_t uiLastBytes = std::min(stInfo.uiOutTextLength, TEXT_BYTES);
    uint32_t uiByte = 0;
    for (; uiByte < uiBytes; uiByte += COPY_BYTES)
        std::memcpy(pucOut + uiByte, pucStore + uiByte, COPY_BYTES);
    std::memset(pucOut + uiBytes, 0, COPY_BYTES);      // what the last step copied too much
    for (; uiByte < uiLastBytes; uiByte += COPY_BYTES) // the rest of the last text
        std::memset(pucOut + uiByte, 0, COPY_BYTES);
    stInfo.uiOutTextLength = uiBytes;
    stTable.uiLineNums = stInfo.uiLineIndex; // all of them are finished: no line of blanks is among them
    stInfo.uiOutLineNums = stTable.uiLineNums;
}

/** Fill the output text with a frame that stands as units, or in part as it goes out. */
[[gnu::noinline]] void Append_Lines(uint32_t uiStream)
{
    const CaptionLineTable &stTable = s_astLineTable[uiStream];
    Finish_CaptionLines(uiStream);
    Clear_OutputBlock();
    for (uint32_t uiLine = 0; uiLine < stTable.uiLineNums; ++uiLine)
        if (stTable.astLine[uiLine].uiLength > 0 && Append_Line(stTable, uiLine, false) == E_APPEND_STOP)
            return;
}

void Append_StreamLines(uint32_t uiStream)
{
    const CaptionLineTable &stTable = s_astLineTable[uiStream];
    const uint32_t uiLines = stTable.pusTextBuf == nullptr ? 0 : stTable.uiLineNums;
    __android_log_print(ZYR_LOG_ERROR, HANDLER_LOG_TAG, "iCount:%d, uiDispLineNums:%d", uiStream, uiLines);
    for (uint32_t uiLine = 0; uiLine < uiLines; ++uiLine) {
        __android_log_print(ZYR_LOG_ERROR, HANDLER_LOG_TAG, "iLineCount:%d, uiDispLineNums:%d", uiLine,
                            uiLines);
        if (stTable.astLine[uiLine].uiLength > 0 && Append_Line(stTable, uiLine, true) == E_APPEND_STOP)
            return;
    }
}

/** The time in which all frames of the streams are shown. */
void Merge_Times()
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    bool bFirst = true;
    stInfo.iOutStartPTS = 0;
    stInfo.iOutEndPTS = NO_NEXT_PTS;
    for (uint32_t uiStream = 0; uiStream < stInfo.uiStreamNums; ++uiStream) {
        const CaptionStreamState &stState = stInfo.astStreamState[uiStream];
        __android_log_print(ZYR_LOG_ERROR, HANDLER_LOG_TAG, "GetFramePTS[%d]:%d, %d", uiStream,
                            stState.iStartPTS, stState.iEndPTS);
        if (stState.iEndPTS <= 0) continue;
        if (bFirst || stState.iStartPTS > stInfo.iOutStartPTS) stInfo.iOutStartPTS = stState.iStartPTS;
        if (bFirst || stState.iEndPTS < stInfo.iOutEndPTS) stInfo.iOutEndPTS = stState.iEndPTS;
        bFirst = false;
    }
}

} // namespace

void Lay_Out_Text()
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    const uint32_t uiUnits = stInfo.uiConvLength < CONV_BUF_UNITS ? stInfo.uiConvLength : CONV_BUF_UNITS;
    stInfo.uiConvLength = 0;
    if (uiUnits == 0 || stInfo.uiLineIndex >= ZYR_LINE_MAX) return;

    LineWriter stWriter = {stInfo, s_astLineTable[stInfo.uiCurrStream], stInfo.uiLineIndex,
                           stInfo.puiLineLength[stInfo.uiLineIndex]};
    const uint16_t *pusUnit = stInfo.pusConvBuf;
    const uint16_t *const pusEnd = pusUnit + uiUnits;
    if (stWriter.uiLength == 0) {
        while (pusUnit < pusEnd && *pusUnit == BLANK) ++pusUnit;
        Start_EmptyLine(stWriter);
    }
    Lay_Out(stWriter, pusUnit, pusEnd);
}

void Convert_CaptionStringToBitmap(void)
{
    if (Is_StreamReady()) Lay_Out_Text();
}

void Break_OutputLine()
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    if (stInfo.uiLineIndex >= s_uiMaxLineNums) {
        LOG_PARSER("Line Count (%d) is more than %d!\n", stInfo.uiLineIndex, s_uiMaxLineNums);
        return;
    }
    uint32_t &uiLength = stInfo.puiLineLength[stInfo.uiLineIndex];
    if (uiLength == 0) return;
    if (stInfo.uiWordUnits == 0) {
        CaptionLineTable &stTable = s_astLineTable[stInfo.uiCurrStream];
        stTable.uiWritePos =
            stTable.astLine[stInfo.uiLineIndex].uiStart; // only blanks: their room is free again
        uiLength = 0;
    } else {
        if (stInfo.uiBreakLength != 0 && stInfo.uiWordUnits == stInfo.uiWordUnitsAtBreak)
            uiLength = stInfo.uiBreakLength;
        ++stInfo.uiLineIndex;
    }
    stInfo.ucPrevBlank = 0;
    stInfo.uiBreakLength = 0;
    stInfo.uiWordUnits = 0;
}

void Close_LastLine()
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    if (stInfo.uiLineIndex >= s_uiMaxLineNums) return;
    uint32_t &uiLength = stInfo.puiLineLength[stInfo.uiLineIndex];
    if (stInfo.uiWordUnits == stInfo.uiWordUnitsAtBreak) uiLength = stInfo.uiBreakLength;
    if (uiLength != 0) ++stInfo.uiLineIndex;
}

void Finish_CaptionLines(uint32_t uiStream)
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    CaptionLineTable &stTable = s_astLineTable[uiStream];
    uint32_t uiLines =
        stInfo.uiLineIndex < ZYR_LINE_MAX ? stInfo.uiLineIndex : static_cast<uint32_t>(ZYR_LINE_MAX);
    if (uiLines > 0 && stInfo.puiLineLength[uiLines - 1] != 0 &&
        stTable.astLine[uiLines - 1].uiWordUnits == 0)
        --uiLines;
    stTable.uiLineNums = uiLines;
    for (uint32_t uiLine = 0; uiLine < uiLines; ++uiLine)
        stTable.astLine[uiLine].uiLength = stInfo.puiLineLength[uiLine];
}

void Clear_OutputBlock()
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    // Only the last text and the byte or two behind it can be other than zero.
    std::memset(stInfo.aucOutText, 0, std::min(stInfo.uiOutTextLength, TEXT_BYTES));
    stInfo.iOutStartPTS = 0;
    stInfo.iOutEndPTS = 0;
    stInfo.uiOutLineNums = 0;
    stInfo.uiOutTextLength = 0;
}

void Clear_LineTable(uint32_t uiStream)
{
    CaptionLineTable &stTable = s_astLineTable[uiStream];
    stTable.uiWritePos = 0;
    stTable.uiWordStart = 0;
    stTable.uiInBlank = 0;
    stTable.uiLineNums = 0;
    stTable.uiOutBytes = 0;
}

void Show_StreamLines()
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    CaptionLineTable &stTable = s_astLineTable[stInfo.uiCurrStream];
    const uint32_t uiBytes = stInfo.uiLineIndex == 0 ? 0 : stTable.uiOutBytes;
    if (uiBytes != 0 || stInfo.uiLineIndex == 0)
        Copy_OutText(stInfo, stTable, uiBytes);
    else
        Append_Lines(stInfo.uiCurrStream);
    stInfo.uiOutStreamIndex = stInfo.uiCurrStream;
    stInfo.iOutStartPTS = stInfo.astStreamState[stInfo.uiCurrStream].iStartPTS;
    stInfo.iOutEndPTS = stInfo.astStreamState[stInfo.uiCurrStream].iEndPTS;
}

void Display_LineBitmapDataToDisplayBuffer(void)
{
    if (Is_StreamReady()) Show_StreamLines();
}

void Display_LineBitmapDataToDisplayBufferEx(void)
{
    if (pstQuibCaptionParserInfo == nullptr) return;
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    Clear_OutputBlock();
    Merge_Times();
    for (uint32_t uiStream = 0; uiStream < stInfo.uiStreamNums && uiStream < ZYR_STREAM_MAX; ++uiStream)
        Append_StreamLines(uiStream);
    stInfo.uiOutTextLength += 2; // the two closing zero bytes are counted here
}

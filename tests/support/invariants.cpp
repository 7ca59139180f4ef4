#include "support/invariants.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>

#include "format/sami/sami_index.h"
#include "format/ssa/frame_list.h"
#include "record/parser_state.h"
#include "zyr/zyr_host.h"

namespace
{

constexpr uint32_t WALKED_NODES = 512; // of long lists as many are looked at; the whole list at some calls
constexpr uint32_t WHOLE_EVERY = 256;  // so many calls
constexpr uint32_t STYLES_MAX = 4096;
// A frame's lines, whatever has been cut off or given back: as units, or as they go out, with three bytes a unit at
// most and a newline of two.
constexpr uint32_t FRAME_UNITS = ZYR_LINE_MAX * LINE_UNITS;
constexpr uint32_t OUT_FRAME_UNITS = (ZYR_LINE_MAX * (3 * LINE_UNITS + 2) + 1) / 2;

uint32_t s_uiChecks;

#define HOLDS(bHolds, pszWhat)                                                                               \
    if (!(bHolds)) return pszWhat

const QuibCaptionParserInfo &Get_Record()
{
    return *pstQuibCaptionParserInfo;
}

/** @return entries of a list that this call looks at */
uint32_t Get_Walked(uint32_t uiNums)
{
    return s_uiChecks % WHOLE_EVERY == 0 ? uiNums : std::min(uiNums, WALKED_NODES);
}

/** Touch both ends of a block: the address sanitizer knows whether it is there, and as large. */
void Touch(const void *pvBlock, size_t uiBytes)
{
    if (pvBlock == nullptr || uiBytes == 0) return;
    const auto *const pucBlock = static_cast<const volatile uint8_t *>(pvBlock);
    static_cast<void>(pucBlock[0]);
    static_cast<void>(pucBlock[uiBytes - 1]);
}

/** @return bytes of the well-formed UTF-8 character at the start, 0 for none */
uint32_t Get_Utf8Bytes(const uint8_t *pucText, uint32_t uiLeft)
{
    const uint32_t uiLead = pucText[0];
    if (uiLead < 0x80) return 1;
    const uint32_t uiBytes = uiLead < 0xC2   ? 0
                             : uiLead < 0xE0 ? 2
                             : uiLead < 0xF0 ? 3
                             : uiLead < 0xF5 ? 4
                                             : 0;
    if (uiBytes == 0 || uiBytes > uiLeft) return 0;
    uint32_t uiCode = uiLead & (0x7Fu >> uiBytes);
    for (uint32_t uiByte = 1; uiByte < uiBytes; ++uiByte) {
        if ((pucText[uiByte] & 0xC0) != 0x80) return 0;
        uiCode = uiCode << 6 | (pucText[uiByte] & 0x3Fu);
    }
    const bool bLong = uiCode < (uiBytes == 2 ? 0x80u : uiBytes == 3 ? 0x800u : 0x10000u);
    return bLong || (uiCode >= 0xD800 && uiCode < 0xE000) || uiCode > 0x10FFFF ? 0 : uiBytes;
}

bool Is_Utf8(const uint8_t *pucText, uint32_t uiBytes)
{
    while (uiBytes > 0) {
        const uint32_t uiChar = Get_Utf8Bytes(pucText, uiBytes);
        if (uiChar == 0) return false;
        pucText += uiChar;
        uiBytes -= uiChar;
    }
    return true;
}

const char *Check_Output(const QuibCaptionParserInfo &stInfo)
{
    const uint32_t uiBytes = stInfo.uiOutTextLength;
    HOLDS(uiBytes <= ZYR_OUT_TEXT_BYTES, "the output text fits its block");
    // Merged output counts its two zeros; then these are the last two bytes.
    const uint32_t uiZeros = uiBytes > ZYR_OUT_TEXT_BYTES - 2 ? ZYR_OUT_TEXT_BYTES - 2 : uiBytes;
    const uint8_t *const pucEnd = stInfo.aucOutText + ZYR_OUT_TEXT_BYTES;
    HOLDS(std::all_of(stInfo.aucOutText + uiZeros, pucEnd, [](uint8_t ucByte) { return ucByte == 0; }),
          "zeros follow the output text, two at least");
    HOLDS(stInfo.uiOutLineNums <= ZYR_LINE_MAX * ZYR_STREAM_MAX, "a stream gives six lines at most");
    HOLDS(stInfo.uiOutStreamIndex < ZYR_STREAM_MAX, "the output is of a stream");
    HOLDS(stInfo.uiOutputTextCharacterSet <= E_OUTPUT_CHARSET_UTF8, "the character set is one of the four");
    HOLDS(stInfo.uiOutputTextCharacterSet != E_OUTPUT_CHARSET_UTF8 || Is_Utf8(stInfo.aucOutText, uiZeros),
          "text in character set 3 is UTF-8");
    HOLDS(stInfo.aucClassName[ZYR_CLASS_NAME_BYTES - 1] == 0, "a class name ends in a zero");
    return nullptr;
}

const char *Check_Work(const QuibCaptionParserInfo &stInfo)
{
    HOLDS(stInfo.uiConvLength <= CONV_BUF_UNITS, "the convert buffer holds 300 units at most");
    HOLDS(stInfo.uiLineIndex <= ZYR_LINE_MAX, "the line being filled is one of six, or none");
    HOLDS(stInfo.ucPrevBlank <= 1, "the last unit was a blank or not");
    HOLDS(stInfo.uiBreakLength <= LINE_UNITS, "a blank run begins inside its line");
    for (uint32_t uiLine = 0; stInfo.puiLineLength != nullptr && uiLine < ZYR_LINE_MAX; ++uiLine)
        HOLDS(stInfo.puiLineLength[uiLine] <= LINE_UNITS, "a line has 64 units at most");
    HOLDS(std::memchr(stInfo.szSubtitleFileName, 0, ZYR_FILE_NAME_BYTES) != nullptr, "the file name ends");
    return nullptr;
}

const char *Check_Classes(const QuibCaptionParserInfo &stInfo)
{
    HOLDS(stInfo.uiClassNums <= ZYR_CLASS_MAX, "there are seven classes at most");
    HOLDS(stInfo.uiCurrClass < ZYR_CLASS_MAX, "the class being read is one of seven");
    for (const CaptionClassInfo &stClass : stInfo.astClassInfo) {
        HOLDS(stClass.uiNameLength <= ZYR_CLASS_NAME_UNITS, "a class name has 12 units at most");
        HOLDS(stClass.uiAltNameNums <= ZYR_CLASS_MAX, "a class has seven further names at most");
        for (const uint32_t uiLength : stClass.auiAltNameLength)
            HOLDS(uiLength <= ZYR_CLASS_NAME_UNITS, "a further name has 12 units at most");
    }
    return nullptr;
}

const char *Check_Streams(const QuibCaptionParserInfo &stInfo)
{
    HOLDS(stInfo.uiStreamNums <= ZYR_STREAM_MAX, "there are five streams at most");
    HOLDS(stInfo.uiCurrStream <= ZYR_STREAM_MAX, "the stream being read is one of five, or none");
    for (uint32_t uiStream = 0; uiStream < ZYR_STREAM_MAX; ++uiStream) {
        const CaptionStreamInfo &stStream = stInfo.astStreamInfo[uiStream];
        HOLDS(stInfo.astStreamState[uiStream].uiClassIndex < ZYR_CLASS_MAX,
              "a stream reads one of seven classes");
        HOLDS(stStream.iStreamDataSize <= static_cast<int32_t>(STREAM_BUF_BYTES), "a read fits its buffer");
        HOLDS(stStream.iStreamBufIndex >= 0 &&
                  stStream.iStreamBufIndex <= static_cast<int32_t>(STREAM_BUF_BYTES),
              "the next byte is in the buffer or right behind it");
        HOLDS(stStream.pucStreamBuf != nullptr || stStream.iStreamDataSize <= 0,
              "bytes are held in a buffer");
        HOLDS(uiStream >= stInfo.uiStreamNums ||
                  (stStream.pucStreamBuf != nullptr && s_astLineTable[uiStream].pusTextBuf != nullptr),
              "a stream has its buffers");
    }
    return nullptr;
}

/** Bounds of a line that stands as units, or as bytes. */
const char *Check_Line(const CaptionLine &stLine, const CaptionLineTable &stTable)
{
    HOLDS(stLine.uiLength <= LINE_UNITS, "a finished line has 64 units at most");
    const bool bBytes = stLine.uiOutBytes != 0;
    const uint64_t ullEnd = uint64_t{stLine.uiStart} + (bBytes ? stLine.uiOutBytes : stLine.uiLength);
    HOLDS(ullEnd <= TEXT_BUF_UNITS * (bBytes ? sizeof(uint16_t) : 1),
          "a finished line is in its text buffer");
    HOLDS(bBytes || ullEnd <= stTable.uiWritePos || stTable.uiWritePos == 0,
          "a finished line has been written");
    return nullptr;
}

const char *Check_Lines()
{
    for (const CaptionLineTable &stTable : s_astLineTable) {
        const uint32_t uiMost = stTable.uiOutBytes != 0 ? OUT_FRAME_UNITS : FRAME_UNITS;
        HOLDS(stTable.uiWritePos <= uiMost, "what is cut off a frame gives its room back");
        HOLDS(stTable.uiLineNums <= ZYR_LINE_MAX, "a frame has six lines at most");
        HOLDS(stTable.uiWordStart <= LINE_UNITS && stTable.uiInBlank <= 1, "a word begins on its line");
        for (uint32_t uiLine = 0; stTable.pusTextBuf != nullptr && uiLine < stTable.uiLineNums; ++uiLine)
            if (const char *const pszBroken = Check_Line(stTable.astLine[uiLine], stTable)) return pszBroken;
    }
    return nullptr;
}

const char *Check_Tags()
{
    if (s_pstTagControlInfo == nullptr) return nullptr;
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    HOLDS(stTag.uiTagLength <= TAG_BUF_UNITS, "the tag buffer holds 512 units at most");
    HOLDS(stTag.iTagQueueCount >= 0 && stTag.iTagQueueCount <= TAG_QUEUE_MAX, "50 tags are open at most");
    HOLDS(stTag.uiNextTagElement < TAG_QUEUE_MAX, "the next free element is one of 50");
    HOLDS(stTag.uiSelectedClass <= ZYR_CLASS_MAX, "a P tag selects a class or none");
    HOLDS(stTag.uiClassNameLength <= ZYR_CLASS_NAME_UNITS, "a CLASS is cut to 12 units");
    for (int32_t iTag = 0; iTag < stTag.iTagQueueCount; ++iTag)
        HOLDS(stTag.auiTagQueue[iTag] < TAG_QUEUE_MAX &&
                  stTag.astTagElement[stTag.auiTagQueue[iTag]].usTagType != 0,
              "an open tag has an element");
    const auto fnOpen = [](const TagElement &stElement) { return stElement.usTagType != 0; };
    HOLDS(std::count_if(std::begin(stTag.astTagElement), std::end(stTag.astTagElement), fnOpen) ==
              stTag.iTagQueueCount,
          "only open tags have an element");
    return nullptr;
}

const char *Check_SamiIndex()
{
    HOLDS(s_uiFrameInfoNums <= s_uiFrameInfoMax, "the index holds what the file's size allows for");
    HOLDS(s_uiFrameInfoNums == 0 || s_pstFrameInfoArray != nullptr, "entries stand in memory");
    if (s_pstFrameInfoArray == nullptr) return nullptr;
    for (const uint32_t uiCursor : s_auiClassFrameCursor)
        HOLDS(uiCursor <= s_uiFrameInfoNums, "a cursor is on an entry or behind the last one");
    if (s_eCaptionFormat != E_CAPTION_FORMAT_SAMI || s_uiFrameInfoNums == 0) return nullptr;
    Touch(s_pstFrameInfoArray, s_uiFrameInfoNums * sizeof(SamiFrameInfo));
    const uint32_t uiWalked = Get_Walked(s_uiFrameInfoNums);
    for (uint32_t uiFrame = 0; uiFrame < uiWalked; ++uiFrame) {
        const SamiFrameInfo &stFrame = s_pstFrameInfoArray[uiFrame];
        HOLDS(stFrame.uiClassIndex <= ZYR_CLASS_MAX, "an entry has a class or none");
        HOLDS(uiFrame == 0 || s_pstFrameInfoArray[uiFrame - 1].iPTS <= stFrame.iPTS,
              "entries are in time order");
    }
    return nullptr;
}

const char *Check_SsaIndex()
{
    const CaptionFrameList &stList = s_stCaptionFrameList;
    if (stList.pastNode == nullptr) return stList.uiNodeNum == 0 ? nullptr : "nodes stand in memory";
    HOLDS(stList.uiNodeNum + 2 <= stList.uiCapacity, "the nodes and both sentinels have room");
    HOLDS(stList.uiCurrNode <= Get_TailNode(), "the cursor is on a node or a sentinel");
    HOLDS(stList.pastNode[Get_TailNode()].llFilePos == -1, "the tail closes the list");
    Touch(stList.pastNode, stList.uiCapacity * sizeof(CaptionFrameNode));
    const uint32_t uiWalked = Get_Walked(stList.uiNodeNum);
    for (uint32_t uiNode = 2; uiNode <= uiWalked; ++uiNode)
        HOLDS(stList.pastNode[uiNode - 1].uiPTS <= stList.pastNode[uiNode].uiPTS, "nodes are in time order");
    return nullptr;
}

const char *Check_HeaderText(const QuibCaptionParserInfo &stInfo, const uint16_t *pusText, uint32_t uiUnits)
{
    if (pusText == nullptr) return uiUnits == 0 ? nullptr : "a header text of no place has no units";
    const ptrdiff_t llStart = pusText - stInfo.ausSSAHeaderText;
    HOLDS(llStart >= 0 && llStart + static_cast<ptrdiff_t>(uiUnits) < ZYR_SSA_HEADER_UNITS,
          "a header text and its zero stand in the shared units");
    HOLDS(pusText[uiUnits] == 0, "a zero follows a header text");
    return nullptr;
}

const char *Check_Styles(const QuibCaptionParserInfo &stInfo)
{
    uint32_t uiStyles = 0;
    const SSAStyleInfo *const pstUsed = stInfo.stSSAFrameInfo.pstStyle;
    bool bFound = pstUsed == nullptr;
    for (const SSAStyleNode *pstNode = stInfo.pstSSAStyleList; pstNode != nullptr;
         pstNode = pstNode->pstNext) {
        HOLDS(++uiStyles <= STYLES_MAX, "the styles come to an end");
        bFound = bFound || &pstNode->stStyle == pstUsed;
        if (bFound && uiStyles >= Get_Walked(STYLES_MAX)) break;
    }
    HOLDS(bFound, "a line's style is one of the list");
    return nullptr;
}

const char *Check_Headers(const QuibCaptionParserInfo &stInfo)
{
    HOLDS(stInfo.stSubViewerInfo.uiFontNameLength <= ZYR_SUBVIEWER_FONT_UNITS,
          "a font name has 30 units at most");
    const char *pszBroken = Check_HeaderText(stInfo, stInfo.pusSSATitle, stInfo.uiSSATitleLength);
    if (pszBroken == nullptr)
        pszBroken = Check_HeaderText(stInfo, stInfo.pusSSAOriginalScript, stInfo.uiSSAOriginalScriptLength);
    if (pszBroken == nullptr)
        pszBroken = Check_HeaderText(stInfo, stInfo.pusSSAScriptType, stInfo.uiSSAScriptTypeLength);
    return pszBroken != nullptr ? pszBroken : Check_Styles(stInfo);
}

const char *Check_Statics()
{
    HOLDS(s_uiConvBufSize <= CONV_BUF_UNITS && s_uiMaxLineNums <= ZYR_LINE_MAX &&
              s_uiStreamBufSize <= STREAM_BUF_BYTES,
          "limits are those of the buffers at most");
    HOLDS(s_eCaptionFormat <= E_CAPTION_FORMAT_NONE, "the format is one of four, or none");
    HOLDS(s_hOpenedFile == nullptr || zyr_host_openFiles() > 0, "the opened file is open");
    return nullptr;
}

/** Every buffer is there, as large as it must be, and belongs to one place. */
const char *Check_Buffers(const QuibCaptionParserInfo &stInfo)
{
    const void *apvBlock[4 + 2 * ZYR_STREAM_MAX] = {};
    size_t uiBlocks = 0;
    bool bShared = false;
    const auto fnOwn = [&](const void *pvBlock, size_t uiBytes) {
        Touch(pvBlock, uiBytes);
        if (pvBlock == nullptr) return;
        bShared = bShared || std::find(apvBlock, apvBlock + uiBlocks, pvBlock) != apvBlock + uiBlocks;
        apvBlock[uiBlocks++] = pvBlock;
    };
    fnOwn(&stInfo, sizeof(stInfo));
    fnOwn(stInfo.pusConvBuf, CONV_BUF_UNITS * sizeof(uint16_t));
    fnOwn(stInfo.puiLineLength, ZYR_LINE_MAX * sizeof(uint32_t));
    fnOwn(s_pstTagControlInfo, sizeof(TagControlInfo));
    for (uint32_t uiStream = 0; uiStream < ZYR_STREAM_MAX; ++uiStream) {
        fnOwn(stInfo.astStreamInfo[uiStream].pucStreamBuf, STREAM_BUF_BYTES);
        fnOwn(s_astLineTable[uiStream].pusTextBuf, TEXT_BUF_UNITS * sizeof(uint16_t));
    }
    HOLDS(!bShared, "no two buffers are one");
    return nullptr;
}

#undef HOLDS

} // namespace

const char *Find_BrokenInvariant()
{
    ++s_uiChecks;
    for (const auto pfCheck : {Check_Statics, Check_Tags, Check_Lines, Check_SamiIndex, Check_SsaIndex})
        if (const char *const pszBroken = pfCheck()) return pszBroken;
    if (pstQuibCaptionParserInfo == nullptr) return nullptr;
    for (const auto pfCheck :
         {Check_Buffers, Check_Output, Check_Work, Check_Classes, Check_Streams, Check_Headers})
        if (const char *const pszBroken = pfCheck(Get_Record())) return pszBroken;
    return nullptr;
}

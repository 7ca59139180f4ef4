/*
 * The engine's state beside the record: what its modules share. Everything else that a module keeps is static
 * in its own source file. One set per process; see zyr/quib_caption.h for the record.
 */
#pragma once

#include <cstdint>

#include "zyr/quib_caption.h"

/** Encoding of the open file's text. */
enum TextEncoding : uint32_t {
    E_TEXT_ENCODING_ANSI = 0, // one or two bytes a character, in some code page
    E_TEXT_ENCODING_UTF16LE = 1,
    E_TEXT_ENCODING_UTF16BE = 2,
    E_TEXT_ENCODING_UTF8 = 3,
};

/** Bits of s_uiParsingOption. */
enum ParsingOption : uint32_t {
    E_PARSING_OPTION_SHOW_UNKNOWN_TAGS = 1, // markup that is not known stays in the text
    E_PARSING_OPTION_SINGLE_BYTE = 2,       // every byte of a code-page file is one character
};

constexpr uint32_t CONV_BUF_UNITS = 300;
constexpr uint32_t STREAM_BUF_BYTES = 65536; // that a read buffer holds of the file
constexpr uint32_t STREAM_PAD_BYTES = 64;    // zeros behind what it holds: blocks may be looked at whole
constexpr uint32_t STREAM_BUF_ROOM = STREAM_BUF_BYTES + STREAM_PAD_BYTES;
constexpr uint32_t LINE_UNITS = 64;        // units of an output line
constexpr uint32_t TEXT_BUF_UNITS = 15360; // units of a stream's text buffer
constexpr uint32_t TAG_BUF_UNITS = 512;
constexpr uint32_t TAG_TEXT_UNITS =
    500; // units of ausTagBuf that markup may fill; more are read but not kept
constexpr int32_t TAG_QUEUE_MAX = 50;
constexpr int32_t NO_NEXT_PTS = 0x0FFFFFFF;  // iNextPTS: no stream has a next frame
constexpr int32_t OPEN_END_PTS = 0x7FFFFFFF; // end time of a frame whose end nobody tells

/** One output line of a frame. */
struct CaptionLine {
    uint32_t uiStart; // first unit in pusTextBuf, or first byte of a line that stands there as it goes out
    uint32_t uiWordUnits; // units that are not blanks
    uint32_t uiLength;    // units, once the frame is finished; until then in the record's puiLineLength
    uint32_t uiOutBytes;  // bytes of a line that stands as it goes out; 0 = the line stands there as units
};

/** The output lines of one stream's frame. */
struct CaptionLineTable {
    uint16_t *pusTextBuf; // TEXT_BUF_UNITS units
    uint32_t uiWritePos;  // next free unit of pusTextBuf
    uint32_t uiWordStart; // where, in the current line, the word being written begins
    uint32_t uiInBlank;   // 1 while the last unit stored is a blank
    uint32_t uiLineNums;  // finished lines
    uint32_t uiOutBytes;  // of a whole frame that stands from pusTextBuf on as it goes out; 0 = it does not
    CaptionLine astLine[ZYR_LINE_MAX];
};

/** An open tag. */
struct TagElement {
    uint16_t usTagType;    // tag id; 0 = the element is free
    uint32_t uiSavedStyle; // style that the tag replaced: the font colour, or the old state of its mode bit
};

/** State of the markup machinery. */
struct TagControlInfo {
    uint32_t uiTagLength; // units in ausTagBuf
    uint16_t ausTagBuf[TAG_BUF_UNITS];
    int32_t iTagQueueCount;              // open tags
    uint32_t auiTagQueue[TAG_QUEUE_MAX]; // their elements, oldest first
    uint32_t uiNextTagElement;           // where the search for a free element begins
    TagElement astTagElement[TAG_QUEUE_MAX];
    int32_t iSyncStart;           // START of the last SYNC tag, ms
    int32_t iSyncEnd;             // its END, or OPEN_END_PTS
    const uint16_t *pusClassName; // CLASS of the last P tag, in the tag's own text; NULL = none
    uint32_t uiClassNameLength;   // units of it
    uint32_t uiSelectedClass;     // class that the last P tag selected; ZYR_CLASS_MAX = none
    bool bLogged;                 // the last SYNC or P tag has led to a log line
};

extern uint32_t s_uiFontColor;     // font colour that every frame starts with
extern uint32_t s_uiFontEdgeColor; // kept for the host
extern uint32_t s_uiFontHeight;    // font height that every frame starts with
extern uint32_t s_eCaptionFormat;  // CaptionFormat of the open file
extern CaptionLineTable s_astLineTable[ZYR_STREAM_MAX];
extern void *s_hSubtitleFile; // the file that is read
extern void *s_hOpenedFile;   // the file that the open path opened and must close; NULL = none
extern uint32_t s_uiParsingOption;
extern uint32_t s_uiTextEncoding;
extern uint32_t s_uiConvBufSize; // units; 0 while there are no buffers, as the next three
extern TagControlInfo *s_pstTagControlInfo;
extern uint32_t s_uiMaxLineNums;
extern uint32_t s_uiStreamBufSize; // bytes asked of every full read
extern int64_t s_llCaptionFileSize;

/** @return whether the record and all buffers that parsing a frame of the current stream needs are there. */
bool Is_StreamReady();

/** @return whether the record and the buffers that a header parser needs are there. */
bool Is_HeaderReady();

/** Descriptor of the current stream; only where Is_StreamReady() or Is_HeaderReady() holds. */
inline CaptionStreamInfo &Get_StreamInfo()
{
    return pstQuibCaptionParserInfo->astStreamInfo[pstQuibCaptionParserInfo->uiCurrStream];
}

/** Give the current frame its times, ms; its start is the last time handled. */
inline void Set_FrameTimes(uint32_t uiStart, uint32_t uiEnd)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    stInfo.iStartPTS = static_cast<int32_t>(uiStart);
    stInfo.iCurrPTS = stInfo.iStartPTS;
    stInfo.iEndPTS = static_cast<int32_t>(uiEnd);
}

/** @return bytes that a read buffer holds and that are not taken yet. Behind its end the size may be any result
 * of a failed read, however far below 0. */
inline int32_t Get_HeldBytes(const CaptionStreamInfo &stInfo)
{
    const bool bAny = stInfo.iStreamBufIndex < stInfo.iStreamDataSize;
    return bAny ? stInfo.iStreamDataSize - stInfo.iStreamBufIndex : 0;
}

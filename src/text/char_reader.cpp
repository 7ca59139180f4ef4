#include "text/char_reader.h"

#include <cstring>

#include <cstddef>

#include "record/engine_log.h"
#include "text/encoding.h"

namespace
{

/** What a read buffer holds of the file. */
struct StreamWindow {
    int64_t llStart;      // file position of the buffer's first byte
    int32_t iBytes;       // bytes held; 0 = nothing that could be used again
    uint32_t uiFillBytes; // bytes to ask for at the next refill; 0 = a full read
};

uint32_t s_uiReaderRound = 0; // how often the reader has begun anew

StreamWindow s_astStreamWindow[ZYR_STREAM_MAX] = {};

/** Where the reader left the file; anything else there means that somebody else moved it. -1 = not known. */
int64_t s_llReaderPos = -1;
void *s_hReaderFile = nullptr; // the file that this is known of

constexpr uint32_t SHORT_FILL_BYTES = 512; // most frames fit
constexpr uint32_t FILL_GROWTH = 8;        // a frame that does not fit is likely to be a long one
constexpr int64_t NEAR_BYTES = 4096;       // a jump forward by less than this is reading on
constexpr int64_t LOOK_AHEAD_BYTES = 12;   // so is one back over what was read to see a frame's end

StreamWindow &Get_Window()
{
    return s_astStreamWindow[pstQuibCaptionParserInfo->uiCurrStream];
}

/** Refill the used-up buffer. @return 1, or why there is no byte (logged) */
[[gnu::noinline]] int32_t Refill(void *hFile)
{
    CaptionStreamInfo &stInfo = Get_StreamInfo();
    if (stInfo.iStreamDataSize == NO_CAPTION_DATA) {
        LOG_PARSER("Get_CharCode() - No Caption Data!\n");
        return NO_CAPTION_DATA;
    }
    const int32_t iRead = Fill_StreamBuffer(hFile);
    if (iRead == 0) LOG_PARSER("Get_CharCode() - End of Caption File!\n");
    if (iRead < 0) LOG_PARSER("Get_CharCode() - QUIBCAPTCB_FileRead() Failed! (ERROR = %d)\n", iRead);
    if (iRead <= 0) return iRead;
    stInfo.iStreamBufIndex = 0;
    return 1;
}

inline int32_t Take_Byte(void *hFile, uint8_t *pucByte)
{
    CaptionStreamInfo &stInfo = Get_StreamInfo();
    const int32_t iResult = stInfo.iStreamBufIndex < stInfo.iStreamDataSize ? 1 : Refill(hFile);
    if (iResult > 0) *pucByte = stInfo.pucStreamBuf[stInfo.iStreamBufIndex++];
    return iResult;
}

int32_t Get_Utf16Char(void *hFile, uint16_t *pusChar)
{
    uint8_t aucByte[2];
    for (uint8_t &ucByte : aucByte) {
        const int32_t iResult = Take_Byte(hFile, &ucByte);
        if (iResult <= 0) return iResult;
    }
    *pusChar = Get_Utf16Unit(aucByte, Is_BigEndianText());
    return 2;
}

/** Continuation bytes that follow a lead byte; 0 for a byte that stands alone, -1 for one to pass over. */
int32_t Get_Utf8Continuations(uint8_t ucByte)
{
    if (ucByte < 0x80) return 0;
    if ((ucByte & 0xE0) == 0xC0) return 1;
    if ((ucByte & 0xF0) == 0xE0) return 2;
    return -1; // a stray continuation byte, or a character beyond U+FFFF, which 16 bits cannot hold
}

int32_t Get_Utf8Char(void *hFile, uint16_t *pusChar)
{
    int32_t iBytes = 0;
    int32_t iExpected = 0;
    uint32_t uiCode = 0;
    for (;;) {
        uint8_t ucByte = 0;
        const int32_t iResult = Take_Byte(hFile, &ucByte);
        if (iResult <= 0) return iResult;
        ++iBytes;
        if (iExpected > 0 && (ucByte & 0xC0) == 0x80) {
            uiCode = (uiCode << 6) | (ucByte & 0x3Fu);
            if (--iExpected > 0) continue;
            *pusChar = static_cast<uint16_t>(uiCode);
            return iBytes;
        }
        iExpected = Get_Utf8Continuations(ucByte); // a character cut short is dropped
        if (iExpected == 0) {
            *pusChar = ucByte;
            return iBytes;
        }
        uiCode = iExpected == 1 ? ucByte & 0x1Fu : ucByte & 0x0Fu;
    }
}

/** Let the host turn a double-byte character into a unit. @return bytes of the character that stay taken. */
int32_t Convert_DoubleByte(const uint8_t *pucBytes, uint16_t *pusChar)
{
    *pusChar = 0xFFFF;
    const int32_t iUsed = QUIBCAPTCB_ConvertANSI2Unicode(pucBytes, pusChar);
    if (iUsed == 2) return 2;
    CaptionStreamInfo &stInfo = Get_StreamInfo();
    if (iUsed == 1) {
        if (stInfo.iStreamBufIndex >= 1)
            --stInfo.iStreamBufIndex; // the second byte is the next character
        else
            LOG_PARSER("Get_CharCode() - Wrong Stream Buffer Index! [%d]\n", stInfo.iStreamBufIndex);
        return 2;
    }
    LOG_PARSER("Get_CharCode() - Invalid ANSI code! [0x%02X][0x%02X]\n", pucBytes[0], pucBytes[1]);
    return 2;
}

int32_t Get_AnsiChar(void *hFile, uint16_t *pusChar, int32_t iRawMode)
{
    uint8_t aucByte[2] = {};
    int32_t iResult = Take_Byte(hFile, &aucByte[0]);
    if (iResult <= 0) return iResult;
    if (aucByte[0] < 0x80 || (s_uiParsingOption & E_PARSING_OPTION_SINGLE_BYTE) != 0) {
        *pusChar = aucByte[0];
        return 1;
    }
    iResult = Take_Byte(hFile, &aucByte[1]);
    if (iResult <= 0) return iResult;
    if (iRawMode != 0) {
        *pusChar = 0xFFFF;
        return 2;
    }
    if (pstQuibCaptionParserInfo->uiOutputTextCharacterSet == E_OUTPUT_CHARSET_ANSI) {
        *pusChar = static_cast<uint16_t>((aucByte[0] << 8) | aucByte[1]);
        return 2;
    }
    return Convert_DoubleByte(aucByte, pusChar);
}

void Put_ZerosBehind(CaptionStreamInfo &stStream)
{
    std::memset(stStream.pucStreamBuf + stStream.iStreamDataSize, 0, STREAM_PAD_BYTES);
}

/** Seek to the file's start and read up to uiBytes bytes. @return bytes read, or a value below 1. */
int32_t Read_FileStart(void *hFile, uint32_t uiBytes)
{
    if (QUIBCAPTCB_FileSeek(hFile, 0, 0) < 0) return -1;
    return QUIBCAPTCB_FileRead(hFile, pstQuibCaptionParserInfo->astStreamInfo[0].pucStreamBuf, uiBytes);
}

/** Read the bytes that may be a byte order mark, even if they come one by one. @return bytes read, or
 * below 1. */
int32_t Read_Mark(void *hFile)
{
    constexpr uint32_t MARK_BYTES = 3;
    const uint32_t uiWanted = s_uiStreamBufSize < MARK_BYTES ? s_uiStreamBufSize : MARK_BYTES;
    int32_t iHeld = Read_FileStart(hFile, uiWanted);
    while (iHeld > 0 && static_cast<uint32_t>(iHeld) < uiWanted) {
        const int32_t iRead =
            QUIBCAPTCB_FileRead(hFile, pstQuibCaptionParserInfo->astStreamInfo[0].pucStreamBuf + iHeld,
                                uiWanted - static_cast<uint32_t>(iHeld));
        if (iRead <= 0) break;
        iHeld += iRead;
    }
    return iHeld;
}

/** Find the encoding of a file without a mark by reading it. */
uint32_t Scan_Encoding(void *hFile)
{
    CaptionStreamInfo &stInfo = pstQuibCaptionParserInfo->astStreamInfo[0];
    if (QUIBCAPTCB_FileSeek(hFile, 0, 0) < 0) return E_TEXT_ENCODING_ANSI;
    Utf8Count stCount = {};
    for (;;) {
        const int32_t iRead = QUIBCAPTCB_FileRead(hFile, stInfo.pucStreamBuf, s_uiStreamBufSize);
        if (iRead <= 0) return Decide_Encoding(stCount);
        if (Count_Utf8(&stCount, stInfo.pucStreamBuf, static_cast<uint32_t>(iRead)))
            return Decide_Encoding(stCount);
    }
}

} // namespace

int32_t Get_DecodedChar(void *hFile, uint16_t *pusChar, int32_t iRawMode)
{
    if (Is_Utf16Text()) return Get_Utf16Char(hFile, pusChar);
    return s_uiTextEncoding == E_TEXT_ENCODING_UTF8 ? Get_Utf8Char(hFile, pusChar)
                                                    : Get_AnsiChar(hFile, pusChar, iRawMode);
}

int64_t Tell_ReadPosition(void *hFile, int64_t *pllPos)
{
    const bool bKnown = s_llReaderPos >= 0 && hFile == s_hReaderFile;
    const int64_t llTold = bKnown ? s_llReaderPos : QUIBCAPTCB_FileTell(hFile);
    *pllPos = llTold - Get_HeldBytes(Get_StreamInfo());
    return llTold;
}

bool Get_KnownPosition(const void *hFile, int64_t *pllPos)
{
    *pllPos = s_llReaderPos - Get_HeldBytes(Get_StreamInfo());
    return s_llReaderPos >= 0 && hFile == s_hReaderFile;
}

int64_t Get_ReadPosition(void *hFile)
{
    int64_t llPos = 0;
    Tell_ReadPosition(hFile, &llPos);
    return llPos;
}

int64_t Ask_ReadPosition(void *hFile, int64_t *pllPos)
{
    const int64_t llTold = QUIBCAPTCB_FileTell(hFile);
    *pllPos = llTold - Get_HeldBytes(Get_StreamInfo());
    return llTold;
}

bool Is_ReaderAt(void *hFile, int64_t llPos)
{
    if (Get_StreamInfo().iStreamDataSize == NO_CAPTION_DATA) return false;
    int64_t llHere = 0;
    const int64_t llTold = Ask_ReadPosition(hFile, &llHere);
    const bool bMoved = s_llReaderPos >= 0 && llTold != s_llReaderPos;
    return llTold >= 0 && !bMoved && llHere == llPos;
}

int32_t Hold_NextByte(void *hFile)
{
    return Get_HeldBytes(Get_StreamInfo()) > 0 ? 1 : Refill(hFile);
}

int32_t Fill_StreamBuffer(void *hFile)
{
    CaptionStreamInfo &stInfo = Get_StreamInfo();
    StreamWindow &stWindow = Get_Window();
    uint32_t uiBytes = s_uiStreamBufSize;
    if (stWindow.uiFillBytes != 0 && stWindow.uiFillBytes < uiBytes) {
        uiBytes = stWindow.uiFillBytes;
        stWindow.uiFillBytes *= FILL_GROWTH;
    }
    const int32_t iRead = QUIBCAPTCB_FileRead(hFile, stInfo.pucStreamBuf, uiBytes);
    stInfo.iStreamDataSize = iRead;
    if (iRead < 0) s_llReaderPos = -1;
    if (iRead > 0) Put_ZerosBehind(stInfo);
    if (iRead != 0) {
        stWindow.llStart = s_llReaderPos;
        stWindow.iBytes = iRead > 0 && s_llReaderPos >= 0 ? iRead : 0;
        if (s_llReaderPos >= 0) s_llReaderPos += iRead;
    }
    return iRead;
}

bool Go_ToHeld(const void *hFile, int64_t llPos)
{
    const StreamWindow &stWindow = Get_Window();
    const uint64_t ullOffset = static_cast<uint64_t>(llPos - stWindow.llStart); // huge before its start
    const bool bHeld = ullOffset < static_cast<uint32_t>(stWindow.iBytes);
    if (!bHeld || s_llReaderPos < 0 || hFile != s_hReaderFile) return false;
    CaptionStreamInfo &stInfo = Get_StreamInfo();
    stInfo.iStreamDataSize = stWindow.iBytes;
    stInfo.iStreamBufIndex = static_cast<int32_t>(ullOffset);
    return true;
}

int64_t Move_ReadPosition(void *hFile, int64_t llPos, ReadAhead eReadAhead)
{
    CaptionStreamInfo &stInfo = Get_StreamInfo();
    StreamWindow &stWindow = Get_Window();
    const int64_t llEnd = stWindow.llStart + stWindow.iBytes;
    const bool bKnown =
        stWindow.iBytes > 0 && s_llReaderPos >= 0 && QUIBCAPTCB_FileTell(hFile) == s_llReaderPos;
    if (bKnown && llPos >= stWindow.llStart && llPos < llEnd) {
        if (s_llReaderPos != llEnd) { // another stream has read since
            s_llReaderPos = QUIBCAPTCB_FileSeek(hFile, llEnd, 0);
            if (s_llReaderPos < 0) return s_llReaderPos;
        }
        stInfo.iStreamDataSize = stWindow.iBytes;
        stInfo.iStreamBufIndex = static_cast<int32_t>(llPos - stWindow.llStart);
        if (eReadAhead == E_READ_AHEAD_FULL) stWindow.uiFillBytes = 0;
        return llPos;
    }
    s_llReaderPos = QUIBCAPTCB_FileSeek(hFile, llPos, 0);
    s_hReaderFile = hFile;
    if (s_llReaderPos < 0) return s_llReaderPos;
    const bool bReadingOn = bKnown && (llPos < stWindow.llStart ? stWindow.llStart - llPos < LOOK_AHEAD_BYTES
                                                                : llPos - llEnd < NEAR_BYTES);
    if (eReadAhead == E_READ_AHEAD_FULL)
        stWindow.uiFillBytes = 0;
    else if (!bReadingOn) // else reads go on growing
        stWindow.uiFillBytes = SHORT_FILL_BYTES;
    stInfo.iStreamDataSize = 0;
    stInfo.iStreamBufIndex = 0;
    return s_llReaderPos;
}

uint32_t Get_ReaderRound()
{
    return s_uiReaderRound;
}

void Forget_StreamBuffers()
{
    for (StreamWindow &stWindow : s_astStreamWindow) stWindow = {};
    s_llReaderPos = -1;
    ++s_uiReaderRound;
}

int32_t QuibCaptionParser_Init_CaptionStreamVariables(void *hFile)
{
    QuibCaptionParserInfo *const pstInfo = pstQuibCaptionParserInfo;
    if (pstInfo == nullptr || pstInfo->astStreamInfo[0].pucStreamBuf == nullptr || s_uiStreamBufSize == 0)
        return -1;
    CaptionStreamInfo &stStream = pstInfo->astStreamInfo[0];
    Forget_StreamBuffers();

    s_llCaptionFileSize = QUIBCAPTCB_FileSeek(hFile, 0, 2);
    if (s_llCaptionFileSize <= 0) return -1;
    stStream.iStreamDataSize = Read_Mark(hFile);
    if (stStream.iStreamDataSize < 1) return -1;
    s_uiTextEncoding = Get_MarkedEncoding(stStream.pucStreamBuf, stStream.iStreamDataSize);
    if (s_uiTextEncoding == E_TEXT_ENCODING_ANSI) s_uiTextEncoding = Scan_Encoding(hFile);

    stStream.iStreamDataSize = Read_FileStart(hFile, s_uiStreamBufSize);
    if (stStream.iStreamDataSize < 1) return -1;
    Put_ZerosBehind(stStream);
    stStream.iStreamBufIndex = 0;
    s_astStreamWindow[0] = {0, stStream.iStreamDataSize, 0};
    s_llReaderPos = stStream.iStreamDataSize;
    s_hReaderFile = hFile;

    pstInfo->uiOutputTextCharacterSet = Get_OwnCharset();
    return 1;
}

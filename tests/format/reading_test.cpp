// The usual reading against the literal one: every file, in every encoding, wherever a read ends, must give the same
// results, record, log lines and positions both ways. Files are made of usual entries, most of them bent a little.

#include <cstring>
#include <random>

#include "format/usual_text.h"
#include "pump/frame_pump.h"
#include "pump/parser_table.h"
#include "record/parser_state.h"
#include "support/engine_fixture.h"

namespace
{

/** What the files of a format are made of. */
struct FileKind {
    const char *pszEnding;
    std::string strHead;
    std::vector<std::string> vecEntries;
    std::string strMore = {}; // what some of the files begin with
};

const FileKind KINDS[] = {
    {".srt",
     "",
     {"1\r\n00:00:01,000 --> 00:00:02,500\r\nOne line of words\r\n\r\n",
      "23\r\n00:00:03,000 --> 00:00:04,000\r\nTwo  lines, \r\n <i>one</i> of them slanted \r\n\r\n",
      "24\r\n01:02:03,004 --> 01:02:05,678\r\n<font color=\"#ff0000\">red</font>&nbsp; &amp; &lt;b&gt; "
      "&#65;\r\n\r\n",
      "25\r\n00:00:05,000 --> 00:00:06,000\r\n\r\n",
      "26\r\n00:00:06,000 --> 00:00:07,000\r\n한국어 자막 \r\nと日本語、é, ñ\t\tand tabs\r\n\r\n",
      "27\r\n00:00:07,000 --> 00:00:08,000\r\nA line that is so long that it must be wrapped at one of its "
      "blanks, "
      "perhaps even at two of them or at three of them.\r\n\r\n",
      "28\r\n00:00:08,000 --> 00:00:09,000\r\na<br>b<BR>\r\n<b>c</b> "
      "d\r\n가나다라마바사아자차카타파하가나다라마바사아자차카타파하"
      "가나다라마바사아자차카타파하가나다라마바사아자차카타파하가나다라마바사아자차\r\n\r\n",
      "29\r\n00:00:09,000 --> 00:00:10,000\r\n1<br>2\r\n3\r\n\t\r\n4\r\n5\r\n6 \r\n\r\n",
      "30\r\n00:00:10,000 --> 00:00:11,000\r\n1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7<br>\r\n\r\n"}},
    {".sub",
     "[INFORMATION]\r\n[DELAY]0\r\n[END "
     "INFORMATION]\r\n[SUBTITLE]\r\n[COLF]&HFFFFFF,[STYLE]bd,[SIZE]18,[FONT]Arial\r\n",
     {"00:00:01.00,00:00:02.50\r\nOne line of words\r\n\r\n",
      "00:00:03.00,00:00:04.00\r\nTwo  lines, [br] one of [Br]them\t\t and a third \r\n\r\n",
      "00:00:05.00,00:00:06.00\r\n\r\n",
      "00:00:06.00,00:00:07.00\r\n한국어 자막 [BR]と日本語、é, ñ[music]\r\n[br] no break\r\n [x]\r\n\r\n",
      "01:02:03.04,02:03:04.05\r\nA line that is so long that it must be wrapped at one of its blanks, "
      "perhaps "
      "even at two of them or at three of them.\r\n\r\n",
      "00:00:09.00,00:00:10.00\r\n1[br]2[br]3[br]4\r\n5\r\n6 \r\n\r\n",
      "00:00:10.00,00:00:11.00\r\n1[br]2[br]3[br]4\r\n5\r\n6[br]7\r\n\r\n"}},
    {".smi",
     "<SAMI><HEAD><STYLE TYPE=\"text/css\"><!--\r\n.KRCC { Name:Korean; "
     "}\r\n--></STYLE></HEAD>\r\n<BODY>\r\n",
     {"<SYNC Start=1000><P Class=KRCC>One line of words\r\n", "<SYNC Start=2000><P Class=KRCC>&nbsp;\r\n",
      "<SYNC START=3000>\r\n<P CLASS=KRCC>\r\nTwo  lines,<br>\r\n <i>one</i> of them\tslanted <BR>\r\n",
      "<SYNC Start=4000><P Class=KRCC>한국어 자막<br>と日本語、é, ñ\r\n<P Class=ENCC>English <b>text</b>\r\n",
      "<SYNC Start=5000>\r\n <P Class=ENCC>First &amp; <br>foremost</P>\r\n<P Class=KRCC><font "
      "color=\"red\">둘째</font>\r\n",
      "<SYNC Start=6000><P Class=FRCC>Un<P Class=ENCC>one<P Class=KRCC>하나<P Class=FRCC>deux\r\n",
      "<SYNC Start=7000><P>Without a name\r\n", "<SYNC Start=8000>\r\n",
      "<SYNC Start=5500 End=6500><P Class=ENCC ID=Source>Out of order\r\n",
      "<SYNC Start=9000><P Class=KRCC>A line that is so long that it must be wrapped at one of its blanks, "
      "perhaps even "
      "at two of them or at three of them<br>1<br>2<br>3<br>4<br>\r\n",
      "<SYNC Start=9500><P Class=KRCC>1<br>2<br>3<br>4<br>5<br>6<br>7\r\n", "</BODY></SAMI>\r\n"},
     Repeat("<SYNC Start=20000><P Class=KRCC>A class into which the others are folded\r\n", 31)},
    {".ssa",
     "[Script Info]\r\nTitle: x\r\n[v4 Styles]\r\n"
     "Style: Default,Arial,20,16777215,65535,65535,0,-1,0,1,2,2,2,30,30,10,0,0\r\n"
     "Style: 제목,Times New Roman,18,&H00FFFF,65535,65535,0,0,1,1,2,0,6,30,30,10,0,0\r\n"
     "[Events]\r\nFormat: Marked, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\r\n",
     {"Dialogue: Marked=0,0:00:01.00,0:00:02.43,Default,NTP,0000,0000,0000,,One line of words\r\n",
      "Dialogue: Marked=1,0:00:03.00,0:00:04.00,Default,NTP,0000,0000,0000,,Two  lines, \\N one\\nmore \r\n",
      "Dialogue: 3,1:02:03.04,1:02:05.67,제목,두 사람,12,0,7,,{\\i1}slanted{\\b1\\i0} "
      "{\\c&H0000FF&}red\\h{\\r}x\r\n",
      "Dialogue: 0,0:00:02.50,0:00:04.50,None,A B,0,0,0,Scroll up;10;100;5;,한국어 자막 "
      "\\N{\\a6}と日本語、é\t\tñ\r\n",
      "Dialogue: 0,0:00:05.00,0:00:06.00,,,0,0,0,Banner;20,\r\n",
      "Dialogue: 0,0:00:00.00,0:00:06.00,,,0,0,0,,no start\r\n",
      "Dialogue: 0,0:00:05.50,0:00:00.00,,,0,0,0,,no end\r\n",
      "Dialogue: 0,10:00:05.50,0:0:6.00,Default,,0,0,0,,two hours' digits\r\n",
      "Dialogue: 1,0:00:08.20,0:00:08.60,Default,,0,0,0,나,an effect that is none\\n\\\\ and \\h\r\n",
      "Dialogue: 0,0:00:08.30,0:00:08.70,Default,,0,0,0,,escapes: \\가\\é\\\t\\x\r\n",
      "Dialogue: 0,0:00:08.50,0:00:08.90,Default,,0,0,0,,a line that a bare CR ends \r"
      "and behind which, perhaps, no LF comes any more",
      "Dialogue: 1,0:00:08.40,0:00:08.80," + Repeat("n", 520) +
          ",,0,0,0,,a style's name too long to be one\r\n",
      "Comment: 0,0:00:05.50,0:00:06.00,Default,,0,0,0,,not shown\r\n",
      "; nor this\r\n[Fonts]\r\nfontname: x\r\nM0123456789\r\n[Events]\r\n",
      "Dialogue: Marked=0,0:00:07.00,0:00:08.00,Default,NTP,0000,0000,0000,,A line that is so long that it "
      "must "
      "be wrapped at one of its blanks, perhaps even at two of them or at three of "
      "them.{\\pos(3,4)}{\\fs30}\r\n",
      "Dialogue: "
      "Marked=0,0:00:09.00,0:00:09.50,Default,NTP,0000,0000,0000,,1\\N2\\N\\N3\\N\t\\N4\\N5\\N6\\N7\r\n"
      "Style: Default,Arial,30,255,0,0,0,0,0,0,0,0,1,0,0,0,0,0\r\n"}},
};

/** Pieces that bend an entry. */
const char *const PIECES[] = {"<",
                              ">",
                              "&",
                              "\r",
                              "\n",
                              "\r\n",
                              " ",
                              "  ",
                              "\t",
                              "<br>",
                              "</br>",
                              "<BR/>",
                              "<i>",
                              "</i>",
                              "<b",
                              "&nbsp;",
                              "&amp",
                              "&x;",
                              "&eacute;",
                              "&hellip;",
                              "{",
                              "}",
                              "{\\b1}",
                              "{\\i1}{\\fs}",
                              "\\N",
                              "\\",
                              "0",
                              "[br]",
                              "[",
                              "1",
                              ":",
                              ",",
                              "-->",
                              "=",
                              "\"",
                              ";",
                              "#",
                              "가",
                              "é",
                              "x",
                              "Dialogue: ",
                              "<SYNC Start=1>",
                              "<P Class=KRCC>",
                              "<P>",
                              "\x01"};

using Random = std::mt19937;

size_t Choose(Random &stRandom, size_t uiNums)
{
    return stRandom() % uiNums;
}

/** Change a few places of a text. */
void Bend(std::string &strText, Random &stRandom, size_t uiTimes)
{
    for (size_t uiTime = 0; uiTime < uiTimes; ++uiTime) {
        const size_t uiPos = Choose(stRandom, strText.size() + 1);
        switch (Choose(stRandom, 3)) {
        case 0: strText.insert(uiPos, PIECES[Choose(stRandom, std::size(PIECES))]); break;
        case 1: strText.erase(uiPos, 1 + Choose(stRandom, 3)); break;
        default:
            strText.insert(uiPos, strText.substr(Choose(stRandom, strText.size()), Choose(stRandom, 40)));
            break;
        }
        if (strText.empty()) strText = "x";
    }
}

std::string Make_File(const FileKind &stKind, Random &stRandom)
{
    std::string strFile = stKind.strHead;
    if (Choose(stRandom, 4) == 0) strFile += stKind.strMore;
    const size_t uiEntries = 3 + Choose(stRandom, 12);
    for (size_t uiEntry = 0; uiEntry < uiEntries; ++uiEntry) {
        std::string strEntry = stKind.vecEntries[Choose(stRandom, stKind.vecEntries.size())];
        if (Choose(stRandom, 3) == 0) Bend(strEntry, stRandom, 1 + Choose(stRandom, 3));
        strFile += strEntry;
    }
    return strFile;
}

/** @return the text with two bytes for each character beyond ASCII; the second one may be any, also a stop's. */
std::string Make_DoubleBytes(const std::string &strText)
{
    constexpr char SECONDS[] = "\\{}<&,[; \r\n\t\xB0\xC7\x81\xFE";
    std::string strOut;
    for (const char cByte : strText) {
        const uint8_t ucByte = static_cast<uint8_t>(cByte);
        if (ucByte < 0x80) strOut += cByte;
        if (ucByte >= 0xC0) strOut += {'\x81', SECONDS[strOut.size() % (sizeof(SECONDS) - 1)]};
    }
    return strOut;
}

/** Change bytes of a file that has been encoded, its mark aside. */
void Damage(std::string &strFile, Random &stRandom)
{
    for (size_t uiTime = Choose(stRandom, 4); uiTime > 0 && strFile.size() > 8; --uiTime)
        strFile[4 + Choose(stRandom, strFile.size() - 4)] = static_cast<char>(stRandom());
}

class Reading : public EngineTest
{
protected:
    void TearDown() override
    {
        s_bUsualReading = true;
        EngineTest::TearDown();
    }

    /** The record as a caller sees it. */
    std::string Get_Record()
    {
        const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
        std::string strRecord = testing::PrintToString(std::vector<int64_t>{
            stInfo.iStartPTS, stInfo.iEndPTS, stInfo.iCurrPTS, stInfo.llCurrFilePos, stInfo.uiLineIndex,
            stInfo.uiDisplayMode, stInfo.uiFontSize, stInfo.usFontColor, stInfo.usOutlineColor,
            stInfo.uiHighlight, stInfo.uiOutStreamIndex, stInfo.iOutStartPTS, stInfo.iOutEndPTS,
            stInfo.uiOutLineNums, stInfo.uiOutTextLength});
        strRecord += std::string(reinterpret_cast<const char *>(&stInfo.stSSAFrameInfo),
                                 offsetof(SSAFrameInfo, pstStyle));
        strRecord += stInfo.stSSAFrameInfo.pstStyle == nullptr ? "no style" : "a style";
        strRecord += testing::PrintToString(
            std::vector<uint32_t>(stInfo.puiLineLength, stInfo.puiLineLength + ZYR_LINE_MAX));
        for (uint32_t uiStream = 0; uiStream < stInfo.uiStreamNums; ++uiStream) {
            const CaptionStreamState &stState = stInfo.astStreamState[uiStream];
            const bool bAtEnd = stInfo.astStreamInfo[uiStream].iStreamDataSize == NO_CAPTION_DATA;
            strRecord += testing::PrintToString(
                std::vector<int64_t>{stState.llStartFilePos, stState.llCurrFilePos, stState.iCurrPTS,
                                     stState.iStartPTS, stState.iEndPTS, bAtEnd});
        }
        return strRecord +
               std::string(reinterpret_cast<const char *>(stInfo.aucOutText), sizeof(stInfo.aucOutText));
    }

    /** A frame without the pump: read, then shown as one stream's or as a moment's. @return what it gave */
    static std::string Parse_ByHand(bool bMoment)
    {
        Prepare_CaptionFrame();
        const int32_t iResult = CaptionParserTable[s_eCaptionFormat].pfFrameParser();
        if (bMoment)
            Display_LineBitmapDataToDisplayBufferEx();
        else
            Display_LineBitmapDataToDisplayBuffer();
        return std::to_string(iResult);
    }

    /** One call of a player or a host, told by a number. @return what it gave */
    std::string Call(uint32_t uiCall)
    {
        switch (uiCall % 12) {
        case 0: return std::to_string(zyrSubtitle_seek(uiCall / 12 % 12000));
        case 1: return std::to_string(zyrSubtitle_seek(uiCall / 12 % 4000000));
        case 2: return std::to_string(QUIB_CAPTION_ParsingProcessEx());
        case 3: return Parse_ByHand(uiCall / 12 % 2 == 0);
        default: return std::to_string(QUIB_CAPTION_ParsingProcess());
        }
    }

    /** A log line without what may differ: the number of its source line, how long the header took. */
    static std::string Get_LogText(const std::string &strLine)
    {
        const size_t uiTime = strLine.find("Header Parsing Time");
        if (uiTime != std::string::npos) return strLine.substr(0, uiTime);
        const size_t uiOpen = strLine.find('[');
        const size_t uiClose = strLine.find(']', uiOpen);
        return uiClose == std::string::npos ? strLine : strLine.substr(0, uiOpen) + strLine.substr(uiClose);
    }

    /** Open a file and make calls. @return all that came of it */
    std::vector<std::string> Use(const char *pszEnding, const std::string &strFile, int32_t iOption,
                                 uint32_t uiSeed)
    {
        std::vector<std::string> vecSeen = {std::to_string(Open(pszEnding, strFile, iOption))};
        Random stRandom(uiSeed);
        for (uint32_t uiCall = 0; uiCall < 40 && pstQuibCaptionParserInfo != nullptr; ++uiCall) {
            vecSeen.push_back(Call(uiCall < 16 ? 11 : static_cast<uint32_t>(stRandom())));
            vecSeen.push_back(Get_Record());
        }
        for (const std::string &strLine : m_vecLog) vecSeen.push_back(Get_LogText(strLine));
        return vecSeen;
    }

    /** @return whether both readings see the same */
    bool Agree(const char *pszEnding, const std::string &strFile, uint32_t uiReadSize, int32_t iOption,
               uint32_t uiSeed)
    {
        Read_InChunks(uiReadSize);
        s_bUsualReading = false;
        const std::vector<std::string> vecLiteral = Use(pszEnding, strFile, iOption, uiSeed);
        s_bUsualReading = true;
        const std::vector<std::string> vecUsual = Use(pszEnding, strFile, iOption, uiSeed);
        Read_InChunks(0);
        EXPECT_EQ(vecUsual, vecLiteral) << pszEnding << ", reads of " << uiReadSize << ", option " << iOption
                                        << ": " << testing::PrintToString(strFile);
        return vecUsual == vecLiteral;
    }
};

TEST_F(Reading, LongRunsStayInTheirBuffers)
{
    // Single bytes from 0x80 on go out as two; a read buffer holds far more of them than a frame's text may be.
    for (const char *const pszRun : {"\xE9", "\xB0\xA1", "x", " ", "&nbsp;", "&eacute;", "<i>", "<br>", "\t"})
        for (const int32_t iOption : {0, 1})
            EXPECT_TRUE(Agree(".srt",
                              Repeat(Entry(Repeat(pszRun, 25000), "00:00:01,000 --> 00:00:02,000"), 2), 0,
                              iOption, 1))
                << pszRun;
}

TEST_F(Reading, ABlankBehindSixFullLinesIsTold)
{
    for (const std::string &strLast : {std::string(64, 'x'), "y " + std::string(64, 'x')})
        for (const char *const strEnd : {"", " ", "\t", "  "})
            EXPECT_TRUE(Agree(".srt",
                              "1\r\n00:00:01,000 --> 00:00:02,000\r\n" +
                                  Repeat("x\r\n", strLast[0] == 'y' ? 4 : 5) + strLast + strEnd + "\r\n\r\n" +
                                  std::string(64, '\n'),
                              0, 0, 1));
}

TEST_F(Reading, BothWaysAreOne)
{
    constexpr uint32_t SIZES[] = {0, 0, 150, 211, 512};
    Random stRandom(std::getenv("ZYR_READING_SEED") != nullptr
                        ? static_cast<uint32_t>(std::atoi(std::getenv("ZYR_READING_SEED")))
                        : 1u);
    const int iFiles =
        std::getenv("ZYR_READING_FILES") != nullptr ? std::atoi(std::getenv("ZYR_READING_FILES")) : 300;
    for (const FileKind &stKind : KINDS) {
        const uint32_t uiBefore = s_uiUsualEntries;
        for (int iFile = 0; iFile < iFiles; ++iFile)
            for (const TestEncoding eEncoding : ENCODINGS) {
                std::string strFile = Encode(Make_File(stKind, stRandom), eEncoding);
                if (eEncoding == E_ANSI && Choose(stRandom, 2) == 0) strFile = Make_DoubleBytes(strFile);
                if (Choose(stRandom, 4) == 0) Damage(strFile, stRandom);
                const uint32_t uiSize = SIZES[Choose(stRandom, std::size(SIZES))];
                const int32_t iOption = Choose(stRandom, 4) == 0 ? 1 : 0;
                if (!Agree(stKind.pszEnding, strFile, uiSize, iOption, static_cast<uint32_t>(stRandom())))
                    return;
            }
        EXPECT_GT(s_uiUsualEntries - uiBefore, static_cast<uint32_t>(iFiles)) << stKind.pszEnding;
    }
}

} // namespace

/* A player of any subtitle file: the last bytes of the input say what it does, the bytes before are the file. Some
 * inputs are played twice, by both readings or with short reads, and must give the same; others meet a host that
 * fails or lies. */

#include "engine_input.h"
#include "format/usual_text.h"

const size_t g_uiSteeringBytes = 24;

namespace
{

constexpr int MAX_FRAMES = 250000;    // an input that never ends is a fault, too
constexpr int MAX_LIED_FRAMES = 2000; // but a host that lies may have no end
constexpr uint32_t MAX_TEXT_BYTES = 2046;

/** What the first byte of the steps chooses. */
enum Option : uint8_t {
    E_OPTION_LINE_ENDS = 1,
    E_OPTION_SINGLE_BYTE = 2,
    E_OPTION_FAULTS = 4,
    E_OPTION_LITERAL = 8, // hold the usual reading against the literal one
    E_OPTION_SHORT = 16,  // hold whole reads against short ones
};

std::string s_strSeen;
bool s_bNoting; // what is seen is compared

void Note(const std::string &strText)
{
    if (s_bNoting) s_strSeen += strText + "\n";
}

void Note_Log(int, const char *pszTag, const char *pszText, void *)
{
    Tell_Log(0, nullptr, pszText, nullptr);
    if (s_bNoting) Note(std::string(pszTag == nullptr ? "" : pszTag) + Get_LogText(pszText));
}

void Note_Streams()
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    for (uint32_t uiStream = 0; s_bNoting && uiStream < stInfo.uiStreamNums; ++uiStream) {
        const CaptionStreamState &stState = stInfo.astStreamState[uiStream];
        const bool bAtEnd = stInfo.astStreamInfo[uiStream].iStreamDataSize == NO_CAPTION_DATA;
        Note(std::to_string(stState.llCurrFilePos) + " " + std::to_string(stState.iCurrPTS) + " " +
             std::to_string(stState.iStartPTS) + " " + std::to_string(stState.iEndPTS) +
             (bAtEnd ? " end" : ""));
    }
}

void Note_Output()
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    if (!s_bNoting) return;
    Note(std::to_string(stInfo.uiOutStreamIndex) + " " + std::to_string(stInfo.iOutStartPTS) + " " +
         std::to_string(stInfo.iOutEndPTS) + " " + std::to_string(stInfo.uiOutLineNums) + " " +
         std::to_string(stInfo.uiDisplayMode) + " " + std::to_string(stInfo.usFontColor) + " " +
         std::string(reinterpret_cast<const char *>(stInfo.aucOutText), stInfo.uiOutTextLength));
    Note_Streams();
}

bool Read_Frame()
{
    uint32_t uiStream = 0, uiLines = 0, uiBytes = 0;
    int32_t iStart = 0, iEnd = 0;
    uint8_t *pucText = nullptr;
    const bool bFrame = zyrSubtitle_getFrame(&uiStream, &iStart, &iEnd, &uiLines, &uiBytes, &pucText) == 0;
    Demand(!bFrame || uiBytes <= MAX_TEXT_BYTES, "a text has at most 2046 bytes");
    Note(bFrame ? "frame" : "none");
    Note_Output();
    return bFrame;
}

void Read_ToTheEnd(bool bFaults)
{
    int iFrames = 0;
    while (Read_Frame() && (!bFaults || iFrames < MAX_LIED_FRAMES))
        Demand(++iFrames < MAX_FRAMES, "every file comes to an end");
}

void Select_Classes(FuzzInput &stSteps)
{
    uint32_t auiClasses[6];
    for (uint32_t &uiClass : auiClasses) uiClass = stSteps.Take_Byte() % 8u;
    Note("select " + std::to_string(zyrSubtitle_selectClass(1 + stSteps.Take_Byte() % 6, auiClasses)));
}

void Set_ClassType(FuzzInput &stSteps)
{
    const uint32_t uiFirst = stSteps.Take_Byte() % 8u;
    QUIBCAPT_Set_ClassType(uiFirst, stSteps.Take_Byte() % 8u);
}

void Take_Step(FuzzInput &stSteps, bool bFaults, ReadManner &stManner)
{
    switch (stSteps.Take_Byte() % 9) {
    case 0: Read_Frame(); break;
    case 1: Read_ToTheEnd(bFaults); break;
    case 2: Note("seek " + std::to_string(zyrSubtitle_seek(stSteps.Take_Number() * 100))); break;
    case 3: Note("seek " + std::to_string(zyrSubtitle_seek(UINT32_MAX - stSteps.Take_Byte()))); break;
    case 4:
        Note("merged " + std::to_string(QUIB_CAPTION_ParsingProcessEx()));
        Note_Output();
        break;
    case 5: Select_Classes(stSteps); break;
    case 6: Set_ClassType(stSteps); break;
    case 7:
        if (bFaults) Break_Host(stSteps);
        break;
    default:
        if (bFaults) stManner.stLie = Take_Lie(stSteps);
        break;
    }
}

/** Play the file from its opening to its closing. @return what was seen of it, as far as it is noted */
std::string Play(FuzzInput stSteps, uint8_t ucOptions, uint32_t uiChunk)
{
    const bool bFaults = (ucOptions & E_OPTION_FAULTS) != 0;
    ReadManner stManner = {uiChunk, {}};
    s_strSeen.clear();
    zyr_host_setLogSink(Note_Log, nullptr);
    zyr_host_setLineEnds(ucOptions & E_OPTION_LINE_ENDS);
    zyr_host_setFileHook(Hook_FileCall, &stManner);
    if (bFaults && (ucOptions & E_OPTION_LITERAL) != 0) Break_Host(stSteps);
    if (bFaults && (ucOptions & E_OPTION_SHORT) != 0) stManner.stLie = Take_Lie(stSteps);
    if (zyrSubtitle_open("zyrhost:fuzz.avi", (ucOptions & E_OPTION_SINGLE_BYTE) != 0 ? 1 : 0) == 0) {
        while (!stSteps.IsEmpty()) Take_Step(stSteps, bFaults, stManner);
        Read_ToTheEnd(bFaults);
    }
    Mend_Host();
    zyrSubtitle_close();
    Expect_AllGivenBack();
    return s_strSeen;
}

void Expect_Same(const std::string &strA, const std::string &strB, const char *pszPromise)
{
    size_t uiPos = 0;
    while (uiPos < strA.size() && uiPos < strB.size() && strA[uiPos] == strB[uiPos]) ++uiPos;
    if (strA == strB) return;
    const size_t uiFrom = uiPos > 200 ? uiPos - 200 : 0;
    std::fprintf(stderr, "one:\n%s\nother:\n%s\n", strA.substr(uiFrom, 400).c_str(),
                 strB.substr(uiFrom, 400).c_str());
    Demand(false, pszPromise);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucData, size_t uiSize)
{
    static constexpr uint32_t CHUNKS[] = {1, 2, 3, 5, 7, 64, 511, 4000};
    FuzzInput stFile(pucData, uiSize);
    FuzzInput stSteps = stFile.Take_Tail(g_uiSteeringBytes);
    const uint8_t ucOptions = stSteps.Take_Byte();
    zyr_host_reset();
    zyr_host_mapMemory("zyrhost:fuzz" FUZZ_ENDING, stFile.Get_Rest().data(),
                       static_cast<uint32_t>(stFile.Get_Rest().size()));
    s_bNoting = (ucOptions & E_OPTION_FAULTS) == 0 && (ucOptions & (E_OPTION_LITERAL | E_OPTION_SHORT)) != 0;
    const std::string strWhole = Play(stSteps, ucOptions, 0);
    if (!s_bNoting) return 0;
    if ((ucOptions & E_OPTION_SHORT) != 0)
        Expect_Same(strWhole, Play(stSteps, ucOptions, CHUNKS[ucOptions >> 5]),
                    "short reads give what whole ones do");
    if ((ucOptions & E_OPTION_LITERAL) != 0) {
        s_bUsualReading = false;
        Expect_Same(strWhole, Play(stSteps, ucOptions, 0), "both readings see the same");
        s_bUsualReading = true;
    }
    s_strSeen.clear();
    return 0;
}

/* A host that makes any exported call of the engine in any order, with any arguments, while files and memory fail or
 * lie: the last bytes of the input are its calls, the bytes before are the file. */

#include "engine_input.h"
#include "record/parser_state.h"

const size_t g_uiSteeringBytes = 128;

namespace
{

constexpr const char *ENDINGS[] = {".smi", ".srt", ".sub", ".ssa"};
constexpr const char *MOVIES[] = {"zyrhost:a.avi", "zyrhost:b.avi", "zyrhost:none.avi", "zyrhost:a"};
constexpr char OTHER_FILE[] =
    "<SYNC Start=10><P Class=A>x<SYNC Start=20><P Class=B>y<SYNC Start=30><P Class=C>z"
    "<SYNC Start=40><P Class=A>w<SYNC Start=40><P Class=B>v";
constexpr uint32_t SIZES[] = {0, 1, 2, 3, 64, 299, 300, 65536};

using ApiCall = void (*)(FuzzInput &stSteps);

ReadManner s_stManner;

uint32_t Take_Long(FuzzInput &stSteps)
{
    const uint32_t uiHigh = stSteps.Take_Number();
    return uiHigh << 16 | stSteps.Take_Number();
}

const char *Take_Movie(FuzzInput &stSteps)
{
    return MOVIES[stSteps.Take_Byte() % 4];
}

void Get_Frames(FuzzInput &stSteps)
{
    uint32_t uiStream = 0, uiLines = 0, uiBytes = 0;
    int32_t iStart = 0, iEnd = 0;
    uint8_t *pucText = nullptr;
    for (int iTimes = 1 + stSteps.Take_Byte() % 8; iTimes > 0; --iTimes) {
        if (zyrSubtitle_getFrame(&uiStream, &iStart, &iEnd, &uiLines, &uiBytes, &pucText) != 0) continue;
        Demand(pucText == pstQuibCaptionParserInfo->aucOutText && uiStream < ZYR_STREAM_MAX,
               "a frame is the block's");
    }
    zyrSubtitleHandler_getFrameInfo(nullptr, &iStart, &iEnd, &uiLines, &uiBytes, &pucText);
}

void Select_Classes(FuzzInput &stSteps)
{
    uint32_t auiClasses[8];
    for (uint32_t &uiClass : auiClasses) uiClass = stSteps.Take_Byte() % 9u;
    zyrSubtitle_selectClass(static_cast<int32_t>(stSteps.Take_Byte() % 10u) - 1, auiClasses);
}

void Get_Classes(FuzzInput &stSteps)
{
    char *pszName = nullptr;
    uint32_t uiNums = 0;
    zyrSubtitle_getClassNums(&uiNums);
    zyrSubtitle_getClassName(stSteps.Take_Byte() % 9u, &pszName);
    zyrSubtitle_getOutputTextCharacterSet();
}

void Call_Parser(FuzzInput &stSteps)
{
    void *const hFile = QUIBCAPTCB_GetFileHandleOfSubtitle();
    switch (stSteps.Take_Byte() % 8) {
    case 0: HeaderParser_SAMI(hFile); break;
    case 1: HeaderParser_SubRip(hFile); break;
    case 2: HeaderParser_SubViewer(hFile); break;
    case 3: HeaderParser_SSA(hFile); break;
    case 4: FrameParser_SAMI(); break;
    case 5: FrameParser_SubRip(); break;
    case 6: FrameParser_SubViewer(); break;
    default: FrameParser_SSA(); break;
    }
}

void Call_Seek(FuzzInput &stSteps)
{
    const uint32_t uiTarget = stSteps.Take_Number() * 10;
    const uint32_t bBackward = stSteps.Take_Byte() & 1;
    const auto iPTS = static_cast<int32_t>(stSteps.Take_Number() * 10) - 1;
    QuibCaptionParserInfo *const pstInfo = pstQuibCaptionParserInfo;
    switch (stSteps.Take_Byte() % 4) {
    case 0: Seek_SAMI(uiTarget, bBackward, iPTS, pstInfo); break;
    case 1: Seek_SubRip(uiTarget, bBackward, iPTS, pstInfo); break;
    case 2: Seek_SubViewer(uiTarget, bBackward, iPTS, pstInfo); break;
    default: Seek_SSA(uiTarget, bBackward, iPTS, pstInfo); break;
    }
}

void Merge_Classes(FuzzInput &stSteps)
{
    const uint32_t uiFrom = stSteps.Take_Byte() % 9u, uiTo = stSteps.Take_Byte() % 9u;
    switch (stSteps.Take_Byte() % 3) {
    case 0: CAPTIONPARS_SAMI_GetNextFramePTS(uiFrom); break;
    case 1: CAPTIONPARS_SAMI_MergeUndefinedLanguage(uiFrom); break;
    default: CAPTIONPARS_SAMI_MergeMultiLanguages(uiFrom, uiTo); break;
    }
}

void Show_Lines(FuzzInput &stSteps)
{
    switch (stSteps.Take_Byte() % 3) {
    case 0: Convert_CaptionStringToBitmap(); break;
    case 1: Display_LineBitmapDataToDisplayBuffer(); break;
    default: Display_LineBitmapDataToDisplayBufferEx(); break;
    }
}

void Change_Buffers(FuzzInput &stSteps)
{
    const uint32_t uiUnits = SIZES[stSteps.Take_Byte() % 8], uiBytes = SIZES[stSteps.Take_Byte() % 8];
    switch (stSteps.Take_Byte() % 5) {
    case 0: QUIB_CAPTION_Open(); break;
    case 1: QUIB_CAPTION_Close(); break;
    case 2: QuibCaptionParser_Destroy_MemoryBuffers(); break;
    case 3: QuibCaptionParser_Destroy_SSA_MemoryBuffers(); break;
    default: QuibCaptionParser_Create_MemoryBuffers(uiUnits, stSteps.Take_Byte() % 9u, uiBytes); break;
    }
}

/** What a host sets; none of it may change what is promised. */
void Change_Settings(FuzzInput &stSteps)
{
    QUIBCAPTPARS_Set_ParsingOption(stSteps.Take_Byte() % 4u);
    QUIBCAPT_SetFontColor(stSteps.Take_Number());
    QUIBCAPT_SetFontEdgeColor(stSteps.Take_Number());
    QUIBCAPT_SetFontHeight(15u + stSteps.Take_Byte() % 3u);
    Demand(QUIBCAPT_GetFontHeight() == 16, "the font height is 16");
    Demand(QUIBCAPTPARS_Get_VerInfo() == 36, "the parsers' version is 36");
}

/** A host that reads and moves the file itself. */
void Use_File(FuzzInput &stSteps)
{
    void *const hFile = TRACK_GetFileHandleOfSubtitleData();
    uint8_t aucBytes[16];
    const uint32_t uiOffset = stSteps.Take_Number();
    QUIBCAPTCB_FileSeek(hFile, uiOffset, stSteps.Take_Byte() % 4);
    QUIBCAPTCB_FileRead(hFile, aucBytes, stSteps.Take_Byte() % 17u);
    QUIBCAPTCB_FileTell(hFile);
}

void Use_Memory(FuzzInput &stSteps)
{
    void *const pvBlock = QUIBCAPTCB_Allocate_Memory(stSteps.Take_Number());
    constexpr uint32_t MOST = alignof(std::max_align_t); // what the platform's memory gives
    void *const pvAligned = QUIBCAPTCB_Allocate_Aligned_Memory(stSteps.Take_Number(), MOST);
    Demand(reinterpret_cast<uintptr_t>(pvAligned) % MOST == 0, "memory is aligned");
    if (pvBlock != nullptr) QUIBCAPTCB_Deallocate_Memory(pvBlock);
    if (pvAligned != nullptr) QUIBCAPTCB_Deallocate_Memory(pvAligned);
}

constexpr ApiCall CALLS[] = {
    Get_Frames,
    Get_Frames,
    [](FuzzInput &stSteps) { zyrSubtitle_seek(stSteps.Take_Number() * 10); },
    [](FuzzInput &stSteps) { zyrSubtitle_seek(Take_Long(stSteps)); },
    [](FuzzInput &) { QUIB_CAPTION_ParsingProcessEx(); },
    [](FuzzInput &stSteps) { QUIB_CAPTION_PreParsingProcessEx(static_cast<int32_t>(Take_Long(stSteps))); },
    Select_Classes,
    [](FuzzInput &stSteps) {
        const uint32_t uiFirst = stSteps.Take_Byte() % 9u;
        QUIBCAPT_Set_ClassType(uiFirst, stSteps.Take_Byte() % 9u);
    },
    Get_Classes,
    Call_Parser,
    Call_Seek,
    Merge_Classes,
    Show_Lines,
    Change_Buffers,
    Change_Settings,
    Use_File,
    Use_Memory,
    [](FuzzInput &) { QuibCaptionParser_Init_CaptionStreamVariables(QUIBCAPTCB_GetFileHandleOfSubtitle()); },
    [](FuzzInput &stSteps) {
        const char *const pszMovie = Take_Movie(stSteps);
        zyrSubtitleHandler_searchExternalSubtitle(pszMovie, stSteps.Take_Byte() & 1);
    },
    [](FuzzInput &stSteps) {
        const char *const pszMovie = Take_Movie(stSteps);
        zyrSubtitle_open(pszMovie, stSteps.Take_Byte() & 1);
    },
    [](FuzzInput &) { zyrSubtitle_close(); },
    Break_Host,
    [](FuzzInput &stSteps) { s_stManner.stLie = Take_Lie(stSteps); },
    [](FuzzInput &) { Mend_Host(); },
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucData, size_t uiSize)
{
    FuzzInput stFile(pucData, uiSize);
    FuzzInput stSteps = stFile.Take_Tail(g_uiSteeringBytes);
    const uint8_t ucOptions = stSteps.Take_Byte();
    const std::string strName = std::string("zyrhost:a") + ENDINGS[ucOptions % 4];
    s_stManner = {(ucOptions & 8) != 0 ? 1u + (ucOptions >> 4) : 0, {}};
    zyr_host_reset();
    if (g_bTelling) zyr_host_setLogSink(Tell_Log, nullptr);
    zyr_host_mapMemory(strName.c_str(), stFile.Get_Rest().data(),
                       static_cast<uint32_t>(stFile.Get_Rest().size()));
    zyr_host_mapMemory("zyrhost:b.smi", OTHER_FILE, sizeof(OTHER_FILE) - 1);
    zyr_host_setLineEnds(ucOptions >> 2 & 1);
    zyr_host_setFileHook(Hook_FileCall, &s_stManner);
    zyrSubtitle_open("zyrhost:a.avi", 0);
    while (!stSteps.IsEmpty()) CALLS[stSteps.Take_Byte() % std::size(CALLS)](stSteps);
    Mend_Host();
    zyrSubtitle_close();
    QUIBCAPT_SetFontColor(0xFFFF);
    Expect_AllGivenBack();
    return 0;
}

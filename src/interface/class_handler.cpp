// Language classes: their names, and which of them are read.

#include <cstring>
#include <initializer_list>

#include "interface/stream_setup.h"
#include "pump/parser_table.h"
#include "record/parser_state.h"
#include "text/char_reader.h"
#include "zyr/zyr_subtitle.h"

namespace
{

constexpr uint32_t SUCCESS = 0;
constexpr uint32_t NOTHING_OPEN = 1;
constexpr uint32_t BAD_ARGUMENT = 2;
constexpr uint32_t NO_MEMORY = 3;

bool Is_Selected(uint32_t uiClass)
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    for (uint32_t uiStream = 0; uiStream < stInfo.uiStreamNums; ++uiStream)
        if (stInfo.astStreamState[uiStream].uiClassIndex == uiClass) return true;
    return false;
}

/** Let a stream read a class from its first frame on, also where another has gone further. */
void Restart_Class(uint32_t uiStream, uint32_t uiClass)
{
    Point_Stream(uiStream, uiClass);
    if (const auto pfRewind = Get_FormatHooks().pfRewindClass) pfRewind(uiClass);
}

/** Make the next stream read a class. @return false without memory. */
bool Add_Stream(uint32_t uiClass)
{
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    const uint32_t uiStream = stInfo.uiStreamNums;
    Restart_Class(uiStream, uiClass);
    if (!Allocate_LineBuffer(uiStream) || !Allocate_ReadBuffer(uiStream)) return false;
    ++stInfo.uiStreamNums;
    return true;
}

} // namespace

uint32_t zyrSubtitleHandler_getClassNums(void)
{
    return pstQuibCaptionParserInfo == nullptr ? 0u : pstQuibCaptionParserInfo->uiClassNums;
}

uint32_t zyrSubtitleHandler_getClassName(uint32_t uiClassIndex, char **ppszClassName)
{
    QuibCaptionParserInfo *const pstInfo = pstQuibCaptionParserInfo;
    if (pstInfo == nullptr) return NOTHING_OPEN;
    if (ppszClassName == nullptr || uiClassIndex >= pstInfo->uiClassNums || uiClassIndex >= ZYR_CLASS_MAX)
        return BAD_ARGUMENT;
    const CaptionClassInfo &stClass = pstInfo->astClassInfo[uiClassIndex];
    std::memset(pstInfo->aucClassName, 0, ZYR_CLASS_NAME_BYTES);
    _UnicodeToUTF8(stClass.ausName, static_cast<int32_t>(stClass.uiNameLength), pstInfo->aucClassName,
                   ZYR_CLASS_NAME_BYTES);
    *ppszClassName = reinterpret_cast<char *>(pstInfo->aucClassName);
    return SUCCESS;
}

uint32_t zyrSubtitleHandler_selectClass(int32_t iClassCount, const uint32_t *puiClassIndexes)
{
    if (pstQuibCaptionParserInfo == nullptr) return NOTHING_OPEN;
    if (iClassCount < 1 || puiClassIndexes == nullptr) return BAD_ARGUMENT;
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    if (stInfo.uiClassNums < 2) return SUCCESS;

    // All of them: QUIBCAPT_Set_ClassType() leaves the buffers of streams that it takes out of use.
    for (uint32_t uiStream = 0; uiStream < ZYR_STREAM_MAX; ++uiStream) Release_Stream(uiStream);
    Forget_StreamBuffers();
    stInfo.uiStreamNums = 0;
    for (int32_t iIndex = 0; iIndex < iClassCount && stInfo.uiStreamNums < ZYR_STREAM_MAX; ++iIndex) {
        const uint32_t uiClass = puiClassIndexes[iIndex];
        if (uiClass < stInfo.uiClassNums && !Is_Selected(uiClass) && !Add_Stream(uiClass)) return NO_MEMORY;
    }
    stInfo.uiCurrStream = stInfo.uiStreamNums >= 2 ? static_cast<uint32_t>(ZYR_STREAM_MAX) : 0u;
    stInfo.uiCurrClass = stInfo.uiStreamNums >= 2 ? 0u : stInfo.astStreamState[0].uiClassIndex;
    return SUCCESS;
}

int32_t QUIBCAPT_Set_ClassType(uint32_t uiFirstClass, uint32_t uiSecondClass)
{
    if (pstQuibCaptionParserInfo == nullptr || Get_FormatHooks().pfRewindClass == nullptr) return 0;
    QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    if (uiSecondClass == uiFirstClass) uiSecondClass = ZYR_CLASS_MAX;
    uint32_t uiStreams = 0;
    for (const uint32_t uiClass : {uiFirstClass, uiSecondClass}) {
        if (uiClass >= stInfo.uiClassNums || stInfo.astClassInfo[uiClass].uiFrameNums == 0) continue;
        if (stInfo.astStreamInfo[uiStreams].pucStreamBuf == nullptr ||
            s_astLineTable[uiStreams].pusTextBuf == nullptr)
            continue;
        Restart_Class(uiStreams++, uiClass);
    }
    if (uiStreams > 0) stInfo.uiStreamNums = uiStreams;
    return static_cast<int32_t>(uiStreams);
}

/* A player of any subtitle file: the last bytes of the input say what it does, the bytes before are the file.
 */

#include <climits>

#include "fuzz_input.h"
#include "zyr/quib_caption.h"
#include "zyr/zyr_host.h"
#include "zyr/zyr_subtitle.h"

namespace
{

constexpr size_t STEERING_BYTES = 24;
constexpr int MAX_FRAMES = 20000; // an input that never ends is a fault, too
constexpr uint32_t MAX_TEXT_BYTES = 2046;

bool Read_Frame()
{
    uint32_t uiStream = 0, uiLines = 0, uiBytes = 0;
    int32_t iStart = 0, iEnd = 0;
    uint8_t *pucText = nullptr;
    if (zyrSubtitle_getFrame(&uiStream, &iStart, &iEnd, &uiLines, &uiBytes, &pucText) != 0) return false;
    Demand(uiStream < 5, "a stream index is below 5");
    Demand(uiBytes <= MAX_TEXT_BYTES, "a text has at most 2046 bytes");
    Demand(pucText[uiBytes] == 0 && pucText[uiBytes + 1] == 0, "a text is followed by two zero bytes");
    return true;
}

void Read_ToTheEnd()
{
    int iFrames = 0;
    while (Read_Frame()) Demand(++iFrames < MAX_FRAMES, "every file comes to an end");
}

void Select_Classes(FuzzInput &stSteps)
{
    const uint32_t auiClasses[] = {stSteps.Take_Byte() % 8u, stSteps.Take_Byte() % 8u};
    zyrSubtitle_selectClass(1 + stSteps.Take_Byte() % 2, auiClasses);
}

/* Reads that fail, or give less or more than there is; a seek that says it moved and did not has no end. */
void Break_Reading(FuzzInput &stSteps)
{
    static constexpr int32_t RESULTS[] = {-1, -1111, 0, 1, 511, 65537, INT_MAX, INT_MIN};
    const int iCall = ZYR_HOST_READ + stSteps.Take_Byte() % 3;
    const int32_t iResult = iCall == ZYR_HOST_READ ? RESULTS[stSteps.Take_Byte() % 8] : -1;
    zyr_host_failFile(iCall, 1u + stSteps.Take_Byte(), iResult, stSteps.Take_Byte() % 2);
}

void Take_Step(FuzzInput &stSteps)
{
    switch (stSteps.Take_Byte() % 8) {
    case 0: Read_Frame(); break;
    case 1: Read_ToTheEnd(); break;
    case 2: zyrSubtitle_seek(stSteps.Take_Number() * 100); break;
    case 3: zyrSubtitle_seek(UINT32_MAX - stSteps.Take_Byte()); break;
    case 4: QUIB_CAPTION_ParsingProcessEx(); break;
    case 5: Select_Classes(stSteps); break;
    case 6: QUIBCAPT_Set_ClassType(stSteps.Take_Byte() % 8u, stSteps.Take_Byte() % 8u); break;
    default: Break_Reading(stSteps); break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucData, size_t uiSize)
{
    FuzzInput stFile(pucData, uiSize);
    FuzzInput stSteps = stFile.Take_Tail(STEERING_BYTES);
    const uint8_t ucOptions = stSteps.Take_Byte();
    zyr_host_reset();
    zyr_host_setLineEnds(ucOptions & 1);
    zyr_host_failAllocation((ucOptions & 4) != 0 ? stSteps.Take_Byte() : 0, ucOptions & 8);
    zyr_host_mapMemory("zyrhost:fuzz" FUZZ_ENDING, stFile.Get_Rest().data(),
                       static_cast<uint32_t>(stFile.Get_Rest().size()));
    if (zyrSubtitle_open("zyrhost:fuzz.avi", ucOptions >> 1 & 1) == 0) {
        while (!stSteps.IsEmpty()) Take_Step(stSteps);
        Read_ToTheEnd();
    }
    zyrSubtitle_close();
    Demand(zyr_host_liveBytes() == 0, "close gives all memory back");
    Demand(zyr_host_openFiles() == 0, "close closes the file");
    return 0;
}

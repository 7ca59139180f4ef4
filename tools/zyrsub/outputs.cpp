#include "options.h"

ZyrCaptionOutput Get_Output(uint32_t uiOutput)
{
    ZyrCaptionOutput stOutput;
    zyrCaptions_getOutput(uiOutput, &stOutput);
    return stOutput;
}

uint32_t Count_Outputs()
{
    uint32_t uiOutputs = 0;
    while (Get_Output(uiOutputs).pszName != nullptr) ++uiOutputs;
    return uiOutputs;
}

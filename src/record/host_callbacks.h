/* Memory and files of the engine: QUIBCAPTCB_* and TRACK_* are declared in zyr/quib_caption.h. */
#pragma once

#include "zyr_base.h"

/** Free a block, if there is one, and forget it. */
template <typename Type>
inline void Free_And_Clear(Type *&pBlock)
{
    if (pBlock != nullptr) ZYR_free(pBlock);
    pBlock = nullptr;
}

/** Close the file that the open path opened, if any, and forget it. */
void Close_SubtitleFile();

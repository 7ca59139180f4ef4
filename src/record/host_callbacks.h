/* Memory and files of the engine: QUIBCAPTCB_* and TRACK_* are declared in zyr/quib_caption.h. */
#pragma once

#include <cstdint>
#include <cstring>

#include "zyr/quib_caption.h"
#include "zyr_base.h"

/** Free a block, if there is one, and forget it. */
template <typename Type>
inline void Free_And_Clear(Type *&pBlock)
{
    if (pBlock != nullptr) ZYR_free(pBlock);
    pBlock = nullptr;
}

/** Move an array to a block with room for more. @return false without memory (logged), when nothing has changed */
template <typename Type>
inline bool Grow_Array(Type *&pastArray, uint32_t uiUsed, uint32_t uiRoom)
{
    const uint32_t uiBytes = uiRoom * static_cast<uint32_t>(sizeof(Type));
    Type *const pastGrown = static_cast<Type *>(QUIBCAPTCB_Allocate_Memory(uiBytes));
    if (pastGrown == nullptr) return false;
    if (uiUsed > 0) std::memcpy(static_cast<void *>(pastGrown), pastArray, uiUsed * sizeof(Type));
    Free_And_Clear(pastArray);
    pastArray = pastGrown;
    return true;
}

/** Close the file that the open path opened, if any, and forget it. */
void Close_SubtitleFile();

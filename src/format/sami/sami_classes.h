/*
 * The language classes of a SAMI file: their clean-up after the header, and their places in the frame index.
 * CAPTIONPARS_SAMI_* are declared in zyr/quib_caption.h.
 */
#pragma once

#include <cstdint>

#include "format/sami/sami_index.h"

/**
 * Find the next frame of a class and move the class's cursor to it, so that entries of other classes are
 * passed over only once.
 *
 * @return index into s_pstFrameInfoArray; s_uiFrameInfoNums when there is none, or no such class
 */
inline uint32_t Find_NextFrame(uint32_t uiClass)
{
    if (uiClass >= ZYR_CLASS_MAX) return s_uiFrameInfoNums;
    uint32_t &uiCursor = s_auiClassFrameCursor[uiClass];
    if (Is_ClassFrame(uiClass, uiCursor)) return uiCursor;
    return uiCursor =
               Is_ClassFrame(uiClass, uiCursor + 1) ? uiCursor + 1 : Find_ClassFrame(uiClass, uiCursor);
}

/** Put the cursor of a class before all frames. */
void Rewind_ClassCursor(uint32_t uiClass);

/** Fold a small class of frames without a name into a named one, then classes of few frames into the first
 * well-filled one. Failures are logged; the classes then stay. */
void Clean_SamiClasses();

/** Choose the stream whose next frame is earliest; the first one on equal times, the current one when none has a
 * frame. */
void Choose_EarliestStream();

/** Free the frame index and all that is known of SYNC tags. */
void Destroy_SamiBuffers();

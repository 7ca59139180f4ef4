/* The usual Dialogue line: times of the full form, and text with line breaks and overrides in good form. */
#pragma once

#include <cstdint>

#include "zyr/quib_caption.h"

/** Take the Dialogue line at the read position, if it is usual, as the current stream's frame. @return its fields;
 * NULL where it is not */
const SSAFrameInfo *Take_UsualDialogue();

/**
 * Pass over the Dialogue line at the read position, if it is usual.
 *
 * @param[out] puiStart  its start, ms, never 0
 * @return its bytes; 0 when it is not usual
 */
uint32_t Pass_UsualDialogue(uint32_t *puiStart);

/** Forget the fields of lines before: the styles change. */
void Forget_UsualFields();

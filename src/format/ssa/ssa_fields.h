/* The fields of a Dialogue line, and the look that they give its text. */
#pragma once

#include <cstdint>

#include "zyr/quib_caption.h"

/** Fields before the text, in the line's order. */
enum SSAField : uint32_t {
    E_SSA_FIELD_MARKED,
    E_SSA_FIELD_START,
    E_SSA_FIELD_END,
    E_SSA_FIELD_STYLE,
    E_SSA_FIELD_NAME,
    E_SSA_FIELD_MARGIN_L,
    E_SSA_FIELD_MARGIN_R,
    E_SSA_FIELD_MARGIN_V,
    E_SSA_FIELD_EFFECT,
    E_SSA_FIELDS,
};

/** Take a field, which the tag buffer holds without its blanks. @return whether the line goes on */
bool Finish_SSAField(uint32_t eField, SSAFrameInfo &stFrame);

/** Begin the text of a line: its style takes effect, and the record shows its fields. */
void Begin_SSAText(const SSAFrameInfo &stFrame);

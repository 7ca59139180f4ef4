// A text as it was meant beside the same text as it is shown: where the two part.
#pragma once

#include <cstdint>
#include <vector>

#include "plain_text.h"

// A stretch of the one that stands against a stretch of the other; one of them may be empty.
struct TextPart {
    uint32_t uiMeant;
    uint32_t uiMeantEnd;
    uint32_t uiShown;
    uint32_t uiShownEnd;
};

// Two equal characters; an entity and what stands for it.
struct TextPair {
    uint32_t uiMeant;
    uint32_t uiShown;
};

struct TextMatch {
    std::vector<TextPair> astPairs;
    std::vector<TextPart> astParts;    // in order
    std::vector<uint32_t> auiEntities; // of the meant ones, that are shown as they are written
};

TextMatch Match_Texts(std::string_view strFile, const std::vector<PlainCharacter> &astMeant,
                      const std::vector<PlainCharacter> &astShown);

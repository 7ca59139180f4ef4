/* The attributes of a markup tag: NAME=value, NAME="value" or NAME='value'. */
#pragma once

#include <cstdint>
#include <cstring>

constexpr uint32_t TAG_ARGUMENTS_MAX = 20;

/** One attribute; name and value point into the tag's text. */
struct TagArgument {
    const uint16_t *pusName;
    uint32_t uiNameLength;
    const uint16_t *pusValue;
    uint32_t uiValueLength;
};

struct TagArguments {
    uint32_t uiNums;
    bool bLogged; // something in the text was odd
    TagArgument astArgument[TAG_ARGUMENTS_MAX];
};

/** Split the text between a tag's name and its ">". Oddities are logged and passed over. */
void Split_TagArguments(TagArguments *pstArguments, const uint16_t *pusText, uint32_t uiLen);

/** @return whether an attribute has this name (given in upper case), in any case. */
bool Is_ArgumentNamed(const TagArgument &stArgument, const char *pszName);

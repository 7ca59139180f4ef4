/* HTML-like tags of SAMI and SubRip text: their names, the queue of open tags, and what each does to the
 * text. */
#pragma once

#include <cstdint>

/** Ids of the tags that somebody knows by name; the others are rows of the tag table as well. */
enum HtmlTag : uint32_t {
    E_HTML_TAG_UNKNOWN = 0,
    E_HTML_TAG_BR = 6,
    E_HTML_TAG_FONT = 15,
    E_HTML_TAG_P = 27,
    E_HTML_TAG_SYNC = 80,
    E_HTML_TAG_NUMS
};

/** Tag kinds, ORed with the id in Parse_HtmlTag()'s result. They share their low bits with it. */
constexpr int32_t TAG_KIND_SINGLE = 0x100; // a tag that has no closing form, and every unknown one
constexpr int32_t TAG_KIND_OPEN = 0x101;
constexpr int32_t TAG_KIND_CLOSE = 0x102;

/** @return the tag id in a result of Parse_HtmlTag() other than -1; 0 = no tag, or an unknown one. */
constexpr uint32_t Get_TagId(int32_t iResult)
{
    return static_cast<uint32_t>(iResult) & 0xFF;
}

/**
 * Recognise a tag and let it take effect.
 *
 * @param[in] pusTag  the tag from its "<" on
 * @param[in] iLen    units, the closing ">" included
 * @return a kind ORed with the tag id; 0 for a text that is no tag; -1 for a NULL, no units, or a malformed
 *         SYNC time
 */
int32_t Parse_HtmlTag(const uint16_t *pusTag, int32_t iLen);

/** @return class with this name, or else the first one that another name of was folded into; ZYR_CLASS_MAX = none.
 * @param[in] pusName  of either case */
uint32_t Find_NamedClass(const uint16_t *pusName, uint32_t uiLength);

/** Forget the open tags: a new frame begins. */
void Clear_TagQueue();

/* HTML-like tags of SAMI and SubRip text: their names, the queue of open tags, and what each does to the
 * text. */
#pragma once

#include <cstdint>

/** Tag ids; one for each row of the tag table. */
enum HtmlTag : uint32_t {
    E_HTML_TAG_UNKNOWN,
    E_HTML_TAG_B,
    E_HTML_TAG_BASEFONT,
    E_HTML_TAG_BDO,
    E_HTML_TAG_BIG,
    E_HTML_TAG_BLOCKQUOTE,
    E_HTML_TAG_BR,
    E_HTML_TAG_CAPTION,
    E_HTML_TAG_CENTER,
    E_HTML_TAG_COL,
    E_HTML_TAG_COLGROUP,
    E_HTML_TAG_DD,
    E_HTML_TAG_DIV,
    E_HTML_TAG_DL,
    E_HTML_TAG_DT,
    E_HTML_TAG_FONT,
    E_HTML_TAG_H1,
    E_HTML_TAG_H2,
    E_HTML_TAG_H3,
    E_HTML_TAG_H4,
    E_HTML_TAG_H5,
    E_HTML_TAG_H6,
    E_HTML_TAG_HR,
    E_HTML_TAG_I,
    E_HTML_TAG_IMG,
    E_HTML_TAG_LI,
    E_HTML_TAG_OL,
    E_HTML_TAG_P,
    E_HTML_TAG_PRE,
    E_HTML_TAG_Q,
    E_HTML_TAG_S,
    E_HTML_TAG_SMALL,
    E_HTML_TAG_SPAN,
    E_HTML_TAG_STRIKE,
    E_HTML_TAG_SUB,
    E_HTML_TAG_SUP,
    E_HTML_TAG_TABLE,
    E_HTML_TAG_TBODY,
    E_HTML_TAG_TD,
    E_HTML_TAG_TFOOT,
    E_HTML_TAG_TH,
    E_HTML_TAG_THEAD,
    E_HTML_TAG_TR,
    E_HTML_TAG_TT,
    E_HTML_TAG_U,
    E_HTML_TAG_UL,
    E_HTML_TAG_ARTICLE,
    E_HTML_TAG_ASIDE,
    E_HTML_TAG_AUDIO,
    E_HTML_TAG_CANVAS,
    E_HTML_TAG_COMMAND,
    E_HTML_TAG_DATAGRID,
    E_HTML_TAG_DATALIST,
    E_HTML_TAG_DETAILS,
    E_HTML_TAG_EMBED,
    E_HTML_TAG_FIGCAPTION,
    E_HTML_TAG_FIGURE,
    E_HTML_TAG_FOOTER,
    E_HTML_TAG_HEADER,
    E_HTML_TAG_HGROUP,
    E_HTML_TAG_KEYGEN,
    E_HTML_TAG_MARK,
    E_HTML_TAG_METER,
    E_HTML_TAG_NAV,
    E_HTML_TAG_OUTPUT,
    E_HTML_TAG_PROGRESS,
    E_HTML_TAG_RUBY,
    E_HTML_TAG_RP,
    E_HTML_TAG_RT,
    E_HTML_TAG_SECTION,
    E_HTML_TAG_SOURCE,
    E_HTML_TAG_SUMMARY,
    E_HTML_TAG_TIME,
    E_HTML_TAG_VIDEO,
    E_HTML_TAG_COMMENT,
    E_HTML_TAG_HEAD,
    E_HTML_TAG_TITLE,
    E_HTML_TAG_STYLE,
    E_HTML_TAG_BODY,
    E_HTML_TAG_SAMI,
    E_HTML_TAG_SYNC,
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

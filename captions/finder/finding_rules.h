// Every code that a finding can have.
#pragma once

#include <cstdint>
#include <span>

#include "zyr/zyr_findings.h"

// In the order of the table.
enum FindingRule : uint32_t {
    E_RULE_FILE_REFUSED,
    E_RULE_FILE_ENDING,
    E_RULE_FILE_LINE_ENDS,
    E_RULE_FILE_CUT_BY_ENDS,
    E_RULE_FILE_OTHER_ENDS,
    E_RULE_FILE_UNREADABLE,
    E_RULE_FILE_CODE_PAGE,
    E_RULE_FILE_NUL,
    E_RULE_FILE_LOG,
    E_RULE_TEXT_SEVENTH_LINE,
    E_RULE_TEXT_WRAPPED,
    E_RULE_TEXT_WORD_CUT,
    E_RULE_TEXT_ASTRAL,
    E_RULE_TEXT_MISSING,
    E_RULE_TEXT_ADDED,
    E_RULE_TEXT_JOINED,
    E_RULE_TEXT_TAG,
    E_RULE_TEXT_ENTITY,
    E_RULE_TEXT_OPEN_TAG,
    E_RULE_TEXT_COLOUR,
    E_RULE_TEXT_OVERRIDE,
    E_RULE_TIME_OVERLAP,
    E_RULE_TIME_ORDER,
    E_RULE_TIME_NEVER,
    E_RULE_TIME_EMPTY,
    E_RULE_TIME_LONG,
    E_RULE_TIME_FAST,
    E_RULE_TIME_NO_END,
    E_RULE_SRT_NUMBERS,
    E_RULE_SRT_FRACTION,
    E_RULE_SRT_MORE_NUMBERS,
    E_RULE_SRT_NO_NUMBER_LINE,
    E_RULE_SRT_SWALLOWED,
    E_RULE_SRT_BEHIND_EMPTY,
    E_RULE_SRT_STRAY_DIGIT,
    E_RULE_SRT_TIME_LINE_TEXT,
    E_RULE_SRT_NOT_SHOWN,
    E_RULE_SMI_START_QUOTED,
    E_RULE_SMI_START_NOT_FIRST,
    E_RULE_SMI_START_UNREADABLE,
    E_RULE_SMI_END_UNREADABLE,
    E_RULE_SMI_NOT_SHOWN,
    E_RULE_SMI_BEHIND_BODY,
    E_RULE_SMI_COMMENT,
    E_RULE_SMI_CLASS_QUOTED,
    E_RULE_SMI_CLASS_NOT_FIRST,
    E_RULE_SMI_CLASS_LONG,
    E_RULE_SMI_CLASS_FOLDED,
    E_RULE_SMI_EIGHTH_CLASS,
    E_RULE_SMI_SIXTH_CLASS,
    E_RULE_SUB_TIME_LINE,
    E_RULE_SUB_SWALLOWED,
    E_RULE_SUB_BEHIND_EMPTY,
    E_RULE_SUB_FIELD,
    E_RULE_SUB_VALUE,
    E_RULE_SUB_EMPTY_LINES,
    E_RULE_SSA_START,
    E_RULE_SSA_END,
    E_RULE_SSA_SECTION,
    E_RULE_SSA_STYLES_PLUS,
    E_RULE_SSA_STYLE_UNKNOWN,
    E_RULE_SSA_STYLE_SHORT,
    E_RULE_SSA_OVERRIDE,
    E_RULE_SSA_OVERRIDES,
    E_RULE_SSA_BEFORE_FIRST,
    E_RULE_SSA_FIELDS,
    E_RULE_SSA_INDENTED,
    E_RULE_OUT_GLYPH,
    E_RULE_OUT_WRAPPED,
    E_RULE_OUT_TALL,
    E_RULE_NUMS
};

// A row of the table.
struct RuleRow {
    FindingRule eRule;
    const char *pszCode;
    uint32_t uiSeverity;
    const char *pszFormats;
    const char *pszTitle;
    const char *pszExplanation;
    const char *pszFile;    // a name for the example
    const char *pszExample; // a newline stands for CR LF, "\r" alone for an LF, "\1" for the character 0
};

std::span<const RuleRow> Get_Rules();

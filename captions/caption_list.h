// What a list holds. It is built by a load alone, and never changes after it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "encoding_rule.h"
#include "zyr/quib_caption.h"
#include "zyr/zyr_captions.h"

// A caption's place among the classes that were read; with joined classes there is one such place.
constexpr uint32_t ORDER_NUMS = ZYR_CLASS_MAX;

// 32 bytes; with the index, 44 for each caption beside its text.
struct CaptionRecord {
    int32_t iStart;      // ms
    int32_t iEnd;        // ms
    int32_t iShownUntil; // ms
    uint32_t uiText;     // where its text begins in strText
    uint32_t uiStyle;    // in astStyles
    uint32_t uiSource;   // where it begins in the file
    uint16_t usTextBytes;
    uint16_t usBad;
    uint8_t ucOrder;
    uint8_t ucLines;
};
static_assert(sizeof(CaptionRecord) == 32);

struct LogRecord {
    int32_t iPriority;
    uint32_t uiCaption;
    size_t uiTag;  // in strLog; NO_TAG
    size_t uiText; // in strLog
};
constexpr size_t NO_TAG = SIZE_MAX;

struct LanguageClass {
    std::string strName;
    std::vector<std::string> astrFolded;
    uint32_t uiOrder = ZYR_CAPTIONS_NONE;
    uint32_t uiCaptions = 0;
    int32_t iFirst = 0; // ms
    int32_t iLast = 0;  // ms
};

struct CodePageGuess {
    std::string strName;
    std::string strPreview;
};

struct SsaStyle {
    std::string strName;
    std::string strFont;
    SSAStyleInfo stNumbers;
};

struct HeaderTexts {
    std::string strTitle;
    std::string strOriginalScript;
    std::string strScriptType;
    std::string strFont; // SubViewer, as the rest
    uint32_t uiDelay = 0;
    uint32_t uiColor = 0;
    uint32_t uiFontSize = 0;
};

// Captions by time: those of each class in the order of their starts, as one row of numbers, and over each class's
// stretch of it a tree that has the latest end below each of its nodes. The node of a stretch is its middle.
struct CaptionIndex {
    std::array<uint32_t, ORDER_NUMS + 1> auiFirst = {}; // of each order's stretch, and the end of all
    std::vector<uint32_t> auiCaptions;
    std::vector<int32_t> aiLatestEnd; // ms
    std::vector<int32_t> aiEnds;      // of all captions, sorted, ms
};

struct ZyrCaptions {
    int iError = ZYR_CAPTIONS_OK;
    std::string strError;
    std::string strFile;
    uint32_t uiFormat = ZYR_CAPTIONS_UNKNOWN;
    EncodingRule stRule;
    std::string strCodePage;
    bool bGuessed = false;
    bool bSingleByte = false;
    bool bTogether = false;
    size_t uiFirstUnreadable = ZYR_CAPTIONS_NOWHERE;
    uint8_t ucFirstNotUtf8 = 0;
    uint8_t ucFirstUnreadable = 0;
    uint32_t uiWithText = 0;
    uint32_t uiBadCharacters = 0;
    int32_t iLastEnd = 0; // ms

    std::string strText; // every caption's, each with a zero behind it
    std::vector<CaptionRecord> astRecords;
    std::vector<ZyrCaptionStyle> astStyles; // each once
    CaptionIndex stIndex;

    std::vector<LanguageClass> astClasses;
    std::vector<uint32_t> auiOrder; // classes read, in this order
    std::vector<CodePageGuess> astCodePages;
    std::vector<SsaStyle> astSsaStyles;
    HeaderTexts stHeader;

    std::string strLog; // tags and texts, each with a zero behind it
    std::vector<LogRecord> astLog;

    std::string_view Get_Text(const CaptionRecord &stRecord) const
    {
        return {strText.data() + stRecord.uiText, stRecord.usTextBytes};
    }
};

// A failed load: its code and its sentence.
void Fail_Load(ZyrCaptions &stList, int iError, const std::string &strSentence);

// What is told of all captions together, and of each class, once all are there; and the memory that is not needed
// goes.
void Finish_List(ZyrCaptions &stList);

// "(unnamed)" for the class of captions without one.
std::string Show_ClassName(const std::string &strName);

// A character beyond blanks is in it.
bool Has_VisibleText(std::string_view strUtf8);

// SubViewer header: bracketed field names with their values, several on a line with commas in between or one
// on each, until a line begins with the digit of the first frame's time.

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

#include "markup/caption_text.h"
#include "record/engine_log.h"
#include "text/char_reader.h"
#include "text/text_helpers.h"

namespace
{

enum HeaderState : uint32_t {
    E_SUB_HEADER_LINE,  // outside any field
    E_SUB_HEADER_NAME,  // from a field's "[" to its "]"
    E_SUB_HEADER_VALUE, // behind the "]"
    E_SUB_HEADER_END,   // the first frame's first digit has been read
};

// What stores a value finds it in the tag buffer.

/** Store a number; an empty value counts as 0. */
void Store_Number(uint32_t &uiTarget)
{
    const uint16_t *const pusValue = s_pstTagControlInfo->ausTagBuf;
    const uint16_t *const pusEnd = pusValue + s_pstTagControlInfo->uiTagLength;
    uint32_t uiNumber = 0;
    for (const uint16_t *pusUnit = pusValue; pusUnit < pusEnd; ++pusUnit) {
        if (!Is_Digit(*pusUnit)) return;
        uiNumber = uiNumber * 10 + (*pusUnit - '0');
    }
    uiTarget = uiNumber;
}

/** Store "&H" and six hexadecimal digits as the number that the digits spell. */
void Store_Colour(SubViewerHeaderInfo &stHeader)
{
    constexpr uint32_t COLOUR_VALUE_UNITS = 8;
    const uint16_t *const pusValue = s_pstTagControlInfo->ausTagBuf;
    if (s_pstTagControlInfo->uiTagLength != COLOUR_VALUE_UNITS || pusValue[0] != '&' ||
        To_Upper(pusValue[1]) != 'H')
        return;
    uint32_t uiNumber = 0;
    for (uint32_t uiIndex = 2; uiIndex < COLOUR_VALUE_UNITS; ++uiIndex) {
        const int32_t iDigit = Get_HexValue(pusValue[uiIndex]);
        if (iDigit < 0) return;
        uiNumber = (uiNumber << 4) | static_cast<uint32_t>(iDigit);
    }
    stHeader.uiColf = uiNumber;
}

/** Store the font's name, cut to what the record holds. */
void Store_FontName(SubViewerHeaderInfo &stHeader)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    stHeader.uiFontNameLength = std::min(stTag.uiTagLength, static_cast<uint32_t>(ZYR_SUBVIEWER_FONT_UNITS));
    std::copy_n(stTag.ausTagBuf, stHeader.uiFontNameLength, stHeader.ausFontName);
}

/** A field of the header. */
struct FieldRow {
    const char *pszName; // without its brackets
    void (*pfStore)(SubViewerHeaderInfo &stHeader) = nullptr;
};

constexpr FieldRow FieldTable[] = {
    {"DELAY", [](SubViewerHeaderInfo &stHeader) { Store_Number(stHeader.uiDelay); }},
    {"SIZE", [](SubViewerHeaderInfo &stHeader) { Store_Number(stHeader.uiSize); }},
    {"COLF", Store_Colour},
    {"FONT", Store_FontName},
    {"SUBTITLE"},
    {"INFORMATION"},
    {"TITLE"},
    {"AUTHOR"},
    {"SOURCE"},
    {"PRG"},
    {"FILEPATH"},
    {"CD TRACK"},
    {"COMMENT"},
    {"END INFORMATION"},
    {"STYLE"},
    {"BR"},
};

struct HeaderScan {
    HeaderState eState;
    const FieldRow *pstField; // whose value is being read
    bool bSubtitle;           // SUBTITLE, without which a file is no SubViewer file, has been seen
};

/** Look the collected name, brackets and all, up. @return whether a value follows. */
bool Begin_Value(HeaderScan &stScan)
{
    const TagControlInfo &stTag = *s_pstTagControlInfo;
    const uint16_t *const pusName = stTag.ausTagBuf + 1;
    uint32_t uiLen = stTag.uiTagLength - 1;
    if (uiLen > 0 && pusName[uiLen - 1] == ']') --uiLen; // a name that fills the buffer has lost it
    if (uiLen == 0 || std::any_of(pusName, pusName + uiLen, [](uint16_t usUnit) { return usUnit > 0x7F; })) {
        LOG_PARSER("HeaderParser_SubViewer() - Failed to parse the caption field!\n");
        return false;
    }
    const auto fnIsNamed = [=](const FieldRow &stRow) {
        const std::string_view strName = stRow.pszName;
        return std::equal(pusName, pusName + uiLen, strName.begin(), strName.end());
    };
    stScan.pstField = std::find_if(std::begin(FieldTable), std::end(FieldTable), fnIsNamed);
    if (stScan.pstField == std::end(FieldTable)) {
        LOG_PARSER("HeaderParser_SubViewer() - Unknown caption field!\n");
        return false;
    }
    if (std::strcmp(stScan.pstField->pszName, "SUBTITLE") == 0) stScan.bSubtitle = true;
    return true;
}

// One function per state. The collector's length also tells whether a character of the line has been seen: a
// digit begins the frames only where a line, or what follows a field's value, begins.

HeaderState Step_Line(uint16_t usChar)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    if (Is_LineEnd(usChar)) {
        stTag.uiTagLength = 0;
    } else if (usChar == '[') {
        stTag.uiTagLength = 0;
        Collect_TagUnit(usChar, TAG_TEXT_UNITS);
        return E_SUB_HEADER_NAME;
    } else if (Is_Digit(usChar) && stTag.uiTagLength == 0) {
        return E_SUB_HEADER_END;
    } else {
        stTag.uiTagLength = 1; // however much it is
    }
    return E_SUB_HEADER_LINE;
}

HeaderState Step_Name(HeaderScan &stScan, uint16_t usChar)
{
    TagControlInfo &stTag = *s_pstTagControlInfo;
    Collect_TagUnit(usChar, TAG_TEXT_UNITS);
    if (usChar == '[') stTag.uiTagLength = 1; // the name begins afresh behind this bracket
    if (usChar != ']' && !Is_LineEnd(usChar)) return E_SUB_HEADER_NAME;
    const bool bValue = usChar == ']' && Begin_Value(stScan);
    stTag.uiTagLength = 0;
    return bValue ? E_SUB_HEADER_VALUE : E_SUB_HEADER_LINE;
}

HeaderState Step_Value(const HeaderScan &stScan, uint16_t usChar)
{
    if (!Is_LineEnd(usChar) && usChar != ',') {
        Collect_TagUnit(usChar, TAG_TEXT_UNITS);
        return E_SUB_HEADER_VALUE;
    }
    if (stScan.pstField->pfStore != nullptr)
        stScan.pstField->pfStore(pstQuibCaptionParserInfo->stSubViewerInfo);
    s_pstTagControlInfo->uiTagLength = 0;
    return E_SUB_HEADER_LINE;
}

HeaderState Step_Header(HeaderScan &stScan, uint16_t usChar)
{
    switch (stScan.eState) {
    case E_SUB_HEADER_LINE: return Step_Line(usChar);
    case E_SUB_HEADER_NAME: return Step_Name(stScan, usChar);
    default: return Step_Value(stScan, usChar);
    }
}

/** @return bytes of the frames' first digit, with dropped ones before it; 0 when the file ends without one.
 */
int32_t Scan_Header(void *hFile, HeaderScan &stScan)
{
    for (;;) {
        uint16_t usChar = 0;
        const int32_t iResult = Get_CharCode(hFile, &usChar, 0);
        if (iResult <= 0) return 0;
        stScan.eState = Step_Header(stScan, usChar);
        if (stScan.eState == E_SUB_HEADER_END) return iResult;
    }
}

} // namespace

int32_t HeaderParser_SubViewer(void *hFile)
{
    if (!Is_HeaderReady()) return -1;
    s_pstTagControlInfo->uiTagLength = 0;
    HeaderScan stScan = {E_SUB_HEADER_LINE, nullptr, false};
    const int32_t iDigitBytes = Scan_Header(hFile, stScan);
    int64_t llFirstFramePos = -1;
    if (iDigitBytes > 0) {
        const int64_t llTold = Ask_ReadPosition(hFile, &llFirstFramePos);
        if (llTold < 0) {
            LOG_PARSER("HeaderParser_SubViewer() - File Tell Failed! (ERROR = %d)\n",
                       static_cast<int32_t>(llTold));
            return -1;
        }
        llFirstFramePos -= iDigitBytes;
    }
    if (!stScan.bSubtitle) {
        LOG_PARSER("HeaderParser_SubViewer() - NO SUBTITLE field dectected!\n");
        return -1;
    }
    pstQuibCaptionParserInfo->astClassInfo[0].llFirstFramePos = llFirstFramePos;
    pstQuibCaptionParserInfo->uiClassNums = 1;
    return 1;
}

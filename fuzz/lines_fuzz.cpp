/* Lines and what is merged of them: frames of up to five languages at one moment, made of few pieces in many lengths,
 * so that lines, text buffers and the output are filled to the unit. */

#include <array>
#include <string_view>
#include <vector>

#include "engine_input.h"
#include "record/parser_state.h"

const size_t g_uiSteeringBytes = 4;

namespace
{

using namespace std::string_view_literals;

constexpr std::string_view PIECES[] = {"a"sv,     "\xEA\xB0\x80"sv, " "sv,        "&nbsp;"sv,
                                       "<br>"sv,  "word "sv,        "\t"sv,       "\xC3\xA9"sv,
                                       "&lt;"sv,  "<b>x</b>"sv,     "&#9;<br>"sv, "<br>"sv,
                                       "&#32;"sv, "\xEB\x82\x98"sv, "&#55357;"sv, "&#56832;"sv};
constexpr uint32_t TEXT_BYTES = ZYR_OUT_TEXT_BYTES - 2;

/** A text from pairs of bytes: what, and how often. */
std::string Take_Text(FuzzInput &stInput, size_t uiPairs)
{
    std::string strText;
    for (size_t uiPair = 0; uiPair < uiPairs && !stInput.IsEmpty(); ++uiPair) {
        const uint8_t ucWhat = stInput.Take_Byte();
        size_t uiTimes = stInput.Take_Byte();
        if (ucWhat >= 240 && strText.size() < 1000) uiTimes *= 64; // fills a text buffer
        for (; uiTimes > 0; --uiTimes) strText += PIECES[ucWhat % 16];
    }
    return strText;
}

std::string Make_File(FuzzInput &stInput, uint32_t uiClasses, bool bUtf8)
{
    std::string strFile = bUtf8 ? "\xEF\xBB\xBF" : "";
    for (uint32_t uiClass = 0; uiClass < uiClasses; ++uiClass) {
        strFile += "<SYNC Start=1000><P Class=C" + std::to_string(uiClass) + ">";
        strFile += Take_Text(stInput, 1 + stInput.Take_Byte() % 16) + "\r\n";
    }
    return strFile;
}

std::string To_Utf16(std::string_view strUtf8)
{
    std::string strText = "\xFF\xFE";
    const auto fnPut = [&](uint32_t uiUnit) {
        strText += static_cast<char>(uiUnit & 0xFF);
        strText += static_cast<char>(uiUnit >> 8);
    };
    for (size_t uiPos = 0; uiPos < strUtf8.size();) {
        const auto fnByte = [&](size_t uiAt) {
            return static_cast<uint32_t>(static_cast<uint8_t>(strUtf8[uiAt]));
        };
        const uint32_t uiLead = fnByte(uiPos);
        if (uiLead < 0x80) {
            fnPut(uiLead);
            uiPos += 1;
        } else if (uiLead < 0xE0) {
            fnPut((uiLead & 0x1F) << 6 | (fnByte(uiPos + 1) & 0x3F));
            uiPos += 2;
        } else {
            fnPut((uiLead & 0x0F) << 12 | (fnByte(uiPos + 1) & 0x3F) << 6 | (fnByte(uiPos + 2) & 0x3F));
            uiPos += 3;
        }
    }
    return strText;
}

std::string Get_OutText()
{
    const QuibCaptionParserInfo &stInfo = *pstQuibCaptionParserInfo;
    return {reinterpret_cast<const char *>(stInfo.aucOutText), stInfo.uiOutTextLength};
}

/** @return what each language's frame shows by itself; empty when one has none */
std::vector<std::string> Read_Alone(uint32_t uiClasses)
{
    std::vector<std::string> vecTexts;
    for (uint32_t uiClass = 0; uiClass < uiClasses; ++uiClass) {
        if (zyrSubtitle_selectClass(1, &uiClass) != 0 || QUIB_CAPTION_ParsingProcess() != 2) return {};
        vecTexts.push_back(Get_OutText());
    }
    return vecTexts;
}

/** The languages' texts below each other, where all of them have room; else the merged text begins so. */
void Expect_Merged(const std::vector<std::string> &vecTexts, bool bUtf16)
{
    const std::string strBreak = bUtf16 ? std::string("\n\0", 2) : "\n";
    std::string strAll;
    for (const std::string &strText : vecTexts)
        if (!strText.empty()) strAll += (strAll.empty() ? "" : strBreak) + strText;
    std::string strMerged = Get_OutText();
    strMerged.resize(strMerged.size() - 2);
    Demand(strMerged.size() <= TEXT_BYTES, "merged text has 2046 bytes at most");
    // Each line is tried against twice its units, and in the end with a zero behind it.
    if (strAll.size() + size_t{2} * LINE_UNITS <= TEXT_BYTES)
        Demand(strMerged == strAll, "merged text is the languages' texts below each other");
    Demand(vecTexts.empty() || vecTexts[0].empty() ||
               strMerged.compare(0, vecTexts[0].size(), vecTexts[0]) == 0,
           "merged text begins with the first language");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *pucData, size_t uiSize)
{
    if (uiSize > 1024) return 0;
    FuzzInput stInput(pucData, uiSize);
    FuzzInput stSteps = stInput.Take_Tail(g_uiSteeringBytes);
    const uint8_t ucOptions = stSteps.Take_Byte();
    const uint32_t uiClasses = 2 + stSteps.Take_Byte() % 4u;
    std::string strFile = Make_File(stInput, uiClasses, (ucOptions & 1) != 0);
    const bool bUtf16 = (ucOptions & 3) == 2;
    if (bUtf16) strFile = To_Utf16(strFile);
    zyr_host_reset();
    if (g_bTelling) zyr_host_setLogSink(Tell_Log, nullptr);
    zyr_host_mapMemory("zyrhost:lines.smi", strFile.data(), static_cast<uint32_t>(strFile.size()));
    if (zyrSubtitle_open("zyrhost:lines.avi", 0) == 0 && pstQuibCaptionParserInfo->uiClassNums == uiClasses) {
        const std::vector<std::string> vecTexts = Read_Alone(uiClasses);
        constexpr std::array<uint32_t, 5> ALL = {0, 1, 2, 3, 4};
        zyrSubtitle_selectClass(static_cast<int32_t>(uiClasses), ALL.data());
        if (QUIB_CAPTION_ParsingProcessEx() == 2) Expect_Merged(vecTexts, bUtf16);
    }
    zyrSubtitle_close();
    Expect_AllGivenBack();
    return 0;
}

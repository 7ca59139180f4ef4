// The finder: places, codes and what the box does, on files whose faults are known.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "captions_kit.h"
#include "zyr/zyr_findings.h"

namespace
{

// A file of the table or of a test: a newline stands for CR LF, "\r" for LF, "\1" for the character 0.
std::string Expand(const char *pszText)
{
    std::string strBytes;
    for (; *pszText != '\0'; ++pszText)
        if (*pszText == '\n')
            strBytes += "\r\n";
        else if (*pszText == '\r')
            strBytes += '\n';
        else
            strBytes += *pszText == '\1' ? '\0' : *pszText;
    return strBytes;
}

class Findings
{
public:
    Findings(const std::string &strBytes, const char *pszName, const ZyrFindingsOptions &stOptions = {})
        : m_pstFindings(zyrFindings_loadMemory(strBytes.data(), strBytes.size(), pszName, &stOptions))
    {
    }
    ~Findings() { zyrFindings_free(m_pstFindings); }
    Findings(const Findings &) = delete;
    Findings &operator=(const Findings &) = delete;

    const ZyrFindings *Get() const { return m_pstFindings; }
    std::vector<ZyrFinding> List() const
    {
        std::vector<ZyrFinding> astFindings(zyrFindings_count(m_pstFindings));
        for (uint32_t ui = 0; ui < astFindings.size(); ++ui)
            zyrFindings_get(m_pstFindings, ui, &astFindings[ui]);
        return astFindings;
    }

    // "SRT-005 4:1 SRT-006 7:1", without the codes of times, which short files always have.
    std::string Show(bool bTimes = false) const
    {
        std::string strText;
        for (const ZyrFinding &stFinding : List()) {
            const std::string strCode = stFinding.pszCode + 4;
            if (!bTimes && strCode.starts_with("TIME")) continue;
            strText += (strText.empty() ? "" : " ") + strCode + " " + std::to_string(stFinding.uiLine) + ":" +
                       std::to_string(stFinding.uiColumn);
        }
        return strText;
    }

private:
    ZyrFindings *m_pstFindings;
};

} // namespace

// What the page of codes shows must be so.
TEST(FindingRules, EveryExampleHasItsFinding)
{
    ZyrFindingRule stRule;
    for (uint32_t ui = 0; zyrFindings_getRule(ui, &stRule) == ZYR_CAPTIONS_OK; ++ui) {
        SCOPED_TRACE(stRule.pszCode);
        ZyrFindingsOptions stOptions = {};
        if (std::string_view(stRule.pszCode).starts_with("ZYR-OUT")) {
            stOptions.pszOutput = "hdmi-vga";
            stOptions.uiFontSize = 40;
        }
        const Findings stFindings(Expand(stRule.pszExample), stRule.pszFile, stOptions);
        const std::vector<ZyrFinding> astFindings = stFindings.List();
        EXPECT_TRUE(std::any_of(astFindings.begin(), astFindings.end(),
                                [&](const ZyrFinding &stFinding) { return stFinding.uiRule == ui; }))
            << stFindings.Show(true) << zyrFindings_getErrorText(stFindings.Get());
    }
}

// The caret of every finding stands where a person would put it.
TEST(Findings, PlacesAndCodes)
{
    static constexpr struct {
        const char *pszWhy, *pszName, *pszText, *pszFindings;
    } astCases[] = {
        {"nothing is wrong", "a.srt", "1\n00:00:01,000 --> 00:00:03,000\nHello\nWorld\n\n", ""},
        {"nothing but style", "a.srt", "1\n00:00:01,000 --> 00:00:03,000\n<i>a &amp; b</i>\n\n", ""},
        {"no empty line", "a.srt",
         "1\n00:00:01,000 --> 00:00:02,000\na\n2\n00:00:03,000 --> 00:00:04,000\nb\n\n",
         "TEXT-006 4:1 SRT-005 5:1"},
        {"a blank is no empty line", "a.srt",
         "1\n00:00:01,000 --> 00:00:02,000\na\n \n2\n00:00:03,000 --> 00:00:04,000\nb\n\n",
         "TEXT-006 5:1 SRT-005 6:1"},
        {"an empty line inside", "a.srt", "1\n00:00:01,000 --> 00:00:02,000\na\n\nb c\n\n", "SRT-006 5:1"},
        {"hours are missing", "a.srt", "1\n00:01,000 --> 00:02,000\na\n\n", "SRT-001 2:1"},
        {"in UTF-8 a column is a character", "a.srt",
         "\xEF\xBB\xBF"
         "1\n00:00:01,000 --> 00:00:02,000\n\xC3\xA9\xC3\xA9 &bull; x\n\n",
         "TEXT-009 3:4"},
        {"two entities, one known", "a.srt", "1\n00:00:01,000 --> 00:00:02,000\n&eacute;&AMP;\n\n",
         "TEXT-009 3:9"},
        {"a tag swallows to the next", "a.srt", "1\n00:00:01,000 --> 00:00:02,000\na < b <i>c</i>\n\n", ""},
        {"a tag swallows to the end", "a.srt", "1\n00:00:01,000 --> 00:00:02,000\na < b\n\n", "TEXT-010 3:3"},
        {"START in quotation marks", "a.smi",
         "<SYNC Start=1000><P>a<SYNC Start=\"2000\"><P>b\n<SYNC Start=3000><P>&nbsp;", "SMI-001 1:22"},
        {"two languages side by side", "a.smi",
         "<SYNC Start=1000><P Class=A>a<P Class=B>b\n<SYNC Start=3000><P Class=B>&nbsp;<P Class=A>&nbsp;",
         ""},
        {"a class with another attribute behind it", "a.smi",
         "<SYNC Start=1000><P Class=A ID=x>a\n<SYNC Start=3000><P Class=A>&nbsp;", "TEXT-005 1:34"},
        {"one digit for the hour", "a.sub", "[SUBTITLE]\n00:00:01.00,0:00:02.00\na\n\n", "SUB-001 2:1"},
        {"several fields on a line", "a.sub",
         "[SUBTITLE]\n[COLF]&HFFFFFF,[SIZE]1x,[NEW]\n00:00:01.00,00:00:02.00\na\n\n",
         "SUB-005 2:22 SUB-004 2:25"},
        {"commas in the text", "a.ssa",
         "[Events]\nDialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,a, b, c\\Nd\n", ""},
        {"two lines of one time", "a.ssa",
         "[Events]\nDialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,a\n"
         "Dialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,b{\\q2}\n",
         "SSA-007 3:52"},
    };
    for (const auto &stCase : astCases)
        EXPECT_EQ(Findings(Expand(stCase.pszText), stCase.pszName).Show(), stCase.pszFindings)
            << stCase.pszWhy;
}

// Offsets lead back to the bytes, whatever the encoding and the line ends.
TEST(Findings, OffsetsAreThoseOfTheFile)
{
    const std::string strHead = "1\r\n00:00:01,000 --> 00:00:02,000\r\n";
    std::string strWide = "\xFF\xFE";
    for (const char cChar : strHead + "a &AMP; b\r\n\r\n") strWide += {cChar, '\0'};
    const struct {
        std::string strBytes;
        size_t uiOffset;
    } astCases[] = {
        {strHead + "\xB0\xA1 &AMP; b\r\n\r\n", strHead.size() + 3}, // two bytes of CP949
        {"\xEF\xBB\xBF" + strHead + "\xEA\xB0\x80 &AMP; b\r\n\r\n", strHead.size() + 7},
        {strWide, 2 + 2 * (strHead.size() + 2)},
    };
    ZyrCaptionsOptions stCaptions = {};
    stCaptions.pszCodePage = "CP949";
    ZyrFindingsOptions stOptions = {};
    stOptions.pstCaptions = &stCaptions;
    for (const auto &stCase : astCases) {
        const Findings stFindings(stCase.strBytes, "a.srt", stOptions);
        const uint32_t uiEntity = zyrFindings_findRule("zyr-text-009");
        uint32_t uiSeen = 0;
        for (const ZyrFinding &stFinding : stFindings.List()) {
            if (stFinding.uiRule != uiEntity) continue;
            ++uiSeen;
            EXPECT_EQ(stFinding.uiOffset, stCase.uiOffset);
            EXPECT_EQ(stFinding.uiColumn, 3U);
            EXPECT_STREQ(stFinding.pszText, "&AMP;");
            EXPECT_EQ(stFinding.uiCaption, 0U);
        }
        EXPECT_EQ(uiSeen, 1U) << stFindings.Show(true);
    }
}

// Every caption that bare line ends cost is named by its own line, and the file says how much is left.
TEST(Findings, LineEndsByCaption)
{
    const Findings stFindings(Read_File(Sample("subrip-lf.srt")), "a.srt");
    EXPECT_EQ(stFindings.Show(), "FILE-004 1:1 FILE-003 1:2 FILE-004 5:1 FILE-004 10:1 FILE-004 14:1");
    EXPECT_EQ(zyrCaptions_count(zyrFindings_getCaptions(stFindings.Get())), 4U);
    EXPECT_LT(zyrCaptions_count(zyrFindings_getBoxCaptions(stFindings.Get())), 4U);
}

// Samples that are as they should be lose nothing, however they are encoded.
TEST(Findings, GoodSamplesLoseNothing)
{
    for (const char *pszName :
         {"subrip-crlf.srt", "subrip-cp949.srt", "sami-bilingual.smi", "sami-interleaved.smi",
          "sami-cp949.smi", "sami-trilingual.smi", "sami-utf16le.smi", "sami-lf.smi", "ssa-cp949.ssa",
          "ssa-styles.ssa", "ssa-utf16be.ssa", "ssa-utf8.ssa", "subviewer.sub", "subviewer-cp949.sub",
          "subrip-cp949.srt"})
        for (const ZyrFinding &stFinding : Findings(Read_File(Sample(pszName)), pszName).List())
            EXPECT_NE(stFinding.uiSeverity, static_cast<uint32_t>(ZYR_FINDING_LOST))
                << pszName << " " << stFinding.pszCode << " " << stFinding.uiLine;
}

// Anything may be handed over, and every place of a finding is in the file.
TEST(Findings, CutAnywhere)
{
    for (const std::string &strPath : List_Samples()) {
        const std::string strBytes = Read_File(strPath);
        for (size_t uiBytes = 1; uiBytes < strBytes.size(); uiBytes += 97) {
            const Findings stFindings(strBytes.substr(0, uiBytes), strPath.c_str());
            for (const ZyrFinding &stFinding : stFindings.List())
                ASSERT_LE(stFinding.uiOffset, uiBytes) << strPath;
        }
    }
    EXPECT_EQ(zyrFindings_getError(Findings("", nullptr).Get()), ZYR_CAPTIONS_OK);
    EXPECT_EQ(Findings("", "a.srt").Show(), "FILE-001 0:0");
    EXPECT_EQ(zyrFindings_getError(nullptr), ZYR_CAPTIONS_NO_MEMORY);
    EXPECT_EQ(zyrFindings_findRule("ZYR-SRT"), ZYR_CAPTIONS_NONE);
}

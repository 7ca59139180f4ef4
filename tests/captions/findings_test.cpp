// The finder: places, codes and what the box does, on files whose faults are known.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
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
        {"a whole file that is junk", "a.srt", "hello\nworld\n", ""},
        {"an arrow in the text", "a.srt", "1\n00:00:01,000 --> 00:00:02,000\nfrom A --> B\n\n", ""},
        {"a clock in the text", "a.srt", "1\n00:00:01,000 --> 00:00:02,000\nat 12:30\n\n", ""},
        {"an entry without an end", "a.srt", "1\n00:00:01,000\na\n\n", "SRT-001 2:1"},
        {"a blank behind the number", "a.srt", "1 \n00:00:01,000 --> 00:00:02,000\na\n\n", "FILE-009 1:1"},
        {"a fraction of two digits", "a.srt", "1\n00:00:01,50 --> 00:00:02,000\na\n\n", "SRT-002 2:1"},
        {"nothing but blanks on the sixth line", "a.srt",
         "1\n00:00:01,000 --> 00:00:09,000\na\nb\nc\nd\ne\n \nf\n\n", ""},
        {"a seventh line of two words", "a.srt",
         "1\n00:00:01,000 --> 00:00:09,000\na\nb\nc\nd\ne\nf\ng h\n\n", "TEXT-001 9:1"},
        {"64 characters fit", "a.srt",
         "1\n00:00:01,000 --> 00:00:09,000\n0123456789 0123456789 0123456789 0123456789 0123456789 "
         "012345678\n\n",
         ""},
        {"65 do not", "a.srt",
         "1\n00:00:01,000 --> 00:00:09,000\n0123456789 0123456789 0123456789 0123456789 0123456789 "
         "0123456789\n\n",
         "TEXT-002 3:1"},
        {"a note in a known tag", "a.srt", "1\n00:00:01,000 --> 00:00:02,000\n<span class=x>a</span>\n\n",
         ""},
        {"a colour of another length", "a.srt",
         "1\n00:00:01,000 --> 00:00:02,000\n<font color=\"#FFFF\">a</font>\n\n", "TEXT-011 3:14"},
        {"a colour by name", "a.srt", "1\n00:00:01,000 --> 00:00:02,000\n<font color=Red>a</font>\n\n", ""},
        {"an override in the middle", "a.srt", "1\n00:00:01,000 --> 00:00:02,000\na{\\an8}b\n\n",
         "TEXT-012 3:2"},
        {"the file ends in a number", "a.srt", "1\n00:00:01,000 --> 00:00:02,000\na\n\n2\n",
         "SRT-006 5:1 SRT-007 5:1"},
        {"emoji in a row", "a.srt",
         "\xEF\xBB\xBF"
         "1\n00:00:01,000 --> 00:00:02,000\na \xF0\x9F\x98\x80\xF0\x9F\x98\x81 b\n\n",
         "TEXT-004 3:3"},
        {"[br] in the middle", "a.sub", "[SUBTITLE]\n00:00:01.00,00:00:02.00\na[br]b [x] c\n\n", ""},
        {"digits alone", "a.sub", "[SUBTITLE]\n00000100,00000200\na\n\n", ""},
        {"a frame behind a bad one", "a.sub",
         "[SUBTITLE]\n00:00:01.00;00:00:02.00\na\n\n00:00:03.00,00:00:04.00\nb\n\n", "SUB-001 2:1"},
        {"text behind an empty line", "a.sub",
         "[SUBTITLE]\n00:00:01.00,00:00:02.00\na\n\nb\n\n00:00:03.00,00:00:04.00\nc\n\n", "SUB-003 5:1"},
        {"a style by the beginning of its name", "a.ssa",
         "[v4 Styles]\nStyle: Default,Arial,20,255,255,255,0,0,0,1,2,0,2,10,10,10,0,0\n"
         "[Events]\nDialogue: Marked=0,0:00:01.00,0:00:02.00,Def,,0,0,0,,a\n",
         ""},
        {"overrides that are known", "a.ssa",
         "[Events]\nDialogue: "
         "Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,{\\b1}a{\\fs20}b{\\c&HFF&}c{\\r}{\\fnArial}d\n",
         ""},
        {"an end that is none", "a.ssa", "[Events]\nDialogue: Marked=0,0:00:01.00,soon,,,0,0,0,,a\n",
         "SSA-002 2:31"},
        {"a comment line and a format line", "a.ssa",
         "[Events]\nFormat: a, b\nComment: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,x\n"
         "Dialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,a\n",
         ""},
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

// Times have their own findings, and their limits can be set.
TEST(Findings, TimesAndLimits)
{
    static constexpr const char *SLOW = "1\n00:00:01,000 --> 00:00:02,000\n0123456789\n\n";
    static constexpr struct {
        const char *pszWhy, *pszName, *pszText;
        uint32_t uiSpeed, uiLongestMs;
        const char *pszFindings;
    } astCases[] = {
        {"ten characters a second", "a.srt", SLOW, 10, 0, ""},
        {"nine are the most", "a.srt", SLOW, 9, 0, "TIME-006 1:1"},
        {"any number is fine", "a.srt", SLOW, ZYR_CAPTIONS_NONE, 0, ""},
        {"a second is the most", "a.srt", SLOW, 0, 1000, ""},
        {"less than a second is", "a.srt", SLOW, 0, 999, "TIME-005 1:1"},
        {"they touch", "a.srt",
         "1\n00:00:01,000 --> 00:00:02,000\na\n\n2\n00:00:02,000 --> 00:00:03,000\nb\n\n", 0, 0, ""},
        {"they overlap", "a.sub", "[SUBTITLE]\n00:00:01.00,00:00:03.00\na\n\n00:00:02.00,00:00:04.00\nb\n\n",
         0, 0, "TIME-001 5:1"},
        {"an empty one overlaps", "a.srt",
         "1\n00:00:01,000 --> 00:00:03,000\n\n2\n00:00:02,000 --> 00:00:03,000\nb\n\n", 0, 0, "TIME-004 1:1"},
        {"out of order", "a.srt",
         "1\n00:00:05,000 --> 00:00:06,000\na\n\n2\n00:00:01,000 --> 00:00:02,000\nb\n\n", 0, 0,
         "TIME-002 5:1"},
        {"SSA is sorted by the box", "a.ssa",
         "[Events]\nDialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,a\n"
         "Dialogue: Marked=0,0:00:09.00,0:00:10.00,,,0,0,0,,b\nDialogue: "
         "Marked=0,0:00:05.00,0:00:06.00,,,0,0,0,,c\n",
         0, 0, ""},
        {"no time at all", "a.srt", "1\n00:00:05,000 --> 00:00:05,000\na\n\n", 0, 0, "TIME-003 1:1"},
        {"blanks alone clear in SAMI", "a.smi", "<SYNC Start=1000><P>a\n<SYNC Start=2000><P>&nbsp;\n", 0, 0,
         ""},
        {"an END is an end", "a.smi", "<SYNC Start=1000 End=2000><P>a\n", 0, 0, ""},
        {"nothing ends it", "a.smi", "<SYNC Start=1000><P>a\n", 0, 0, "TIME-007 1:1"},
    };
    for (const auto &stCase : astCases) {
        ZyrFindingsOptions stOptions = {};
        stOptions.uiCharactersPerSecond = stCase.uiSpeed;
        stOptions.uiLongestMs = stCase.uiLongestMs;
        EXPECT_EQ(Findings(Expand(stCase.pszText), stCase.pszName, stOptions).Show(true), stCase.pszFindings)
            << stCase.pszWhy;
    }
}

// What only an output can tell, with the sentence that it is told in.
TEST(Findings, OnAnOutput)
{
    ZyrFindingsOptions stOptions = {};
    stOptions.pszOutput = "lcd";
    const std::string strText =
        "\xEF\xBB\xBF"
        "1\n00:00:01,000 --> 00:00:09,000\nshort\n"
        "wwwwwwwwwwwwwww wwwwwwwwwwwwwww wwwwwwwwwwwwwww wwwwwwwwwwwwww\n\xE1\x9A\xA0\n\n";
    const Findings stFindings(Expand(strText.c_str()), "a.srt", stOptions);
    EXPECT_EQ(stFindings.Show(), "OUT-002 4:1 OUT-001 5:1");
    EXPECT_NE(std::string(stFindings.List()[0].pszSentence).find("takes 2 rows"), std::string::npos);
    stOptions.pszOutput = "vhs";
    EXPECT_EQ(zyrFindings_getError(Findings(Expand(strText.c_str()), "a.srt", stOptions).Get()),
              ZYR_CAPTIONS_NO_SCREEN);
}

// A class that goes into another is told at each of its paragraphs, the captions without a class too.
TEST(Findings, ClassesOfSami)
{
    std::string strMany;
    std::string strEight = "<SYNC Start=1><P Class=A>a";
    for (int i = 1; i <= 31; ++i)
        strMany += "<SYNC Start=" + std::to_string(i * 1000) + "><P Class=MAIN>" + std::to_string(i) + "\r\n";
    for (const char cName : std::string("BCDEFGH"))
        strEight += std::string("<P Class=") + cName + ">" + cName;
    const struct {
        const char *pszWhy;
        std::string strText;
        const char *pszFindings;
    } astCases[] = {
        {"31 and one",
         strMany + "<SYNC Start=90000><P Class=SLIP>x\r\n<SYNC Start=91000><P Class=MAIN>&nbsp;",
         "SMI-011 32:19"},
        {"31 and one without a class",
         strMany + "<SYNC Start=90000><P>x\r\n<SYNC Start=91000><P Class=MAIN>&nbsp;", "SMI-011 32:19"},
        {"eight beside each other", strEight + "\r\n<SYNC Start=1000><P Class=A>&nbsp;",
         "SMI-013 1:75 SMI-013 1:87 SMI-012 1:99"},
        {"the same name twice", "<SYNC Start=1><P Class=a>x<SYNC Start=9><P Class=A>&nbsp;", ""},
        {"a long name once",
         "<SYNC Start=1><P Class=ABCDEFGHIJKLM>x<SYNC Start=9><P Class=ABCDEFGHIJKLM>&nbsp;", "SMI-010 1:15"},
        {"a tag begins a text for all", "<SYNC Start=1><B>x</B><P Class=A>y<SYNC Start=9><P Class=A>&nbsp;",
         ""},
        {"text in front of the paragraph", "<SYNC Start=1>x<P Class=A>y<SYNC Start=9><P Class=A>&nbsp;",
         "SMI-005 1:15"},
        {"a SYNC behind the body", "<SYNC Start=1><P>x</BODY><SYNC Start=9><P>y", "SMI-006 1:26"},
        {"a bare SYNC with nothing to say", "<SYNC Start=1><P>x<SYNC><SYNC Start=9><P>&nbsp;", ""},
        {"a bare SYNC with text", "<SYNC Start=1><P>x<SYNC><P>y<SYNC Start=9><P>&nbsp;", "SMI-003 1:19"},
    };
    for (const auto &stCase : astCases)
        EXPECT_EQ(Findings(stCase.strText, "a.smi").Show(), stCase.pszFindings) << stCase.pszWhy;
}

namespace
{

struct Shown {
    std::string strWhat; // times and text
    uint32_t uiLine;     // 0 on
};

std::vector<Shown> List_Shown(const ZyrCaptions *pstCaptions, const std::string &strBytes)
{
    std::vector<Shown> astShown;
    ZyrCaption stCaption;
    for (uint32_t ui = 0; zyrCaptions_get(pstCaptions, ui, &stCaption) == ZYR_CAPTIONS_OK; ++ui)
        astShown.push_back({std::to_string(stCaption.iStart) + " " + std::to_string(stCaption.iEnd) + " " +
                                stCaption.pszText,
                            static_cast<uint32_t>(
                                std::count(strBytes.begin(), strBytes.begin() + stCaption.uiSource, '\n'))});
    return astShown;
}

bool Is_Text(const std::string &strLine)
{
    return strLine.find_first_not_of("0123456789:,.-> \r\n") != std::string::npos;
}

} // namespace

// A line that is missing costs captions: each of them is named where it stands, by something that changes or loses.
TEST(Findings, WhatAMissingLineCostsIsNamed)
{
    uint32_t uiCosts = 0;
    for (const char *pszName : {"subrip-crlf.srt", "subviewer.sub"}) {
        const std::string strGood = Read_File(Sample(pszName));
        const std::vector<Shown> astGood = List_Shown(Load_Text(strGood, pszName).get(), strGood);
        std::vector<std::string> astrLines;
        for (size_t uiAt = 0; uiAt < strGood.size(); uiAt = strGood.find('\n', uiAt) + 1)
            astrLines.push_back(strGood.substr(uiAt, strGood.find('\n', uiAt) + 1 - uiAt));
        for (uint32_t uiGone = astGood[0].uiLine; uiGone < astrLines.size(); ++uiGone) {
            if (Is_Text(astrLines[uiGone])) continue;
            std::string strBad;
            for (uint32_t ui = 0; ui < astrLines.size(); ++ui) strBad += ui == uiGone ? "" : astrLines[ui];
            const Findings stFindings(strBad, pszName);
            std::set<std::string> astrStill;
            for (const Shown &stShown : List_Shown(zyrFindings_getBoxCaptions(stFindings.Get()), strBad))
                astrStill.insert(stShown.strWhat);
            for (size_t ui = 0; ui < astGood.size(); ++ui) {
                if (astrStill.count(astGood[ui].strWhat) > 0) continue;
                ++uiCosts;
                const uint32_t uiEnd = ui + 1 < astGood.size() ? astGood[ui + 1].uiLine + 3 : UINT32_MAX;
                bool bNamed = false;
                for (const ZyrFinding &stFinding : stFindings.List())
                    bNamed = bNamed || (stFinding.uiSeverity >= ZYR_FINDING_CHANGED &&
                                        stFinding.uiLine >= astGood[ui].uiLine && stFinding.uiLine <= uiEnd);
                EXPECT_TRUE(bNamed) << pszName << " without line " << uiGone + 1 << ": "
                                    << astGood[ui].strWhat << "\n"
                                    << stFindings.Show(true);
            }
        }
    }
    EXPECT_GT(uiCosts, 10U);
}

// zyrsub fix: what it writes is read by the box as it was meant, and what was right stays as it is.
#include <gtest/gtest.h>

#include <set>

#include "run_program.h"

using nlohmann::json;

static const char *const MARK = "\xEF\xBB\xBF";

static std::string Make_CrLf(const std::string &strText)
{
    std::string strBytes;
    for (const char cChar : strText) strBytes += cChar == '\n' ? "\r\n" : std::string(1, cChar);
    return strBytes;
}

TEST(ZyrsubFix, WhatIsWrittenForWhat)
{
    static constexpr struct {
        const char *pszWhy, *pszName, *pszOld, *pszNew;
    } astCases[] = {
        {"nothing to do", "a.srt", "1\n00:00:01,000 --> 00:00:02,000\nx\n\n",
         "1\n00:00:01,000 --> 00:00:02,000\nx\n\n"},
        {"no empty line", "a.srt",
         "1\n00:00:01,000 --> 00:00:02,000\nx\n2\n00:00:03,000 --> 00:00:04,000\ny\n\n",
         "1\n00:00:01,000 --> 00:00:02,000\nx\n\n2\n00:00:03,000 --> 00:00:04,000\ny\n\n"},
        {"no number, no hours, no milliseconds", "a.srt", "00:01 --> 00:02\nx\n\n",
         "1\n00:00:01,000 --> 00:00:02,000\nx\n\n"},
        {"an empty line inside", "a.srt", "1\n00:00:01,000 --> 00:00:02,000\nx\n\ny\n\n",
         "1\n00:00:01,000 --> 00:00:02,000\nx\ny\n\n"},
        {"text on the time line", "a.srt", "1\n00:00:01,000 --> 00:00:02,000 x\n\n",
         "1\n00:00:01,000 --> 00:00:02,000\nx\n\n"},
        {"a sign, an entity, an override, a tag", "a.srt",
         "1\n00:00:01,000 --> 00:00:09,000\n{\\an8}a &hellip; &#x41;<br/>I <3 y\n\n",
         "1\n00:00:01,000 --> 00:00:09,000\na \xE2\x80\xA6 A<br>I &lt;3 y\n\n"},
        {"eight lines", "a.srt", "1\n00:00:01,000 --> 00:00:09,000\n1\n2\n3\n4\n5\n6\n7\n8\n\n",
         "1\n00:00:01,000 --> 00:00:07,400\n1\n2\n3\n4\n5\n6\n\n1\n00:00:07,400 --> 00:00:09,000\n7\n8\n\n"},
        {"out of order", "a.srt",
         "1\n00:00:03,000 --> 00:00:04,000\nx\n\n2\n00:00:01,000 --> 00:00:02,000\ny\n\n",
         "2\n00:00:01,000 --> 00:00:02,000\ny\n\n1\n00:00:03,000 --> 00:00:04,000\nx\n\n"},
        {"quotes, END, CLASS", "a.smi",
         "<SYNC Start=\"1000\"><P ID=a Class='A'>x\n<SYNC End=3000 Start=2000><P Class=A>y</BODY>\n"
         "<SYNC Start=4000><P Class=A>&nbsp;\n",
         "<SYNC Start=1000><P Class=A>x\n<SYNC Start=2000 End=3000><P Class=A>y\n<SYNC Start=4000><P "
         "Class=A>&nbsp;\n"},
        {"seven lines beside another language", "a.smi",
         "<SYNC Start=1000><P Class=A>1<br>2<br>3<br>4<br>5<br>6<br>7\n<P Class=B>b\n<SYNC Start=9000><P "
         "Class=A>x"
         "<P Class=B>y\n",
         "<SYNC Start=1000><P Class=A>1<br>2<br>3<br>4<br>5<br>6<P Class=B>b\n\n"
         "<SYNC Start=7540><P Class=A>7\n<SYNC Start=9000><P Class=A>x<P Class=B>y\n"},
        {"no header, bad times", "a.sub", "0:00:01.5,0:00:02\nx[br]y\n\n",
         "[SUBTITLE]\n00:00:01.50,00:00:02.00\nx[br]y\n\n"},
        {"version 4+", "a.ssa",
         "[V4+ Styles]\nFormat: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, OutlineColour, "
         "BackColour, "
         "Bold, Italic, Underline, StrikeOut, ScaleX, ScaleY, Spacing, Angle, BorderStyle, Outline, Shadow, "
         "Alignment, "
         "MarginL, MarginR, MarginV, Encoding\n"
         "Style: D,Arial,20,&H1,&H2,&H3,&H4,-1,0,0,0,100,100,0,0,1,2,0,8,10,11,12,1\n[Events]\n"
         "Format: Layer, Start, End, Style, Text\nDialogue: 0,0:00:00.00,0:00:02.00,*D,{\\i1\\b1}a, b\n",
         "[v4 Styles]\nFormat: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, TertiaryColour, "
         "BackColour, "
         "Bold, Italic, BorderStyle, Outline, Shadow, Alignment, MarginL, MarginR, MarginV, AlphaLevel, "
         "Encoding\n"
         "Style: D,Arial,20,&H1,&H2,&H3,&H4,1,0,1,2,0,6,10,11,12,0,1\n[Events]\n"
         "Format: Marked, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\n"
         "Dialogue: 0,0:00:00.01,0:00:02.00,D,,0,0,0,,{\\i1}{\\b1}a, b\n"},
        {"lines that are not sorted", "a.ssa",
         "[Events]\nDialogue: Marked=0,0:00:05.00,0:00:06.00,,,0,0,0,,x\n"
         "Dialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,y\n",
         "[Events]\nDialogue: Marked=0,0:00:01.00,0:00:02.00,,,0,0,0,,y\n"
         "Dialogue: Marked=0,0:00:05.00,0:00:06.00,,,0,0,0,,x\n"},
    };
    const TestFolder stFolder;
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.pszWhy);
        stFolder.Write(stCase.pszName, Make_CrLf(stCase.pszOld));
        const RunResult stRun = Run_Zyrsub("fix " + stFolder.Path(stCase.pszName) + " -o -");
        const std::string strNew = Make_CrLf(stCase.pszNew);
        const bool bMark = strNew.find('\xE2') != std::string::npos;
        EXPECT_EQ(stRun.strOut, (bMark ? MARK : "") + strNew) << stRun.strErr;
        EXPECT_EQ(stRun.iCode, 0) << stRun.strErr;
    }
}

using Captions = std::set<std::string>;

// Each with all that a viewer sees of it; those in astRight alone, where it is given.
static Captions List_Captions(const std::string &strFile, const std::set<int64_t> &allWrong)
{
    Captions astrCaptions;
    const json jsDocument = json::parse(Run_Zyrsub("frames --json --codepage auto " + strFile).strOut);
    for (const json &jsFrame : jsDocument["files"][0].value("frames", json::array()))
        if (!jsFrame["lines"].empty() && allWrong.count(jsFrame["start"].get<int64_t>()) == 0)
            astrCaptions.insert(
                json({jsFrame["class"], jsFrame["start"], jsFrame["end"], jsFrame["lines"]}).dump());
    return astrCaptions;
}

static json List_Findings(const std::string &strFile, const std::string &strLevel)
{
    const RunResult stRun =
        Run_Zyrsub("lint --format json --codepage auto --level " + strLevel + " " + strFile);
    return json::parse(stRun.strOut)["files"][0]["findings"];
}

TEST(ZyrsubFix, NothingIsLostAndWhatWasRightStays)
{
    // What nobody can mend: an eighth language, a time that is none, two captions of one language at one time.
    static const std::set<std::string> UNFIXED = {
        "sami-eight.smi ZYR-SMI-012", "sami-malformed.smi ZYR-SMI-003", "sami-sparse.smi ZYR-TIME-003",
        "sami-unordered.smi ZYR-TIME-003"};
    const TestFolder stFolder;
    for (const std::string &strName : List_Samples()) {
        SCOPED_TRACE(strName);
        const std::string strNew = stFolder.Path(strName);
        Run_Zyrsub("fix --codepage auto " + strName + " -o " + strNew);
        for (const json &jsFinding : List_Findings(strNew, "lost"))
            EXPECT_TRUE(UNFIXED.count(strName + " " + jsFinding["code"].get<std::string>())) << jsFinding;
        std::set<int64_t> allWrong;
        for (const json &jsFinding : List_Findings(strName, "changed"))
            if (!jsFinding["start"].is_null() &&
                !jsFinding["code"].get<std::string>().starts_with("ZYR-FILE"))
                allWrong.insert(jsFinding["start"].get<int64_t>());
        const Captions astrNew = List_Captions(strNew, {});
        for (const std::string &strCaption : List_Captions(strName, allWrong))
            EXPECT_TRUE(astrNew.count(strCaption)) << strCaption;
    }
}

TEST(ZyrsubFix, FilesFoldersAndDiffs)
{
    const TestFolder stFolder;
    const std::string strFolder = stFolder.Path("");
    stFolder.Write("a.ass", "[Script Info]\n[Events]\nDialogue: 0,0:00:01.00,0:00:02.00,,,0,0,0,,x\n");
    EXPECT_EQ(Run_Zyrsub("fix " + strFolder + "a.ass -o " + strFolder + "a.ssa").iCode, 0);
    EXPECT_EQ(Run_Zyrsub("lint --level lost " + strFolder + "a.ssa").iCode, 0);
    EXPECT_EQ(Run_Zyrsub("fix " + strFolder + "a.ass -o " + strFolder + "a.ssa").iCode, 1)
        << "it is there already";
    EXPECT_EQ(Run_Zyrsub("fix " + strFolder + "a.ass").iCode, 2);
    EXPECT_EQ(Run_Zyrsub("fix gone.srt -o " + strFolder + "x.srt").iCode, 3);
    EXPECT_EQ(Run_Zyrsub("fix sami-eight.smi -o " + strFolder + "x.smi").iCode, 3);
    stFolder.Write("b.srt", "1\r\n00:00:01 --> 00:00:02\r\nx\r\n\r\n");
    const RunResult stDiff = Run_Zyrsub("fix --dry-run " + strFolder + "b.srt");
    EXPECT_NE(stDiff.strOut.find(
                  "@@ -1,4 +1,4 @@\n 1\n-00:00:01 --> 00:00:02\n+00:00:01,000 --> 00:00:02,000\n x\n"),
              std::string::npos)
        << stDiff.strOut;
    EXPECT_NE(stDiff.strErr.find("b.srt:2: ZYR-SRT-001: "), std::string::npos) << stDiff.strErr;
}

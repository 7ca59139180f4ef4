#include "support/engine_fixture.h"

#include "parser/entity.h"
#include "parser/html_tag.h"
#include "parser/tag_command.h"
#include "parser/text_helpers.h"

namespace
{

std::vector<uint16_t> Units(std::string_view strText)
{
    std::vector<uint16_t> vecUnits;
    for (const char cUnit : strText) vecUnits.push_back(static_cast<uint8_t>(cUnit));
    return vecUnits;
}

std::string Srt(const std::string &strBody)
{
    return "1\r\n0:0:1,0 0:0:2,0\r\n" + strBody + "\r\n\r\n";
}

class Markup : public EngineTest
{
};

TEST_F(Markup, TagsLeaveTheirStyle)
{
    static const struct {
        const char *pszWhy;
        std::string strBody;
        uint32_t uiMode;
        uint16_t usColour;
        const char *pszLog; // NULL = nothing beyond the open's own lines
    } astCases[] = {
        {"bold", "<b>", 4, 0xFFFF, nullptr},
        {"names in any case", "<B><u><I>", 14, 0xFFFF, nullptr},
        {"centre and headings", "<center><h1><h2><h3><h4><h5><h6>", 32 | 0x1F80, 0xFFFF, nullptr},
        {"a closing tag restores", "<b>x</b>", 0, 0xFFFF, nullptr},
        {"an outer tag still holds", "<b><b>x</b>", 4, 0xFFFF, nullptr},
        {"tags may overlap", "<b><i>x</b>", 8, 0xFFFF, nullptr},
        {"a closing tag with none open", "</b>", 0, 0xFFFF, "OOPS! Tag Queue is already EMPTY!"},
        {"a closing tag without its opening one", "<i></b>", 8, 0xFFFF,
         "OOPS! Don't find the matching tag type!"},
        {"colour by name", "<font color=Red>", 0, 0xF800, nullptr},
        {"colour by number", "<font color=#ff8000>", 0, 0xFC00, nullptr},
        {"quoted, without a number sign", "<font face='x y' color=\"0000FF\">", 0, 0x001F, nullptr},
        {"the last valid colour wins", "<font color=red COLOR = blue color=nocolour>", 0, 0x001F,
         "Parsing Failed! (RGB DATA = "},
        {"the colour before comes back", "<font color=red><font color=blue></font>", 0, 0xF800, nullptr},
        {"a bad digit", "<font color=#GG0000>", 0, 0xFFFF, "(DATA = #GG0000,  VALUE = 0x00000000)"},
        {"a long colour", "<font color=" + std::string(31, 'a') + ">", 0, 0xFFFF,
         "Too Long Color Name! ([31] >> [30])"},
        {"a colour in another script", "<font color=\xC3\xA9>", 0, 0xFFFF,
         "Bad Color Name Character! [0x00E9]"},
        {"an unterminated quote runs to the end", "<font color='red>", 0, 0xF800, nullptr},
        {"a name without a value", "<font size color=red>", 0, 0xFFFF, nullptr},
        {"a digit ends a name", "<font a1=2 color=red>", 0, 0xF800, "Unexpected Character! (0x0031)"},
        {"twenty attributes are enough",
         "<font" +
             [] {
                 std::string strAll;
                 for (int iName = 0; iName < 20; ++iName) strAll += " a=1";
                 return strAll;
             }() +
             " color=red>",
         0, 0xFFFF, "Argument Count is FULL! (COUNT = 20)"},
    };
    for (const auto &stCase : astCases) {
        SCOPED_TRACE(stCase.pszWhy);
        Read_FirstText(".srt", Srt(stCase.strBody));
        EXPECT_EQ(pstQuibCaptionParserInfo->uiDisplayMode, stCase.uiMode);
        EXPECT_EQ(pstQuibCaptionParserInfo->usFontColor, stCase.usColour);
        if (stCase.pszLog != nullptr)
            EXPECT_EQ(Count_Log(stCase.pszLog), 1u);
        else
            EXPECT_EQ(m_vecLog.size(), 2u) << m_vecLog.back();
    }
}

TEST_F(Markup, FiftyTagsCanBeOpen)
{
    std::string strBody;
    for (int iTag = 0; iTag < 50; ++iTag) strBody += "<s>";
    Read_FirstText(".srt", Srt(strBody + "<b>"));
    EXPECT_EQ(pstQuibCaptionParserInfo->uiDisplayMode, 0u);
    EXPECT_EQ(Count_Log("Tag Queue is already FULL!"), 1u);
    Read_FirstText(".srt", Srt(strBody + "</s><b>"));
    EXPECT_EQ(pstQuibCaptionParserInfo->uiDisplayMode, 4u) << "one was closed, so there is room";
    EXPECT_EQ(Read_FirstText(".srt", Srt(strBody) + Srt("<b>x</b>")), "");
    TestFrame stFrame;
    EXPECT_TRUE(Read_Frame(&stFrame));
    EXPECT_EQ(pstQuibCaptionParserInfo->uiDisplayMode, 0u) << "each frame begins without open tags";
    EXPECT_EQ(Count_Log("OOPS"), 0u);
}

TEST_F(Markup, TagNames)
{
    static const struct {
        std::string strTag;
        int32_t iResult;
    } astCases[] = {
        {"<b>", 0x101 | 1},
        {"</B>", 0x102 | 1},
        {"<ruby>", 0x101 | 66},
        {"<rp>", 0x101 | 67},
        {"<rt", 0x101 | 68},
        {"<br>", 0x100 | 6},
        {"</br>", 0x100 | 6},
        {"<br/>", 0x100},
        {"<!-- x -->", 0x100 | 74},
        {"<nobr>", 0x100},
        {"<>", 0x100},
        {"</", 0},
        {"<", 0},
        {" <b>", 0},
        {"b>", 0},
        {"< b>", 0},
        {"<" + std::string(30, 'n') + ">", 0x100},
        {"<" + std::string(31, 'n') + ">", 0},
        {"<\xE9>", 0},
        {"<sync start=5>", 0x100 | 80},
        {"<SYNC START=x>", -1},
        {"<SYNC START=1 END=2x>", -1},
    };
    Read_FirstText(".srt", Srt("x"));
    for (const auto &stCase : astCases) {
        const std::vector<uint16_t> vecTag = Units(stCase.strTag);
        EXPECT_EQ(Parse_HtmlTag(vecTag.data(), static_cast<int32_t>(vecTag.size())), stCase.iResult)
            << stCase.strTag;
    }
    EXPECT_EQ(Parse_HtmlTag(nullptr, 3), -1);
}

TEST_F(Markup, TagCommandsNeedTheirValue)
{
    Read_FirstText(".srt", Srt("x"));
    for (uint32_t uiCommand = 1; uiCommand <= 5; ++uiCommand)
        EXPECT_EQ(Execute_TagCommand(uiCommand, nullptr), -1);
    EXPECT_EQ(Count_Log(" - No Parameter!"), 5u);
    EXPECT_EQ(Count_Log("E_TAGCMD_SET_FONT_OUTLINECOLOR - No Parameter!"), 1u);
    EXPECT_EQ(Execute_TagCommand(6, nullptr), -1);
    EXPECT_EQ(Count_Log("Unknown Tag Command! (6)"), 1u);
}

TEST_F(Markup, SixLinesRefuseAnotherBreak)
{
    EXPECT_EQ(Read_FirstText(".srt", Srt("1<br>2<br>3<br>4<br>5<br>6<br>7<br>8")), "1\n2\n3\n4\n5\n6");
    EXPECT_EQ(Count_Log("Line Count (6) is more than 6!"), 1u);
}

TEST(Entities, Values)
{
    static constexpr struct {
        const char *pszEntity;
        uint16_t usCode;
    } astCases[] = {
        {"&nbsp;", 0x20}, {"&euro;", 0x20AC}, {"&eacute", 0xE9},     {"&Eacute;", 0xC9},
        {"&hellip;", 0},  {"&AMP;", 0},       {"&thetasym;", 0x3D1}, {"&lang;", 0x2329},
        {"&#65;", 0x41},  {"&#65", 0},        {"&#65536;", 0},       {"&#70000;", 4464},
        {"&#123456;", 0}, {"&#;", 0},         {"&#6a;", 0},          {"&#x41;", 0},
        {"&a", 0},        {"amp;", 0},        {"&ampx;", 0},
    };
    for (const auto &stCase : astCases) {
        const std::vector<uint16_t> vecUnits = Units(stCase.pszEntity);
        EXPECT_EQ(Get_EntityCharCode(vecUnits.data(), static_cast<int32_t>(vecUnits.size())), stCase.usCode)
            << stCase.pszEntity;
    }
    const std::vector<uint16_t> vecLong(500, '&');
    EXPECT_EQ(Get_EntityCharCode(vecLong.data(), 500), 0);
    const uint16_t ausWide[] = {'&', 0x100 | 'g', 't'};
    EXPECT_EQ(Get_EntityCharCode(ausWide, 3), 0);
}

TEST(TextHelpers, Numbers)
{
    static constexpr struct {
        const char *pszText;
        uint32_t uiNumber;
    } astCases[] = {
        {"123", 123},   {"12ab", 12},  {"a12", 0},  {"12345678", 12345678}, {"123456789", 0},
        {"&H", 0},      {"&HFF", 255}, {"&hFF", 0}, {"&H123456789", 0},     {"&HFFFFFFFF", 0xFFFFFFFF},
        {"&HFFx", 255}, {"", 0},       {"-1", 0},
    };
    for (const auto &stCase : astCases) {
        const std::vector<uint16_t> vecUnits = Units(stCase.pszText);
        EXPECT_EQ(QUIBCAPTPARS_Str2Number(vecUnits.data(), static_cast<int32_t>(vecUnits.size())),
                  stCase.uiNumber)
            << stCase.pszText;
    }
}

TEST(TextHelpers, ComparisonsTimesAndKeys)
{
    const std::vector<uint16_t> vecA = Units("abc");
    const std::vector<uint16_t> vecB = Units("abC");
    EXPECT_EQ(QUIBCAPTPARS_StrCmp(vecA.data(), vecB.data(), 2), 1);
    EXPECT_EQ(QUIBCAPTPARS_StrCmp(vecA.data(), vecB.data(), 3), -1);
    EXPECT_EQ(QUIBCAPTPARS_StrCmp(nullptr, nullptr, 0), 1);
    EXPECT_EQ(Compare_StringNoCase("white", "WHITE", 5), 1u);
    EXPECT_EQ(Compare_StringNoCase("a\0b", "A\0c", 3), 0u);
    EXPECT_EQ(Compare_StringNoCase("a", "a", 0), 0u);

    const auto fnTime = [](const char *pszTime) {
        const std::vector<uint16_t> vecUnits = Units(pszTime);
        return Parse_SSAPts(vecUnits.data(), static_cast<int32_t>(vecUnits.size()));
    };
    EXPECT_EQ(fnTime("0:01:02.03"), 62030u);
    EXPECT_EQ(fnTime("0:75:00.00"), 4500000u);
    EXPECT_EQ(fnTime("10:00:00.00"), 0u);
    EXPECT_EQ(fnTime(std::string(5000, '9').c_str()), 0u);

    static constexpr struct {
        const char *pszKey;
        uint32_t uiType;
    } astKeys[] = {{"dialogue:", 0},
                   {"Dial", 5},
                   {"STYLE", 1},
                   {"Title:", 2},
                   {"original script:", 3},
                   {"ScriptType", 4},
                   {"Comment", 5},
                   {"T", 5},
                   {"Title56789012345678901234567890", 2},
                   {"Title567890123456789012345678901", 5}};
    for (const auto &stKey : astKeys) {
        const std::vector<uint16_t> vecUnits = Units(std::string_view(stKey.pszKey).substr(0, 31));
        const bool bTooLong = vecUnits.size() > 30;
        EXPECT_EQ(Get_SSALineType(vecUnits.data(), static_cast<int32_t>(vecUnits.size())),
                  bTooLong ? 5 : stKey.uiType)
            << stKey.pszKey;
    }
}

} // namespace

#include "support/engine_fixture.h"

#include "markup/entity.h"
#include "markup/html_tag.h"
#include "markup/tag_command.h"
#include "text/text_helpers.h"

namespace
{

class Markup : public EngineTest
{
protected:
    static std::string Get_Style()
    {
        char szStyle[32];
        snprintf(szStyle, sizeof(szStyle), "%X %X", pstQuibCaptionParserInfo->uiDisplayMode,
                 pstQuibCaptionParserInfo->usFontColor);
        return szStyle;
    }
};

TEST_F(Markup, TagsLeaveTheirStyle)
{
    // clang-format off
    static const struct {
        const char *pszWhy;
        std::string strBody, strStyle; // the style: mode and colour
        const char *pszLog = nullptr;  // NULL = nothing
    } CASES[] = {
        {"bold", "<b>", "4 FFFF"},
        {"names in any case", "<B><u><I>", "E FFFF"},
        {"centre and headings", "<center><h1><h2><h3><h4><h5><h6>", "1FA0 FFFF"},
        {"a closing tag restores", "<b>x</b>", "0 FFFF"},
        {"an outer tag still holds", "<b><b>x</b>", "4 FFFF"},
        {"tags may overlap", "<b><i>x</b>", "8 FFFF"},
        {"a closing tag with none open", "</b>", "0 FFFF", "OOPS! Tag Queue is already EMPTY!"},
        {"a closing tag without its opening one", "<i></b>", "8 FFFF", "OOPS! Don't find the matching tag type!"},
        {"colour by name", "<font color=Red>", "0 F800"},
        {"colour by number", "<font color=#ff8000>", "0 FC00"},
        {"quoted, without a number sign", "<font face='x y' color=\"0000FF\">", "0 1F"},
        {"the last valid colour wins", "<font color=red COLOR = blue color=none>", "0 1F", "Parsing Failed! (RGB DATA = "},
        {"the colour before comes back", "<font color=red><font color=blue></font>", "0 F800"},
        {"a bad digit", "<font color=#GG0000>", "0 FFFF", "(DATA = #GG0000,  VALUE = 0x00000000)"},
        {"a long colour", "<font color=" + Repeat("a", 31) + ">", "0 FFFF", "Too Long Color Name! ([31] >> [30])"},
        {"a colour in another script", "<font color=é>", "0 FFFF", "Bad Color Name Character! [0x00E9]"},
        {"an unterminated quote runs to the end", "<font color='red>", "0 F800"},
        {"a name without a value", "<font size color=red>", "0 FFFF"},
        {"a digit ends a name", "<font a1=2 color=red>", "0 F800", "Unexpected Character! (0x0031)"},
        {"twenty attributes are enough", "<font" + Repeat(" a=1", 20) + " color=red>", "0 FFFF", "Argument Count is FULL! (COUNT = 20)"},
        {"fifty tags can be open", Repeat("<s>", 50) + "<b>", "0 FFFF", "Tag Queue is already FULL!"},
        {"a place in the middle is used again", Repeat("<s>", 9) + "<u><i>" + Repeat("<s>", 39) + "</i><b></u><i>", "C FFFF"},
        {"one was closed, so there is room", Repeat("<s>", 50) + "</s><b>", "4 FFFF"},
    };
    // clang-format on
    for (const auto &stCase : CASES) {
        SCOPED_TRACE(stCase.pszWhy);
        Read_FirstText(".srt", Entry(stCase.strBody));
        EXPECT_EQ(Get_Style(), stCase.strStyle);
        if (stCase.pszLog != nullptr)
            EXPECT_EQ(Count_Log(stCase.pszLog), 1u);
        else
            EXPECT_EQ(m_vecLog.size(), 2u) << m_vecLog.back(); // the open's own lines
    }
    // Each frame begins without open tags.
    EXPECT_EQ(Play(".srt", Entry(Repeat("<s>", 50)) + Entry("<b>x</b>")), "1000-2000 ; 1000-2000 x");
}

TEST_F(Markup, TagNames)
{
    // clang-format off
    static const std::pair<std::string, int32_t> CASES[] = {
        {"<b>", 0x101 | 1}, {"</B>", 0x102 | 1}, {"<ruby>", 0x101 | 66}, {"<rp>", 0x101 | 67}, {"<rt", 0x101 | 68},
        {"<br>", 0x100 | 6}, {"</br>", 0x100 | 6}, {"<br/>", 0x100}, {"<!-- x -->", 0x100 | 74}, {"<nobr>", 0x100},
        {"<>", 0x100}, {"</", 0}, {"<", 0}, {" <b>", 0}, {"b>", 0}, {"< b>", 0}, {"<\xE9>", 0},
        {"<" + Repeat("n", 30) + ">", 0x100}, {"<" + Repeat("n", 31) + ">", 0},
        {"<sync start=5>", 0x100 | 80}, {"<SYNC START=x>", -1}, {"<SYNC START=1 END=2x>", -1},
    };
    // clang-format on
    Read_FirstText(".srt", Entry("x"));
    for (const auto &[strTag, iResult] : CASES) EXPECT_EQ(Ask(Parse_HtmlTag, strTag), iResult) << strTag;
    EXPECT_EQ(Parse_HtmlTag(nullptr, 3), -1);
}

TEST_F(Markup, TagCommandsNeedTheirValue)
{
    Read_FirstText(".srt", Entry("x"));
    for (uint32_t uiCommand = 1; uiCommand <= 5; ++uiCommand)
        EXPECT_EQ(Execute_TagCommand(uiCommand, nullptr), -1);
    EXPECT_EQ(Count_Log(" - No Parameter!"), 5u);
    EXPECT_EQ(Count_Log("E_TAGCMD_SET_FONT_OUTLINECOLOR - No Parameter!"), 1u);
    EXPECT_EQ(Execute_TagCommand(6, nullptr), -1);
    EXPECT_EQ(Count_Log("Unknown Tag Command! (6)"), 1u);
}

TEST(Entities, Values)
{
    static constexpr std::pair<const char *, uint16_t> CASES[] = {
        {"&nbsp;", 0x20}, {"&euro;", 0x20AC}, {"&eacute", 0xE9},     {"&Eacute;", 0xC9},
        {"&hellip;", 0},  {"&AMP;", 0},       {"&thetasym;", 0x3D1}, {"&lang;", 0x2329},
        {"&#65;", 0x41},  {"&#65", 0},        {"&#65536;", 0},       {"&#70000;", 4464},
        {"&#123456;", 0}, {"&#;", 0},         {"&#6a;", 0},          {"&#x41;", 0},
        {"&a", 0},        {"amp;", 0},        {"&ampx;", 0},
    };
    for (const auto &[pszEntity, usCode] : CASES)
        EXPECT_EQ(Ask(Get_EntityCharCode, pszEntity), usCode) << pszEntity;
    EXPECT_EQ(Ask(Get_EntityCharCode, Repeat("&", 500)), 0);
    const uint16_t ausWide[] = {'&', 0x100 | 'g', 't'};
    EXPECT_EQ(Get_EntityCharCode(ausWide, 3), 0);
}

TEST(TextHelpers, Numbers)
{
    static constexpr std::pair<const char *, uint32_t> CASES[] = {
        {"123", 123},   {"12ab", 12},  {"a12", 0},  {"12345678", 12345678}, {"123456789", 0},
        {"&H", 0},      {"&HFF", 255}, {"&hFF", 0}, {"&H123456789", 0},     {"&HFFFFFFFF", 0xFFFFFFFF},
        {"&HFFx", 255}, {"", 0},       {"-1", 0},
    };
    for (const auto &[pszText, uiNumber] : CASES)
        EXPECT_EQ(Ask(QUIBCAPTPARS_Str2Number, pszText), uiNumber) << pszText;
}

TEST(TextHelpers, Comparisons)
{
    const std::vector<uint16_t> vecA = Units("abc");
    const std::vector<uint16_t> vecB = Units("abC");
    EXPECT_EQ(QUIBCAPTPARS_StrCmp(vecA.data(), vecB.data(), 2), 1);
    EXPECT_EQ(QUIBCAPTPARS_StrCmp(vecA.data(), vecB.data(), 3), -1);
    EXPECT_EQ(QUIBCAPTPARS_StrCmp(nullptr, nullptr, 0), 1);
    EXPECT_EQ(QUIBCAPTPARS_StrCmp(vecA.data(), nullptr, 1), -1);
    EXPECT_EQ(QUIBCAPTPARS_StrCmp(nullptr, vecB.data(), 1), -1);
    EXPECT_EQ(Compare_StringNoCase("white", "WHITE", 5), 1u);
    EXPECT_EQ(Compare_StringNoCase("a\0b", "A\0c", 3), 0u);
    EXPECT_EQ(Compare_StringNoCase("a", "a", 0), 0u);
}

} // namespace

// Text of the engine on its way to UTF-8.
#include <gtest/gtest.h>

#include "text_decode.h"

TEST(EngineText, NothingIsDropped)
{
    using namespace std::string_view_literals;
    const struct {
        const char *pszWhy;
        uint32_t uiCharset;
        bool bSingleByte;
        const char *pszCodePage;
        std::string_view strBytes;
        std::string_view strExpected;
    } astCases[] = {
        {"a pair of the code page", 1, false, "CP949", "\xB0\xA1\x0A!"sv, "가\n!"sv},
        {"a pair that is no character", 1, false, "CP949", "a\xFF\xFF!"sv, "a\uFFFD\uFFFD!"sv},
        {"a lead byte before a plain character", 1, false, "CP949", "\xB0 x"sv, "\uFFFD x"sv},
        {"a lead byte at the end", 1, false, "CP949", "x\xB0"sv, "x\uFFFD"sv},
        {"an entity's character behind a zero", 1, false, "CP949", "\xB0\xA1\0\xE9!"sv, "가é!"sv},
        {"a single-byte character behind a zero", 1, true, "CP1251", "\0\xC0\0\xE9!"sv, "Ай!"sv},
        {"a zero that is the second half of a pair", 1, false, "CP949", "\xB0\0\xB0\xA1"sv, "\uFFFD\0가"sv},
        {"a pair of surrogates", 2, false, "", "\x3D\xD8\x0B\xDC"sv, "🐋"sv},
        {"a lone surrogate", 2, false, "", "\x3D\xD8\x41\0"sv, "\uFFFDA"sv},
        {"UTF-8 cut short", 3, false, "", "é\xC3"sv, "é\uFFFD"sv},
    };
    for (const auto &stCase : astCases) {
        const std::vector<uint8_t> aucBytes(stCase.strBytes.begin(), stCase.strBytes.end());
        std::string strRead;
        const uint32_t uiBad = EngineText(stCase.uiCharset, stCase.pszCodePage, stCase.bSingleByte)
                                   .Append_Block(aucBytes, strRead);
        EXPECT_EQ(strRead, stCase.strExpected) << stCase.pszWhy;
        size_t uiShown = 0;
        for (size_t ui = 0; (ui = strRead.find("\uFFFD", ui)) != strRead.npos; ++ui) ++uiShown;
        EXPECT_EQ(uiBad, uiShown) << stCase.pszWhy;
    }
}

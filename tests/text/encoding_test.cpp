#include <random>

#include "support/engine_fixture.h"

#include "record/parser_state.h"
#include "text/char_reader.h"
#include "text/encoding.h"
#include "text/find_unit.h"

namespace
{

uint32_t Get_Random(std::mt19937 &stRandom, size_t uiBelow)
{
    return static_cast<uint32_t>(stRandom() % uiBelow);
}

TEST(Encoding, IsToldByTheBytesWhereverTheyStandAndHoweverTheyAreRead)
{
    // clang-format off
    static const std::string UTF8[] = {
        "é", "한", "\xF0\x9F\x98\x80", "\xC2\x80", "\xDF\xBF", "\xE0\x80\x80", "\xEF\xBF\xBF",
        "\xF4\xBF\xBF\xBF", "é\xC3", "é\xE0\x80", "é" + Repeat("b", 33) + "é", "\x80" + Repeat("é", 11),
        Repeat("\xE0\xC0", 20) + Repeat("é", 11), Repeat("\xE0z", 20) + Repeat("é", 11),
        Repeat("é", 11) + Repeat("\x80", 30),
    };
    static const std::string ANSI[] = {
        "", "a", "\xC3", "\xE0\x80", "\xF4\x80\x80", "é\x80", "é\xBF", "é\xC0", "é\xC1", "é\xF5", "é\xFF",
        "é\xE0z", "é\xE0\x80z", "\xC3\xC3", "é\xC3é", "é\xE0\xC1\x80", "\x80" + Repeat("é", 10),
        "é" + Repeat("b", 40) + "\x80" + Repeat("b", 40), Repeat("\x80", 21) + Repeat("é", 11),
        Repeat("é", 10) + Repeat("\xFF", 21) + "é",
    };
    // clang-format on
    const auto fnExpect = [](const std::string &strBytes, uint32_t uiExpected) {
        const auto *const pucBytes = reinterpret_cast<const uint8_t *>(strBytes.data());
        const uint32_t uiBytes = static_cast<uint32_t>(strBytes.size());
        for (uint32_t uiCut = 0; uiCut <= uiBytes; ++uiCut) { // in two reads
            Utf8Count stCount = {};
            if (!Count_Utf8(&stCount, pucBytes, uiCut))
                Count_Utf8(&stCount, pucBytes + uiCut, uiBytes - uiCut);
            ASSERT_EQ(Decide_Encoding(stCount), uiExpected) << strBytes << " " << uiCut;
        }
    };
    for (uint32_t uiBefore = 0; uiBefore <= 40; ++uiBefore) { // plain text is passed over in long steps
        for (const std::string &strBytes : UTF8)
            fnExpect(Repeat("a", uiBefore) + strBytes, E_TEXT_ENCODING_UTF8);
        for (const std::string &strBytes : ANSI)
            fnExpect(Repeat("a", uiBefore) + strBytes, E_TEXT_ENCODING_ANSI);
    }
}

class Reader : public EngineTest
{
protected:
    static std::vector<uint16_t> Read_Characters()
    {
        std::vector<uint16_t> vecUnits;
        uint16_t usChar = 0;
        while (Get_CharCode(s_hSubtitleFile, &usChar, 0) > 0) vecUnits.push_back(usChar);
        return vecUnits;
    }
};

TEST_F(Reader, DecodesEveryEncoding)
{
    // clang-format off
    static const struct {
        const char *pszWhy;
        std::string strFile;
        int32_t iOption;
        uint32_t uiCharset;
        std::vector<uint16_t> vecUnits;
    } CASES[] = {
        {"ASCII", "ab", 0, 1, {'a', 'b'}},
        {"double bytes, a lead without its trail is lost", "\xB0\xA1z\xB0", 0, 1, {0xB0A1, 'z'}},
        {"a trail byte may be anything", "\xB0<\xB0\r", 0, 1, {0xB03C, 0xB00D}},
        {"single bytes", "\xB0\xA1", 1, 1, {0xB0, 0xA1}},
        {"UTF-16 LE, mark included, an odd byte lost", {"\xFF\xFEz\0\x5C\xD5z", 7}, 0, 2, {0xFEFF, 'z', 0xD55C}},
        {"UTF-16 BE, pairs not combined", {"\xFE\xFF\xD8\x3D\xDE\0", 6}, 0, 2, {0xFEFF, 0xD83D, 0xDE00}},
        {"UTF-8, mark included", "\xEF\xBB\xBFé한", 0, 3, {0xFEFF, 0xE9, 0xD55C}},
        {"UTF-8 without a mark", "é", 0, 3, {0xE9}},
        {"a cut character is dropped", "\xEF\xBB\xBF\xE4\xB8z", 0, 3, {0xFEFF, 'z'}},
        {"beyond U+FFFF is dropped", "\xEF\xBB\xBF\xF0\x9F\x98\x80z", 0, 3, {0xFEFF, 'z'}},
        {"an overlong bracket is a bracket", "\xEF\xBB\xBF\xC0\xBC\xE0\x80\xBC", 0, 3, {0xFEFF, '<', '<'}},
        {"cut in the middle of a character", "\xEF\xBB\xBFz\xED\x95é", 0, 3, {0xFEFF, 'z', 0xE9}},
    };
    // clang-format on
    for (const uint32_t uiReadSize : {0u, 1u, 2u, 3u}) {
        Read_InChunks(uiReadSize);
        for (const auto &stCase : CASES) {
            SCOPED_TRACE(testing::Message() << stCase.pszWhy << ", reads of " << uiReadSize);
            ASSERT_EQ(Open(".srt", stCase.strFile, stCase.iOption), 0u);
            EXPECT_EQ(zyrSubtitle_getOutputTextCharacterSet(), stCase.uiCharset);
            EXPECT_EQ(Read_Characters(), stCase.vecUnits);
        }
    }
}

TEST_F(Reader, SkippingStopsAtEachStopAndLeavesItsBytes)
{
    std::mt19937 stRandom(11);
    const std::string PIECES[] = {
        "plain words and more ", "<",        "\r\n", "  ",       "\t",      "한글",
        "\xF0\x9F\x98\x80",      "\xE4\xB8", "\x80", "\xC0\xBC", {"\0", 1}, "0123456789abcdef",
    };
    uint32_t uiSkipped = 0;
    for (int iFile = 0; iFile < 400; ++iFile) {
        std::string strFile = iFile % 2 == 0 ? "\xEF\xBB\xBF" : "";
        for (uint32_t uiPiece = Get_Random(stRandom, 200); uiPiece > 0; --uiPiece)
            strFile += PIECES[Get_Random(stRandom, std::size(PIECES))];
        std::vector<int32_t> vecPlain, vecSkipped; // bytes counted with each stop
        for (std::vector<int32_t> *const pvecCounts : {&vecPlain, &vecSkipped}) {
            ASSERT_EQ(Open(".srt", strFile + "."), 0u);
            uint16_t usChar = 0;
            for (int32_t iBytes = 1; iBytes > 0;) {
                if (pvecCounts == &vecSkipped) uiSkipped += Skip_To('<', '<');
                iBytes = Get_CharCode(s_hSubtitleFile, &usChar, 1);
                if (iBytes > 0 && usChar == '<') pvecCounts->push_back(iBytes);
            }
        }
        ASSERT_EQ(vecSkipped, vecPlain) << "file " << iFile;
    }
    EXPECT_GT(uiSkipped, 50000u) << "of 220,000 bytes";
}

TEST_F(Reader, AMarkIsReadOnUntilAReadFails)
{
    for (const bool bFails : {false, true}) {
        Read_InChunks(1);
        zyr_host_failFile(ZYR_HOST_READ, bFails ? 2 : 0, -5, 0);
        ASSERT_EQ(Open(".srt", Encode("a", E_UTF16LE)), 0u);
        EXPECT_EQ(zyrSubtitle_getOutputTextCharacterSet(),
                  uint32_t{bFails ? E_OUTPUT_CHARSET_ANSI : E_OUTPUT_CHARSET_UTF16});
    }
}

TEST_F(Reader, TellsTheEndAndErrors)
{
    ASSERT_EQ(Open(".srt", "ab"), 0u);
    uint16_t usChar = 0;
    zyr_host_failFile(1, 1, -5, 0);
    EXPECT_EQ(Read_Characters().size(), 2u);
    EXPECT_EQ(Count_Log("QUIBCAPTCB_FileRead() Failed! (ERROR = -5)"), 1u);
    EXPECT_EQ(Get_ReadPosition(s_hSubtitleFile), 2) << "the place is the file's: nothing is held";
    EXPECT_EQ(Get_CharCode(s_hSubtitleFile, &usChar, 0), 0)
        << "an error is not the end: the next call tries again";
    EXPECT_EQ(Count_Log("End of Caption File!"), 1u);
    EXPECT_TRUE(Is_ReaderAt(s_hSubtitleFile, 2));
    Mark_EndOfData();
    EXPECT_FALSE(Is_ReaderAt(s_hSubtitleFile, 2)) << "it must be moved, to take the mark away";
    EXPECT_EQ(Get_CharCode(s_hSubtitleFile, &usChar, 0), NO_CAPTION_DATA);
    EXPECT_EQ(Count_Log("No Caption Data!"), 1u);
    EXPECT_EQ(Move_ReadPosition(s_hSubtitleFile, 1, E_READ_AHEAD_FULL), 1);
    EXPECT_GT(Get_CharCode(s_hSubtitleFile, &usChar, 0), 0) << "moving takes the mark away";
    EXPECT_EQ(usChar, 'b');
    QUIBCAPTCB_FileSeek(s_hSubtitleFile, 1, 0);
    EXPECT_FALSE(Is_ReaderAt(s_hSubtitleFile, 1)) << "a host has moved the file";
}

} // namespace

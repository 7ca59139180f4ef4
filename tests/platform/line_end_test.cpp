#include "host_test.h"

namespace
{

using namespace std::string_literals;
using LineEnd = HostTest;

// Line ends in plenty behind the mark, and bytes that are half of one in 16-bit units.
std::string Make_Text(Random &stRandom, const std::string &strMark, size_t uiBytes, uint32_t uiPlainRun)
{
    static const std::string s_strHard = "\r\n\r\n\r\n\0\0\x0A\x0D\0a"s;
    std::string strText = strMark;
    while (strText.size() < uiBytes) {
        strText += stRandom() % uiPlainRun == 0 ? s_strHard[stRandom() % s_strHard.size()] : 'x';
        if (stRandom() % 2 != 0 && strText.size() % 2 != 0) strText += '\0';
    }
    return strText;
}

// The judge: the longest line end at each unit, one unit after the other.
std::string Convert_Slowly(const std::string &strFile)
{
    const bool bLittle = strFile.starts_with("\xFF\xFE"), bBig = strFile.starts_with("\xFE\xFF");
    const std::string strCr = bLittle ? "\r\0"s : bBig ? "\0\r"s : "\r"s;
    const std::string strLf = bLittle ? "\n\0"s : bBig ? "\0\n"s : "\n"s;
    const std::string strPair = strCr + strLf;
    std::string strText;
    for (size_t uiPos = 0; uiPos < strFile.size();) {
        size_t uiLineEnd = 0;
        for (const std::string &strEnd : {strCr + strPair, strPair, strCr, strLf}) {
            if (uiLineEnd == 0 && strFile.compare(uiPos, strEnd.size(), strEnd) == 0)
                uiLineEnd = strEnd.size();
        }
        strText += uiLineEnd != 0 ? strPair : strFile.substr(uiPos, strCr.size());
        uiPos += uiLineEnd != 0 ? uiLineEnd : strCr.size();
    }
    return strText;
}

TEST_F(LineEnd, ByHand)
{
    static const std::string astrCases[][2] = {
        {"", ""},
        {"\r\r\n", "\r\n"},
        {"\r\r\r\n", "\r\n\r\n"},
        {"\n\ra\r", "\r\n\r\na\r\n"},
        {"\xFF", "\xFF"},
        {"\xFF\xFE\n\0\n"s, "\xFF\xFE\r\0\n\0\n"s},              // an odd byte is not a line end
        {"\xFE\xFF\0\n\x0A\x0A"s, "\xFE\xFF\0\r\0\n\x0A\x0A"s}}; // U+0A0A is a letter
    for (const auto &[strFile, strText] : astrCases) {
        const TempFile stFile(strFile);
        zyr_host_setLineEnds(1);
        EXPECT_EQ(Read_Name(stFile.Path()), strText);
        EXPECT_EQ(Convert_Slowly(strFile), strText);
        zyr_host_setLineEnds(0);
        EXPECT_EQ(Read_Name(stFile.Path()), strFile);
    }
}

// Seeks from every origin, a tell and a read, each held against the whole text.
void Check_RandomReads(void *hFile, const std::string &strText, Random &stRandom)
{
    const auto iSize = static_cast<int32_t>(strText.size());
    for (uint32_t uiRound = 0; uiRound < 40; ++uiRound) {
        const auto iPos = static_cast<int32_t>(stRandom() % (strText.size() + 20));
        const int32_t aiOrigins[] = {0, ZYR_ftell(hFile), iSize};
        const auto iOrigin = static_cast<int32_t>(stRandom() % 3);
        ASSERT_EQ(ZYR_fseek(hFile, iPos - aiOrigins[iOrigin], iOrigin), 0);
        ASSERT_EQ(ZYR_ftell(hFile), iPos);
        const uint32_t uiBytes = stRandom() % 300;
        ASSERT_TRUE(Read_Text(hFile, uiBytes) ==
                    strText.substr(static_cast<size_t>(std::min(iPos, iSize)), uiBytes));
    }
}

// A file is read in pieces of 64 KiB: the longest line end is laid across the first border in every way.
TEST_F(LineEnd, SameAsTheSlowForm)
{
    static const std::string astrMarks[][2] = {{"", "\r\r\n"},
                                               {"\xEF\xBB\xBF", "\r\r\n"},
                                               {"\xFF\xFE", "\r\0\r\0\n\0"s},
                                               {"\xFE\xFF", "\0\r\0\r\0\n"s}};
    Random stRandom(2024);
    for (uint32_t uiRound = 0; uiRound < 320; ++uiRound) {
        SCOPED_TRACE(uiRound);
        const auto &[strMark, strLongEnd] = astrMarks[uiRound / 80];
        const size_t uiBytes = uiRound / 4 % 4 == 0   ? 65545 + stRandom() % 30
                               : uiRound / 4 % 4 == 1 ? 131056 + stRandom() % 30
                                                      : stRandom() % 200;
        std::string strFile = Make_Text(stRandom, strMark, uiBytes, 1 + uiRound % 5 * 4);
        if (uiBytes > 65536)
            strFile.replace(65536 - uiRound % 4 * strLongEnd.size() / 3, strLongEnd.size(), strLongEnd);
        const std::string strText = Convert_Slowly(strFile);
        const TempFile stFile(strFile);
        zyr_host_mapMemory("zyrhost:t", strFile.data(), static_cast<uint32_t>(strFile.size()));
        for (const char *pszName : {stFile.Path(), "zyrhost:t"}) {
            zyr_host_setLineEnds(1);
            void *hFile = ZYR_fopen(pszName, "rb");
            zyr_host_setLineEnds(0); // counts for files opened from now on only
            ASSERT_TRUE(Read_Text(hFile, 300000) == strText) << pszName;
            Check_RandomReads(hFile, strText, stRandom);
            ZYR_fclose(hFile);
        }
    }
}

} // namespace

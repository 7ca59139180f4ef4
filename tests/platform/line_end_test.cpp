#include "host_test.h"

#include <random>
#include <utility>

namespace
{

using namespace std::string_literals;

// A byte order mark, and CR CR LF in that order.
using Encoding = std::pair<std::string, std::string>;

class LineEnd : public HostTest, public testing::WithParamInterface<Encoding>
{
protected:
    // Line ends in plenty, and bytes that are half of one in 16-bit units.
    std::string Make_Text(size_t uiBytes, uint32_t uiPlainRun)
    {
        static const std::string s_strHard = "\r\n\r\n\r\n\0\0\x0A\x0D\0a"s;
        std::string strText = GetParam().first;
        while (strText.size() < uiBytes) {
            strText += m_stRandom() % uiPlainRun == 0 ? s_strHard[m_stRandom() % s_strHard.size()] : 'x';
            if (m_stRandom() % 2 != 0 && strText.size() % 2 != 0) strText += '\0';
        }
        return strText;
    }
    std::mt19937 m_stRandom{2024};
};
INSTANTIATE_TEST_SUITE_P(Marks, LineEnd,
                         testing::Values(Encoding{"", "\r\r\n"}, Encoding{"\xEF\xBB\xBF", "\r\r\n"},
                                         Encoding{"\xFF\xFE", "\r\0\r\0\n\0"s},
                                         Encoding{"\xFE\xFF", "\0\r\0\r\0\n"s}));

// The judge: the longest line end at each unit, one unit after the other.
std::string Convert_Slowly(const std::string &strFile)
{
    const bool bLittle = strFile.starts_with("\xFF\xFE"), bBig = strFile.starts_with("\xFE\xFF");
    const std::string strCr = bLittle ? "\r\0"s : bBig ? "\0\r"s : "\r"s;
    const std::string strLf = bLittle ? "\n\0"s : bBig ? "\0\n"s : "\n"s;
    const std::string astrEnds[] = {strCr + strCr + strLf, strCr + strLf, strCr, strLf};
    std::string strText;
    for (size_t uiPos = 0; uiPos < strFile.size();) {
        size_t uiLineEnd = 0;
        for (const std::string &strEnd : astrEnds) {
            if (uiLineEnd == 0 && strFile.compare(uiPos, strEnd.size(), strEnd) == 0)
                uiLineEnd = strEnd.size();
        }
        strText += uiLineEnd != 0 ? astrEnds[1] : strFile.substr(uiPos, strCr.size());
        uiPos += uiLineEnd != 0 ? uiLineEnd : strCr.size();
    }
    return strText;
}

TEST_F(HostTest, LineEndsByHand)
{
    static const std::string astrCases[][2] = {
        {"", ""},
        {"\r\r\n", "\r\n"},
        {"\r\r\r\n", "\r\n\r\n"},
        {"\n\ra\r", "\r\n\r\na\r\n"},
        {"\xFF", "\xFF"},
        {"\xFF\xFE\n\0\n"s, "\xFF\xFE\r\0\n\0\n"s},              // an odd byte is not a line end
        {"\xFE\xFF\0\n\x0A\x0A"s, "\xFE\xFF\0\r\0\n\x0A\x0A"s}}; // U+0A0A is a letter
    for (const auto &astrCase : astrCases) {
        const TempFile stFile(astrCase[0]);
        zyr_host_setLineEnds(1);
        EXPECT_EQ(Read_Name(stFile.Path()), astrCase[1]);
        EXPECT_EQ(Convert_Slowly(astrCase[0]), astrCase[1]);
        zyr_host_setLineEnds(0);
        EXPECT_EQ(Read_Name(stFile.Path()), astrCase[0]);
    }
}

// Seeks from every origin, a tell and a read, each held against the whole text.
void Check_RandomReads(void *hFile, const std::string &strText, std::mt19937 *pstRandom)
{
    const auto iSize = static_cast<int32_t>(strText.size());
    for (uint32_t uiRound = 0; uiRound < 40; ++uiRound) {
        const auto iPos = static_cast<int32_t>((*pstRandom)() % (strText.size() + 20));
        const int32_t aiOrigins[] = {0, ZYR_ftell(hFile), iSize};
        const auto iOrigin = static_cast<int32_t>((*pstRandom)() % 3);
        ASSERT_EQ(ZYR_fseek(hFile, iPos - aiOrigins[iOrigin], iOrigin), 0);
        ASSERT_EQ(ZYR_ftell(hFile), iPos);
        const auto uiBytes = static_cast<uint32_t>((*pstRandom)() % 300);
        ASSERT_TRUE(Read_Text(hFile, uiBytes) ==
                    strText.substr(static_cast<size_t>(std::min(iPos, iSize)), uiBytes));
    }
}

// A file is read in pieces of 64 KiB: the longest line end is laid across the first border in every way.
TEST_P(LineEnd, SameAsTheSlowForm)
{
    for (uint32_t uiRound = 0; uiRound < 80; ++uiRound) {
        SCOPED_TRACE(uiRound);
        const size_t uiBytes =
            uiRound < 40 ? m_stRandom() % 200 : m_stRandom() % 30 + (uiRound / 4 % 2 != 0 ? 65545 : 131056);
        std::string strFile = Make_Text(uiBytes, 1 + uiRound % 5 * 4);
        const std::string &strLongEnd = GetParam().second;
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
            Check_RandomReads(hFile, strText, &m_stRandom);
            ZYR_fclose(hFile);
        }
    }
}

} // namespace

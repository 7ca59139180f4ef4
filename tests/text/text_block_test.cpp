// The block forms against plain loops over bytes and units: the machine's own form, and words of both sizes.

#include "text/text_block.h"

#include <gtest/gtest.h>
#include <random>

namespace
{

/** Bytes at the bounds of what is asked for, more often than others. */
uint8_t Get_Byte(std::mt19937 &stRandom)
{
    constexpr uint8_t EDGES[] = {0x00, 0x01, 0x0A, 0x0D, 0x1F, 0x20, 0x21, '<',  0x7F, 0x80, 0x9F, 0xA0,
                                 0xBF, 0xC0, 0xC1, 0xC2, 0xE0, 0xED, 0xEF, 0xF0, 0xFF, '0',  '9',  ':'};
    return stRandom() % 4 == 0 ? static_cast<uint8_t>(stRandom()) : EDGES[stRandom() % std::size(EDGES)];
}

/** @return a bit for each of 16 bytes, or of 8 units twice, that fulfils a condition */
template <typename Type, typename Condition>
uint32_t Get_PlainBits(const uint8_t *pucBytes, const Condition &fnHolds)
{
    uint32_t uiBits = 0;
    for (uint32_t uiPos = 0; uiPos < BLOCK_BYTES; uiPos += sizeof(Type)) {
        Type uiValue;
        std::memcpy(&uiValue, pucBytes + uiPos, sizeof(uiValue));
        if (fnHolds(uiValue)) uiBits |= ((1u << sizeof(Type)) - 1) << uiPos;
    }
    return uiBits;
}

/** What stands behind the first misfit is not told. */
uint32_t Get_FirstBit(uint32_t uiBits)
{
    return uiBits & ~(uiBits - 1);
}

template <typename Block>
Block All(uint8_t ucByte)
{
    uint8_t aucByte[BLOCK_BYTES];
    std::memset(aucByte, ucByte, sizeof(aucByte));
    return Block::Load(aucByte);
}

template <typename Block>
class TextBlockForm : public testing::Test
{
};
using Forms = testing::Types<TextBlock, WordBlock<uint32_t>, WordBlock<uint64_t>>;
TYPED_TEST_SUITE(TextBlockForm, Forms);

constexpr int BLOCKS = 20000;

TYPED_TEST(TextBlockForm, TellsBytesAndUnits)
{
    using Block = TypeParam;
    std::mt19937 stRandom(7);
    for (int iBlock = 0; iBlock < BLOCKS; ++iBlock) {
        uint8_t aucByte[BLOCK_BYTES];
        for (uint8_t &ucByte : aucByte) ucByte = Get_Byte(stRandom);
        const Block stBlock = Block::Load(aucByte);
        const uint8_t ucAny = Get_Byte(stRandom);
        const uint8_t ucLow = ucAny % 0x80 + 1;
        const uint8_t ucHigh = ucAny | 0x80;
        const uint8_t ucLast = ucAny < 0xC2 || ucAny == 0xFF ? 0xEF : ucAny;
        const uint16_t usAny = static_cast<uint16_t>(ucAny | Get_Byte(stRandom) << 8);
        const uint16_t usLow = usAny % 0x8000 + 1;
        const auto fnByte = [&](auto fnHolds) { return Get_PlainBits<uint8_t>(aucByte, fnHolds); };
        const auto fnUnit = [&](auto fnHolds) { return Get_PlainBits<uint16_t>(aucByte, fnHolds); };
        const struct {
            const char *pszWhat;
            uint32_t uiBits, uiExpected;
        } astRows[] = {
            {"equal", Block::Get_Bits(stBlock.Find_Equal(ucAny)),
             fnByte([=](uint32_t ui) { return ui == ucAny; })},
            {"below", Block::Get_Bits(stBlock.Find_Below(ucLow)),
             fnByte([=](uint32_t ui) { return ui < ucLow; })},
            {"from", Block::Get_Bits(stBlock.Find_AtLeast(ucHigh)),
             fnByte([=](uint32_t ui) { return ui >= ucHigh; })},
            {"between", Block::Get_Bits(stBlock.Find_Between(0xC2, ucLast)),
             fnByte([=](uint32_t ui) { return ui >= 0xC2 && ui <= ucLast; })},
            {"continuations", Block::Get_Bits(stBlock.Find_Continuations()),
             fnByte([](uint32_t ui) { return ui >= 0x80 && ui <= 0xBF; })},
            {"high", stBlock.Get_HighBits(), fnByte([](uint32_t ui) { return ui >= 0x80; })},
            {"both", (stBlock | Block::Load(aucByte)).Get_HighBits(), stBlock.Get_HighBits()},
            {"misfits",
             Get_FirstBit(stBlock.Get_Misfits(All<Block>('0'), All<Block>(0xFF), All<Block>(0x80 - 10))
                              .Get_HighBits()),
             Get_FirstBit(fnByte([](uint32_t ui) { return (ui ^ '0') > 9; }))},
            {"equal units", Block::Get_Bits(stBlock.Find_EqualUnit(usAny)),
             fnUnit([=](uint32_t ui) { return ui == usAny; })},
            {"units below", Block::Get_Bits(stBlock.Find_BelowUnit(usLow)),
             fnUnit([=](uint32_t ui) { return ui < usLow; })},
            {"swapped units", Block::Get_Bits(stBlock.Get_SwappedUnits().Find_EqualUnit(usAny)),
             fnUnit([=](uint32_t ui) { return (ui << 8 | ui >> 8) % 0x10000 == usAny; })},
            {"without", Block::Get_Bits(stBlock.Find_AtLeast(0x80).Without(stBlock.Find_Equal(ucHigh))),
             fnByte([=](uint32_t ui) { return ui >= 0x80 && ui != ucHigh; })},
        };
        for (const auto &stRow : astRows)
            ASSERT_EQ(stRow.uiBits, stRow.uiExpected)
                << stRow.pszWhat << ' ' << uint32_t{ucAny} << ": " << testing::PrintToString(aucByte);
    }
}

TYPED_TEST(TextBlockForm, NarrowsUnits)
{
    using Block = TypeParam;
    std::mt19937 stRandom(8);
    for (int iBlock = 0; iBlock < BLOCKS; ++iBlock) {
        uint8_t aucByte[2 * BLOCK_BYTES];
        for (uint8_t &ucByte : aucByte) ucByte = stRandom() % 2 == 0 ? uint8_t{0} : Get_Byte(stRandom);
        uint8_t aucNarrow[BLOCK_BYTES];
        Block::Narrow_Units(Block::Load(aucByte), Block::Load(aucByte + BLOCK_BYTES)).Store(aucNarrow);
        for (uint32_t uiUnit = 0; uiUnit < BLOCK_BYTES; ++uiUnit) {
            const uint32_t uiValue = aucByte[size_t{2} * uiUnit] | uint32_t{aucByte[size_t{2} * uiUnit + 1]}
                                                                       << 8;
            const uint32_t uiExpected = uiValue >= 0x8000 ? 0 : uiValue > 0xFF ? 0xFF : uiValue;
            ASSERT_EQ(aucNarrow[uiUnit], uiExpected) << uiValue;
        }
    }
}

TEST(SecondBytes, AreEveryOtherOneOfARow)
{
    std::mt19937 stRandom(9);
    uint32_t uiCarry = 0;
    bool bSecond = false; // the next byte is one, told a byte at a time
    for (int iBlock = 0; iBlock < BLOCKS; ++iBlock) {
        const uint32_t uiHigh = iBlock % 8 == 0 ? 0xFFFF : stRandom() & 0xFFFF; // whole rows among others
        uint32_t uiExpected = 0;
        for (uint32_t uiByte = 0; uiByte < BLOCK_BYTES; ++uiByte) {
            if (bSecond) uiExpected |= 1u << uiByte;
            bSecond = !bSecond && (uiHigh >> uiByte & 1) != 0;
        }
        ASSERT_EQ(Find_SecondBytes(uiHigh, uiCarry), uiExpected) << uiHigh;
    }
}

} // namespace

#include "text_decode.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <utility>

#include "zyr/quib_caption.h"

namespace
{

constexpr std::string_view REPLACEMENT = "\xEF\xBF\xBD";
constexpr uint32_t REPLACEMENT_CHARACTER = 0xFFFD;
constexpr uint32_t FIRST_ASTRAL = 0x10000;
constexpr size_t CHARACTER_MOST = 4; // bytes of one

bool Is_HighSurrogate(uint32_t uiUnit)
{
    return (uiUnit & 0xFC00U) == 0xD800U;
}

bool Is_LowSurrogate(uint32_t uiUnit)
{
    return (uiUnit & 0xFC00U) == 0xDC00U;
}

// @return bytes written, CHARACTER_MOST at most
size_t Write_Character(uint32_t uiCharacter, char *pcTo)
{
    const auto pfTail = [&](uint32_t uiShift) {
        return static_cast<char>(0x80U | (uiCharacter >> uiShift & 0x3FU));
    };
    if (uiCharacter < 0x80) {
        pcTo[0] = static_cast<char>(uiCharacter);
        return 1;
    }
    if (uiCharacter < 0x800) {
        pcTo[0] = static_cast<char>(0xC0U | uiCharacter >> 6);
        pcTo[1] = pfTail(0);
        return 2;
    }
    const size_t uiTails = uiCharacter < FIRST_ASTRAL ? 2 : 3;
    *pcTo++ = static_cast<char>(uiTails == 2 ? 0xE0U | uiCharacter >> 12 : 0xF0U | uiCharacter >> 18);
    if (uiTails == 3) *pcTo++ = pfTail(12);
    pcTo[0] = pfTail(6);
    pcTo[1] = pfTail(0);
    return uiTails + 1;
}

// Bytes of the character that leads strBytes, or 0 when it is no valid one.
size_t Measure_Character(std::string_view strBytes)
{
    const auto ucLead = static_cast<uint8_t>(strBytes[0]);
    if (ucLead < 0x80) return 1;
    if (ucLead < 0xC2 || ucLead > 0xF4) return 0;
    const size_t uiBytes = ucLead < 0xE0 ? 2 : ucLead < 0xF0 ? 3 : 4;
    if (strBytes.size() < uiBytes) return 0;
    for (size_t uiByte = 1; uiByte < uiBytes; ++uiByte)
        if ((static_cast<uint8_t>(strBytes[uiByte]) & 0xC0) != 0x80) return 0;
    const auto ucSecond = static_cast<uint8_t>(strBytes[1]);
    const bool bTooShort = (ucLead == 0xE0 && ucSecond < 0xA0) || (ucLead == 0xF0 && ucSecond < 0x90);
    const bool bNoCharacter = (ucLead == 0xED && ucSecond >= 0xA0) || (ucLead == 0xF4 && ucSecond >= 0x90);
    return bTooShort || bNoCharacter ? 0 : uiBytes;
}

// Converters between two uses. Opening one loads a module of the system's, which costs more than reading a film's
// captions, and closing the last one unloads it again.
constexpr size_t IDLE_MOST = 16;

struct IdleConverter {
    std::string strCodePage;
    iconv_t hIconv;
};
std::mutex s_stIdleLock;

std::vector<IdleConverter> &Get_Idle()
{
    static auto *const s_pstIdle = new std::vector<IdleConverter>; // lives as long as any thread may
    return *s_pstIdle;
}

iconv_t Take_Converter(const std::string &strCodePage)
{
    const std::lock_guard<std::mutex> stGuard(s_stIdleLock);
    std::vector<IdleConverter> &astIdle = Get_Idle();
    for (IdleConverter &stIdle : astIdle) {
        if (stIdle.strCodePage != strCodePage) continue;
        const iconv_t hIconv = stIdle.hIconv;
        std::swap(stIdle, astIdle.back());
        astIdle.pop_back();
        return hIconv;
    }
    astIdle.reserve(IDLE_MOST);
    return iconv_open("UTF-8", strCodePage.c_str());
}

void Give_Back(std::string strCodePage, iconv_t hIconv)
{
    const std::lock_guard<std::mutex> stGuard(s_stIdleLock);
    if (Get_Idle().size() < IDLE_MOST)
        Get_Idle().push_back({std::move(strCodePage), hIconv}); // has room
    else
        iconv_close(hIconv);
}

bool Is_AllAscii(const uint8_t *pucBytes)
{
    uint64_t ullWord;
    std::memcpy(&ullWord, pucBytes, sizeof ullWord);
    return (ullWord & 0x8080808080808080U) == 0;
}

// Bytes from the start that are ASCII, or characters of three bytes whose lead allows any second one: of these whole
// films are made.
size_t Count_UsualUtf8(std::string_view strBytes)
{
    const auto *const pucBytes = reinterpret_cast<const uint8_t *>(strBytes.data());
    size_t uiValid = Count_Ascii(strBytes);
    while (uiValid + 3 <= strBytes.size()) {
        const uint8_t *const pucAt = pucBytes + uiValid;
        const bool bThree = pucAt[0] > 0xE0 && pucAt[0] < 0xF0 && pucAt[0] != 0xED &&
                            (pucAt[1] & 0xC0) == 0x80 && (pucAt[2] & 0xC0) == 0x80;
        if (!bThree && pucAt[0] >= 0x80) break;
        uiValid += bThree ? 3 : 1;
    }
    return uiValid;
}

} // namespace

CodePageReader::CodePageReader(const std::string &strCodePage)
    : m_strCodePage(strCodePage), m_hIconv(Take_Converter(strCodePage))
{
    if (!Is_Known()) return;
    std::string strAscii;
    for (char cChar = ' '; cChar < 0x7F; ++cChar) strAscii += cChar;
    std::string strRead;
    m_bAsciiPlain = Append(strAscii, strRead) == 0 && strRead == strAscii;
}

CodePageReader::~CodePageReader()
{
    if (Is_Known()) Give_Back(std::move(m_strCodePage), m_hIconv);
}

// iconv() over the whole text, piece by piece: pfPiece(converted) takes what was read, pfBad(offset) tells how many
// bytes to pass over where nothing could be; errno says why then.
template <typename PieceStep, typename BadStep>
void CodePageReader::Convert(std::string_view strBytes, const PieceStep &pfPiece, const BadStep &pfBad) const
{
    char *pcIn = const_cast<char *>(strBytes.data()); // iconv only reads it
    size_t uiLeft = strBytes.size();
    iconv(m_hIconv, nullptr, nullptr, nullptr, nullptr);
    while (uiLeft > 0) {
        std::array<char, 4096> acOut;
        char *pcOut = acOut.data();
        size_t uiRoom = acOut.size();
        const size_t uiResult = iconv(m_hIconv, &pcIn, &uiLeft, &pcOut, &uiRoom);
        const bool bUnreadable = uiResult == static_cast<size_t>(-1) && errno != E2BIG;
        const int iWhy = errno;
        pfPiece(std::string_view(acOut.data(), acOut.size() - uiRoom));
        if (!bUnreadable) continue;
        errno = iWhy;
        const size_t uiSkip = std::min(uiLeft, pfBad(strBytes.size() - uiLeft));
        pcIn += uiSkip;
        uiLeft -= uiSkip;
    }
}

uint32_t CodePageReader::Append(std::string_view strBytes, std::string &strUtf8) const
{
    uint32_t uiBad = 0;
    Convert(
        strBytes, [&](std::string_view strPiece) { strUtf8 += strPiece; },
        [&](size_t /*uiOffset*/) {
            strUtf8 += REPLACEMENT;
            ++uiBad;
            return size_t{1};
        });
    return uiBad;
}

std::optional<size_t> CodePageReader::Find_Unreadable(std::string_view strBytes) const
{
    std::optional<size_t> uiFound;
    Convert(
        strBytes, [](std::string_view /*strPiece*/) {},
        [&](size_t uiOffset) {
            uiFound = uiOffset;
            return SIZE_MAX;
        });
    return uiFound;
}

bool CodePageReader::Is_SingleByte() const
{
    bool bLead = false;
    for (int iByte = 0x80; iByte < 0x100; ++iByte) {
        const char cByte = static_cast<char>(iByte);
        Convert(
            {&cByte, 1}, [](std::string_view /*strPiece*/) {},
            [&](size_t /*uiOffset*/) {
                bLead = bLead || errno == EINVAL; // the beginning of one character, and not all of it
                return SIZE_MAX;
            });
    }
    return !bLead;
}

size_t Count_Ascii(std::string_view strBytes)
{
    const auto *const pucBytes = reinterpret_cast<const uint8_t *>(strBytes.data());
    size_t uiAscii = 0;
    while (uiAscii + sizeof(uint64_t) <= strBytes.size() && Is_AllAscii(pucBytes + uiAscii))
        uiAscii += sizeof(uint64_t);
    while (uiAscii < strBytes.size() && pucBytes[uiAscii] < 0x80) ++uiAscii;
    return uiAscii;
}

size_t Count_ValidUtf8(std::string_view strBytes)
{
    size_t uiValid = 0;
    while (uiValid < strBytes.size()) {
        const std::string_view strLeft = strBytes.substr(uiValid);
        const size_t uiUsual = Count_UsualUtf8(strLeft);
        const size_t uiBytes = uiUsual > 0 ? uiUsual : Measure_Character(strLeft);
        if (uiBytes == 0) break;
        uiValid += uiBytes;
    }
    return uiValid;
}

uint32_t Append_Utf8(std::string_view strBytes, std::string &strUtf8)
{
    uint32_t uiBad = 0;
    while (!strBytes.empty()) {
        const size_t uiValid = Count_ValidUtf8(strBytes);
        strUtf8 += strBytes.substr(0, uiValid);
        strBytes.remove_prefix(uiValid);
        if (strBytes.empty()) break;
        strUtf8 += REPLACEMENT;
        strBytes.remove_prefix(1);
        ++uiBad;
    }
    return uiBad;
}

void Append_Character(uint32_t uiCharacter, std::string &strUtf8)
{
    std::array<char, CHARACTER_MOST> acBytes;
    strUtf8.append(acBytes.data(), Write_Character(uiCharacter, acBytes.data()));
}

uint32_t Take_Character(std::string_view &strUtf8)
{
    const size_t uiBytes = std::max<size_t>(Measure_Character(strUtf8), 1);
    auto uiCharacter = static_cast<uint32_t>(static_cast<uint8_t>(strUtf8[0]));
    if (uiBytes > 1) uiCharacter &= 0xFFU >> (uiBytes + 1);
    for (size_t uiByte = 1; uiByte < uiBytes; ++uiByte)
        uiCharacter = uiCharacter << 6 | (static_cast<uint8_t>(strUtf8[uiByte]) & 0x3FU);
    strUtf8.remove_prefix(uiBytes);
    return uiCharacter;
}

// Into room for three bytes a unit, which is the most that one takes: two of an astral character take four.
uint32_t Append_Utf16(std::span<const uint16_t> ausUnits, std::string &strUtf8)
{
    uint32_t uiBad = 0;
    size_t uiEnd = strUtf8.size();
    strUtf8.resize(uiEnd + ausUnits.size() * 3);
    for (size_t uiUnit = 0; uiUnit < ausUnits.size(); ++uiUnit) {
        uint32_t uiCharacter = ausUnits[uiUnit];
        if (Is_HighSurrogate(uiCharacter) || Is_LowSurrogate(uiCharacter)) {
            const uint32_t uiLow = uiUnit + 1 < ausUnits.size() ? ausUnits[uiUnit + 1] : 0;
            const bool bPair = Is_HighSurrogate(uiCharacter) && Is_LowSurrogate(uiLow);
            uiCharacter = bPair ? FIRST_ASTRAL + ((uiCharacter & 0x3FFU) << 10 | (uiLow & 0x3FFU))
                                : REPLACEMENT_CHARACTER;
            uiUnit += bPair ? 1 : 0;
            uiBad += bPair ? 0 : 1;
        }
        uiEnd += Write_Character(uiCharacter, strUtf8.data() + uiEnd);
    }
    strUtf8.resize(uiEnd);
    return uiBad;
}

EngineText::EngineText(uint32_t uiCharset, const std::string &strCodePage, bool bSingleByte)
    : m_uiCharset(uiCharset), m_bSingleByte(bSingleByte), m_stReader(strCodePage)
{
}

// A high unit below 0x100 arrives as a zero byte and its code; every other byte from 0x80 on leads a pair, and only by
// keeping to the pairs is the zero byte told from the second half of one. Such a unit is a character of the code page
// where every byte is one; else only an entity can have made it, and it is U+0080 to U+00FF.
uint32_t EngineText::Append_CodePage(std::span<const uint8_t> aucText, std::string &strUtf8) const
{
    const std::string_view strText(reinterpret_cast<const char *>(aucText.data()), aucText.size());
    const bool bZero = strText.find('\0') != std::string_view::npos;
    if (!bZero && m_stReader.Is_AsciiPlain() && Count_Ascii(strText) == strText.size()) {
        strUtf8 += strText;
        return 0;
    }
    if (!bZero) return m_stReader.Append(strText, strUtf8);
    uint32_t uiBad = 0;
    std::string strBytes;
    for (size_t uiByte = 0; uiByte < aucText.size(); ++uiByte) {
        const uint8_t ucByte = aucText[uiByte];
        const uint8_t ucNext = uiByte + 1 < aucText.size() ? aucText[uiByte + 1] : uint8_t{0};
        const bool bHigh = ucByte == 0 && ucNext >= 0x80;
        const bool bPair = ucByte >= 0x80 && uiByte + 1 < aucText.size();
        if (bHigh && !m_bSingleByte) {
            uiBad += m_stReader.Append(strBytes, strUtf8);
            strBytes.clear();
            Append_Character(ucNext, strUtf8);
        } else {
            if (!bHigh) strBytes += static_cast<char>(ucByte);
            if (bPair || bHigh) strBytes += static_cast<char>(ucNext);
        }
        uiByte += bPair || bHigh ? 1 : 0;
    }
    return uiBad + m_stReader.Append(strBytes, strUtf8);
}

uint32_t EngineText::Append_Block(std::span<const uint8_t> aucText, std::string &strUtf8) const
{
    if (m_uiCharset == E_OUTPUT_CHARSET_ANSI) return Append_CodePage(aucText, strUtf8);
    if (m_uiCharset != E_OUTPUT_CHARSET_UTF16)
        return Append_Utf8({reinterpret_cast<const char *>(aucText.data()), aucText.size()}, strUtf8);
    std::array<uint16_t, ZYR_OUT_TEXT_BYTES / 2> ausUnits;
    const size_t uiUnits = std::min(aucText.size() / 2, ausUnits.size());
    std::memcpy(ausUnits.data(), aucText.data(), uiUnits * 2);
    return Append_Utf16({ausUnits.data(), uiUnits}, strUtf8);
}

std::string EngineText::Read_Units(std::span<const uint16_t> ausUnits) const
{
    std::string strUtf8;
    if (m_uiCharset != E_OUTPUT_CHARSET_ANSI) {
        Append_Utf16(ausUnits, strUtf8);
        return strUtf8;
    }
    std::vector<uint8_t> aucBytes;
    for (const uint16_t usUnit : ausUnits) {
        if (usUnit >= 0x80) aucBytes.push_back(static_cast<uint8_t>(usUnit >> 8));
        aucBytes.push_back(static_cast<uint8_t>(usUnit & 0xFF));
    }
    Append_CodePage(aucBytes, strUtf8);
    return strUtf8;
}

#include "text_convert.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>

#include "zyr/quib_caption.h"

static constexpr std::string_view UTF8_REPLACEMENT = "\xEF\xBF\xBD";
static constexpr const char *HOST_UTF16 =
    std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

Converter::Converter(const std::string &strTo, const std::string &strFrom)
    : m_hIconv(iconv_open(strTo.c_str(), strFrom.c_str()))
{
}

Converter::~Converter()
{
    if (IsKnown()) iconv_close(m_hIconv);
}

// iconv() over the whole text, piece by piece: pfPiece(converted) takes what was read, pfBad(offset) tells
// how many bytes to pass over where nothing could be; errno says why then.
template <typename PieceStep, typename BadStep>
static void Convert_Pieces(iconv_t hIconv, std::string_view strText, const PieceStep &pfPiece,
                           const BadStep &pfBad)
{
    std::string strIn(strText);
    char *pcIn = strIn.data();
    size_t uiLeft = strIn.size();
    iconv(hIconv, nullptr, nullptr, nullptr, nullptr);
    while (uiLeft > 0) {
        char acOut[1024];
        char *pcOut = acOut;
        size_t uiRoom = sizeof acOut;
        const size_t uiResult = iconv(hIconv, &pcIn, &uiLeft, &pcOut, &uiRoom);
        const bool bUnreadable = uiResult == static_cast<size_t>(-1) && errno != E2BIG;
        pfPiece(std::string_view(acOut, sizeof acOut - uiRoom));
        if (!bUnreadable) continue;
        const size_t uiSkip = std::min(uiLeft, pfBad(strIn.size() - uiLeft));
        pcIn += uiSkip;
        uiLeft -= uiSkip;
        iconv(hIconv, nullptr, nullptr, nullptr, nullptr);
    }
}

std::string Converter::Convert(std::string_view strText, size_t uiStep, std::string_view strReplacement) const
{
    std::string strOut;
    Convert_Pieces(
        m_hIconv, strText, [&](std::string_view strPiece) { strOut += strPiece; },
        [&](size_t /*uiOffset*/) {
            strOut += strReplacement;
            return uiStep;
        });
    return strOut;
}

static constexpr auto IGNORE_PIECE = [](std::string_view /*strPiece*/) {};

std::optional<size_t> Converter::Find_Unreadable(std::string_view strText) const
{
    std::optional<size_t> uiFound;
    Convert_Pieces(m_hIconv, strText, IGNORE_PIECE, [&](size_t uiOffset) {
        uiFound = uiOffset;
        return SIZE_MAX;
    });
    return uiFound;
}

bool Converter::Is_CutShort(std::string_view strText) const
{
    bool bCutShort = false;
    Convert_Pieces(m_hIconv, strText, IGNORE_PIECE, [&](size_t uiOffset) {
        bCutShort = uiOffset == 0 && errno == EINVAL;
        return SIZE_MAX;
    });
    return bCutShort;
}

static std::string Get_CharsetName(uint32_t uiCharset, const std::string &strCodePage)
{
    if (uiCharset == E_OUTPUT_CHARSET_UTF16) return HOST_UTF16;
    return uiCharset == E_OUTPUT_CHARSET_ANSI ? strCodePage : "UTF-8";
}

TextDecoder::TextDecoder(uint32_t uiCharset, const std::string &strCodePage, bool bSingleByte)
    : m_uiCharset(uiCharset), m_bSingleByte(bSingleByte),
      m_stConverter("UTF-8", Get_CharsetName(uiCharset, strCodePage))
{
}

// A high unit below 0x100 arrives as a zero byte and its code; every other byte from 0x80 on leads a pair,
// and only by keeping to the pairs is the zero byte told from the second half of one. Such a unit is a
// character of the code page where every byte is one; else only an entity can have made it, and it is U+0080
// to U+00FF.
std::string TextDecoder::Decode_CodePage(std::span<const uint8_t> aucText) const
{
    std::string strOut;
    std::string strBytes;
    for (size_t uiByte = 0; uiByte < aucText.size(); ++uiByte) {
        const uint8_t ucByte = aucText[uiByte];
        const uint8_t ucNext = uiByte + 1 < aucText.size() ? aucText[uiByte + 1] : uint8_t{0};
        const bool bHigh = ucByte == 0 && ucNext >= 0x80;
        if (bHigh && !m_bSingleByte) {
            strOut += m_stConverter.Convert(strBytes, 1, UTF8_REPLACEMENT);
            strBytes.clear();
            strOut += static_cast<char>(0xC0 | ucNext >> 6);
            strOut += static_cast<char>(0x80 | (ucNext & 0x3F));
        } else if (!bHigh) {
            strBytes += static_cast<char>(ucByte);
        }
        const bool bPair = ucByte >= 0x80 && uiByte + 1 < aucText.size();
        if (bPair || (bHigh && m_bSingleByte)) strBytes += static_cast<char>(ucNext);
        uiByte += bPair || bHigh ? 1 : 0;
    }
    return strOut + m_stConverter.Convert(strBytes, 1, UTF8_REPLACEMENT);
}

std::string TextDecoder::Decode(std::span<const uint8_t> aucText) const
{
    if (m_uiCharset == E_OUTPUT_CHARSET_ANSI) return Decode_CodePage(aucText);
    const std::string_view strBytes(reinterpret_cast<const char *>(aucText.data()), aucText.size());
    return m_stConverter.Convert(strBytes, m_uiCharset == E_OUTPUT_CHARSET_UTF16 ? 2 : 1, UTF8_REPLACEMENT);
}

std::string TextDecoder::Decode_Units(std::span<const uint16_t> ausUnits) const
{
    if (m_uiCharset != E_OUTPUT_CHARSET_ANSI) {
        const Converter stConverter("UTF-8", HOST_UTF16);
        const std::string_view strBytes(reinterpret_cast<const char *>(ausUnits.data()),
                                        ausUnits.size_bytes());
        return stConverter.Convert(strBytes, 2, UTF8_REPLACEMENT);
    }
    std::vector<uint8_t> aucBytes;
    for (const uint16_t usUnit : ausUnits) {
        if (usUnit >= 0x80) aucBytes.push_back(static_cast<uint8_t>(usUnit >> 8));
        aucBytes.push_back(static_cast<uint8_t>(usUnit & 0xFF));
    }
    return Decode_CodePage(aucBytes);
}

bool Is_CodePageKnown(const std::string &strCodePage)
{
    return Converter("UTF-8", strCodePage).IsKnown();
}

std::vector<uint16_t> Make_Utf16(std::string_view strUtf8)
{
    static constexpr uint16_t REPLACEMENT[] = {0xFFFD};
    const Converter stConverter(HOST_UTF16, "UTF-8");
    const std::string strBytes = stConverter.Convert(
        strUtf8, 1, std::string_view(reinterpret_cast<const char *>(REPLACEMENT), sizeof REPLACEMENT));
    std::vector<uint16_t> ausUnits(strBytes.size() / 2 + 1, 0);
    std::memcpy(ausUnits.data(), strBytes.data(), strBytes.size() / 2 * 2);
    return ausUnits;
}

// The UTF-8 forms of U+0080 to U+009F are C2 80 to C2 9F.
std::string Make_Printable(std::string_view strUtf8)
{
    std::string strOut;
    for (size_t uiByte = 0; uiByte < strUtf8.size(); ++uiByte) {
        const auto ucByte = static_cast<uint8_t>(strUtf8[uiByte]);
        const auto ucNext = static_cast<uint8_t>(uiByte + 1 < strUtf8.size() ? strUtf8[uiByte + 1] : 0);
        const bool bHighControl = ucByte == 0xC2 && ucNext >= 0x80 && ucNext < 0xA0;
        if (bHighControl || (ucByte < 0x20 && ucByte != '\n') || ucByte == 0x7F) {
            strOut += UTF8_REPLACEMENT;
            uiByte += bHighControl ? 1 : 0;
        } else {
            strOut += strUtf8[uiByte];
        }
    }
    return strOut;
}

std::vector<std::string> Split_Lines(std::string_view strText)
{
    std::vector<std::string> astrLines;
    while (!strText.empty()) {
        const size_t uiEnd = strText.find('\n');
        astrLines.emplace_back(strText.substr(0, uiEnd));
        if (uiEnd == std::string_view::npos) break;
        strText.remove_prefix(uiEnd + 1);
    }
    return astrLines;
}

std::string Join_Lines(std::span<const std::string> astrLines, std::string_view strBetween)
{
    std::string strOut;
    for (const std::string &strLine : astrLines) {
        if (!strOut.empty()) strOut += strBetween;
        strOut += strLine;
    }
    return strOut;
}

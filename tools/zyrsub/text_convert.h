// Text between character sets, by iconv. Nothing is ever dropped: what cannot be read shows as U+FFFD.
#ifndef ZYRSUB_TEXT_CONVERT_H
#define ZYRSUB_TEXT_CONVERT_H

#include <cstdint>
#include <iconv.h>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// One direction of conversion.
class Converter
{
public:
    Converter(const std::string &strTo, const std::string &strFrom);
    ~Converter();
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    bool IsKnown() const { return m_hIconv != reinterpret_cast<iconv_t>(-1); }

    // strReplacement stands for each run of uiStep bytes that cannot be read.
    std::string Convert(std::string_view strText, size_t uiStep, std::string_view strReplacement) const;

    // Where the first byte stands that cannot be read; a character that the end cuts short counts.
    std::optional<size_t> Find_Unreadable(std::string_view strText) const;

    // The text is the beginning of one character, and not all of it.
    bool Is_CutShort(std::string_view strText) const;

private:
    iconv_t m_hIconv;
};

// Reads the engine's text, whatever its character set, as UTF-8.
class TextDecoder
{
public:
    // uiCharset as zyrSubtitle_getOutputTextCharacterSet() gives it; the rest serves code-page text.
    TextDecoder(uint32_t uiCharset, const std::string &strCodePage, bool bSingleByte);

    // The output block of a frame.
    std::string Decode(std::span<const uint8_t> aucText) const;

    // Units as the record holds names and header texts.
    std::string Decode_Units(std::span<const uint16_t> ausUnits) const;

private:
    std::string Decode_CodePage(std::span<const uint8_t> aucText) const;

    uint32_t m_uiCharset;
    bool m_bSingleByte;
    Converter m_stConverter;
};

bool Is_CodePageKnown(const std::string &strCodePage);

// UTF-16 units in host byte order, closed by a zero unit that the count of the caller leaves out.
std::vector<uint16_t> Make_Utf16(std::string_view strUtf8);

// Control characters would let a file steer the terminal; they show as U+FFFD. Newlines stay.
std::string Make_Printable(std::string_view strUtf8);

// No ASCII.
inline bool Is_High(char cByte)
{
    return (cByte & 0x80) != 0;
}

std::vector<std::string> Split_Lines(std::string_view strText);
std::string Join_Lines(std::span<const std::string> astrLines, std::string_view strBetween);

#endif

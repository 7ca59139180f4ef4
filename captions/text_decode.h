// Text of the engine, whatever its character set, as UTF-8. Nothing is ever dropped: what cannot be read shows as
// U+FFFD, and is counted.
#pragma once

#include <cstdint>
#include <iconv.h>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Code-page text to UTF-8, by iconv.
class CodePageReader
{
public:
    explicit CodePageReader(const std::string &strCodePage);
    ~CodePageReader();
    CodePageReader(const CodePageReader &) = delete;
    CodePageReader &operator=(const CodePageReader &) = delete;

    bool Is_Known() const { return m_hIconv != reinterpret_cast<iconv_t>(-1); }

    // Plain ASCII reads as itself, which is so in all code pages that subtitles are written in.
    bool Is_AsciiPlain() const { return m_bAsciiPlain; }

    // @return places that could not be read, a byte each
    uint32_t Append(std::string_view strBytes, std::string &strUtf8) const;

    // Where the first byte stands that cannot be read; a character that the end cuts short counts.
    std::optional<size_t> Find_Unreadable(std::string_view strBytes) const;

    // No character of it takes two bytes.
    bool Is_SingleByte() const;

private:
    template <typename PieceStep, typename BadStep>
    void Convert(std::string_view strBytes, const PieceStep &pfPiece, const BadStep &pfBad) const;

    std::string m_strCodePage;
    iconv_t m_hIconv;
    bool m_bAsciiPlain = false;
};

// UTF-8 that may hold anything, made valid. @return places that were not
uint32_t Append_Utf8(std::string_view strBytes, std::string &strUtf8);

// Bytes from the start that are ASCII.
size_t Count_Ascii(std::string_view strBytes);

// Bytes from the start that are valid UTF-8.
size_t Count_ValidUtf8(std::string_view strBytes);

// @return lone surrogates
uint32_t Append_Utf16(std::span<const uint16_t> ausUnits, std::string &strUtf8);

void Append_Character(uint32_t uiCharacter, std::string &strUtf8);

// The first character of a valid UTF-8 text, which is cut off it.
uint32_t Take_Character(std::string_view &strUtf8);

// Reads what the engine delivers.
class EngineText
{
public:
    // uiCharset as zyrSubtitle_getOutputTextCharacterSet() gives it; the rest serves code-page text.
    EngineText(uint32_t uiCharset, const std::string &strCodePage, bool bSingleByte);

    // The output block of a frame. @return places that could not be read
    uint32_t Append_Block(std::span<const uint8_t> aucText, std::string &strUtf8) const;

    // Units as the record holds names and header texts.
    std::string Read_Units(std::span<const uint16_t> ausUnits) const;

private:
    uint32_t Append_CodePage(std::span<const uint8_t> aucText, std::string &strUtf8) const;

    uint32_t m_uiCharset;
    bool m_bSingleByte;
    CodePageReader m_stReader;
};

#include "plain_file.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "text_decode.h"

namespace
{

size_t Get_MarkBytes(std::string_view strBytes)
{
    if (strBytes.starts_with("\xEF\xBB\xBF")) return 3;
    return strBytes.starts_with("\xFF\xFE") || strBytes.starts_with("\xFE\xFF") ? 2 : 0;
}

} // namespace

PlainFile::PlainFile(std::string_view strBytes, const ZyrCaptionsFile &stFile) : m_strBytes(strBytes)
{
    const std::string_view strEncoding = stFile.pszEncoding == nullptr ? "ANSI" : stFile.pszEncoding;
    if (strEncoding.starts_with("UTF-16")) m_uiUnit = 2;
    m_bBigEndian = strEncoding == "UTF-16BE";
    if (stFile.pszCodePage != nullptr) m_pstReader = std::make_unique<CodePageReader>(stFile.pszCodePage);
    size_t uiAt = Get_MarkBytes(strBytes);
    uint32_t uiColumn = 1;
    m_astLines.push_back({0, uiAt, E_END_NONE});
    m_astMarks.push_back({0, uiAt, 1});
    while (uiAt < strBytes.size()) Read_Character(uiAt, uiColumn);
    m_strLower = m_strText;
    for (char &cChar : m_strLower)
        if (cChar >= 'A' && cChar <= 'Z') cChar = static_cast<char>(cChar | 0x20);
}

PlainFile::~PlainFile() = default;

void PlainFile::Read_Character(size_t &uiAt, uint32_t &uiColumn)
{
    static constexpr uint32_t MARK_COLUMNS = 64;
    size_t uiEnd = 0;
    m_astLines.back().eEnd = Match_LineEnd(uiAt, uiEnd);
    if (uiEnd > 0) {
        m_strText += '\n';
        uiAt += uiEnd;
        uiColumn = 1;
        m_astLines.push_back({m_strText.size(), uiAt, E_END_NONE});
        m_astMarks.push_back({m_strText.size(), uiAt, uiColumn});
        return;
    }
    bool bBad = false;
    const size_t uiText = m_strText.size();
    uiAt += Step_Character(uiAt, m_strText, bBad);
    if (bBad) m_auiUnreadable.push_back(uiText);
    if (++uiColumn % MARK_COLUMNS == 0) m_astMarks.push_back({m_strText.size(), uiAt, uiColumn});
}

bool PlainFile::Is_At(size_t uiAt, char cChar) const
{
    if (uiAt + m_uiUnit > m_strBytes.size()) return false;
    return m_uiUnit == 1 ? m_strBytes[uiAt] == cChar : Get_Unit(uiAt) == static_cast<uint16_t>(cChar);
}

uint16_t PlainFile::Get_Unit(size_t uiAt) const
{
    const auto ucFirst = static_cast<uint8_t>(m_strBytes[uiAt]);
    const auto ucSecond = static_cast<uint8_t>(m_strBytes[uiAt + 1]);
    return static_cast<uint16_t>(m_bBigEndian ? ucFirst << 8 | ucSecond : ucSecond << 8 | ucFirst);
}

LineEnd PlainFile::Match_LineEnd(size_t uiAt, size_t &uiBytes) const
{
    static constexpr std::array<LineEnd, 3> ENDS = {E_END_LF, E_END_CR_LF, E_END_CR_CR_LF};
    size_t uiReturns = 0;
    while (uiReturns < 2 && Is_At(uiAt + uiReturns * m_uiUnit, '\r')) ++uiReturns;
    const bool bLineFeed = Is_At(uiAt + uiReturns * m_uiUnit, '\n');
    if (!bLineFeed && uiReturns == 0) return E_END_NONE;
    uiBytes = bLineFeed ? (uiReturns + 1) * m_uiUnit : m_uiUnit;
    return bLineFeed ? ENDS[uiReturns] : E_END_CR;
}

// As many bytes as make a character; one that none begins with stands alone.
size_t PlainFile::Step_CodePage(size_t uiAt, std::string &strText, bool &bBad) const
{
    static constexpr size_t LONGEST = 4;
    for (size_t uiBytes = 1; uiBytes <= LONGEST && uiAt + uiBytes <= m_strBytes.size(); ++uiBytes) {
        std::string strOne;
        if (m_pstReader->Append(m_strBytes.substr(uiAt, uiBytes), strOne) > 0) continue;
        strText += strOne;
        return uiBytes;
    }
    bBad = true;
    Append_Character(0xFFFD, strText);
    return 1;
}

size_t PlainFile::Step_Character(size_t uiAt, std::string &strText, bool &bBad) const
{
    if (m_uiUnit == 2) {
        std::array<uint16_t, 2> ausUnits = {};
        size_t uiUnits = 0;
        for (; uiUnits < 2 && uiAt + 2 * uiUnits + 1 < m_strBytes.size(); ++uiUnits)
            ausUnits[uiUnits] = Get_Unit(uiAt + 2 * uiUnits);
        const bool bPair =
            uiUnits == 2 && (ausUnits[0] & 0xFC00U) == 0xD800U && (ausUnits[1] & 0xFC00U) == 0xDC00U;
        const size_t uiTaken = bPair ? 2 : std::min<size_t>(uiUnits, 1);
        bBad = uiUnits == 0 || Append_Utf16(std::span(ausUnits).first(uiTaken), strText) > 0;
        if (uiUnits == 0) Append_Character(0xFFFD, strText);
        return std::max<size_t>(2 * uiTaken, 1);
    }
    const auto ucLead = static_cast<uint8_t>(m_strBytes[uiAt]);
    if (ucLead < 0x80) {
        strText += m_strBytes[uiAt];
        return 1;
    }
    if (m_pstReader) return Step_CodePage(uiAt, strText, bBad);
    const size_t uiBytes = ucLead < 0xE0 ? 2 : ucLead < 0xF0 ? 3 : 4;
    const std::string_view strOne = m_strBytes.substr(uiAt, uiBytes);
    bBad = Count_ValidUtf8(strOne) < uiBytes;
    if (bBad)
        Append_Character(0xFFFD, strText);
    else
        strText += strOne;
    return bBad ? 1 : uiBytes;
}

size_t PlainFile::Find_Line(size_t uiText) const
{
    const auto pfBefore = [](size_t uiPlace, const PlainLine &stLine) { return uiPlace < stLine.uiText; };
    const auto itNext = std::upper_bound(m_astLines.begin(), m_astLines.end(), uiText, pfBefore);
    return static_cast<size_t>(itNext - m_astLines.begin()) - 1;
}

std::string_view PlainFile::Get_Line(size_t uiLine) const
{
    const size_t uiFirst = m_astLines[uiLine].uiText;
    const size_t uiEnd =
        uiLine + 1 < m_astLines.size() ? m_astLines[uiLine + 1].uiText - 1 : m_strText.size();
    return std::string_view(m_strText).substr(uiFirst, uiEnd - uiFirst);
}

PlainPlace PlainFile::Locate(size_t uiText) const
{
    const size_t uiLine = Find_Line(uiText);
    const size_t uiWanted = std::min(uiText, m_astLines[uiLine].uiText + Get_Line(uiLine).size());
    const auto pfBefore = [](size_t uiPlace, const PlainMark &stMark) { return uiPlace < stMark.uiText; };
    const PlainMark &stMark =
        *std::prev(std::upper_bound(m_astMarks.begin(), m_astMarks.end(), uiWanted, pfBefore));
    PlainPlace stPlace = {static_cast<uint32_t>(uiLine + 1), stMark.uiColumn, stMark.uiFile};
    std::string strRead;
    while (stMark.uiText + strRead.size() < uiWanted && stPlace.uiOffset < m_strBytes.size()) {
        bool bBad = false;
        stPlace.uiOffset += Step_Character(stPlace.uiOffset, strRead, bBad);
        ++stPlace.uiColumn;
    }
    return stPlace;
}

// A place inside a line end is the line's end.
size_t PlainFile::Find_Text(size_t uiOffset) const
{
    const auto pfBefore = [](size_t uiPlace, const PlainMark &stMark) { return uiPlace < stMark.uiFile; };
    const auto itNext = std::upper_bound(m_astMarks.begin(), m_astMarks.end(), uiOffset, pfBefore);
    if (itNext == m_astMarks.begin()) return 0;
    const PlainMark &stMark = *std::prev(itNext);
    const size_t uiLine = Find_Line(stMark.uiText);
    const size_t uiLineEnd = m_astLines[uiLine].uiText + Get_Line(uiLine).size();
    size_t uiAt = stMark.uiFile;
    std::string strRead;
    while (uiAt < uiOffset && stMark.uiText + strRead.size() < uiLineEnd) {
        bool bBad = false;
        uiAt += Step_Character(uiAt, strRead, bBad);
    }
    return std::min(stMark.uiText + strRead.size(), uiLineEnd);
}

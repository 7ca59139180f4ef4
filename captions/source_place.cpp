#include "source_place.h"

#include <algorithm>
#include <numeric>

namespace
{

bool Is_LineEndByte(char cByte)
{
    return cByte == '\n' || cByte == '\r';
}

// Walks over the file, line end by line end.
struct Walk {
    std::string_view strFile;
    size_t uiUnit; // bytes
    bool bBigEndian;
    size_t uiFile = 0;      // where it stands
    size_t uiPresented = 0; // and what that is in the presented text

    bool Is_At(size_t uiAt, char cChar) const
    {
        if (uiAt + uiUnit > strFile.size()) return false;
        if (uiUnit == 1) return strFile[uiAt] == cChar;
        return strFile[uiAt + (bBigEndian ? 1 : 0)] == cChar && strFile[uiAt + (bBigEndian ? 0 : 1)] == 0;
    }
    // LF, CR, CR LF or CR CR LF; 0 bytes for anything else.
    size_t Measure_LineEnd() const
    {
        if (Is_At(uiFile, '\n')) return uiUnit;
        if (!Is_At(uiFile, '\r')) return 0;
        for (size_t uiReturns = 1; uiReturns <= 2; ++uiReturns)
            if (Is_At(uiFile + uiReturns * uiUnit, '\n'))
                return (uiReturns + 1) * uiUnit;
            else if (!Is_At(uiFile + uiReturns * uiUnit, '\r'))
                break;
        return uiUnit;
    }
    // One line end, or the text before the next one.
    void Step(size_t uiTarget)
    {
        const size_t uiLineEnd = Measure_LineEnd();
        uiFile += uiLineEnd > 0 ? uiLineEnd : uiUnit;
        uiPresented += uiLineEnd > 0 ? 2 * uiUnit : uiUnit;
        if (uiPresented >= uiTarget || uiFile >= strFile.size()) return;
        const std::string_view strText = strFile.substr(uiFile, uiTarget - uiPresented);
        auto uiRun = static_cast<size_t>(std::find_if(strText.begin(), strText.end(), Is_LineEndByte) -
                                         strText.begin());
        uiRun -= uiRun % uiUnit;
        uiFile += uiRun;
        uiPresented += uiRun;
    }
};

// Then nothing stands elsewhere in the presented text.
bool Has_OnlyCrLf(std::string_view strFile)
{
    while (!strFile.empty()) {
        const size_t uiReturn = strFile.find('\r');
        const size_t uiFeed = strFile.find('\n');
        if (uiReturn == std::string_view::npos) return uiFeed == std::string_view::npos;
        if (uiFeed != uiReturn + 1) return false;
        strFile.remove_prefix(uiFeed + 1);
    }
    return true;
}

} // namespace

void Place_InFile(std::vector<CaptionRecord> &astRecords, std::string_view strFile)
{
    if (Has_OnlyCrLf(strFile)) return;
    std::vector<uint32_t> auiOrder(astRecords.size());
    std::iota(auiOrder.begin(), auiOrder.end(), 0U);
    const auto pfBefore = [&](uint32_t uiA, uint32_t uiB) {
        return astRecords[uiA].uiSource < astRecords[uiB].uiSource;
    };
    if (!std::is_sorted(auiOrder.begin(), auiOrder.end(), pfBefore))
        std::sort(auiOrder.begin(), auiOrder.end(), pfBefore);
    const bool bBigEndian = strFile.starts_with("\xFE\xFF");
    Walk stWalk{strFile, bBigEndian || strFile.starts_with("\xFF\xFE") ? size_t{2} : size_t{1}, bBigEndian};
    for (const uint32_t uiRecord : auiOrder) {
        uint32_t &uiSource = astRecords[uiRecord].uiSource;
        while (stWalk.uiPresented < uiSource && stWalk.uiFile < strFile.size()) stWalk.Step(uiSource);
        uiSource = static_cast<uint32_t>(stWalk.uiFile);
    }
}

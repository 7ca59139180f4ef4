// Text on its way into files of other encodings, by iconv.
#ifndef ZYRSUB_TEXT_ENCODE_H
#define ZYRSUB_TEXT_ENCODE_H

#include <iconv.h>
#include <string>
#include <string_view>

// One direction of conversion. A code page's name decides; nothing of the locale does.
class Converter
{
public:
    Converter(const std::string &strTo, const std::string &strFrom);
    ~Converter();
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    bool IsKnown() const { return m_hIconv != reinterpret_cast<iconv_t>(-1); }

    // strReplacement stands for each run of uiStep bytes that cannot be converted.
    std::string Convert(std::string_view strText, size_t uiStep, std::string_view strReplacement) const;

private:
    iconv_t m_hIconv;
};

#endif

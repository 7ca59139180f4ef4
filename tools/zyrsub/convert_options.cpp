// The options of zyrsub convert.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>

#include "command_line.h"
#include "convert_write.h"
#include "time_text.h"

static constexpr const char *CONVERT_FOOTER = R"(Examples:
  zyrsub convert movie.smi -o movie.srt                      one file for each language
  zyrsub convert movie.smi --class KRCC -o movie.srt         one language
  zyrsub convert movie.ko.srt movie.en.srt -o movie.smi      two languages in one file
  zyrsub convert movie.srt --shift -1.5s --scale 25/23.976 -o fixed.srt
  zyrsub convert movie.srt --to vtt -o -                     to standard output
  zyrsub convert --to srt subtitles/ -o converted/           every file of a tree

An existing file is replaced only with --force. What does not come along is counted and told on standard error;
where that is text, the exit code is 3, and --strict writes nothing.)";

static bool Read_Shift(const std::string &strText, int64_t &llShift)
{
    const bool bSign = !strText.empty() && (strText[0] == '-' || strText[0] == '+');
    const std::optional<uint32_t> uiMs = Parse_Time(bSign ? strText.substr(1) : strText);
    if (!uiMs) return false;
    llShift = bSign && strText[0] == '-' ? -int64_t{*uiMs} : int64_t{*uiMs};
    return true;
}

static bool Read_Time(const std::string &strText, uint32_t &uiMs)
{
    const std::optional<uint32_t> uiRead = Parse_Time(strText);
    uiMs = uiRead.value_or(0);
    return uiRead.has_value();
}

static double Read_Number(std::string_view strText)
{
    double dNumber = 0;
    const auto [pcEnd, eError] = std::from_chars(strText.data(), strText.data() + strText.size(), dNumber);
    return eError == std::errc() && pcEnd == strText.data() + strText.size() ? dNumber : 0;
}

// One number, or the ratio of two; far from 1 is a slip.
static bool Read_Scale(const std::string &strText, double &dScale)
{
    const size_t uiSlash = strText.find('/');
    const double dAbove = Read_Number(std::string_view(strText).substr(0, uiSlash));
    const double dBelow =
        uiSlash == std::string::npos ? 1 : Read_Number(std::string_view(strText).substr(uiSlash + 1));
    dScale = dBelow > 0 ? dAbove / dBelow : 0;
    return dScale >= 0.01 && dScale <= 100;
}

static void Choose_Format(ConvertOptions &stConvert)
{
    const size_t uiDot = stConvert.strFile.rfind('.');
    const std::string strEnding = uiDot == std::string::npos ? "" : stConvert.strFile.substr(uiDot);
    stConvert.pstFormat = Find_OutputFormat(stConvert.strTo.empty() ? strEnding : stConvert.strTo);
    if (stConvert.pstFormat != nullptr) return;
    std::string strNames;
    for (const OutputFormat &stFormat : List_OutputFormats()) strNames += std::string(" ") + stFormat.pszName;
    throw CLI::ValidationError("--to", "which format? --to is one of:" + strNames);
}

static bool Is_NameByte(char cByte)
{
    return cByte > ' ' && cByte < 0x7F && std::string_view("<>&=\"'").find(cByte) == std::string_view::npos;
}

template <typename Value>
static void Add_Checked(CLI::App *pstApp, const char *pszName, const char *pszHelp, const char *pszType,
                        Value &stValue, bool (*pfRead)(const std::string &, Value &))
{
    pstApp
        ->add_option_function<std::string>(
            pszName,
            [pszName, &stValue, pfRead](const std::string &strText) {
                if (!pfRead(strText, stValue))
                    throw CLI::ValidationError(pszName, "'" + strText + "' is not understood");
            },
            pszHelp)
        ->type_name(pszType);
}

void Add_ConvertOptions(CLI::App *pstApp, ConvertOptions &stConvert)
{
    pstApp->add_option("-o", stConvert.strFile, "file to write; - is standard output")
        ->required()
        ->type_name("OUT");
    pstApp->add_option("--to", stConvert.strTo, "srt, vtt, smi, ssa, json or txt [OUT's ending]")
        ->type_name("FORMAT");
    pstApp->add_option("--class-name", stConvert.astrClassNames, "name of a SAMI class; repeat for more")
        ->allow_extra_args(false)
        ->check([](const std::string &strName) {
            const bool bGood = !strName.empty() && strName.size() <= 12 &&
                               std::all_of(strName.begin(), strName.end(), Is_NameByte);
            return bGood ? "" : "a class name has 1 to 12 characters of ASCII, without blanks and <>&=\"'";
        })
        ->type_name("NAME");
    Add_Checked(pstApp, "--shift", "add this much to every time; -T takes it away", "T", stConvert.llShift,
                Read_Shift);
    Add_Checked(pstApp, "--scale", "multiply every time, before the shift: 25/23.976, 1.001", "X",
                stConvert.dScale, Read_Scale);
    pstApp
        ->add_option_function<std::string>(
            "--encoding",
            [&stConvert](const std::string &strName) {
                stConvert.strEncoding = Choose_Encoding(strName);
                if (stConvert.strEncoding.empty())
                    throw CLI::ValidationError(
                        "--encoding", "'" + strName + "' is not UTF-8, UTF-16LE, UTF-16BE or a code page");
            },
            "of the file to write: UTF-8, UTF-16LE, UTF-16BE or a code page [UTF-8]")
        ->type_name("NAME");
    Add_Checked(pstApp, "--open-end", "how long a caption stays whose end nothing tells [5s]", "T",
                stConvert.uiOpenMs, Read_Time);
    pstApp->add_flag("--bom", stConvert.bMark, "begin UTF-8 with a byte order mark");
    pstApp->add_flag("--strict", stConvert.bStrict, "write nothing where text would be lost");
    pstApp->add_flag("--force", stConvert.bForce, "replace an existing file");
    pstApp->parse_complete_callback([&stConvert] { Choose_Format(stConvert); });
    pstApp->footer(CONVERT_FOOTER);
}

#include "convert_write.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "style_text.h"
#include "text_encode.h"
#include "text_tools.h"
#include "time_text.h"

using nlohmann::ordered_json;

static constexpr OutputFormat FORMATS[] = {
    {"srt", "SubRip", " .srt ", false, true, true, Write_SubRip},
    {"vtt", "WebVTT", " .vtt ", false, false, false, Write_WebVtt},
    {"smi", "SAMI", " .smi .sami ", true, true, true, Write_Sami},
    {"ssa", "SSA", " .ssa ", false, true, true, Write_Ssa},
    {"json", "JSON", " .json ", true, false, false, Write_Json},
    {"txt", "plain text", " .txt ", false, false, true, Write_Text},
};

std::span<const OutputFormat> List_OutputFormats()
{
    return FORMATS;
}

const OutputFormat *Find_OutputFormat(const std::string &strNameOrEnding)
{
    const std::string strLower = Lower_Case(strNameOrEnding);
    for (const OutputFormat &stFormat : FORMATS) {
        const std::string strEndings = stFormat.pszEndings;
        const size_t uiEnding = strEndings.find(strLower + ' ');
        const bool bEnding = strLower.starts_with('.') && uiEnding != std::string::npos;
        if (bEnding || strLower == stFormat.pszName) return &stFormat;
    }
    return nullptr;
}

static bool Is_Utf16(const std::string &strEncoding)
{
    return strEncoding == "UTF-16LE" || strEncoding == "UTF-16BE";
}

bool Is_Unicode(const std::string &strEncoding)
{
    return strEncoding == "UTF-8" || Is_Utf16(strEncoding);
}

// One character at a time, so that one without a place in the encoding costs no other.
static std::string Encode_Characters(std::string_view strUtf8, const Converter &stConverter)
{
    std::string strOut;
    while (!strUtf8.empty()) {
        const std::string strUtf8One = Take_Character(strUtf8);
        const std::string strOne = stConverter.Convert(strUtf8One, strUtf8One.size(), "");
        strOut += strOne.empty() ? "?" : strOne;
    }
    return strOut;
}

std::string Choose_Encoding(const std::string &strName)
{
    const std::string strLower = Lower_Case(strName);
    if (strLower == "utf-8" || strLower == "utf8") return "UTF-8";
    if (strLower == "utf-16be" || strLower == "utf16be") return "UTF-16BE";
    for (const char *pszSame : {"utf-16le", "utf16le", "utf-16", "utf16"})
        if (strLower == pszSame) return "UTF-16LE";
    for (const char *pszOther :
         {"utf", "ucs", "iso-2022", "iso2022", "hz"}) // of other sizes, or with a state
        if (strLower.starts_with(pszOther)) return "";
    const Converter stConverter(strName, "UTF-8");
    const bool bPlain = strName.find('/') == std::string::npos && stConverter.IsKnown() &&
                        stConverter.Convert("A1<", 1, "") == "A1<";
    return bPlain ? strName : "";
}

// What the encoding does not have, caption by caption.
static void Note_EncodingLosses(const Track &stTrack, const std::string &strEncoding, bool bForPlayers,
                                Losses &stLosses)
{
    const Converter stConverter(strEncoding, "UTF-8");
    const bool bUtf8 = strEncoding == "UTF-8";
    for (const Frame &stFrame : stTrack.astFrames) {
        const std::string strText = Join_Lines(stFrame.astrLines, "\n");
        const bool bBeyondBmp = std::any_of(strText.begin(), strText.end(), [](char cChar) {
            return static_cast<uint8_t>(cChar) >= 0xF0; // leads a character above U+FFFF
        });
        if (bUtf8 && bForPlayers && bBeyondBmp)
            stLosses.Add("the box reads no character beyond U+FFFF from UTF-8; --encoding UTF-16LE keeps it");
        if (!bUtf8 && stConverter.Convert(strText, 1, "\x01") != Encode_Characters(strText, stConverter))
            stLosses.Add_Text("characters that the encoding does not have are written as '?'");
    }
}

std::string Encode_Text(const std::string &strUtf8, const std::string &strEncoding,
                        const OutputFormat &stFormat, bool bMark, Losses &stLosses,
                        std::span<const Track> astTracks)
{
    static constexpr const char *MARK = "\xEF\xBB\xBF";
    const bool bUtf8 = strEncoding == "UTF-8";
    const bool bUtf16 = Is_Utf16(strEncoding);
    if (!bUtf16)
        for (const Track &stTrack : astTracks)
            Note_EncodingLosses(stTrack, strEncoding, stFormat.bForPlayers, stLosses);
    if (bUtf8) return bMark ? MARK + strUtf8 : strUtf8;
    const Converter stConverter(strEncoding, "UTF-8");
    return bUtf16 ? stConverter.Convert(MARK + strUtf8, 1, "") : Encode_Characters(strUtf8, stConverter);
}

static std::string Format_Clock(int64_t llMs, int iHourDigits, char cPoint)
{
    char szTime[40];
    std::snprintf(szTime, sizeof szTime, "%0*d:%02d:%02d%c%03d", iHourDigits,
                  static_cast<int>(llMs / 3600000), static_cast<int>(llMs / 60000 % 60),
                  static_cast<int>(llMs / 1000 % 60), cPoint, static_cast<int>(llMs % 1000));
    return szTime;
}

static bool Is_EntityStart(const std::string &strLine, size_t uiAmpersand)
{
    if (uiAmpersand + 1 >= strLine.size()) return false;
    const char cNext = strLine[uiAmpersand + 1];
    return cNext == '#' || (cNext >= '0' && cNext <= '9') || (cNext >= 'a' && cNext <= 'z') ||
           (cNext >= 'A' && cNext <= 'Z');
}

// Markup text: what would be read as a tag, an entity or a foldable blank is written as an entity. Plain "&"
// and ">" stay in SubRip, where most players know no entities.
static std::string Escape_Markup(const std::string &strLine, bool bAll)
{
    std::string strOut;
    for (size_t uiByte = 0; uiByte < strLine.size(); ++uiByte) {
        const char cChar = strLine[uiByte];
        const bool bEdge = uiByte == 0 || uiByte + 1 == strLine.size() || strLine[uiByte - 1] == ' ';
        if (cChar == '<')
            strOut += "&lt;";
        else if (cChar == '>' && bAll)
            strOut += "&gt;";
        else if (cChar == '&' && (bAll || Is_EntityStart(strLine, uiByte)))
            strOut += "&amp;";
        else if ((cChar == ' ' && bEdge) || cChar == '\t' || cChar == '\r')
            strOut += "&#" + std::to_string(static_cast<int>(cChar)) + ";";
        else
            strOut += cChar;
    }
    return strOut;
}

static std::string Join_Escaped(const Frame &stFrame, const char *pszBreak, bool bAll)
{
    std::string strOut;
    for (const std::string &strLine : stFrame.astrLines) {
        if (!strOut.empty() && !strLine.empty()) strOut += pszBreak;
        strOut += Escape_Markup(strLine, bAll);
    }
    return strOut;
}

// The bits that stand for a place on screen; the middle below is where captions stand anyway.
static constexpr uint32_t PLACES =
    ZYR_CAPTIONS_LEFT | ZYR_CAPTIONS_RIGHT | ZYR_CAPTIONS_TOP | ZYR_CAPTIONS_MIDDLE;
static constexpr uint32_t LETTERS = ZYR_CAPTIONS_BOLD | ZYR_CAPTIONS_ITALIC | ZYR_CAPTIONS_UNDERLINE;

void Note_MarkupLosses(const Track &stTrack, bool bColor, Losses &stLosses)
{
    for (const Frame &stFrame : stTrack.astFrames) {
        const ZyrCaptionStyle &stStyle = stFrame.stStyle;
        const bool bHeading = (stStyle.uiDisplayMode & ~(PLACES | LETTERS | ZYR_CAPTIONS_CENTER)) != 0;
        if (stFrame.astrLines.empty()) continue;
        if (stFrame.bPartStyled) stLosses.Add("the style of a part of it is not known, and is not written");
        if ((stStyle.uiDisplayMode & PLACES) != 0) stLosses.Add("its place on screen is not written");
        if (bHeading || (!bColor && stStyle.usColor != WHITE))
            stLosses.Add("its size or colour is not written");
        const auto pfEmpty = [](const std::string &strLine) {
            return strLine.find_first_not_of(" \t") == std::string::npos;
        };
        if (std::any_of(stFrame.astrLines.begin(), stFrame.astrLines.end(), pfEmpty))
            stLosses.Add("its empty lines are not read back");
    }
}

// A caption's text between the tags that its style has.
static std::string Add_Tags(const ZyrCaptionStyle &stStyle, bool bColor, const std::string &strText)
{
    static constexpr std::pair<uint32_t, const char *> TAGS[] = {
        {ZYR_CAPTIONS_BOLD, "b"}, {ZYR_CAPTIONS_ITALIC, "i"}, {ZYR_CAPTIONS_UNDERLINE, "u"}};
    if (strText.empty()) return strText;
    std::string strOut = strText;
    for (const auto &[uiBit, pszTag] : TAGS)
        if ((stStyle.uiDisplayMode & uiBit) != 0)
            strOut.insert(0, std::string("<") + pszTag + ">").append("</").append(pszTag).append(">");
    if (!bColor || stStyle.usColor == WHITE) return strOut;
    return strOut.insert(0, "<font color=\"" + Format_Color(stStyle.usColor) + "\">").append("</font>");
}

// In order of their starts, with an end for each.
static std::vector<Frame> Close_Ends(const Track &stTrack, int32_t iOpenMs, Losses &stLosses)
{
    std::vector<Frame> astFrames = stTrack.astFrames;
    std::stable_sort(astFrames.begin(), astFrames.end(),
                     [](const Frame &stA, const Frame &stB) { return stA.iStart < stB.iStart; });
    for (size_t uiFrame = 0; uiFrame < astFrames.size(); ++uiFrame) {
        Frame &stFrame = astFrames[uiFrame];
        if (stFrame.iEnd != OPEN_END) continue;
        const bool bLast = uiFrame + 1 == astFrames.size();
        const int64_t llEnd = bLast ? int64_t{stFrame.iStart} + iOpenMs : astFrames[uiFrame + 1].iStart;
        stFrame.iEnd = static_cast<int32_t>(std::min<int64_t>(llEnd, OPEN_END - 1));
        if (!stFrame.astrLines.empty() && bLast)
            stLosses.Add("it has no end, and stays for the time of --open-end");
    }
    return astFrames;
}

std::string Write_SubRip(std::span<const Track> astTracks, int32_t iOpenMs, Losses &stLosses)
{
    std::string strOut;
    size_t uiNumber = 0;
    Note_MarkupLosses(astTracks.front(), true, stLosses);
    for (const Frame &stFrame : Close_Ends(astTracks.front(), iOpenMs, stLosses)) {
        if (stFrame.astrLines.empty()) continue; // nothing is on screen without an entry
        strOut += std::to_string(++uiNumber) + "\r\n" + Format_Clock(stFrame.iStart, 2, ',') + " --> " +
                  Format_Clock(stFrame.iEnd, 2, ',') + "\r\n" +
                  Add_Tags(stFrame.stStyle, true, Join_Escaped(stFrame, "\r\n", false)) + "\r\n\r\n";
    }
    return strOut;
}

std::string Write_WebVtt(std::span<const Track> astTracks, int32_t iOpenMs, Losses &stLosses)
{
    std::string strOut = "WEBVTT\n";
    Note_MarkupLosses(astTracks.front(), false, stLosses);
    for (const Frame &stFrame : Close_Ends(astTracks.front(), iOpenMs, stLosses)) {
        if (stFrame.astrLines.empty()) continue; // nothing is on screen without a cue
        if (stFrame.iEnd <= stFrame.iStart) {
            stLosses.Add_LeftOut("it does not end after it begins");
            continue;
        }
        strOut.append("\n").append(Format_Clock(stFrame.iStart, 2, '.')).append(" --> ");
        strOut.append(Format_Clock(stFrame.iEnd, 2, '.')).append("\n");
        strOut.append(Add_Tags(stFrame.stStyle, false, Join_Escaped(stFrame, "\n", true))).append("\n");
    }
    return strOut;
}

std::string Write_Text(std::span<const Track> astTracks, int32_t /*iOpenMs*/, Losses & /*stLosses*/)
{
    std::string strOut;
    for (const Frame &stFrame : astTracks.front().astFrames)
        if (!stFrame.astrLines.empty())
            strOut.append(strOut.empty() ? "" : "\n")
                .append(Join_Lines(stFrame.astrLines, "\n"))
                .append("\n");
    return strOut;
}

// There is no way to write what would be read as an override or a line break, nor blanks that are folded.
static std::string Write_SsaLine(const std::string &strLine, Losses &stLosses)
{
    std::string strOut = strLine;
    bool bChanged = false;
    for (char &cChar : strOut) {
        const char cBefore = cChar;
        if (cChar == '{') cChar = '(';
        if (cChar == '}') cChar = ')';
        if (cChar == '\\') cChar = '/';
        if (cChar == '\r') cChar = ' ';
        bChanged = bChanged || cChar != cBefore;
    }
    const bool bFolded = strLine.find("  ") != std::string::npos || strLine.find('\t') != std::string::npos ||
                         strLine.starts_with(' ') || strLine.ends_with(' ');
    if (bFolded) stLosses.Add("SSA reads runs of blanks as one, and none at the edges of a line");
    if (bChanged)
        stLosses.Add_Text(
            "SSA has no { } backslash or line end inside a line; they become ( ) / and a blank");
    return strOut;
}

static std::string Format_SsaTime(int64_t llHundredths)
{
    std::string strTime = Format_Clock(llHundredths * 10, 1, '.');
    strTime.pop_back();
    return strTime;
}

// H:MM:SS.hh with one digit of hours.
static std::string Write_SsaTimes(const Frame &stFrame, Losses &stLosses)
{
    static constexpr int64_t LAST = 3599999; // 9:59:59.99
    const bool bRounded = stFrame.iStart % 10 != 0 || stFrame.iEnd % 10 != 0;
    if (bRounded) stLosses.Add("SSA counts in hundredths of a second; its times are rounded");
    const int64_t llStart = (int64_t{stFrame.iStart} + 5) / 10;
    const int64_t llEnd = (int64_t{stFrame.iEnd} + 5) / 10;
    if (stFrame.iEnd < stFrame.iStart)
        stLosses.Add_Text("it ends before it begins, and loses its text in SSA");
    if (llStart == 0) stLosses.Add("SSA captions that start at 0 are never shown; it starts at 10 ms");
    if (llStart > LAST) stLosses.Add("SSA ends at ten hours; it is written as 9:59:59.99");
    std::string strTimes = Format_SsaTime(std::clamp<int64_t>(llStart, 1, LAST));
    const int64_t llShown = stFrame.iEnd < stFrame.iStart ? llEnd : std::max<int64_t>(llEnd, 1);
    return strTimes.append(",").append(Format_SsaTime(std::min(llShown, LAST)));
}

// The overrides of SSA count colours as blue, green, red.
static std::string Write_SsaStyle(const ZyrCaptionStyle &stStyle)
{
    std::string strOut;
    if ((stStyle.uiDisplayMode & ZYR_CAPTIONS_BOLD) != 0) strOut += "\\b1";
    if ((stStyle.uiDisplayMode & ZYR_CAPTIONS_ITALIC) != 0) strOut += "\\i1";
    if (stStyle.usColor != WHITE) {
        const std::string strColor = Format_Color(stStyle.usColor);
        strOut += "\\c&H" + strColor.substr(5, 2) + strColor.substr(3, 2) + strColor.substr(1, 2) + "&";
    }
    return strOut.empty() ? "" : "{" + strOut + "}";
}

std::string Write_Ssa(std::span<const Track> astTracks, int32_t iOpenMs, Losses &stLosses)
{
    std::string strOut =
        "[Script Info]\r\nScriptType: v4.00\r\n\r\n[V4 Styles]\r\n"
        "Format: Name, Fontname, Fontsize, PrimaryColour, SecondaryColour, TertiaryColour, BackColour, Bold, "
        "Italic, BorderStyle, Outline, Shadow, Alignment, MarginL, MarginR, MarginV, AlphaLevel, Encoding\r\n"
        "Style: Default,Arial,20,16777215,16777215,16777215,0,0,0,1,2,0,2,20,20,20,0,0\r\n\r\n[Events]\r\n"
        "Format: Marked, Start, End, Style, Name, MarginL, MarginR, MarginV, Effect, Text\r\n";
    Note_MarkupLosses(astTracks.front(), true, stLosses);
    for (const Frame &stFrame : Close_Ends(astTracks.front(), iOpenMs, stLosses)) {
        if (stFrame.astrLines.empty()) continue;
        strOut.append("Dialogue: Marked=0,").append(Write_SsaTimes(stFrame, stLosses));
        strOut += ",Default,,0,0,0,," + Write_SsaStyle(stFrame.stStyle);
        if ((stFrame.stStyle.uiDisplayMode & ZYR_CAPTIONS_UNDERLINE) != 0)
            stLosses.Add("SSA has no underlines");
        for (size_t uiLine = 0; uiLine < stFrame.astrLines.size(); ++uiLine)
            strOut.append(uiLine > 0 ? "\\N" : "").append(Write_SsaLine(stFrame.astrLines[uiLine], stLosses));
        strOut += "\r\n";
    }
    return strOut;
}

std::string Write_Json(std::span<const Track> astTracks, int32_t /*iOpenMs*/, Losses &stLosses)
{
    ordered_json jsTracks = ordered_json::array();
    for (const Track &stTrack : astTracks) {
        ordered_json jsFrames = ordered_json::array();
        for (const Frame &stFrame : stTrack.astFrames) {
            if (stFrame.bPartStyled)
                stLosses.Add("the style of a part of it is not known, and is not written");
            jsFrames.push_back(
                {{"start", stFrame.iStart},
                 {"end", stFrame.iEnd == OPEN_END ? ordered_json() : ordered_json(stFrame.iEnd)},
                 {"lines", stFrame.astrLines},
                 {"display_mode", List_DisplayModes(stFrame.stStyle.uiDisplayMode)},
                 {"colour", Format_Color(stFrame.stStyle.usColor)}});
        }
        jsTracks.push_back(
            {{"movie", stTrack.strMovie}, {"class", stTrack.strClass}, {"frames", std::move(jsFrames)}});
    }
    const ordered_json jsDocument = {{"schema", 1}, {"tracks", std::move(jsTracks)}};
    return jsDocument.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

std::string Escape_SamiText(const Frame &stFrame)
{
    return stFrame.astrLines.empty() ? "&nbsp;"
                                     : Add_Tags(stFrame.stStyle, true, Join_Escaped(stFrame, "<br>", true));
}

// What the page's worker calls. Files lie in the module's own memory: the worker puts them below /in and takes what is
// made from below /out. Answers are JSON.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <emscripten/emscripten.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "commands.h"
#include "convert_write.h"
#include "fix_file.h"
#include "page_data.h"
#include "page_text.h"
#include "read_bytes.h"
#include "report_json.h"
#include "safe_file.h"
#include "zyr/zyr_captions.h"
#include "zyr/zyr_host.h"

using nlohmann::ordered_json;

static CaptionFile s_stShown;             // the file that was described last
static std::string s_strAnswer;           // until the next call
static std::vector<uint8_t> s_aucPicture; // of the display, all bytes 0 beside the last caption
static ZyrCaptionScreen *s_pstScreen;
static std::string s_strOutput; // that the screen is open for
static ZyrCaptionBox s_stBox;

static const char *Answer(const ordered_json &jsAnswer)
{
    s_strAnswer = jsAnswer.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
    return s_strAnswer.c_str();
}

// There is nobody else, and nothing to lose: the file is written in place.
Outcome Write_Safely(const std::string &strFile, const std::string &strBytes, bool /*bForce*/)
{
    std::FILE *const pstFile = std::fopen(strFile.c_str(), "wb");
    const bool bOpen = pstFile != nullptr;
    const bool bWritten =
        bOpen && std::fwrite(strBytes.data(), 1, strBytes.size(), pstFile) == strBytes.size();
    const bool bGood = bOpen && std::fclose(pstFile) == 0 && bWritten;
    return bGood ? Outcome{} : Outcome{E_EXIT_SOME_FAILED, "it cannot be written"};
}

static Options Make_Options(const char *pszPath, const char *pszCodePage)
{
    Options stOptions;
    stOptions.astrMovies = {pszPath};
    stOptions.stSource.strCodePage = pszCodePage;
    stOptions.stPage.auiOutputs.clear();
    return stOptions;
}

static ordered_json List_CodePages(const ZyrCaptions *pstList)
{
    ordered_json jsPages = ordered_json::array();
    ZyrCaptionCodePage stPage;
    for (uint32_t ui = 0; zyrCaptions_getCodePage(pstList, ui, &stPage) == ZYR_CAPTIONS_OK; ++ui)
        jsPages.push_back(
            {{"name", stPage.pszName}, {"preview", stPage.pszPreview}, {"inUse", stPage.bInUse != 0}});
    return jsPages;
}

extern "C" {

// The font, once the worker has put it there.
EMSCRIPTEN_KEEPALIVE void page_setFont(const char *pszPath)
{
    zyr_host_setFontFile(pszPath);
}

EMSCRIPTEN_KEEPALIVE const char *page_listOutputs()
{
    ordered_json jsOutputs = ordered_json::array();
    ZyrCaptionOutput stOutput;
    for (uint32_t ui = 0; zyrCaptions_getOutput(ui, &stOutput) == ZYR_CAPTIONS_OK; ++ui)
        jsOutputs.push_back(
            {{"name", stOutput.pszName}, {"width", stOutput.uiWidth}, {"height", stOutput.uiHeight}});
    return Answer(jsOutputs);
}

// The format that the text itself tells: "SAMI" ..., or "none".
EMSCRIPTEN_KEEPALIVE const char *page_tellFormat(const char *pszPath)
{
    const std::string strBytes = Read_FileBytes(pszPath);
    ZyrCaptions *const pstList = zyrCaptions_loadMemory(strBytes.data(), strBytes.size(), nullptr, nullptr);
    ZyrCaptionsFile stFile;
    zyrCaptions_getFile(pstList, &stFile);
    const ordered_json jsFormat = stFile.pszFormat;
    zyrCaptions_free(pstList);
    return Answer(jsFormat);
}

// What zyrsub report writes of the file, without pictures. iOutput, an index or -1: findings also try how captions fit there.
EMSCRIPTEN_KEEPALIVE const char *page_describe(const char *pszPath, const char *pszCodePage, int iOutput)
{
    Options stOptions = Make_Options(pszPath, pszCodePage);
    if (iOutput >= 0) stOptions.stPage.auiOutputs = {static_cast<uint32_t>(iOutput)};
    s_stShown = CaptionFile();
    CaptionFile &stFile = s_stShown;
    const Outcome stOpened = stFile.Open(pszPath, stOptions.stSource);
    if (!stOpened.IsGood() && stOpened.eCode != E_EXIT_NOT_SUBTITLE)
        return Answer({{"error", stOpened.strText}});
    std::vector<std::string> astrTexts;
    ordered_json jsPage = Describe_File(stOptions, stFile, astrTexts);
    const ZyrCaptionsFile stInfo = stFile.Get_File();
    const char *const pszEncoding = stInfo.pszCodePage == nullptr ? stInfo.pszEncoding : stInfo.pszCodePage;
    return Answer({{"page", std::move(jsPage)},
                   {"problem", stOpened.strText},
                   {"encoding", pszEncoding},
                   {"codePages", List_CodePages(stFile.Get_List())}});
}

// What is on screen then of the file that was described last.
EMSCRIPTEN_KEEPALIVE const char *page_textAt(int iMs)
{
    return Answer(Get_TextAt(s_stShown.Get_List(), iMs));
}

// Draws a text: 0, or the library's code. The pixels stay until the next drawing.
EMSCRIPTEN_KEEPALIVE int page_draw(const char *pszOutput, const char *pszText)
{
    if (s_strOutput != pszOutput) {
        zyrCaptions_closeScreen(s_pstScreen);
        s_pstScreen = nullptr;
        s_strOutput.clear();
        const int iError = zyrCaptions_openScreen(pszOutput, 0, -1, &s_pstScreen);
        if (iError != ZYR_CAPTIONS_OK) return iError;
        s_strOutput = pszOutput;
        ZyrCaptionOutput stOutput;
        for (uint32_t ui = 0; zyrCaptions_getOutput(ui, &stOutput) == ZYR_CAPTIONS_OK; ++ui)
            if (s_strOutput == stOutput.pszName) break;
        s_aucPicture.assign(size_t{stOutput.uiWidth} * stOutput.uiHeight * 4, 0);
    }
    std::fill(s_aucPicture.begin(), s_aucPicture.end(), uint8_t{0});
    return zyrCaptions_draw(s_pstScreen, pszText, s_aucPicture.data(), &s_stBox);
}

EMSCRIPTEN_KEEPALIVE const uint8_t *page_getPixels()
{
    return s_aucPicture.data();
}

// x, y, width, height: four numbers of 32 bits.
EMSCRIPTEN_KEEPALIVE const ZyrCaptionBox *page_getBox()
{
    return &s_stBox;
}

// The screen and the findings draw on the same display.
EMSCRIPTEN_KEEPALIVE void page_closeScreen()
{
    zyrCaptions_closeScreen(s_pstScreen);
    s_pstScreen = nullptr;
    s_strOutput.clear();
}

// A part of the file as text.
EMSCRIPTEN_KEEPALIVE const char *page_readPart(const char *pszPath, const char *pszEncoding, uint32_t uiFrom,
                                               uint32_t uiTo)
{
    const std::string strBytes = Read_FileBytes(pszPath);
    const size_t uiFirst = std::min<size_t>(uiFrom, strBytes.size());
    return Answer(Decode_Text(strBytes.substr(uiFirst, std::max(uiTo, uiFrom) - uiFrom), pszEncoding));
}

// Another text in place of that part; an answer that is not empty tells why not.
EMSCRIPTEN_KEEPALIVE const char *page_writePart(const char *pszPath, const char *pszEncoding, uint32_t uiFrom,
                                                uint32_t uiTo, const char *pszText)
{
    const std::optional<std::string> strPart = Encode_Exactly(pszText, pszEncoding);
    if (!strPart)
        return Answer(std::string("The file's encoding, ") + pszEncoding +
                      ", does not have all of these characters.");
    std::string strBytes = Read_FileBytes(pszPath);
    const size_t uiFirst = std::min<size_t>(uiFrom, strBytes.size());
    strBytes.replace(uiFirst, std::max(uiTo, uiFrom) - uiFrom, *strPart);
    return Answer(Write_Safely(pszPath, strBytes, true).strText);
}

// As zyrsub fix: the new file goes to /out/fixed.
EMSCRIPTEN_KEEPALIVE const char *page_fix(const char *pszPath, const char *pszCodePage)
{
    FixResult stResult;
    const Outcome stOutcome = Fix_File(pszPath, Make_Options(pszPath, pszCodePage), stResult);
    if (!stOutcome.IsGood()) return Answer({{"error", stOutcome.strText}});
    ordered_json jsChanges = ordered_json::array();
    for (const FixChange &stChange : stResult.astChanges)
        jsChanges.push_back(
            {{"line", stChange.uiLine}, {"code", stChange.strCode}, {"what", stChange.strWhat}});
    Write_Safely("/out/fixed", stResult.strBytes, true);
    return Answer({{"changes", std::move(jsChanges)}, {"left", zyrFindings_count(stResult.pstLeft.get())}});
}

// As zyrsub convert: one file below /out, or one for each language. What is lost goes to standard error.
EMSCRIPTEN_KEEPALIVE int page_save(const char *pszPath, const char *pszCodePage, const char *pszFormat,
                                   const char *pszEncoding, const char *pszOut)
{
    Options stOptions = Make_Options(pszPath, pszCodePage);
    stOptions.stConvert.strFile = std::string("/out/") + pszOut;
    stOptions.stConvert.pstFormat = Find_OutputFormat(pszFormat);
    stOptions.stConvert.strEncoding = Choose_Encoding(pszEncoding);
    stOptions.stConvert.bForce = true;
    if (stOptions.stConvert.pstFormat == nullptr || stOptions.stConvert.strEncoding.empty())
        return E_EXIT_USAGE;
    JsonReport stJson;
    return Convert_Inputs(stOptions, stJson);
}

} // extern "C"

int main()
{
    return 0;
}

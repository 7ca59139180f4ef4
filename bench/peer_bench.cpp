/* peer_bench OPERATION FILE [ROUNDS [CHARSET]]: the same things done by general software, to be set beside engine_bench.
 *
 *   read    libavformat and libavcodec: open, every packet decoded to text, close (CHARSET: recoded by iconv)
 *   index   libavformat: open, which reads and sorts the whole file, and close
 *   seek    libavformat: seeks to any time with the packet behind them
 *   glyphs  FreeType: 40 Korean glyphs of 32 pixels loaded and rendered to bits; FILE is the font
 *   newglyphs  the same, each next 40 glyphs others than before
 *   line    libass: a line of 40 Korean characters unlike the line before it, all its glyphs seen before; FILE is the font
 */
#include <cstdarg>
#include <cstring>
#include <string>

extern "C" {
#include <ass/ass.h>
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <ft2build.h>
#include FT_FREETYPE_H

#include "bench_clock.h"

namespace
{

constexpr uint32_t SEEKS = 200;
constexpr uint32_t GLYPH_NUMS = 40;
constexpr uint32_t LINES = 20; // rendered in a round
constexpr uint32_t ALL_LINES = 2000;

std::string s_strFile;
std::string s_strCharset;
uint32_t s_uiFrames = 0;
int64_t s_llFirstTime = 0; // no packet stands before it
int64_t s_llLastTime = 0;
AVFormatContext *s_pstFormat = nullptr;
AVPacket *s_pstPacket = nullptr;

/* By the name's ending, so that guessing costs nothing. */
const AVInputFormat *Find_Format()
{
    constexpr const char *NAMES[][2] = {
        {".srt", "srt"}, {".smi", "sami"}, {".ssa", "ass"}, {".sub", "subviewer"}};
    for (const auto &apszName : NAMES)
        if (s_strFile.ends_with(apszName[0])) return av_find_input_format(apszName[1]);
    return nullptr;
}

void Open_File()
{
    Check(avformat_open_input(&s_pstFormat, s_strFile.c_str(), Find_Format(), nullptr) >= 0,
          "libavformat's open");
    s_pstPacket = av_packet_alloc();
}

void Close_File()
{
    av_packet_free(&s_pstPacket);
    avformat_close_input(&s_pstFormat);
}

AVCodecContext *Open_Decoder()
{
    const AVStream *const pstStream = s_pstFormat->streams[0];
    const AVCodec *const pstCodec = avcodec_find_decoder(pstStream->codecpar->codec_id);
    AVCodecContext *const pstDecoder = avcodec_alloc_context3(pstCodec);
    avcodec_parameters_to_context(pstDecoder, pstStream->codecpar);
    pstDecoder->pkt_timebase = pstStream->time_base;
    if (!s_strCharset.empty()) pstDecoder->sub_charenc = av_strdup(s_strCharset.c_str());
    Check(avcodec_open2(pstDecoder, pstCodec, nullptr) >= 0, "libavcodec's open");
    return pstDecoder;
}

uint32_t Read_File()
{
    Open_File();
    AVCodecContext *pstDecoder = Open_Decoder();
    s_uiFrames = 0;
    while (av_read_frame(s_pstFormat, s_pstPacket) >= 0) {
        AVSubtitle stSubtitle;
        int iGot = 0;
        if (avcodec_decode_subtitle2(pstDecoder, &stSubtitle, &iGot, s_pstPacket) >= 0 && iGot != 0) {
            ++s_uiFrames;
            avsubtitle_free(&stSubtitle);
        }
        if (s_uiFrames == 1) s_llFirstTime = s_pstPacket->pts;
        s_llLastTime = s_pstPacket->pts;
        av_packet_unref(s_pstPacket);
    }
    avcodec_free_context(&pstDecoder);
    Close_File();
    return 1;
}

uint32_t Index_File()
{
    Open_File();
    Close_File();
    return 1;
}

void Open_ToSeek()
{
    if (s_llLastTime == 0) Read_File();
    Open_File();
}

uint32_t Seek_Anywhere()
{
    uint64_t ullState = 88172645463325252u;
    for (uint32_t uiSeek = 0; uiSeek < SEEKS; ++uiSeek) {
        ullState ^= ullState << 13;
        ullState ^= ullState >> 7;
        ullState ^= ullState << 17;
        const int64_t llTime =
            s_llFirstTime +
            static_cast<int64_t>(ullState % static_cast<uint64_t>(s_llLastTime - s_llFirstTime));
        Check(av_seek_frame(s_pstFormat, 0, llTime, AVSEEK_FLAG_BACKWARD) >= 0 &&
                  av_read_frame(s_pstFormat, s_pstPacket) >= 0,
              "libavformat's seek");
        av_packet_unref(s_pstPacket);
    }
    return SEEKS;
}

FT_Face s_ftFace = nullptr;

void Open_Face()
{
    static FT_Library s_ftLibrary = nullptr;
    if (s_ftFace != nullptr) return;
    Check(FT_Init_FreeType(&s_ftLibrary) == 0 &&
              FT_New_Face(s_ftLibrary, s_strFile.c_str(), 0, &s_ftFace) == 0 &&
              FT_Set_Pixel_Sizes(s_ftFace, 32, 32) == 0,
          "FreeType");
}

void Render_Glyphs(uint32_t uiFirst)
{
    for (uint32_t uiChar = 0; uiChar < GLYPH_NUMS; ++uiChar) {
        const uint32_t uiCode = 0xAC00 + (uiFirst + uiChar * 37) % 11172;
        FT_Load_Glyph(s_ftFace, FT_Get_Char_Index(s_ftFace, uiCode), FT_LOAD_NO_BITMAP);
        FT_Render_Glyph(s_ftFace->glyph, FT_RENDER_MODE_MONO);
    }
}

uint32_t Render_SameGlyphs()
{
    for (uint32_t uiLine = 0; uiLine < LINES; ++uiLine) Render_Glyphs(0);
    return LINES;
}

uint32_t Render_NewGlyphs()
{
    static uint32_t s_uiNext = 0;
    for (uint32_t uiLine = 0; uiLine < LINES; ++uiLine) Render_Glyphs(s_uiNext += GLYPH_NUMS * 37);
    return LINES;
}

ASS_Renderer *s_pstRenderer = nullptr;
ASS_Track *s_pstTrack = nullptr;

std::string Make_Script()
{
    std::string strScript = "[Script Info]\nScriptType: v4.00+\nPlayResX: 1920\nPlayResY: 1080\nWrapStyle: "
                            "2\n\n[V4+ Styles]\nFormat: Name, "
                            "Fontname, Fontsize, PrimaryColour, SecondaryColour, OutlineColour, BackColour, "
                            "Bold, Italic, BorderStyle, "
                            "Outline, Shadow, Alignment, MarginL, MarginR, MarginV, Encoding\nStyle: "
                            "D,Any,32,&HFFFFFF,&HFFFFFF,&H0,&H0,"
                            "0,0,1,0,0,2,0,0,16,1\n\n[Events]\nFormat: Layer, Start, End, Style, Name, "
                            "MarginL, MarginR, MarginV, Effect, "
                            "Text\n";
    uint32_t uiState = 1;
    for (uint32_t uiLine = 0; uiLine < ALL_LINES; ++uiLine) {
        char szStart[64];
        snprintf(szStart, sizeof(szStart), "Dialogue: 0,0:%02u:%02u.00,0:%02u:%02u.90,D,,0,0,0,,",
                 uiLine / 60, uiLine % 60, uiLine / 60, uiLine % 60);
        strScript += szStart;
        for (uint32_t uiChar = 0; uiChar < GLYPH_NUMS; ++uiChar) {
            uiState = uiState * 1664525 + 1013904223;
            const uint32_t uiCode = 0xAC00 + (uiState >> 16) % GLYPH_NUMS * 37;
            strScript +=
                {static_cast<char>(0xE0 | uiCode >> 12), static_cast<char>(0x80 | (uiCode >> 6 & 63)),
                 static_cast<char>(0x80 | (uiCode & 63))};
        }
        strScript += "\n";
    }
    return strScript;
}

void Open_Renderer()
{
    if (s_pstRenderer != nullptr) return;
    ASS_Library *const pstLibrary = ass_library_init();
    ass_set_message_cb(
        pstLibrary, [](int, const char *, va_list, void *) {}, nullptr);
    s_pstRenderer = ass_renderer_init(pstLibrary);
    ass_set_frame_size(s_pstRenderer, 1920, 1080);
    ass_set_storage_size(s_pstRenderer, 1920, 1080);
    ass_set_fonts(s_pstRenderer, s_strFile.c_str(), "Any", ASS_FONTPROVIDER_NONE, nullptr, 1);
    std::string strScript = Make_Script();
    s_pstTrack = ass_read_memory(pstLibrary, strScript.data(), strScript.size(), nullptr);
    Check(s_pstTrack != nullptr && s_pstTrack->n_events == static_cast<int>(ALL_LINES), "libass");
}

uint32_t Render_Lines()
{
    static uint32_t s_uiNext = 0;
    for (uint32_t uiLine = 0; uiLine < LINES; ++uiLine)
        Check(ass_render_frame(s_pstRenderer, s_pstTrack, s_uiNext++ % ALL_LINES * 1000 + 100, nullptr) !=
                  nullptr,
              "libass");
    return LINES;
}

constexpr Operation OPERATIONS[] = {
    {"read", nullptr, Read_File, nullptr},
    {"index", nullptr, Index_File, nullptr},
    {"seek", Open_ToSeek, Seek_Anywhere, Close_File},
    {"glyphs", Open_Face, Render_SameGlyphs, nullptr},
    {"newglyphs", Open_Face, Render_NewGlyphs, nullptr},
    {"line", Open_Renderer, Render_Lines, nullptr},
};

} // namespace

int main(int iArguments, char **ppszArguments)
{
    const Operation *const pstOperation =
        iArguments < 3 ? nullptr : Find_Operation(OPERATIONS, std::size(OPERATIONS), ppszArguments[1]);
    if (pstOperation == nullptr) {
        fprintf(stderr, "usage: peer_bench OPERATION FILE [ROUNDS [CHARSET]]\n");
        return 2;
    }
    s_strFile = ppszArguments[2];
    s_strCharset = iArguments > 4 ? ppszArguments[4] : "";
    av_log_set_level(AV_LOG_QUIET);
    Measure_Operation(*pstOperation,
                      static_cast<uint32_t>(std::max(1, iArguments > 3 ? atoi(ppszArguments[3]) : 5)));
    printf("frames %u\n", s_uiFrames);
    return 0;
}

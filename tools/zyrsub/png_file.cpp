// Pictures as PNG files, by libpng.
#include "picture.h"

#include <cerrno>
#include <csetjmp>
#include <cstring>
#include <memory>
#include <png.h>
#include <unordered_map>

// Larger pictures than any display's are refused before memory is asked for them.
static constexpr uint32_t MAX_SIDE = 16384;

Outcome Read_Png(const std::string &strPath, Picture &stPicture)
{
    png_image stImage = {};
    stImage.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&stImage, strPath.c_str()) == 0)
        return {E_EXIT_NOT_FOUND, strPath + ": " + stImage.message};
    if (stImage.width > MAX_SIDE || stImage.height > MAX_SIDE) {
        png_image_free(&stImage);
        return {E_EXIT_NOT_FOUND, strPath + ": the picture is too large"};
    }
    stImage.format = PNG_FORMAT_RGBA;
    stPicture = Make_Picture(stImage.width, stImage.height);
    if (png_image_finish_read(&stImage, nullptr, stPicture.aucRgba.data(), 0, nullptr) == 0)
        return {E_EXIT_NOT_FOUND, strPath + ": " + stImage.message};
    return {};
}

Outcome Write_Png(const std::string &strPath, const Picture &stPicture)
{
    PngWriter stWriter(strPath, stPicture.uiWidth, stPicture.uiHeight);
    stWriter.Write_Band(stPicture);
    return stWriter.Finish();
}

// The number of each pixel's colour, and the colours; none when they are more than a palette holds.
struct Palette {
    std::vector<uint8_t> aucPixels;
    std::vector<uint32_t> auiColors; // the four bytes of a pixel, as they stand in memory
};

static constexpr size_t MOST_COLORS = 256;

static Palette Make_Palette(const Picture &stPicture)
{
    Palette stPalette;
    std::unordered_map<uint32_t, uint8_t> astNumbers;
    stPalette.aucPixels.reserve(stPicture.aucRgba.size() / 4);
    for (size_t uiByte = 0; uiByte < stPicture.aucRgba.size(); uiByte += 4) {
        uint32_t uiColor = 0;
        std::memcpy(&uiColor, &stPicture.aucRgba[uiByte], sizeof uiColor);
        const auto [stPlace, bNew] =
            astNumbers.try_emplace(uiColor, static_cast<uint8_t>(stPalette.auiColors.size()));
        if (bNew && stPalette.auiColors.size() == MOST_COLORS) return {};
        if (bNew) stPalette.auiColors.push_back(uiColor);
        stPalette.aucPixels.push_back(stPlace->second);
    }
    return stPalette;
}

static std::string Write_Memory(png_image &stImage, const void *pvPixels, const void *pvColors)
{
    png_alloc_size_t uiBytes = PNG_IMAGE_PNG_SIZE_MAX(stImage);
    std::string strBytes(uiBytes, '\0');
    if (png_image_write_to_memory(&stImage, strBytes.data(), &uiBytes, 0, pvPixels, 0, pvColors) == 0)
        return "";
    strBytes.resize(uiBytes);
    return strBytes;
}

std::string Encode_Png(const Picture &stPicture)
{
    png_image stImage = {};
    stImage.version = PNG_IMAGE_VERSION;
    stImage.width = stPicture.uiWidth;
    stImage.height = stPicture.uiHeight;
    stImage.format = PNG_FORMAT_RGBA;
    const Palette stPalette = Make_Palette(stPicture);
    if (stPalette.auiColors.empty()) return Write_Memory(stImage, stPicture.aucRgba.data(), nullptr);
    stImage.format = PNG_FORMAT_RGBA_COLORMAP;
    stImage.colormap_entries = static_cast<png_uint_32>(stPalette.auiColors.size());
    return Write_Memory(stImage, stPalette.aucPixels.data(), stPalette.auiColors.data());
}

struct PngWriter::State {
    std::string strPath;
    std::FILE *pstFile = nullptr;
    png_structp pstPng = nullptr;
    png_infop pstInfo = nullptr;
    char szError[128] = {};
};

// libpng leaves a failed call by longjmp(); no function between its call and the jump owns anything.
static void Keep_Error(png_structp pstPng, png_const_charp pszText)
{
    auto *pszError = static_cast<char *>(png_get_error_ptr(pstPng));
    std::snprintf(pszError, 128, "%s", pszText);
    png_longjmp(pstPng, 1);
}

static void Ignore_Warning(png_structp /*pstPng*/, png_const_charp /*pszText*/) {}

static void Write_Head(png_structp pstPng, png_infop pstInfo, std::FILE *pstFile, uint32_t uiWidth,
                       uint32_t uiHeight)
{
    if (setjmp(png_jmpbuf(pstPng)) != 0) return;
    png_init_io(pstPng, pstFile);
    png_set_IHDR(pstPng, pstInfo, uiWidth, uiHeight, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(pstPng, pstInfo);
    png_set_filler(pstPng, 0, PNG_FILLER_AFTER);
}

static void Write_Rows(png_structp pstPng, const uint8_t *pucRows, uint32_t uiWidth, uint32_t uiHeight)
{
    if (setjmp(png_jmpbuf(pstPng)) != 0) return;
    for (uint32_t uiRow = 0; uiRow < uiHeight; ++uiRow)
        png_write_row(pstPng, pucRows + size_t{uiRow} * uiWidth * 4);
}

static void Write_Tail(png_structp pstPng, png_infop pstInfo)
{
    if (setjmp(png_jmpbuf(pstPng)) != 0) return;
    png_write_end(pstPng, pstInfo);
}

PngWriter::PngWriter(std::string strPath, uint32_t uiWidth, uint32_t uiHeight) : m_pstState(new State)
{
    State &stState = *m_pstState;
    stState.strPath = std::move(strPath);
    stState.pstFile = stState.strPath == "-" ? stdout : std::fopen(stState.strPath.c_str(), "wb");
    if (stState.pstFile == nullptr) {
        std::snprintf(stState.szError, sizeof stState.szError, "%s", std::strerror(errno));
        return;
    }
    stState.pstPng =
        png_create_write_struct(PNG_LIBPNG_VER_STRING, stState.szError, Keep_Error, Ignore_Warning);
    stState.pstInfo = stState.pstPng == nullptr ? nullptr : png_create_info_struct(stState.pstPng);
    if (stState.pstInfo == nullptr)
        std::snprintf(stState.szError, sizeof stState.szError, "out of memory");
    else
        Write_Head(stState.pstPng, stState.pstInfo, stState.pstFile, uiWidth, uiHeight);
}

PngWriter::~PngWriter()
{
    if (m_pstState->pstPng != nullptr) png_destroy_write_struct(&m_pstState->pstPng, &m_pstState->pstInfo);
    if (m_pstState->pstFile != nullptr && m_pstState->pstFile != stdout) std::fclose(m_pstState->pstFile);
    delete m_pstState;
}

void PngWriter::Write_Band(const Picture &stBand)
{
    if (m_pstState->szError[0] == '\0')
        Write_Rows(m_pstState->pstPng, stBand.aucRgba.data(), stBand.uiWidth, stBand.uiHeight);
}

Outcome PngWriter::Finish()
{
    State &stState = *m_pstState;
    if (stState.szError[0] == '\0') Write_Tail(stState.pstPng, stState.pstInfo);
    const auto pfEnd = stState.pstFile == stdout ? std::fflush : std::fclose; // main() closes its own
    if (stState.pstFile != nullptr && pfEnd(stState.pstFile) != 0 && stState.szError[0] == '\0')
        std::snprintf(stState.szError, sizeof stState.szError, "%s", std::strerror(errno));
    stState.pstFile = nullptr;
    if (stState.szError[0] != '\0')
        return {E_EXIT_SOME_FAILED, stState.strPath + " cannot be written: " + stState.szError};
    return {};
}

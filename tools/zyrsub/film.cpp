#include "film.h"

#include <dlfcn.h>

#include <filesystem>

#include "movie_search.h"

namespace fs = std::filesystem;

// Beside the program as it is built, or as it is installed. A module without what it needs is as good as none.
static const FilmCalls *Load_Calls()
{
    std::error_code stIgnored;
    const fs::path stFolder = fs::read_symlink("/proc/self/exe", stIgnored).parent_path();
    for (const char *const pszPlace : {"../lib/zyrsub/film.so", "../" ZYRSUB_LIBDIR "/zyrsub/film.so"}) {
        // Stays for the rest of the run: the framework behind it has threads.
        void *const pvModule = dlopen((stFolder / pszPlace).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
        if (pvModule != nullptr) return static_cast<const FilmCalls *>(dlsym(pvModule, FILM_CALLS_SYMBOL));
    }
    return nullptr;
}

std::string Film::Open(const std::string &strMovie, int64_t llFrom, double dSpeed)
{
    std::error_code stIgnored;
    if (Is_SubtitleName(strMovie) || !fs::is_regular_file(strMovie, stIgnored)) return "";
    m_pstCalls = Load_Calls();
    if (m_pstCalls == nullptr) return "";
    char szError[256] = "";
    FilmHandle *const pstFilm = m_pstCalls->pfOpen(strMovie.c_str(), llFrom, dSpeed, szError, sizeof szError);
    m_pstFilm = {pstFilm, m_pstCalls->pfClose};
    return szError;
}

void Film::Set_Size(uint32_t uiWidth, uint32_t uiHeight)
{
    m_stFrame = Make_Picture(uiWidth, uiHeight);
    m_pstCalls->pfSetSize(m_pstFilm.get(), uiWidth, uiHeight);
    m_pstCalls->pfSeek(m_pstFilm.get(), Get_Time()); // so that a film that stands is seen in its new size
}

bool Film::Take_Frame()
{
    return m_pstCalls->pfTakeFrame(m_pstFilm.get(), m_stFrame.aucRgba.data());
}

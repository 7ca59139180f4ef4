#include "file_watch.h"

#include <sys/stat.h>

static constexpr std::chrono::milliseconds LOOK_EVERY(100);

FileWatch::State FileWatch::Get_State(const std::string &strFile)
{
    struct stat stStat = {};
    if (stat(strFile.c_str(), &stStat) != 0) return {};
    return {stStat.st_mtim.tv_sec, stStat.st_mtim.tv_nsec, stStat.st_size, stStat.st_ino};
}

FileWatch::FileWatch(std::string strFile)
    : m_strFile(std::move(strFile)), m_stKnown(Get_State(m_strFile)), m_stSeen(m_stKnown)
{
}

// New is what has stayed the same between two looks.
bool FileWatch::Is_New()
{
    const auto stNow = std::chrono::steady_clock::now();
    if (stNow < m_stNextLook) return false;
    m_stNextLook = stNow + LOOK_EVERY;
    const State stState = Get_State(m_strFile);
    const bool bSettled = stState == m_stSeen;
    m_stSeen = stState;
    if (!bSettled || stState.llBytes < 0 || stState == m_stKnown) return false;
    m_stKnown = stState;
    return true;
}

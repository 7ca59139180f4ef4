#include "safe_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

static bool Write_All(int iFile, const std::string &strBytes)
{
    size_t uiDone = 0;
    while (uiDone < strBytes.size()) {
        const ssize_t iWritten = write(iFile, strBytes.data() + uiDone, strBytes.size() - uiDone);
        if (iWritten < 0 && errno == EINTR) continue;
        if (iWritten <= 0) return false;
        uiDone += static_cast<size_t>(iWritten);
    }
    return true;
}

// mkstemp() leaves the file to its owner alone; a new file has what the user's mask allows.
static bool Fill_File(int iFile, const std::string &strBytes)
{
    const mode_t uiMask = umask(0);
    umask(uiMask);
    const bool bGood = Write_All(iFile, strBytes) && fchmod(iFile, 0666 & ~uiMask) == 0 && fsync(iFile) == 0;
    return close(iFile) == 0 && bGood;
}

// Without bForce the kernel refuses to replace a file, also one that came up meanwhile; where the file system
// cannot do that, a look before the rename has to do.
static bool Rename_File(const std::string &strFrom, const std::string &strTo, bool bForce)
{
    if (bForce) return std::rename(strFrom.c_str(), strTo.c_str()) == 0;
    if (renameat2(AT_FDCWD, strFrom.c_str(), AT_FDCWD, strTo.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    struct stat stStat = {};
    if (lstat(strTo.c_str(), &stStat) == 0) {
        errno = EEXIST;
        return false;
    }
    return std::rename(strFrom.c_str(), strTo.c_str()) == 0;
}

Outcome Write_Safely(const std::string &strFile, const std::string &strBytes, bool bForce)
{
    const Outcome stExists = {E_EXIT_SOME_FAILED, strFile + " is there already (--force replaces it)"};
    struct stat stStat = {};
    if (!bForce && lstat(strFile.c_str(), &stStat) == 0) return stExists;
    std::string strTemporary = strFile + ".XXXXXX";
    const int iFile = mkstemp(strTemporary.data());
    if (iFile >= 0) {
        if (Fill_File(iFile, strBytes) && Rename_File(strTemporary, strFile, bForce)) return {};
        const int iError = errno;
        unlink(strTemporary.c_str());
        errno = iError;
    }
    if (errno == EEXIST) return stExists;
    return {E_EXIT_SOME_FAILED, strFile + " cannot be written: " + std::strerror(errno)};
}

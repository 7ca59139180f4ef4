#include "safe_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
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
static mode_t Get_NewMode()
{
    const mode_t uiMask = umask(0);
    umask(uiMask);
    return 0666 & ~uiMask;
}

static bool Fill_File(int iFile, const std::string &strBytes, mode_t uiMode)
{
    const bool bGood = Write_All(iFile, strBytes) && fchmod(iFile, uiMode) == 0 && fsync(iFile) == 0;
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

static Outcome Explain_Failure()
{
    if (errno == EEXIST) return {E_EXIT_SOME_FAILED, "it is there already (--force replaces it)"};
    return {E_EXIT_SOME_FAILED, std::string("it cannot be written: ") + std::strerror(errno)};
}

// A device or a pipe takes the bytes; there is nothing to replace.
static Outcome Write_Through(const std::string &strFile, const std::string &strBytes)
{
    const int iFile = open(strFile.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    if (iFile < 0) return Explain_Failure();
    const bool bGood = Write_All(iFile, strBytes);
    return close(iFile) == 0 && bGood ? Outcome{} : Explain_Failure();
}

static std::string Follow_Links(const std::string &strFile)
{
    char *pszReal = realpath(strFile.c_str(), nullptr);
    std::string strReal = pszReal == nullptr ? strFile : pszReal;
    std::free(pszReal);
    return strReal;
}

// The temporary name does not grow with the file's, which may be as long as a name can be.
static Outcome Replace_File(const std::string &strFile, const std::string &strBytes, mode_t uiMode,
                            bool bForce)
{
    std::string strTemporary = strFile.substr(0, strFile.rfind('/') + 1) + ".zyrsub.XXXXXX";
    const int iFile = mkstemp(strTemporary.data());
    if (iFile < 0) return Explain_Failure();
    if (Fill_File(iFile, strBytes, uiMode) && Rename_File(strTemporary, strFile, bForce)) return {};
    Outcome stFailed = Explain_Failure();
    unlink(strTemporary.c_str());
    return stFailed;
}

Outcome Write_Safely(const std::string &strFile, const std::string &strBytes, bool bForce)
{
    struct stat stStat = {};
    if (stat(strFile.c_str(), &stStat) != 0) return Replace_File(strFile, strBytes, Get_NewMode(), bForce);
    if (S_ISDIR(stStat.st_mode)) return {E_EXIT_SOME_FAILED, "it is a folder"};
    if (!S_ISREG(stStat.st_mode)) return Write_Through(strFile, strBytes);
    if (!bForce) {
        errno = EEXIST;
        return Explain_Failure();
    }
    return Replace_File(Follow_Links(strFile), strBytes, stStat.st_mode & 07777, true);
}

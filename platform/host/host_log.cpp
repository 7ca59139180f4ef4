#include "host_parts.h"
#include "zyr/zyr_host.h"
#include "zyr_log.h"

#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr size_t STACK_TEXT_BYTES = 1024; // longer messages are formatted on the heap

ZyrHostLogSink s_pfSink;
void *s_pvSinkContext;

// Lowest priority that the default sink writes, as ZYR_LOG asks for.
int Get_LeastPriority()
{
    const char *pszLevel = getenv("ZYR_LOG");
    if (pszLevel != nullptr && strcmp(pszLevel, "error") == 0) return ZYR_LOG_ERROR;
    if (pszLevel != nullptr && strcmp(pszLevel, "debug") == 0) return ZYR_LOG_DEBUG;
    return INT_MAX;
}

int s_iLeastPriority = Get_LeastPriority();

// One line on standard error in one call, whether or not the text ends with a newline.
void Write_ToStandardError(int iPriority, const char *pszTag, const char *pszText)
{
    const size_t uiLength = strlen(pszText);
    const char *pszEnd = uiLength > 0 && pszText[uiLength - 1] == '\n' ? "" : "\n";
    fprintf(stderr, "%c %s: %s%s", iPriority >= ZYR_LOG_ERROR ? 'E' : 'D', pszTag != nullptr ? pszTag : "-",
            pszText, pszEnd);
}

void Deliver_Text(int iPriority, const char *pszTag, const char *pszText)
{
    if (s_pfSink != nullptr) {
        s_pfSink(iPriority, pszTag, pszText, s_pvSinkContext);
    } else {
        Write_ToStandardError(iPriority, pszTag, pszText);
    }
}

} // namespace

int __android_log_print(int iPriority, const char *pszTag, const char *pszFormat, ...)
{
    if (s_pfSink == nullptr && iPriority < s_iLeastPriority) return 0;
    char acText[STACK_TEXT_BYTES];
    va_list args;
    va_start(args, pszFormat);
    va_list argsAgain;
    va_copy(argsAgain, args);
    const int iLength = vsnprintf(acText, sizeof(acText), pszFormat, args);
    va_end(args);
    char *pszLong = nullptr;
    if (iLength >= static_cast<int>(sizeof(acText)))
        pszLong = static_cast<char *>(malloc(static_cast<size_t>(iLength) + 1));
    // Without memory the text is delivered cut off.
    if (pszLong != nullptr) vsnprintf(pszLong, static_cast<size_t>(iLength) + 1, pszFormat, argsAgain);
    va_end(argsAgain);
    if (iLength >= 0) Deliver_Text(iPriority, pszTag, pszLong != nullptr ? pszLong : acText);
    free(pszLong);
    return iLength;
}

void zyr_host_setLogSink(ZyrHostLogSink pfSink, void *pContext)
{
    s_pfSink = pfSink;
    s_pvSinkContext = pContext;
    s_iLeastPriority = Get_LeastPriority();
}

ZyrHostLogSink zyr_host_getLogSink(void **ppContext)
{
    if (ppContext != nullptr) *ppContext = s_pvSinkContext;
    return s_pfSink;
}

void Reset_HostLog()
{
    zyr_host_setLogSink(nullptr, nullptr);
}

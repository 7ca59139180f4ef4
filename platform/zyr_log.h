/* The system log. */
#ifndef ZYR_PLATFORM_LOG_H
#define ZYR_PLATFORM_LOG_H

#ifdef __cplusplus
extern "C" {
#endif

/** The two priorities in use. */
enum { ZYR_LOG_DEBUG = 3, ZYR_LOG_ERROR = 6 };

/** Write one message, formatted as printf() does. @param[in] pszTag may be NULL. @return not looked at. */
int __android_log_print(int iPriority, const char *pszTag, const char *pszFormat, ...)
    __attribute__((format(printf, 3, 4)));

#ifdef __cplusplus
}
#endif

#endif

/* Lines of the engine's log. They begin with the number of the source line, as readers of such logs expect. */
#pragma once

#include "zyr_log.h"

constexpr const char *PARSER_LOG_TAG = "ZYR_SUBTITLE_PARSER";
constexpr const char *HANDLER_LOG_TAG = "ZYR_SUBTITLE_HANDLER";

#define LOG_PARSER(szFormat, ...)                                                                            \
    __android_log_print(ZYR_LOG_ERROR, PARSER_LOG_TAG, " [%d] " szFormat, __LINE__ __VA_OPT__(, ) __VA_ARGS__)
#define LOG_HANDLER(szFormat, ...)                                                                           \
    __android_log_print(ZYR_LOG_ERROR, HANDLER_LOG_TAG, " QUIB_CAPTION][%d] " szFormat,                      \
                        __LINE__ __VA_OPT__(, ) __VA_ARGS__)

/** Of a call that a host may make as well, by its name. */
#define LOG_CALL(szFormat, ...)                                                                              \
    __android_log_print(ZYR_LOG_ERROR, HANDLER_LOG_TAG, "[%s][%5d] " szFormat, __func__,                     \
                        __LINE__ __VA_OPT__(, ) __VA_ARGS__)

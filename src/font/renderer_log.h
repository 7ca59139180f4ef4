/* Lines of the renderer's log; they carry no tag. */
#pragma once

#include "zyr_log.h"

#define LOG_RENDERER(...)      __android_log_print(ZYR_LOG_ERROR, nullptr, __VA_ARGS__)
#define LOG_RENDERER_STEP(...) __android_log_print(ZYR_LOG_DEBUG, nullptr, __VA_ARGS__)

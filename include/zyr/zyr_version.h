/* The version that these headers belong to; the build takes it from here too. */
#ifndef ZYR_VERSION_H
#define ZYR_VERSION_H

#define ZYR_VERSION_MAJOR 1
#define ZYR_VERSION_MINOR 0
#define ZYR_VERSION_PATCH 0

/** One number of a version, for comparisons: #if ZYR_VERSION >= ZYR_MAKE_VERSION(1, 2, 0) */
#define ZYR_MAKE_VERSION(MAJOR, MINOR, PATCH) (((MAJOR) << 16) | ((MINOR) << 8) | (PATCH))
#define ZYR_VERSION                           ZYR_MAKE_VERSION(ZYR_VERSION_MAJOR, ZYR_VERSION_MINOR, ZYR_VERSION_PATCH)

#endif

/* The caption frame buffer device, and the place of the caption font. */
#ifndef ZYR_PLATFORM_CCFB_H
#define ZYR_PLATFORM_CCFB_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Requests that the device understands. */
enum { ZYR_CCFB_SET = 0x103, ZYR_CCFB_UPDATE = 0x104, ZYR_CCFB_ENABLE = 0x105, ZYR_CCFB_DISABLE = 0x106 };

/** Open the device for reading and writing. @return a descriptor above 0, or -1. */
int32_t zyr_ccfb_open(const char *pszDevice);

/** Map uiBytes bytes of the device's memory, shared, from physical address uiPhysBase on. @return the
 * mapping, or NULL. */
void *zyr_ccfb_map(int32_t iDevice, uint32_t uiBytes, uint32_t uiPhysBase);

/**
 * Send a request.
 *
 * @param[in] pvArgument  the request's argument, uiBytes bytes long; NULL with 0 bytes for a request without
 *                        one
 * @return 0, or a negative value when the device refuses
 */
int32_t zyr_ccfb_request(int32_t iDevice, uint32_t uiRequest, const void *pvArgument, uint32_t uiBytes);

/** Undo zyr_ccfb_map(). */
void zyr_ccfb_unmap(void *pvMemory, uint32_t uiBytes);

/** Close the descriptor. */
void zyr_ccfb_close(int32_t iDevice);

/** @return path of the TrueType font for captions; it stays valid until the platform is told of another. */
const char *zyr_platform_fontPath(void);

#ifdef __cplusplus
}
#endif

#endif

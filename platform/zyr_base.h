/* Memory and files, as the box's media framework offers them. The desktop host layer offers the same calls.
 */
#ifndef ZYR_PLATFORM_BASE_H
#define ZYR_PLATFORM_BASE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Allocate uiBytes bytes, aligned for every type. @return the block, or NULL. Free it with ZYR_free(). */
void *ZYR_malloc(uint32_t uiBytes);

/** Free a block of ZYR_malloc(); NULL is ignored. */
void ZYR_free(void *pvBlock);

/**
 * Open a file for reading.
 *
 * @param[in] pszPath  the file's path
 * @param[in] pszMode  always "rb"
 * @return the handle (opaque, never NULL), or NULL when the file cannot be opened
 */
void *ZYR_fopen(const char *pszPath, const char *pszMode);

/**
 * Read from the current position.
 *
 * @param[out] pvBuffer  room for uiSize * uiCount bytes
 * @return elements read, 0 at the end of the file, negative on an error
 */
int32_t ZYR_fread(void *pvBuffer, uint32_t uiSize, uint32_t uiCount, void *hFile);

/** Move to iOffset bytes from iOrigin: 0 the start, 1 the current position, 2 the end. @return 0, or another
 * value on failure. */
int32_t ZYR_fseek(void *hFile, int32_t iOffset, int32_t iOrigin);

/** @return the current position in bytes from the start, or a negative value on failure. */
int32_t ZYR_ftell(void *hFile);

/** Close a handle of ZYR_fopen(). @return 0. */
int32_t ZYR_fclose(void *hFile);

#ifdef __cplusplus
}
#endif

#endif

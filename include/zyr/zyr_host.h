/*
 * The platform of a desktop Linux machine: what a program may ask of libzyrhost beside the platform's own
 * calls.
 *
 * libzyrhost answers the calls that the subtitle library makes on a box (memory, files, log, properties, the
 * map of memory regions, the caption device) with what a desktop has. The calls below set it up, let a
 * program look at the caption plane, and make chosen calls fail so that a program's own error paths can be
 * tried.
 *
 * Rules for all calls:
 * 1. One caller at a time: nothing here takes a lock.
 * 2. A text or memory passed in is copied unless its entry says otherwise.
 * 3. No call ends the program or throws. Running out of memory makes a call fail with -1 and change nothing.
 * 4. A sink, hook or trace is called on the caller's thread, in the middle of the platform call it reports.
 * It may read counters, but must not open or read files or send device requests itself.
 */
#ifndef ZYR_HOST_H
#define ZYR_HOST_H

#include <stdint.h>

#include "zyr/zyr_version.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------------------------------ version */

/** The version of this header. */
#define ZYR_HOST_VERSION ZYR_VERSION

/** @return the version of the library that runs, to be compared with ZYR_HOST_VERSION; bits 16 and up the
 * major number, 8 to 15 the minor one, 0 to 7 the patch. */
uint32_t zyr_host_version(void);

/* ---------------------------------------------------------------------------------------------------- log */

/**
 * Receives one log message.
 *
 * @param[in] iPriority  3 debug, 6 error
 * @param[in] pszTag     who speaks; NULL for a message without a tag
 * @param[in] pszText    the formatted text, valid during the call; most end with a newline of their own
 * @param[in] pContext   as given to zyr_host_setLogSink()
 */
typedef void (*ZyrHostLogSink)(int iPriority, const char *pszTag, const char *pszText, void *pContext);

/**
 * Send every log message, whatever its priority, to a function.
 *
 * @param[in] pfSink    the function; NULL restores the default sink, which writes to standard error the
 *                      messages that the environment variable ZYR_LOG asks for: "off" (also when unset or
 *                      unknown) none, "error" priority 6 and above, "debug" priority 3 and above. The
 *                      variable is read at start, and again by this call and by zyr_host_reset()
 * @param[in] pContext  handed to pfSink, never looked at
 */
void zyr_host_setLogSink(ZyrHostLogSink pfSink, void *pContext);

/**
 * Tell what zyr_host_setLogSink() was given, so that who takes the log over for a while can give it back.
 *
 * @param[out] ppContext  the context; may be NULL
 * @return the sink, or NULL for the default one
 */
ZyrHostLogSink zyr_host_getLogSink(void **ppContext);

/* --------------------------------------------------------------------------------------------- properties */

/**
 * Set a system property, as the box's settings program does.
 *
 * @param[in] pszKey    1 to 31 bytes
 * @param[in] pszValue  0 to 91 bytes; NULL removes the property
 * @return 0   done, also when the property to remove was not set
 *         -1  the key is NULL or empty, or the key or the value does not fit; nothing changes
 */
int zyr_host_setProperty(const char *pszKey, const char *pszValue);

/**
 * Set properties from a text file: one key=value a line, blanks around both dropped. Empty lines, and lines
 * whose first character is '#', are passed over. The file that the environment variable ZYR_PROPERTIES names
 * is loaded so at start.
 *
 * @return 0   every line was taken
 *         -1  the file cannot be read, or a line has no '=' or does not fit; the other lines are taken all
 *             the same
 */
int zyr_host_loadProperties(const char *pszPath);

/** @return the property's value, valid until it is set or removed again, or NULL when it is not set. */
const char *zyr_host_getProperty(const char *pszKey);

/* --------------------------------------------------------------------------------------------------- font */

/**
 * Name the TrueType file that the caption renderer opens.
 *
 * @param[in] pszPath  the file's path, taken as it is; NULL restores the default: the environment variable
 *                     ZYR_FONT, else "/system/fonts/DroidSansFallback.ttf" if it exists, else
 *                     "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc"
 *
 * A renderer that is open keeps its font until it is opened again.
 */
void zyr_host_setFontFile(const char *pszPath);

/** @return the file that the caption renderer opens next, whether it exists or not; valid until the font is
 * set again. */
const char *zyr_host_getFontFile(void);

/* -------------------------------------------------------------------------------------------------- files */

/**
 * Choose how files opened from now on present their text; files that are open stay as they are.
 *
 * @param[in] iMode  0  the file's own bytes (at start); also any value not listed
 *                   1  every line end (LF, CR, CR LF, CR CR LF) reads as CR LF. A file that begins with FF FE
 *                      or FE FF is taken as 16-bit units in that order, with a last odd byte kept; any other
 *                      by bytes. Size, seeks and positions are those of the presented text. It is made when
 *                      the file is opened and kept in memory until it is closed; an open fails when memory
 *                      runs out, or for a text past 2^31 - 1 bytes, where no seek could reach
 */
void zyr_host_setLineEnds(int iMode);

/** @return the mode that zyr_host_setLineEnds() has put in force, 0 or 1. */
int zyr_host_getLineEnds(void);

/**
 * Let ZYR_fopen() of one name open another file. Names beginning with "zyrhost:" exist only when mapped,
 * whatever files there are.
 *
 * @param[in] pszName  compared byte by byte with the name that is opened; a name has one mapping, the latest
 * @param[in] pszPath  the file to open instead, looked for when the name is opened and never mapped again;
 *                     NULL removes the name's mapping, of either kind
 * @return 0   done, also when there was nothing to remove
 *         -1  the name is NULL or empty
 */
int zyr_host_mapFile(const char *pszName, const char *pszPath);

/**
 * Let ZYR_fopen() of a name open bytes in memory.
 *
 * @param[in] pszName  as for zyr_host_mapFile()
 * @param[in] pvData   the caller's bytes, not copied: they must stay, unchanged, until the mapping is removed
 *                     and every file opened through it is closed; NULL removes the name's mapping, of either
 *                     kind
 * @param[in] uiBytes  their number; 0 is an empty file
 * @return as zyr_host_mapFile()
 */
int zyr_host_mapMemory(const char *pszName, const void *pvData, uint32_t uiBytes);

/** @return files open now. */
uint32_t zyr_host_openFiles(void);

/* ---------------------------------------------------------------------------------------- calls that fail */

/**
 * Make ZYR_malloc() fail.
 *
 * @param[in] uiNth          1 the next call, 2 the one after it, and so on; 0 none. Replaces what was set
 *                           before
 * @param[in] iFromThenOn    0 that call only; else that one and all after it
 */
void zyr_host_failAllocation(uint32_t uiNth, int iFromThenOn);

/** @return calls of ZYR_malloc() since start or zyr_host_reset(), failed ones included. */
uint32_t zyr_host_allocations(void);

/** @return bytes asked of ZYR_malloc() and not yet freed; memory that the platform needs itself does not
 * count. */
uint64_t zyr_host_liveBytes(void);

/** The kinds of file call. */
enum { ZYR_HOST_OPEN = 0, ZYR_HOST_READ = 1, ZYR_HOST_SEEK = 2, ZYR_HOST_TELL = 3 };

/**
 * Make one kind of file call fail. Each kind has a setting of its own, which this replaces.
 *
 * @param[in] iCall        ZYR_HOST_OPEN to ZYR_HOST_TELL; another value does nothing
 * @param[in] uiNth        1 the next call of that kind, 2 the one after it, and so on; 0 none
 * @param[in] iResult      what the call gives:
 *                         open  not looked at: no file is opened, the caller gets NULL
 *                         read  above 0: at most that many elements are read, the position moves over them,
 *                               and the caller is told how many were there; else the caller is told iResult,
 *                               nothing is read, and the position stays
 *                         seek  the caller is told iResult, and the position stays, also for 0
 *                         tell  the caller is told iResult
 * @param[in] iFromThenOn  0 that call only; else that one and all after it
 */
void zyr_host_failFile(int iCall, uint32_t uiNth, int32_t iResult, int iFromThenOn);

/** @return calls of one kind since start or zyr_host_reset(), failed ones included; 0 for an unknown kind. */
uint32_t zyr_host_fileCalls(int iCall);

/**
 * Decides what the library is told about one file call.
 *
 * @param[in] iCall     ZYR_HOST_OPEN to ZYR_HOST_TELL
 * @param[in] uiAsked   read: elements asked for; seek: the offset (a signed number); else 0
 * @param[in] iReal     open: 1 when the file was opened, 0 when not; read: uiAsked; seek: 0 or -1; tell: the
 *                      position, or -1
 * @param[in] pContext  as given to zyr_host_setFileHook()
 * @return what the library is told, and with it:
 *         open   0 makes an open file close again and fail; a file that could not be opened stays so
 *         read   the hook is asked before anything is read. 0 to uiAsked: at most so many elements are read,
 *                and the library is told how many were there. Below 0 or above uiAsked: all that was asked
 *                for is read as far as it exists, the position moves over it, and the library is told the
 *                returned value
 *         seek   the seek has been done, as iReal says; the position stays there whatever is returned
 *         tell   nothing else
 */
typedef int32_t (*ZyrHostFileHook)(int iCall, uint32_t uiAsked, int32_t iReal, void *pContext);

/**
 * Set the hook for all file calls; NULL removes it. A call that zyr_host_failFile() makes fail does not reach
 * it.
 */
void zyr_host_setFileHook(ZyrHostFileHook pfHook, void *pContext);

/* ----------------------------------------------------------------------------------------- caption device */

/**
 * Make a step of opening the caption device fail, until this is called again.
 *
 * @param[in] iStep  0 none, 1 the open, 2 the region information (the region is unknown), 3 the mapping;
 *                   another value means none
 */
void zyr_host_failDevice(int iStep);

/** The steps in a device trace that are not requests; a request's step is its own number, 0x103 to 0x106. */
enum {
    ZYR_HOST_STEP_OPEN = 1,
    ZYR_HOST_STEP_REGION = 2,
    ZYR_HOST_STEP_MAP = 3,
    ZYR_HOST_STEP_UNMAP = 4,
    ZYR_HOST_STEP_CLOSE = 5
};

/**
 * Told of one call to the device or the region map, before it is carried out and also when it is going to
 * fail.
 *
 * @param[in] uiStep      one of the steps above, or the request's number
 * @param[in] pvArgument  region: its name, zero-terminated; map: two uint32, length and physical offset in
 *                        bytes; a request: its argument; else NULL. Valid during the call
 * @param[in] uiBytes     length of pvArgument; a name's closing zero is not counted
 * @param[in] pContext    as given to zyr_host_setDeviceTrace()
 */
typedef void (*ZyrHostDeviceTrace)(uint32_t uiStep, const void *pvArgument, uint32_t uiBytes, void *pContext);

/** Report every device call to a function; NULL ends that. */
void zyr_host_setDeviceTrace(ZyrHostDeviceTrace pfTrace, void *pContext);

/**
 * Look at the caption plane's memory: 4 MiB, as 16-bit pixels (RGB565).
 *
 * @param[out] puiPhysBase  the physical address of its first byte; may be NULL, untouched when NULL is
 *                          returned
 * @return the memory, or NULL before the device was opened for the first time. It belongs to the platform and
 *         stays valid to the end of the program; zyr_host_reset() clears it
 */
uint16_t *zyr_host_captionMemory(uint32_t *puiPhysBase);

/**
 * Draw what the device shows now over a picture of the display: the buffer of the last update, in the place
 * and size of the last configuration. A pixel of value 0 is transparent and leaves the picture alone, any
 * other is drawn opaque. What lies outside the picture or outside the caption memory is left out.
 *
 * @param[in,out] pucRgba  uiWidth x uiHeight pixels of four bytes (red, green, blue, alpha), rows without a
 *                         gap
 * @return 0   drawn
 *         -1  nothing is shown (disabled, or not yet configured and updated), or pucRgba is NULL; the picture
 *             is as it was
 */
int zyr_host_composeCaption(uint8_t *pucRgba, uint32_t uiWidth, uint32_t uiHeight);

/**
 * Tell where on the display the device shows its box now, marks and the empty space between them alike. The
 * box may reach beyond the display. A pointer that is NULL is not written.
 *
 * @return 0   told
 *         -1  nothing is shown, as for zyr_host_composeCaption(); nothing is written
 */
int zyr_host_getCaptionBox(int32_t *piX, int32_t *piY, uint32_t *puiWidth, uint32_t *puiHeight);

/* -------------------------------------------------------------------------------------------------- reset */

/**
 * Put everything above back to its start: log sink, properties (the file of ZYR_PROPERTIES is read again),
 * font, line ends, mapped names, failures of every kind, file hook, device trace, the counts of calls; the
 * caption memory is cleared and nothing is shown. Allocated memory, open files and open device descriptors
 * stay what they are, and so zyr_host_liveBytes() and zyr_host_openFiles() do too.
 */
void zyr_host_reset(void);

#ifdef __cplusplus
}
#endif

#endif

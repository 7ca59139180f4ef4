/* System properties: short texts under short names, set by the box's settings program. */
#ifndef ZYR_PLATFORM_PROPERTIES_H
#define ZYR_PLATFORM_PROPERTIES_H

#ifdef __cplusplus
extern "C" {
#endif

/** Bytes of the longest name and the longest value, the closing zero included. */
enum { ZYR_PROPERTY_KEY_MAX = 32, ZYR_PROPERTY_VALUE_MAX = 92 };

/**
 * Read a property.
 *
 * @param[out] pszValue    room for ZYR_PROPERTY_VALUE_MAX bytes
 * @param[in]  pszDefault  copied to pszValue when the property is not set
 * @return length of the text in pszValue
 */
int property_get(const char *pszKey, char *pszValue, const char *pszDefault);

#ifdef __cplusplus
}
#endif

#endif

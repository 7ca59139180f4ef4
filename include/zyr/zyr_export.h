/* Marks the calls that the library exports; everything else stays inside it. */
#ifndef ZYR_EXPORT_H
#define ZYR_EXPORT_H

#define ZYR_API __attribute__((visibility("default")))

#endif

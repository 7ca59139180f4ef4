// zyrsubparse: bytes of a subtitle file in, timed text out, each language on a pad of its own.
#ifndef ZYR_GST_SUB_PARSE_H
#define ZYR_GST_SUB_PARSE_H

#include <gst/gst.h>

G_BEGIN_DECLS

#define ZYR_TYPE_SUB_PARSE (zyr_sub_parse_get_type())
GType zyr_sub_parse_get_type(void);

GST_ELEMENT_REGISTER_DECLARE(zyrsubparse)

G_END_DECLS

#endif

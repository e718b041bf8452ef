/* SPDX-License-Identifier: Apache-2.0 */
/*
 * PPS text: the form in which the persistent publish/subscribe service hands out and takes objects. One object is a
 * name line and one line for each attribute, each ended by a line feed:
 *
 *     @battery
 *     level:n:87
 *     label::Main cell
 *     cells:json:[{"mv":4012},{"mv":3998}]
 *
 * The decoder turns a text into a tree and walks it; the encoder writes a text step by step:
 *
 *     pps_decoder_t decoder;
 *     if (pps_decoder_initialize(&decoder, text) == PPS_DECODER_OK) {
 *         int level = 0;
 *         pps_decoder_push(&decoder, "@battery");
 *         pps_decoder_get_int(&decoder, "level", &level);
 *         pps_decoder_cleanup(&decoder);
 *     }
 *
 *     pps_encoder_t encoder;
 *     pps_encoder_initialize(&encoder, false);
 *     pps_encoder_add_int(&encoder, "level", 87);
 *     write(fd, pps_encoder_buffer(&encoder), pps_encoder_length(&encoder));
 *     pps_encoder_cleanup(&encoder);
 *
 * At the decoder's root, a name line makes one child named with its '@', which holds the attributes that follow it, up
 * to the next name line; attributes before any name line are children of the root themselves.
 *
 * Threads: any; one decoder or encoder is used by one thread at a time. Nothing here changes errno.
 */
#ifndef PPS_PPS_H
#define PPS_PPS_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include <platform/export.h>

PLATFORM_BEGIN_DECLS

/* The deepest nesting of arrays and objects within one attribute; a deeper one is an error on both ways. */
#define PPS_MAX_DEPTH 512

/* Flags of a node, as pps_decoder_flags() gives them, and the character that stands for each in a text. */
enum pps_flags {
    PPS_INCOMPLETE = 1, /* '*' */
    PPS_DELETED = 2,    /* '-' */
    PPS_CREATED = 4,    /* '+' */
    PPS_TRUNCATED = 8,  /* '#' */
    PPS_PURGED = 16     /* '!' */
};

/* What a node is. */
typedef enum {
    PPS_TYPE_NULL = 0, /* json null */
    PPS_TYPE_BOOL = 1,
    PPS_TYPE_NUMBER = 2,
    PPS_TYPE_STRING = 3,
    PPS_TYPE_ARRAY = 4,
    PPS_TYPE_OBJECT = 5,
    PPS_TYPE_NONE = 6,    /* there is no such node */
    PPS_TYPE_UNKNOWN = 7, /* reserved */
    PPS_TYPE_DELETED = 8  /* a deleted attribute or object: a name with flags and nothing else */
} pps_node_type_t;

typedef enum {
    PPS_DECODER_OK = 0,
    PPS_DECODER_NO_MEMORY = 1,
    PPS_DECODER_BAD_TEXT = 2,   /* malformed text, broken UTF-8, or nesting beyond PPS_MAX_DEPTH */
    PPS_DECODER_NOT_FOUND = 3,  /* no child of that name or index, or nothing to leave */
    PPS_DECODER_WRONG_TYPE = 4, /* the node is of another type */
    PPS_DECODER_BAD_ARGUMENT = 5,
    PPS_DECODER_DOES_NOT_FIT = 6 /* the number is an integer that the result cannot hold */
} pps_decoder_error_t;

typedef enum {
    PPS_ENCODER_OK = 0,
    PPS_ENCODER_NO_MEMORY = 1,
    PPS_ENCODER_BAD_NAME = 2,  /* a name that a text cannot carry at this place; see pps_encoder_add_null() */
    PPS_ENCODER_BAD_VALUE = 3, /* NaN, an infinity, or a string that is not UTF-8 */
    PPS_ENCODER_BAD_NESTING = 4, /* an end without its start, or nesting beyond PPS_MAX_DEPTH */
    PPS_ENCODER_BAD_ARGUMENT = 5
} pps_encoder_error_t;

/* Owned by the caller; what it holds belongs to the functions here. */
typedef struct pps_decoder {
    void *state;
} pps_decoder_t;
typedef struct pps_encoder {
    void *state;
} pps_encoder_t;

/*
 * Parses a NUL-terminated text in place: the text is changed, and must stay until pps_decoder_cleanup(), because names
 * and strings are read out of it. The walk begins at the root.
 * After a failure there is nothing to clean up, and the text's contents are undefined.
 */
PLATFORM_EXPORT pps_decoder_error_t pps_decoder_initialize(pps_decoder_t *decoder, char *text);

/* Releases what the decoder holds. */
PLATFORM_EXPORT void pps_decoder_cleanup(pps_decoder_t *decoder);

/* The number of children of the node that the walk is in; -1 for a NULL decoder. */
PLATFORM_EXPORT int pps_decoder_length(pps_decoder_t *decoder);

/*
 * Makes the child with that index, from 0, the current one: PPS_DECODER_OK, or PPS_DECODER_NOT_FOUND, which leaves no
 * child current. After initialize and push the first child is current.
 */
PLATFORM_EXPORT pps_decoder_error_t pps_decoder_goto_index(pps_decoder_t *decoder, int index);

/* The current child's name, or NULL for an element of an array and where no child is current. */
PLATFORM_EXPORT const char *pps_decoder_name(pps_decoder_t *decoder);

/*
 * The readers below read the child of that name of the node that the walk is in (the first of several), or the current
 * child where name is NULL.
 */
PLATFORM_EXPORT pps_node_type_t pps_decoder_type(pps_decoder_t *decoder, const char *name);

/* Bits of enum pps_flags; 0 where there is no such child. Only attributes and objects of the service have any. */
PLATFORM_EXPORT int pps_decoder_flags(pps_decoder_t *decoder, const char *name);

/* Whether the child is a number with neither a fraction nor an exponent. */
PLATFORM_EXPORT bool pps_decoder_is_integer(pps_decoder_t *decoder, const char *name);

/*
 * Each sets value, or returns PPS_DECODER_NOT_FOUND, PPS_DECODER_WRONG_TYPE or PPS_DECODER_BAD_ARGUMENT and leaves it.
 * The integer readers take integers only and return PPS_DECODER_DOES_NOT_FIT for one beyond their range;
 * pps_decoder_get_double() takes every number. A string is NUL-terminated UTF-8 and lives as long as the text.
 */
PLATFORM_EXPORT pps_decoder_error_t pps_decoder_get_bool(pps_decoder_t *decoder, const char *name,
                                                         bool *value);
PLATFORM_EXPORT pps_decoder_error_t pps_decoder_get_int(pps_decoder_t *decoder, const char *name, int *value);
PLATFORM_EXPORT pps_decoder_error_t pps_decoder_get_int64(pps_decoder_t *decoder, const char *name,
                                                          int64_t *value);
PLATFORM_EXPORT pps_decoder_error_t pps_decoder_get_double(pps_decoder_t *decoder, const char *name,
                                                           double *value);
PLATFORM_EXPORT pps_decoder_error_t pps_decoder_get_string(pps_decoder_t *decoder, const char *name,
                                                           const char **value);

/* Enters a child that is an array or an object; leaves it again for the node it is in, where it is the current child. */
PLATFORM_EXPORT pps_decoder_error_t pps_decoder_push(pps_decoder_t *decoder, const char *name);
PLATFORM_EXPORT pps_decoder_error_t pps_decoder_pop(pps_decoder_t *decoder);

/*
 * Begins an empty text. With json the text is one JSON object instead of PPS lines. After a failure there is nothing to
 * clean up.
 */
PLATFORM_EXPORT pps_encoder_error_t pps_encoder_initialize(pps_encoder_t *encoder, bool json);

/* Releases what the encoder holds. */
PLATFORM_EXPORT void pps_encoder_cleanup(pps_encoder_t *encoder);

/*
 * Each adds one value to the object or array that was started last and not ended, at first to the text itself.
 *
 * name is UTF-8; within an array it is ignored and may be NULL. In the text itself it becomes an attribute's name: not
 * empty, without ':' and control characters, and not beginning with '@' or a flag's character. An object there whose
 * name begins with '@' becomes a name line, with its members as the lines that follow: then only such objects may
 * follow it. Elsewhere any name is good.
 * A failure leaves the text as it was before the call.
 */
PLATFORM_EXPORT pps_encoder_error_t pps_encoder_add_null(pps_encoder_t *encoder, const char *name);
PLATFORM_EXPORT pps_encoder_error_t pps_encoder_add_bool(pps_encoder_t *encoder, const char *name,
                                                         bool value);
PLATFORM_EXPORT pps_encoder_error_t pps_encoder_add_int(pps_encoder_t *encoder, const char *name, int value);
PLATFORM_EXPORT pps_encoder_error_t pps_encoder_add_int64(pps_encoder_t *encoder, const char *name,
                                                          int64_t value);
/* Written so that it reads back as the same double, and as a double. */
PLATFORM_EXPORT pps_encoder_error_t pps_encoder_add_double(pps_encoder_t *encoder, const char *name,
                                                           double value);
/* value is NUL-terminated UTF-8. */
PLATFORM_EXPORT pps_encoder_error_t pps_encoder_add_string(pps_encoder_t *encoder, const char *name,
                                                           const char *value);
PLATFORM_EXPORT pps_encoder_error_t pps_encoder_start_object(pps_encoder_t *encoder, const char *name);
PLATFORM_EXPORT pps_encoder_error_t pps_encoder_end_object(pps_encoder_t *encoder);
PLATFORM_EXPORT pps_encoder_error_t pps_encoder_start_array(pps_encoder_t *encoder, const char *name);
PLATFORM_EXPORT pps_encoder_error_t pps_encoder_end_array(pps_encoder_t *encoder);

/*
 * The text so far, NUL-terminated; NULL while an object or an array has not been ended. It belongs to the encoder and
 * lives until the next call of one of its functions. pps_encoder_length() is its length in bytes, 0 where it is NULL.
 */
PLATFORM_EXPORT const char *pps_encoder_buffer(pps_encoder_t *encoder);
PLATFORM_EXPORT size_t pps_encoder_length(pps_encoder_t *encoder);

PLATFORM_END_DECLS

#endif

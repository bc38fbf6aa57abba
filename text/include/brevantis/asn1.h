#ifndef BREVANTIS_ASN1_H
#define BREVANTIS_ASN1_H

/** @file
 * Messages of public-key infrastructure for programs in C, and for every language that calls C:
 * which type a message is, whether it is in order, DER, JSON both ways, elements by their path.
 *
 * Plain C11; link libbrevantis_asn1_text. A function that can fail returns a status: 0, or a
 * negative one that basn1_status_name names. Every pointer may be null: that is a status
 * (BASN1_INVALID_PARAMETER) or a null result, never a crash. Nothing is thrown across it. A handle,
 * and what was opened on it, belongs to one thread at a time; types and their texts are constants
 * that any thread may use. Sizes and offsets are in octets.
 */

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/** In front of a declaration: the library offers it. */
#define BASN1_API __attribute__((visibility("default")))

/** Statuses that a program may want to tell apart; all others are those of the decoder. */
enum {
    BASN1_OK = 0,                     /**< nothing failed */
    BASN1_STOPPED = -1,               /**< the write callback wanted no more */
    BASN1_MISSING_ELEMENT = -8,       /**< a mandatory element, or one that a path names */
    BASN1_EXTRA_ELEMENT = -10,        /**< octets behind the message, or an element too many */
    BASN1_NO_MEMORY = -12,            /**< memory is out, or a limit is reached */
    BASN1_STRING_OVERFLOW = -17,      /**< a JSON text above its limit */
    BASN1_BAD_VALUE = -18,            /**< JSON that is no value of the type, among others */
    BASN1_CONSTRAINT_VIOLATION = -23, /**< a value or size outside of its range */
    BASN1_INVALID_PARAMETER = -30,    /**< null, or a number that stands for nothing */
    BASN1_VALUE_TOO_BIG = -33,        /**< a number that does not fit, or more than 2 GB */
    BASN1_NOT_SUPPORTED = -99         /**< an element in a segmented string, which has no place */
};

/** How messages are read, for basn1_set_policy: bits, off unless set. */
enum {
    BASN1_TOLERATE_OPEN_VALUES = 0x1, /**< an open value that does not decode stays raw */
    BASN1_TOLERATE_SIZES = 0x2,       /**< SIZE and value ranges are not enforced */
    BASN1_EXACT = 0x4,                /**< what records cannot hold unchanged is refused */
    BASN1_DER = 0x8                   /**< what is not DER (X.690) is refused */
};

/** What basn1_set_limit limits. */
enum {
    BASN1_LIMIT_MEMORY,   /**< octets that the value of one message may take; 0, as at first: any */
    BASN1_LIMIT_ELEMENTS, /**< elements of a message; 0, as at first: any */
    BASN1_LIMIT_DEPTH,    /**< open and recursive types in each other; 64 at first and at most */
    BASN1_LIMIT_TEXT,     /**< octets of a JSON text; 256 MB at first */
    BASN1_LIMIT_TEXT_DEPTH /**< objects and arrays of a JSON text in each other; 512 at first */
};

/** Parts of what a failure tells, for basn1_failure_text. */
enum {
    BASN1_FAILURE_PATH,     /**< of the element or value, "tbsCertificate.version" */
    BASN1_FAILURE_EXPECTED, /**< in English */
    BASN1_FAILURE_FOUND,    /**< in English; empty where there is nothing to add */
    BASN1_FAILURE_WHOLE     /**< all of it in one line */
};

/** What calls have in common: policies, limits, and why the last call failed. */
typedef struct basn1_handle basn1_handle;
/** A type: of the catalogue, and then a constant, or of a handle's schemas, and then it lives as
 * long as that. */
typedef struct basn1_type basn1_type;
/** Messages of an input that are taken off it one by one. */
typedef struct basn1_messages basn1_messages;

/** A file of ASN.1 modules, for basn1_add_schema. */
typedef struct basn1_schema_text {
    const char* name; /**< terminated; as failures show it */
    const char* text; /**< which need not be terminated: one module or several */
    size_t size;      /**< octets at `text` */
} basn1_schema_text;

/** Takes a piece of text, which is not terminated and lives until it returns.
 * @return 0 to go on; anything else ends the call with BASN1_STOPPED */
typedef int (*basn1_write)(void* user, const char* text, size_t size);

/** Version of the library, "1.0.0"; a constant. */
BASN1_API const char* basn1_version(void);

/** Name of a status, "ASN1S_TAG_NOT_FOUND"; a constant, also for a number that is no status. */
BASN1_API const char* basn1_status_name(int status);

/** Makes a handle. @param handle receives it, null after a failure; end it with basn1_close */
BASN1_API int basn1_open(basn1_handle** handle);

/** Ends a handle, and the types of its schemas. Messages that are open on it are to be closed
 * before. Null is ignored. */
BASN1_API void basn1_close(basn1_handle* handle);

/** Sets how messages are read from now on. @param policies bits BASN1_...; 0 for none */
BASN1_API int basn1_set_policy(basn1_handle* handle, unsigned policies);

/** Sets a limit from now on. @param limit BASN1_LIMIT_... */
BASN1_API int basn1_set_limit(basn1_handle* handle, int limit, size_t value);

/** Finds a type by its name, "Certificate", or of those that are as published where the catalogue
 * is narrower, "PublishedKeys.RSAPrivateKey". @return null when there is none */
BASN1_API const basn1_type* basn1_find_type(const char* name);

/** The types of the catalogue by number, sorted by name. @return null behind the last one */
BASN1_API const basn1_type* basn1_type_at(size_t index);

/** Name of a type; a constant. Null for null. */
BASN1_API const char* basn1_type_name(const basn1_type* type);

/** The right-hand side of a type's ASN.1 assignment; a constant. Null for null. */
BASN1_API const char* basn1_type_notation(const basn1_type* type);

/** Reads ASN.1 modules (X.680 to X.683, and what X.208 had), which may import from each other, and
 * adds their types to those of a handle. Values of their identifiers get their names in JSON.
 * @param texts @p count of them, which can go afterwards
 * @return BASN1_BAD_VALUE for modules that cannot be read: the whole text of the failure is all
 * there is to say, a line each, as "own.asn1:3:9: error: type 'Nmae' is neither defined nor
 *         imported."; its path is the first place, "own.asn1:3:9". Types that were there stay */
BASN1_API int basn1_add_schema(basn1_handle* handle, const basn1_schema_text* texts, size_t count);

/** Finds a type of a handle: of the schemas added, the last one first, by "Type" or "Module.Type",
 * or else of the catalogue. @return null when there is none, and when memory is out */
BASN1_API const basn1_type* basn1_schema_type(const basn1_handle* handle, const char* name);

/** The types of the schemas added, one schema behind another. @return null behind the last one */
BASN1_API const basn1_type* basn1_schema_type_at(const basn1_handle* handle, size_t index);

/** Finds out what a message is.
 * @param label of its PEM block, or null
 * @param type receives the type; null when it is none that is usual, which is
 *        BASN1_NOT_SUPPORTED */
BASN1_API int basn1_recognise(basn1_handle* handle, const unsigned char* message, size_t size,
                              const char* label, const basn1_type** type);

/** Tells whether a message is what the policies want, to its last octet. */
BASN1_API int basn1_check(basn1_handle* handle, const basn1_type* type,
                          const unsigned char* message, size_t size);

/** Decodes a message and encodes it in DER.
 * @param der receives the encoding, to be given back with basn1_free; null after a failure
 * @param der_size receives its size; 0 after a failure */
BASN1_API int basn1_to_der(basn1_handle* handle, const basn1_type* type,
                           const unsigned char* message, size_t size, unsigned char** der,
                           size_t* der_size);

/** Writes the value of a message as JSON in ASCII, as docs/derview-json.md tells it, a line end
 * behind it. The text is written as the message is read: when that fails, it has been written as
 * far as it could be read, and is whole JSON.
 * @param indented 0 for one line
 * @param write is called with one piece after another; it must not call with the same handle
 * @param user is handed to it */
BASN1_API int basn1_to_json(basn1_handle* handle, const basn1_type* type,
                            const unsigned char* message, size_t size, int indented,
                            basn1_write write, void* user);

/** Encodes in DER what a JSON text tells. The offset of a failure is one in the text.
 * @param json @p size octets of UTF-8, which need not be terminated
 * @param der as for basn1_to_der */
BASN1_API int basn1_from_json(basn1_handle* handle, const basn1_type* type, const char* json,
                              size_t size, unsigned char** der, size_t* der_size);

/** Finds an element by its path, "tbsCertificate.extensions[3].extnValue". What is behind it is not
 * looked at, what stands in front of it is passed over by its length, and no policy is asked.
 * @param path the empty one is the message
 * @param offset receives where the element begins
 * @param length receives its octets, header included
 * @return BASN1_MISSING_ELEMENT when the message has none, BASN1_INVALID_PARAMETER for a text that
 *         is no path, BASN1_NOT_SUPPORTED for one in a segmented OCTET STRING */
BASN1_API int basn1_find(basn1_handle* handle, const basn1_type* type, const unsigned char* message,
                         size_t size, const char* path, size_t* offset, size_t* length);

/** Finds the path of the innermost element that an octet belongs to, as far as the message can be
 * read. As with basn1_find, no policy is asked.
 * @param path receives it; valid until the next call with the handle
 * @return BASN1_MISSING_ELEMENT when the octet belongs to none */
BASN1_API int basn1_path_at(basn1_handle* handle, const basn1_type* type,
                            const unsigned char* message, size_t size, size_t offset,
                            const char** path);

/** Opens an input that holds messages: DER or BER, one behind another, or text that stands for
 * them in PEM, base64, hexadecimal digits or JSON of the viewer.
 * @param input outlives what is opened
 * @param messages receives it, to be ended with basn1_messages_close; null after a failure */
BASN1_API int basn1_messages_open(basn1_handle* handle, const unsigned char* input, size_t size,
                                  basn1_messages** messages);

/** The next message.
 * @param message receives its octets, which live until the messages are closed; null at the end of
 *        the input, and for a damaged one, which is a status; the ones behind it can be had
 * @param size receives their count
 * @param label receives the label of its PEM block, empty without one; valid until the next call
 *        with the messages. May be null */
BASN1_API int basn1_messages_next(basn1_messages* messages, const unsigned char** message,
                                  size_t* size, const char** label);

/** Ends messages. Null is ignored. */
BASN1_API void basn1_messages_close(basn1_messages* messages);

/** Why the last call with a handle failed.
 * @param part BASN1_FAILURE_...
 * @return a terminated text, empty after a success; valid until the next call with the handle; null
 *         for a null handle or a part that there is not */
BASN1_API const char* basn1_failure_text(const basn1_handle* handle, int part);

/** Where the last call with a handle failed: in the message, or in the JSON text. 0 after a
 * success. */
BASN1_API size_t basn1_failure_offset(const basn1_handle* handle);

/** Gives back what basn1_to_der and basn1_from_json made. Null is ignored. */
BASN1_API void basn1_free(void* octets);

#ifdef __cplusplus
}
#endif

#endif

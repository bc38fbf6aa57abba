#ifndef BREVANTIS_ASN1_RUNTIME_BIG_INTEGER_H
#define BREVANTIS_ASN1_RUNTIME_BIG_INTEGER_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// INTEGER of any size (X.690, 8.3), carried as text.
///
/// Text in hexadecimal ("0x1f") and binary ("0b11") is a transcription of the two's complement
/// form: it is negative when its digits fill whole octets and the first bit is set, so that "0xff"
/// is -1 and "0x0ff" is 255. Text in decimal ("-129") and octal ("0o17") has a sign and a
/// magnitude.

struct ASN1CTXT;

/// An integer as sign and magnitude. It can start on an array of the caller's: set `mag` and
/// `allocated` after rtBigIntInit and leave `dynamic` clear.
struct RtBigIntDataRec {
    int numocts;           ///< octets in `mag`
    unsigned char* mag;    ///< the magnitude, most significant octet first
    int sign;              ///< 1, -1, or 0 for the value zero
    int allocated;         ///< capacity of `mag` in octets
    unsigned char dynamic; ///< non-zero once `mag` is a block of the context's heap
};

/// Zeroes all fields.
BREVANTIS_ASN1_API void rtBigIntInit(RtBigIntDataRec* rec) noexcept;

/// Reads text. Blanks in front are skipped.
/// @param rec made by rtBigIntInit; receives the value without leading zero octets. `mag` moves to
///        the context's heap when its capacity is too small; give it back with rtBigIntFree, after
///        a failure too
/// @param text NUL-terminated
/// @param radix 2, 8, 10 or 16, and then no prefix is expected; 0 lets the prefix decide among
///        "0x", "0b", "0o" and none for decimal
///        Decimal and octal digits are read two at a time, each pair by the rules of strtoul: a
///        blank or '+' may stand in front of the second digit of a pair
/// @return 0, or a status recorded in the context: ASN1S_BAD_VALUE for empty text, a lone sign or a
///         bad digit, ASN1S_INVALID_PARAMETER for another radix, ASN1S_NO_MEMORY when memory is out
BREVANTIS_ASN1_API int rtBigIntSetStr(ASN1CTXT* ctxt, RtBigIntDataRec* rec, const char* text,
                                      int radix) noexcept;

/// Length of the two's complement form in octets. For a negative value only the first two octets of
/// the magnitude are looked at: where the first is 0x80 and the second 0, a bit set further down
/// leaves the length one octet short.
BREVANTIS_ASN1_API int rtBigIntGetDataLen(RtBigIntDataRec* rec) noexcept;

/// Writes the two's complement form.
/// @param buffer the caller's, of @p bufferSize octets
/// @return the octets written, rtBigIntGetDataLen of them; ASN1S_STRING_OVERFLOW, recorded, when
///         they do not fit
BREVANTIS_ASN1_API int rtBigIntGetData(ASN1CTXT* ctxt, RtBigIntDataRec* rec, unsigned char* buffer,
                                       int bufferSize) noexcept;

/// Upper estimate of the digits that a value takes.
/// @param radix 2 to 16, even
/// @return the estimate; ASN1S_INVALID_PARAMETER for a radix below 2 or above 17
BREVANTIS_ASN1_API int rtBigIntDigitsNum(RtBigIntDataRec* rec, int radix) noexcept;

/// Gives a dynamic `mag` back to the heap. The fields stay: the record needs rtBigIntInit before
/// any other use. A null @p rec is ignored.
BREVANTIS_ASN1_API void rtBigIntFree(ASN1CTXT* ctxt, RtBigIntDataRec* rec) noexcept;

/// Writes the digits of a value, without a prefix. Radix 16 and 2 give all digits of as many octets
/// as the two's complement form has, the magnitude of a negative value among them; radix 10 gives a
/// sign; radix 8 gives the two's complement form.
/// @param buffer the caller's, of @p bufferSize characters, the final NUL included
/// @return 0; ASN1S_STRING_OVERFLOW, recorded, when the text does not fit; ASN1S_INVALID_PARAMETER
///         for another radix, recorded, and for an empty magnitude in radix 10 and 8, not recorded;
///         ASN1S_NO_MEMORY, recorded, when memory is out
BREVANTIS_ASN1_API int rtBigIntToString(ASN1CTXT* ctxt, RtBigIntDataRec* rec, int radix,
                                        char* buffer, int bufferSize) noexcept;

/// Compares two texts by value. Text that cannot be read counts as far as it was read; the failure
/// is recorded in the context.
/// @return -1, 0 or 1 as @p a is below, equal to or above @p b
BREVANTIS_ASN1_API int rtBigIntStrCompare(ASN1CTXT* ctxt, const char* a, const char* b) noexcept;

/// Reads an INTEGER as text.
/// @param text receives "0x" and lower case digits in a block of the context's heap. A value with
///        leading zero octets loses them, and gets one '0' digit when it would look negative
/// @param length with ASN1TagImplicit the length of the content; 0 reads as zero
/// @return 0, or a status. Recorded: ASN1S_END_OF_BUFFER for a header cut off, ASN1S_TAG_NOT_FOUND
///         for another tag, ASN1S_INVALID_LENGTH for a malformed length. Not recorded:
///         ASN1S_END_OF_BUFFER for content past the end of the message, ASN1S_NO_MEMORY when memory
///         is out
BREVANTIS_ASN1_API int xd_bigint(ASN1CTXT* ctxt, const char** text, ASN1TagType tagging,
                                 int length) noexcept;

/// Writes text as an INTEGER, in the minimal form where the text is hexadecimal or binary.
/// @param text NUL-terminated, in any form that rtBigIntSetStr takes with radix 0
/// @return octets written, or a status, recorded unless writing the header failed: ASN1S_BAD_VALUE
///         for null, empty or malformed text, ASN1S_BUFFER_OVERFLOW when a caller-owned buffer is
///         full, ASN1S_NO_MEMORY when memory is out
BREVANTIS_ASN1_API int xe_bigint(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging) noexcept;

/// Writes text as the octets of an unsigned number: no sign octet goes in front unless the text
/// itself has a leading '0' digit. So "0xff" gives FF and "0x00ff" gives 00 FF.
/// @param text NUL-terminated, "0" or hexadecimal or binary text
/// @return octets written, or a status as for xe_bigint; ASN1S_BAD_VALUE for any other text
BREVANTIS_ASN1_API int xe_biguint(ASN1CTXT* ctxt, const char* text, ASN1TagType tagging) noexcept;

#endif

#ifndef BREVANTIS_ASN1_RUNTIME_TIME_TEXT_H
#define BREVANTIS_ASN1_RUNTIME_TIME_TEXT_H

#include <array>

#include <brevantis/asn1/export.h>

/// @file
/// UTCTime and GeneralizedTime as text (X.680, clauses 46 and 47) and as broken-down fields.
///
/// These functions and the parsers of the time classes differ in what they tolerate; a text that
/// one of them takes may be refused by the other. Both stop at the terminator: what would stand
/// behind it counts as the end of the text.

struct ASN1CTXT;

/// Days of the months of a common year; the index is the month less one.
extern BREVANTIS_ASN1_API const std::array<unsigned char, 12> OS_daysInMonth;

/// A time as the plain functions see it.
struct ASN1TimeFields {
    short year;       ///< with its century
    short month;      ///< 1 to 12
    short day;        ///< 1 to 31
    short hour;       ///< 0 to 23
    short minute;     ///< 0 to 59
    short second;     ///< 0 to 59; a leap second is refused
    short diffHour;   ///< offset from UTC, -12 to 12
    short diffMinute; ///< offset from UTC, -59 to 59, with the sign of the offset
    /// Digits of the fraction of a second up to a terminator, without their leading zeros; empty
    /// when there is none or it is zero.
    char fraction[21];
    unsigned char utc; ///< 1 for a text that ended in "Z"
};

/// Parses a UTCTime: YYMMDDhhmm[ss] and "Z" or +hhmm or -hhmm. Years below 50 are of this century
/// (RFC 5280, 4.1.2.5.1). A field may be written with a blank or a sign in place of its first digit
/// where no digit is asked for, and nothing behind an offset is looked at.
/// @param ctxt records a failure; may be null
/// @param text up to its terminator
/// @param fields written on success only
/// @return 0; ASN1S_INVALID_FORMAT for a malformed text; ASN1S_INVALID_PARAMETER for a null @p text
///         or @p fields; failures are recorded
BREVANTIS_ASN1_API int rtParseUTCTime(ASN1CTXT* ctxt, const char* text,
                                      ASN1TimeFields* fields) noexcept;

/// Parses a GeneralizedTime: YYYYMMDDhh[mm[ss[.f...]]] and "Z", +hh[mm], -hh[mm] or nothing. A
/// fraction follows seconds only and keeps 20 digits; what comes behind these, or anything else
/// that opens no zone, makes the text a local time.
/// @param ctxt records a failure; may be null
/// @param text up to its terminator
/// @param fields written on success only
/// @return 0; ASN1S_INVALID_FORMAT for a malformed text; ASN1S_INVALID_PARAMETER for a null @p text
///         or @p fields; failures are recorded
BREVANTIS_ASN1_API int rtParseGeneralizedTime(ASN1CTXT* ctxt, const char* text,
                                              ASN1TimeFields* fields) noexcept;

/// Formats a GeneralizedTime with minutes and seconds. The fraction goes out as it stands, so that
/// one that was parsed has lost its leading zeros.
/// @param ctxt records a failure, and gives the memory when @p size is 0; may be null otherwise
/// @param fields the time; with `utc` set the offset is left out, not applied
/// @param text with @p size 0 receives a block of the context's heap, otherwise points to the
///        buffer that receives the text and its terminator
/// @param size octets of the buffer
/// @return 0; ASN1S_INVALID_FORMAT for a field out of range or a fraction without a terminator;
///         ASN1S_STRING_OVERFLOW when the buffer is too small; ASN1S_NO_MEMORY when memory is out;
///         ASN1S_INVALID_PARAMETER for null pointers; failures are recorded
BREVANTIS_ASN1_API int rtMakeGeneralizedTime(ASN1CTXT* ctxt, const ASN1TimeFields* fields,
                                             char** text, int size) noexcept;

#endif

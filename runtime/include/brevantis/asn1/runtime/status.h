#ifndef BREVANTIS_ASN1_RUNTIME_STATUS_H
#define BREVANTIS_ASN1_RUNTIME_STATUS_H

#include <brevantis/asn1/export.h>

/// @file
/// Status codes and the error record of a coding context.

/// Result of every plain coder: 0 is success, a negative value one of the failures below. An
/// encoder returns the number of octets that it added, 0 or more, in place of 0.
enum ASN1Status : int {
    ASN1S_SUCCESS = 0,                ///< nothing failed
    ASN1S_BUFFER_OVERFLOW = -1,       ///< a caller-owned buffer is too small to write into
    ASN1S_END_OF_BUFFER = -2,         ///< the message ends where more octets are needed
    ASN1S_TAG_NOT_FOUND = -3,         ///< the expected tag is not at the position
    ASN1S_INVALID_OBJID = -4,         ///< arcs that no object identifier can have
    ASN1S_INVALID_LENGTH = -5,        ///< a length that is malformed or disagrees with the content
    ASN1S_INVALID_ENUM = -6,          ///< an ENUMERATED value outside its type's range
    ASN1S_DUPLICATE_SET_MEMBER = -7,  ///< a member of a SET occurs twice
    ASN1S_MISSING_ELEMENT = -8,       ///< a mandatory member is absent
    ASN1S_UNKNOWN_SET_MEMBER = -9,    ///< a SET holds a member that its type does not have
    ASN1S_EXTRA_ELEMENT = -10,        ///< an element past the last member or the capacity
    ASN1S_INVALID_CHOICE = -11,       ///< a selector or tag that names no alternative
    ASN1S_NO_MEMORY = -12,            ///< an allocation failed, or nesting is too deep to follow
    ASN1S_STRING_OVERFLOW = -17,      ///< a value does not fit the capacity given
    ASN1S_BAD_VALUE = -18,            ///< a value that cannot be encoded or decoded
    ASN1S_BAD_TAG = -21,              ///< a tag number too big, or a wrong segment tag
    ASN1S_CONSTRAINT_VIOLATION = -23, ///< a size or value constraint is broken
    ASN1S_RANGE_ERROR = -24,          ///< the bounds of a bit range are crossed
    ASN1S_INVALID_UTF8 = -26,         ///< text that is not valid UTF-8
    ASN1S_CONCURRENT_MODIFICATION = -27, ///< a list changed behind its iterator's back
    ASN1S_ILLEGAL_STATE = -28,           ///< an iterator has no current element
    ASN1S_OUT_OF_BOUNDS = -29,           ///< a bit index outside the bit string
    ASN1S_INVALID_PARAMETER = -30,       ///< an argument is null or out of its domain
    ASN1S_INVALID_FORMAT = -31,          ///< a malformed time text or time field
    ASN1S_NOT_INITIALISED = -32,         ///< the context was never set up, or has no stream
    ASN1S_VALUE_TOO_BIG = -33,           ///< an INTEGER does not fit the target type
    ASN1S_NOT_SUPPORTED = -99            ///< the operation is not offered here
};

/// Name of a status code, such as "ASN1S_END_OF_BUFFER" for -2.
/// @param status the code as a coder returned it; a count of 0 or more counts as success
/// @return a constant text, "unknown status" for a number that no operation returns
BREVANTIS_ASN1_API const char* rtStatusName(int status) noexcept;

/// Error record of a context: the first status recorded since the last reset.
struct ASN1ErrInfo {
    int status; ///< 0 while nothing has been recorded
};

/// Records @p status unless one is recorded already, so that the innermost failure survives.
/// @param errInfo record of the context that fails
/// @param status the failure to record
/// @param module accepted for the interface's sake, not kept
/// @param line accepted for the interface's sake, not kept
/// @return @p status as given, so that a failing level can end with this call
BREVANTIS_ASN1_API int rtErrSetData(ASN1ErrInfo* errInfo, int status, const char* module,
                                    int line) noexcept;

/// Clears the record.
/// @return 0
BREVANTIS_ASN1_API int rtErrReset(ASN1ErrInfo* errInfo) noexcept;

/// Copies the recorded status from @p source to @p target.
/// @return the status copied
BREVANTIS_ASN1_API int rtErrCopyData(ASN1ErrInfo* source, ASN1ErrInfo* target) noexcept;

/// Accepts the offending number of a failed constraint. Nothing is stored.
/// @return 1
BREVANTIS_ASN1_API int rtErrAddIntParm(ASN1ErrInfo* errInfo, int value) noexcept;

/// Accepts the name of the value whose constraint failed. Nothing is stored.
/// @return 1
BREVANTIS_ASN1_API int rtErrAddStrParm(ASN1ErrInfo* errInfo, const char* text) noexcept;

/// Text of the recorded failure.
/// @return the empty text, always: a status has no text beyond its name
BREVANTIS_ASN1_API const char* rtErrGetText(ASN1ErrInfo* errInfo) noexcept;

/// Prints "ASN.1 ERROR: Status %d\n" with the recorded status on standard output.
/// @return what printing returned
BREVANTIS_ASN1_API int rtErrPrint(ASN1ErrInfo* errInfo) noexcept;

#endif

#ifndef BREVANTIS_ASN1_ASN1DATA_WALK_H
#define BREVANTIS_ASN1_ASN1DATA_WALK_H

#include <cstddef>
#include <string>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/object_identifier.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Going through an encoded message by the description of its type, without decoding it.
///
/// A walk reads exactly as the decoder does: it accepts what the decoder accepts, and where the
/// decoder fails it fails with the same status at the same octet. It stores nothing that grows with
/// the message and, but for one case that `walk` tells, allocates nothing. All positions count
/// octets from the start of the message.

namespace asn1data {

/// What a step of a path leads to.
enum class StepKind : unsigned char {
    Message,     ///< the message itself; the outermost step, without a text
    Member,      ///< an element of a SEQUENCE or SET, by its name
    Alternative, ///< the alternative of a CHOICE, by its name; it stands where the CHOICE stands
    Index,       ///< an element of a list, by its place, from 0
    Object,      ///< the typed form of an open value, by the name of the object of its identifier
    Addition     ///< an element behind the known ones of an extensible SEQUENCE, by its place
};

/// A step of the path to an element: a chain from the innermost step to the outermost, which lives
/// while the visitor is called and no longer.
struct WalkStep {
    const WalkStep* outer; ///< null for the message itself
    const char* name;      ///< Member, Alternative and Object; null otherwise
    unsigned index;        ///< Index and Addition; 0 otherwise
    StepKind kind;         ///< what the step leads to
};

/// Writes the path that ends with a step, as "tbsCertificate.extensions[3].extnValue.keyUsage": the
/// names joined by dots, places in brackets, additions as "addition[0]". The message itself is the
/// empty text. The text is cut where @p size ends, and always terminated unless @p size is 0.
/// @param step the innermost step
/// @param text room for @p size octets; may be null when @p size is 0
/// @return the length of the whole text without its terminator
BREVANTIS_ASN1_API std::size_t writePath(const WalkStep& step, char* text,
                                         std::size_t size) noexcept;

/// The path that ends with a step.
/// @throws std::bad_alloc
BREVANTIS_ASN1_API std::string pathText(const WalkStep& step);

/// The value of a primitive. Which members tell it goes by the shape of its type; the others are 0
/// or null. Octets stand in the message (in the assembled octets where WalkElement says so).
struct WalkValue {
    /// Boolean (0 or the octet that stands for true), Integer, Unsigned, Unsigned16, Enumerated.
    long long number;
    /// ObjectIdentifier; lives until the visitor returns.
    const ASN1OBJID* identifier;
    /// Strings, INTEGERs in text form (two's complement, as encoded) and raw elements (header
    /// included): the octets, the first bit of a BIT STRING being the high bit of the first octet.
    /// Null where a string comes in segments (WalkElement::segmented) or is empty.
    const unsigned char* octets;
    /// Octets of these values, without the headers of segments. 16- and 32-bit characters are two
    /// and four octets each, the high one first.
    unsigned octetCount;
    /// BIT STRING: its bits.
    unsigned bitCount;
};

/// An element of a message. It is filled for one call of the visitor.
///
/// Each element that has octets of its own is reported once. So a CHOICE is reported as its
/// alternative, and a resolved open type as its typed value: the path has a step for both, the
/// element is one. An EXPLICIT tag belongs to the header of the element that it stands around.
struct WalkElement {
    const WalkStep* step;              ///< ends the path to the element
    const TypeDescription* type;       ///< null for an Addition
    const ElementDescription* element; ///< Member and Alternative: the declaration, else null
    const TypeDescription* container;  ///< type of the record, CHOICE or list around; or null
    const ObjectDescription* object;   ///< Object: what the identifier selected; else null
    const unsigned char* data;         ///< first octet of the element
    unsigned offset;                   ///< of the first octet of the element, EXPLICIT tags too
    unsigned valueOffset;              ///< of the innermost header; `offset` without EXPLICIT tags
    unsigned headerLength;             ///< octets from `offset` to the contents
    int contentLength;                 ///< octets of contents, or ASN1IndefiniteLength
    ASN1TAG tag;                       ///< of the innermost header, its form bit as in the message
    unsigned depth;                    ///< elements around it that have been entered
    bool segmented;                    ///< a string in constructed form
    bool encapsulates;                 ///< an OCTET STRING whose typed contents follow in it
    /// The element lies in the contents of a segmented OCTET STRING, put together: offsets count
    /// from the start of these contents, and `data` lives until the visitor returns.
    bool assembled;
    WalkValue value; ///< primitives, and an OCTET STRING that is entered
};

/// What becomes of a walk after a call of the visitor.
enum class WalkAction : unsigned char {
    Continue, ///< it goes on
    /// From `enter`: the contents are stepped over by their length, unread and unchecked, their
    /// constraint included; `leave` is not called. Elsewhere the same as Continue.
    Skip,
    Stop ///< the walk ends at once, without a failure
};

/// What a visitor looks at. Whatever it does not look at is read and checked all the same.
struct WalkInterest {
    bool containers = true; ///< `enter` and `leave` are called
    bool values = true;     ///< `primitive` is called
    /// The walk goes on behind faults, and `fault` is called; `enter`, `leave` and `primitive` then
    /// are in any case.
    bool faults = false;
};

struct WalkFailure;
struct WalkFault;

/// Is told what a walk comes across, in the order of the message. One exception: the octets of an
/// open value are reported when the record around them has been read whole, for only then does the
/// decoder resolve them (a SafeBag's bagAttributes come before its bagValue).
///
/// An element is reported as soon as it has been read; a constraint that it breaks is the failure
/// that follows. When a record fails behind its open value, the value is reported raw, unless the
/// failure lies inside another element of the record. A DEFAULT that is not in the message is not
/// reported. An open value of an unknown identifier is a primitive of shape OpenType (or the OCTET
/// STRING that it stands in), with its whole element as octets.
class BREVANTIS_ASN1_API WalkVisitor {
public:
    virtual ~WalkVisitor();

    /// A constructed value, or an OCTET STRING that `encapsulates`, in front of what is in it.
    virtual WalkAction enter(const WalkElement& element);
    /// The same element behind what is in it. Not called after a failure or a stop in it.
    virtual WalkAction leave(const WalkElement& element);
    /// A value that nothing else is reported of.
    virtual WalkAction primitive(const WalkElement& element);

    /// Is asked once, before the walk. An element that nobody looks at is not reported, which saves
    /// the time for it; one that is not entered with a call is gone through, as after Continue.
    virtual WalkInterest interest() const;

    /// An open value that ASN1F_TOLERATE_OPEN_VALUES leaves raw, which is reported next.
    /// @param failure why; lives until the visitor returns
    virtual WalkAction tolerated(const WalkFailure& failure);

    /// A fault that the walk goes on behind.
    /// @return Stop to end the walk; anything else goes on
    virtual WalkAction fault(const WalkFault& fault);
};

/// Size of a whole element in octets, header, EXPLICIT tags and end-of-contents included.
/// @param element as reported; call it from the visitor
/// @param end behind the last octet of the message (of the assembled octets)
/// @return the size; 0 when the element does not end before @p end. An element of indefinite length
///         is gone through for it, all others are not
BREVANTIS_ASN1_API unsigned elementSize(const WalkElement& element,
                                        const unsigned char* end) noexcept;

/// Copies the octets of a string, those of segments put together.
/// @param element a primitive as reported; call it from the visitor
/// @param target receives as many octets as @p size allows; may be null when @p size is 0
/// @return octets of the whole value (WalkValue::octetCount); 0 for a BIT STRING in segments, which
///         only decoding puts together
BREVANTIS_ASN1_API std::size_t copyOctets(const WalkElement& element, unsigned char* target,
                                          std::size_t size) noexcept;

/// What a failed walk wanted to find.
enum class Expectation : unsigned char {
    Nothing,       ///< no failure
    Element,       ///< an element of WalkFailure::type
    OneOf,         ///< `expectedCount` elements of `container` from `firstExpected` on
    NoElement,     ///< the end of `container`, all of whose elements are there
    OtherMember,   ///< a member of the SET `container` that is not there yet
    Header,        ///< whole, well-formed identifier and length octets
    Contents,      ///< well-formed contents of `type`
    EndOfContents, ///< end-of-contents octets, 00 00
    InRange,       ///< a value or size within `constraint`
    LessNesting,   ///< fewer open types and recursive types inside each other (64)
    Memory,        ///< memory to put a segmented string together; a message below 2 GB
    Octets,        ///< the octets of the open value `type`
    Der,           ///< the one form of the Distinguished Encoding Rules: ASN1F_DER
    Exact,         ///< what a record holds as it came: ASN1F_EXACT
    FewerElements  ///< no more elements than the limit
};

/// What a failed walk found in its place.
enum class Finding : unsigned char {
    Nothing,      ///< no failure, or nothing to be told beyond what was expected
    EndOfMessage, ///< no octet is left
    EndOfElement, ///< the contents of the element around it are used up
    Identifier,   ///< the identifier octet WalkFailure::foundNumber
    Length,       ///< contents of `foundNumber` octets (ASN1IndefiniteLength: of indefinite length)
    Number,       ///< the value or size `foundNumber`
    BadText,      ///< text that is no UTF-8
    Deviation     ///< what WalkFailure::deviation says
};

/// Why a walk failed. It holds everything itself and may be kept.
struct WalkFailure {

    /// Octets of `path`.
    enum : std::size_t { PathSize = 256 };

    int status;             ///< the decoder's; 0 when nothing failed
    unsigned offset;        ///< where the decoder stands when it fails
    unsigned elementOffset; ///< first octet of the element that the path names, if it begins at all
    unsigned partOffset;    ///< `offset` counted from the start of the innermost open value
    bool assembled;         ///< as in WalkElement: all three count from the assembled octets
    bool pathCut;           ///< the path is longer than `path`
    Expectation expectation;          ///< what was to stand there
    Finding finding;                  ///< what stands there instead
    long long foundNumber;            ///< what `finding` tells by a number; 0 otherwise
    const TypeDescription* type;      ///< that was to be read; null when none of one
    const TypeDescription* container; ///< OneOf, NoElement, OtherMember; else null
    unsigned firstExpected;           ///< OneOf: index in `container->elements`
    unsigned expectedCount;           ///< OneOf
    Constraint constraint;            ///< InRange
    const char* deviation;            ///< Der and Exact: what was found, in English; else null
    const char* clause;               ///< Der: of X.690, as "10.1"; else null
    char path[PathSize];              ///< terminated text, as writePath gives it
};

/// A fault that a walk goes on behind, because its visitor asks for that (WalkInterest::faults).
///
/// A fault costs the element that it is in, where that ends inside the one around it, or else what
/// is left of that one: its octets are told here, as far as nothing of them has been reported, and
/// the elements behind them are read by their types again. Of a mandatory element that is missing
/// nothing is told but that. Elements that were entered are left in any case, also those that
/// nobody knows the end of; then what is left of the element around is told.
///
/// So each octet of a message belongs to the header of an element that was entered, to a primitive,
/// to what is told here, to end-of-contents octets, or stands behind the message; an open value
/// that is read at the end of its record may have been told here in front of it.
struct WalkFault {
    const WalkFailure& failure; ///< lives until the visitor returns
    const unsigned char* data;  ///< octets that are reported in no other way
    unsigned offset;            ///< of the first of them
    unsigned size;              ///< 0 when the element had been reported already
    bool assembled;             ///< as in WalkElement
};

/// What was expected, in English: "INTEGER (02)", "one of [0] version, serialNumber INTEGER (02)",
/// "a size of 1..64", "end of contents". The text is cut as writePath cuts it.
/// @return the length of the whole text without its terminator
BREVANTIS_ASN1_API std::size_t writeExpected(const WalkFailure& failure, char* text,
                                             std::size_t size) noexcept;

/// What was found, in English: "tag 30 (SEQUENCE)", "end of message", "a size of 70".
/// @return the length of the whole text without its terminator
BREVANTIS_ASN1_API std::size_t writeFound(const WalkFailure& failure, char* text,
                                          std::size_t size) noexcept;

/// The whole failure in one line: path, offset, what was expected and found, and the name of the
/// status: "tbsCertificate.version at offset 8: expected INTEGER (02), found tag 04 (OCTET STRING)
/// (ASN1S_TAG_NOT_FOUND)".
/// @return the length of the whole text without its terminator
BREVANTIS_ASN1_API std::size_t writeFailure(const WalkFailure& failure, char* text,
                                            std::size_t size) noexcept;

/// The text of writeFailure.
/// @throws std::bad_alloc
BREVANTIS_ASN1_API std::string failureText(const WalkFailure& failure);

/// How a walk ended.
struct WalkResult {
    /// 0 when the message was accepted or the visitor stopped, else negative; that of the first
    /// fault where the walk went on behind faults.
    int status;
    bool stopped;        ///< the visitor stopped it
    unsigned consumed;   ///< octets that the message takes; what is behind them was not looked at
    WalkFailure failure; ///< why, when it is not 0
};

/// Goes through one message.
///
/// Everything up to a failure has been reported when it fails. Nothing is allocated, unless an
/// OCTET STRING that holds a value of a known type comes in segments: its contents are then put
/// together in a block of the heap functions (`g_malloc_func`), which is freed before the walk
/// returns. The stack in use is bounded by the nesting limit of 64 open and recursive types: 400 kB
/// at most.
/// @param type what the message is
/// @param message @p size octets, which must not change meanwhile; may be null when @p size is 0
/// @param size at most 0x7FFFFFFF, else ASN1S_VALUE_TOO_BIG and nothing is read
/// @param visitor is called meanwhile; what it throws passes through
BREVANTIS_ASN1_API WalkResult walk(const TypeDescription& type, const unsigned char* message,
                                   std::size_t size, WalkVisitor& visitor);

/// An element that was found in a message.
struct ElementSpan {
    int status;                  ///< 0 when it was found
    const unsigned char* data;   ///< its first octet, null when it was not found
    unsigned size;               ///< octets of the whole element
    unsigned offset;             ///< of the first octet in the message
    unsigned contentOffset;      ///< of the first octet of contents
    int contentLength;           ///< octets of contents, or ASN1IndefiniteLength
    const TypeDescription* type; ///< its type; null when it was not found
    WalkFailure failure;         ///< why, when the message failed in front of the element
};

/// Finds an element by its path, and stops there: the way to a few fields of a message, where they
/// stand. What is in front of it and not on the way to it is stepped over by its length; what is
/// behind it is not looked at.
/// @param path as writePath writes it ("tbsCertificate",
///        "tbsCertList.revokedCertificates[999999]"). Names of alternatives and objects at its end
///        may be left out; the empty path is the message. In a list of records that begin with an
///        OBJECT IDENTIFIER, the arcs of one may stand in place of the index, and name the first
///        such record: "tbsCertificate.extensions[2.5.29.17].extnValue.subjectAltName" are the
///        alternative names of a certificate
/// @return the span. Its status is ASN1S_MISSING_ELEMENT when the message has no such element,
///         ASN1S_END_OF_BUFFER when it has the element, but not whole, ASN1S_INVALID_PARAMETER for
///         a text that is no path, ASN1S_NOT_SUPPORTED for an element inside a segmented OCTET
///         STRING, which has no place in the message; otherwise that of the walk
BREVANTIS_ASN1_API ElementSpan findElement(const TypeDescription& type,
                                           const unsigned char* message, std::size_t size,
                                           const char* path);

/// Finds several elements in one pass (in one for each 16 of them).
/// @param paths @p count paths, each as with findElement
/// @param spans receives @p count spans, in the order of the paths, each as findElement finds it;
///        but where the message fails on the way to one of them, all that have not been found then
///        have that status
BREVANTIS_ASN1_API void findElements(const TypeDescription& type, const unsigned char* message,
                                     std::size_t size, const char* const* paths, ElementSpan* spans,
                                     std::size_t count);

} // namespace asn1data

#endif

#ifndef BREVANTIS_ASN1_ASN1DATA_READING_POLICY_H
#define BREVANTIS_ASN1_ASN1DATA_READING_POLICY_H

#include <cstddef>
#include <memory>
#include <vector>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>

/// @file
/// How strictly messages are read, and why one was refused.
///
/// Policies are flags of a context (rtCtxtSetFlag), set before it decodes; the context of a message
/// buffer takes them as well. All are off at first, and cost nothing then:
///  - ASN1F_TOLERATE_OPEN_VALUES: the value of a known identifier that does not decode stays raw,
///    as that of an unknown one does, and the rest of the message is read. It is the innermost open
///    value that fails, what is around it is read typed; the error record is as before. It is
///    written as it came. Memory that is out and limits are no fault of a value: they still end the
///    reading.
///  - ASN1F_TOLERATE_SIZES: SIZE and value ranges are not enforced, on reading, and on writing with
///    a context that has the flag. Arrays, fixed strings and bit fields hold what they can, and an
///    ENUMERATED knows the numbers that it lists.
///  - ASN1F_EXACT: what a record cannot hold is refused instead of changed: text with a zero octet
///    inside, negative numbers in unsigned fields, arcs and numbers beyond 32 bits, lengths that do
///    not agree with what is inside. What is accepted is changed by decoding and encoding in
///    nothing but that BER becomes DER.
///  - ASN1F_DER: what is not DER (X.690, 8, 10 and 11) is refused.
/// The last two hold for the whole message, also where the first would leave a value raw. They read
/// the message twice. Refused is what they do not allow with the status nearest to it, and the
/// context stands on the element that it is about.
///
/// Walks have the policies as an argument; they accept what a context with the same ones accepts.

namespace asn1data {

/// How a message is read.
struct ReadingPolicy {
    int flags = 0;             ///< ASN1ContextFlag bits of the policies; others do not count
    unsigned elementLimit = 0; ///< as for rtCtxtSetElementLimit; 0 for no limit
    unsigned depthLimit = 64;  ///< as for rtCtxtSetDepthLimit; more than 64 is 64
    /// As for rtMemHeapSetLimit; 0 for no limit. A walk stores nothing and does not look at it.
    std::size_t octetLimit = 0;

    /// No policy and no limit beyond that of 64 levels.
    ReadingPolicy() = default;
    /// Policies without limits.
    ReadingPolicy(int policies) noexcept : flags(policies) {} // NOLINT(google-explicit-constructor)
    /// What is in force in a context, but for the limit of its heap.
    BREVANTIS_ASN1_API explicit ReadingPolicy(const ASN1CTXT& ctxt) noexcept;

    /// Puts the policy in force in a context: its flags beside those that are set, its limits in
    /// place of others.
    /// @return 0; what rtMemHeapSetLimit returns
    BREVANTIS_ASN1_API int apply(ASN1CTXT* ctxt) const noexcept;
};

/// Goes through one message under a policy, otherwise as `walk` without one. What breaks a rule of
/// ASN1F_EXACT or ASN1F_DER is the failure that the walk ends with, before it is reported; contents
/// that the visitor steps over are not looked at. An open value that is left raw is told of by
/// `tolerated` and then reported as a primitive.
/// @throws std::bad_alloc under ASN1F_EXACT and ASN1F_DER
BREVANTIS_ASN1_API WalkResult walk(const TypeDescription& type, const unsigned char* message,
                                   std::size_t size, WalkVisitor& visitor,
                                   const ReadingPolicy& policy);

/// Why a message is refused.
/// @param message as it was given to the decoder; the first element of @p size octets is looked at
/// @param policy what was in force: `ReadingPolicy(*ctxt)` for a context
/// @return a failure to be kept, made by going through the message; with the status 0 when the
///         message is accepted. One that is cut off is not: setBuffer and xd_setp refuse it
///         (ASN1S_INVALID_LENGTH), though a decoder need not
/// @throws std::bad_alloc under ASN1F_EXACT and ASN1F_DER
BREVANTIS_ASN1_API WalkFailure explain(const TypeDescription& type, const unsigned char* message,
                                       std::size_t size, const ReadingPolicy& policy = {});

/// The open values that a message leaves raw under ASN1F_TOLERATE_OPEN_VALUES, which is implied,
/// and why, in the order in which they are read.
/// @param policy what else is in force
/// @throws std::bad_alloc
BREVANTIS_ASN1_API std::vector<WalkFailure> toleratedFaults(const TypeDescription& type,
                                                            const unsigned char* message,
                                                            std::size_t size,
                                                            const ReadingPolicy& policy = {});

/// Something in a message that the Distinguished Encoding Rules do not allow.
struct Deviation {
    const WalkStep* step; ///< ends the path to the element; lives as long as the visitor is called
    unsigned offset;      ///< of the octets that it is about
    bool assembled;       ///< as in WalkElement
    const char* what;     ///< in English: "length in more octets than it needs"
    const char* clause;   ///< of X.690: "10.1"
    int status;           ///< that ASN1F_DER refuses it with
};

/// Compares what a walk reports with the Distinguished Encoding Rules (X.690, 8, 10 and 11).
/// DEFAULT values are known where the type's description tells them. What is in an open value of an
/// unknown type is looked at as far as its universal tags tell.
class BREVANTIS_ASN1_API DerVisitor : public WalkVisitor {
public:
    /// @param message what is walked; it outlives the object
    /// @throws std::bad_alloc
    DerVisitor(const unsigned char* message, std::size_t size);
    ~DerVisitor() override;
    DerVisitor(const DerVisitor&) = delete;
    DerVisitor& operator=(const DerVisitor&) = delete;

    WalkAction enter(const WalkElement& element) override;
    WalkAction leave(const WalkElement& element) override;
    WalkAction primitive(const WalkElement& element) override;

    /// Is called for each deviation in the order in which they are found.
    /// @return Stop to end the walk; anything else goes on
    virtual WalkAction deviates(const Deviation& deviation) = 0;

private:
    class Rules;
    std::unique_ptr<Rules> rules_;
};

/// The first place where a message is not DER: `explain` under ASN1F_DER.
/// @return the failure, with the status 0 when there is none
/// @throws std::bad_alloc
BREVANTIS_ASN1_API WalkFailure firstDeviation(const TypeDescription& type,
                                              const unsigned char* message, std::size_t size);

} // namespace asn1data

#endif

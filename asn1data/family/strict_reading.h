#ifndef BREVANTIS_ASN1DATA_FAMILY_STRICT_READING_H
#define BREVANTIS_ASN1DATA_FAMILY_STRICT_READING_H

#include <brevantis/asn1/asn1data/reading_policy.h>
#include <brevantis/asn1/runtime/tag_length.h>

// Policies that look at more than the flow of decoding does. Their rules are held by a walk in
// front of the decoding, so that both agree and the flow has nothing to do with them.

namespace asn1data::family {

/// The flags that are policies.
enum : int {
    StrictFlags = ASN1F_EXACT | ASN1F_DER,
    PolicyFlags = ASN1F_TOLERATE_OPEN_VALUES | ASN1F_TOLERATE_SIZES | StrictFlags
};

/// Whether a context has to look at a message before it decodes it.
inline bool isStrict(const ASN1CTXT& ctxt) {
    return (ctxt.flags & StrictFlags) != 0;
}

/// Whether a message is refused before it is decoded. A context that could not read its first
/// header stands behind some of its octets, where a message may begin by chance. One that is longer
/// than what there is of it stands at the beginning, and is left to the rules.
/// @param flags of policies
/// @param bound what binding the message came to
inline bool isRefusedUnread(int flags, int bound) {
    return (flags & StrictFlags) != 0 && bound != ASN1S_SUCCESS && bound != ASN1S_INVALID_LENGTH;
}

/// Holds the value at the context's position to the rules of its policies.
/// @param tagging as for decode; of a value whose tag was read, the contents are looked at
/// @return 0, also for what the decoder itself refuses; or the status of a broken rule, with the
///         context on the element that broke it; ASN1S_NO_MEMORY
int checkStrictly(ASN1CTXT* ctxt, const TypeDescription& type, ASN1TagType tagging,
                  int length) noexcept;

/// A walk that holds no rules; the policy's other flags and its limits count.
WalkResult walkPlainly(const TypeDescription& type, const unsigned char* message, std::size_t size,
                       WalkVisitor& visitor, const ReadingPolicy& policy);

} // namespace asn1data::family

#endif

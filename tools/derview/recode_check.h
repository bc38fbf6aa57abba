#ifndef DERVIEW_RECODE_CHECK_H
#define DERVIEW_RECODE_CHECK_H

#include <optional>

#include <brevantis/asn1/asn1data/walk_rules.h>

#include "recode.h"

namespace derview {

/// Compares a message with what comes of decoding and encoding it again.
///
/// A message of up to a megabyte is taken as a whole. Of a larger one each element of up to a
/// megabyte is taken by itself, and what stands around these is compared with what an encoder makes
/// of it: headers, the order of members, DEFAULT values. So the memory that it takes does not grow
/// with the message. Where an element comes out at another size, its length octets are the first to
/// differ; what is in it is then gone through in the same way, to find the reason.
class RecodeCheck : public asn1data::WalkVisitor {
public:
    /// @param message that a walk has accepted
    /// @param policy that it is read by
    RecodeCheck(Octets message, const asn1data::ReadingPolicy& policy, Recoder& recoder)
        : message_(message), policy_(policy), recoder_(recoder),
          order_(message.data(), message.size()) {}

    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction leave(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;

    /// Offset of the first octet that comes out differently, in the innermost element that does.
    std::optional<std::size_t> difference;
    /// Of an encoder that failed.
    int status = 0;

private:
    enum class Outcome : unsigned char { Same, Different, OtherSize, Unknown };

    bool differsAround(const asn1data::WalkElement& element);
    Outcome comparePiece(const asn1data::WalkElement& element);

    Octets message_;
    const asn1data::ReadingPolicy policy_;
    Recoder& recoder_;
    asn1data::MemberOrder order_;
    OctetStore piece_;
};

/// Where two encodings part; the size of the shorter one when it begins the other.
std::size_t firstDifference(Octets one, Octets other);

} // namespace derview

#endif

#ifndef DERVIEW_FAILURE_TEXT_H
#define DERVIEW_FAILURE_TEXT_H

#include <string>

#include <brevantis/asn1/asn1data/walk.h>

namespace derview {

/// A text that one of the functions of walk.h writes, whole.
template <class Write>
std::string wholeText(Write write) {
    std::string text(write(nullptr, std::size_t{0}), '\0');
    write(text.data(), text.size() + 1);
    return text;
}

/// What a failed walk expected.
std::string expectedText(const asn1data::WalkFailure& failure);
/// What it found; empty when there is nothing to add.
std::string foundText(const asn1data::WalkFailure& failure);

/// Offset and path, as "8 (tbsCertificate.version)". An offset in octets that were put together
/// from segments is marked "~".
std::string placeText(const asn1data::WalkFailure& failure);

/// "expected INTEGER (02), found tag 04 (OCTET STRING)"
std::string reasonText(const asn1data::WalkFailure& failure);

/// "-3 ASN1S_TAG_NOT_FOUND"
std::string statusText(int status);

/// "error -3 ASN1S_TAG_NOT_FOUND at 8 (tbsCertificate.version): expected X, found Y"
std::string errorText(const asn1data::WalkFailure& failure);

/// A path in parentheses, "(the message)" for the message itself.
std::string pathInParentheses(const std::string& path);

} // namespace derview

#endif

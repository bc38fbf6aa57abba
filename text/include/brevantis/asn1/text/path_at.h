#ifndef BREVANTIS_ASN1_TEXT_PATH_AT_H
#define BREVANTIS_ASN1_TEXT_PATH_AT_H

#include <cstddef>
#include <string>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/text/export.h>

/// @file
/// From an offset in a message to the path of the element there.

namespace asn1text {

/// Finds the path of the innermost element that the octet at an offset belongs to.
class BREVANTIS_ASN1_TEXT_API PathAtOffset : public asn1data::WalkVisitor {
public:
    /// @param offset of the octet in the message
    explicit PathAtOffset(std::size_t offset) : offset_(offset) {}

    asn1data::WalkAction enter(const asn1data::WalkElement& element) override;
    asn1data::WalkAction primitive(const asn1data::WalkElement& element) override;

    std::string path;   ///< empty for the message itself
    bool found = false; ///< whether the octet belongs to an element that was read

private:
    bool isOutside(const asn1data::WalkElement& element) const;
    void take(const asn1data::WalkElement& element);

    std::size_t offset_;
};

} // namespace asn1text

#endif

#ifndef BREVANTIS_ASN1_TEXT_RECOGNITION_H
#define BREVANTIS_ASN1_TEXT_RECOGNITION_H

#include <string>
#include <string_view>

#include <brevantis/asn1/asn1data/describe.h>

#include <brevantis/asn1/text/export.h>
#include <brevantis/asn1/text/octets.h>

/// @file
/// Which type a message is.

namespace asn1text {

/// What a message was taken for, and why.
struct Recognition {
    const asn1data::TypeDescription* type = nullptr; ///< null when nothing fits
    /// "by its PEM label", "by its content type", "best match"; or why nothing fits
    std::string reason;
};

/// Finds the type of a message: the one that its PEM label names if the message begins like one, or
/// else the usual top-level type that the message is, or agrees with for longest. A type of the
/// catalogue gives way to its published form where only that fits; messages above 16 MiB are not
/// gone through for this.
/// @param message all of it, or as much as there is
/// @param label of its PEM block; empty without one
/// @param cut octets at its end are missing and may be zeros, so that the agreement of less counts
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API Recognition recognise(Octets message, std::string_view label = {},
                                              bool cut = false);

/// The label of a PEM block of a type: that of RFC 7468 or the usual one, else the name of the type
/// in capital letters.
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::string labelOf(const asn1data::TypeDescription& type);

} // namespace asn1text

#endif

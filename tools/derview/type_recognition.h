#ifndef DERVIEW_TYPE_RECOGNITION_H
#define DERVIEW_TYPE_RECOGNITION_H

#include <string>

#include <brevantis/asn1/asn1data/describe.h>

#include "message.h"

namespace derview {

/// What a message was taken for, and why.
struct Recognition {
    const asn1data::TypeDescription* type = nullptr; ///< null when nothing fits
    /// "as told", "by its PEM label", "by its content type", "best match"; or why nothing fits
    std::string reason;
};

/// Finds the type of a message: the one that is given, or else the one that its PEM label names if
/// the message begins like one, or else the usual top-level type that the message is, or agrees
/// with for longest.
/// @param given of the command line; null without one
Recognition recognise(const Message& message, const asn1data::TypeDescription* given);

} // namespace derview

#endif

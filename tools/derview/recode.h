#ifndef DERVIEW_RECODE_H
#define DERVIEW_RECODE_H

#include <string>

#include <brevantis/asn1/asn1data/reading_policy.h>
#include <brevantis/asn1/runtime.h>

#include "octets.h"

namespace derview {

/// Decodes values and encodes them again. A value may ask for as much memory as messages in use do
/// many times over, and no more: a few octets of a message can ask for thousands.
class Recoder {
public:
    /// @return 0, or the status of the decoder or encoder
    int recode(const asn1data::TypeDescription& type, Octets message,
               const asn1data::ReadingPolicy& policy);

    /// What was wrong the last time: "-23 ASN1S_CONSTRAINT_VIOLATION in encoding".
    const std::string& problem() const { return problem_; }

    /// What came out; it lives until the next call.
    Octets encoded() const { return encoded_; }

private:
    int fail(int status, const std::string& place);

    ASN1BEREncodeBuffer output_;
    Octets encoded_;
    std::string problem_;
};

} // namespace derview

#endif

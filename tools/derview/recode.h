#ifndef DERVIEW_RECODE_H
#define DERVIEW_RECODE_H

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/runtime.h>

#include "octets.h"

namespace derview {

/// Decodes values and encodes them again.
class Recoder {
public:
    /// @return 0, or the status of the decoder or encoder
    int recode(const asn1data::TypeDescription& type, Octets message);

    /// What came out; it lives until the next call.
    Octets encoded() const { return encoded_; }

private:
    ASN1BEREncodeBuffer output_;
    Octets encoded_;
};

} // namespace derview

#endif

#ifndef BREVANTIS_ASN1DATA_FAMILY_OPEN_VALUE_H
#define BREVANTIS_ASN1DATA_FAMILY_OPEN_VALUE_H

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/object.h>
#include <brevantis/asn1/runtime/context.h>

// How what is in an open value is decoded, by whoever is decoding what is around it.

namespace asn1data::family {

/// Decodes a value at the context's position, as `decode` does.
struct ContentDecoder {
    using Call = int (*)(ASN1CTXT* ctxt, const TypeDescription& type, void* value, void* state);

    /// By `decode` itself.
    ContentDecoder() = default;
    ContentDecoder(Call call, void* state) : call_(call), state_(state) {}

    int operator()(ASN1CTXT* ctxt, const TypeDescription& type, void* value) const {
        return call_ == nullptr ? decode(ctxt, type, value, ASN1TagExplicit, 0)
                                : call_(ctxt, type, value, state_);
    }

private:
    Call call_ = nullptr;
    void* state_ = nullptr;
};

/// As the one without a decoder.
int decodeOpenValue(ASN1CTXT* ctxt, const TypeDescription& type, void* value,
                    const ContentDecoder& decoder);

/// As the one without a decoder.
int decodeSlot(ASN1CTXT* ctxt, const TypeDescription& type, Asn1TObject& slot,
               const ContentDecoder& decoder);

/// Whether a context takes an open value as it is that failed to decode. What has no memory, or
/// goes beyond a limit, would do so as well in the next one.
inline bool staysRaw(const ASN1CTXT& ctxt, int status) {
    return (ctxt.flags & ASN1F_TOLERATE_OPEN_VALUES) != 0 && status != ASN1S_NO_MEMORY;
}

} // namespace asn1data::family

#endif

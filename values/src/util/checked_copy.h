#ifndef BREVANTIS_ASN1_VALUES_SRC_UTIL_CHECKED_COPY_H
#define BREVANTIS_ASN1_VALUES_SRC_UTIL_CHECKED_COPY_H

#include <brevantis/asn1/values/util/coding.h>

namespace Brevantis::ASN1 {

/// Copies a record with an open value, once that is seen to decode: one of a known type that does
/// not is not let out.
/// @tparam resolve decodes the open value of a record
/// @throws ATL::CAtlException with CRYPT_E_ASN1_INTERNAL when it does not decode, with
///         CRYPT_E_ASN1_MEMORY when memory is out
template <class Traits, int (*resolve)(ASN1CTXT*, typename Traits::ASN1_T*)>
void copyResolved(ASN1CTXT* ctxt, typename Traits::ASN1_T& source,
                  typename Traits::ASN1_T& target) {
    DecodeBuffer buffer;
    requireSuccess(resolve(buffer.getCtxtPtr(), &source));
    Traits::copy(ctxt, source, target);
}

} // namespace Brevantis::ASN1

#endif

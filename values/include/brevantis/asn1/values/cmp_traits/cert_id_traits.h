#ifndef BREVANTIS_ASN1_VALUES_CMP_TRAITS_CERT_ID_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMP_TRAITS_CERT_ID_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/cmp/cert_id_traits.h>

#endif

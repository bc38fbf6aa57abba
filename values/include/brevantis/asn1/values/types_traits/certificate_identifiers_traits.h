#ifndef BREVANTIS_ASN1_VALUES_TYPES_TRAITS_CERTIFICATE_IDENTIFIERS_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_TRAITS_CERTIFICATE_IDENTIFIERS_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/types/certificate_identifiers_traits.h>

#endif

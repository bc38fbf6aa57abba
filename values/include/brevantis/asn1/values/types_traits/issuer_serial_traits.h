#ifndef BREVANTIS_ASN1_VALUES_TYPES_TRAITS_ISSUER_SERIAL_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_TRAITS_ISSUER_SERIAL_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/types/issuer_serial_traits.h>

#endif

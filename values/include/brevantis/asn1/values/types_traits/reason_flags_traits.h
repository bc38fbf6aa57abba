#ifndef BREVANTIS_ASN1_VALUES_TYPES_TRAITS_REASON_FLAGS_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_TRAITS_REASON_FLAGS_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/types/reason_flags_traits.h>

#endif

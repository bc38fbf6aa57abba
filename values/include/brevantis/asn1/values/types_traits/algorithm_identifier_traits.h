#ifndef BREVANTIS_ASN1_VALUES_TYPES_TRAITS_ALGORITHM_IDENTIFIER_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_TRAITS_ALGORITHM_IDENTIFIER_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/types/algorithm_identifier_traits.h>

#endif

#ifndef BREVANTIS_ASN1_VALUES_TYPES_TRAITS_OTHER_HASH_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_TRAITS_OTHER_HASH_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/types/other_hash_traits.h>

#endif

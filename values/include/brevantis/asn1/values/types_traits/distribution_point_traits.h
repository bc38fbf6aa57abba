#ifndef BREVANTIS_ASN1_VALUES_TYPES_TRAITS_DISTRIBUTION_POINT_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_TRAITS_DISTRIBUTION_POINT_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/types/distribution_point_traits.h>

#endif

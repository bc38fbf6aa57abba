#ifndef BREVANTIS_ASN1_VALUES_TYPES_TRAITS_ACCESS_DESCRIPTION_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_TRAITS_ACCESS_DESCRIPTION_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/types/access_description_traits.h>

#endif

#ifndef BREVANTIS_ASN1_VALUES_TYPES_TRAITS_ATTRIBUTE_TYPE_AND_VALUE_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_TRAITS_ATTRIBUTE_TYPE_AND_VALUE_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/types/attribute_type_and_value_traits.h>

#endif

#ifndef BREVANTIS_ASN1_VALUES_CMP_TRAITS_INFO_TYPE_AND_VALUE_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMP_TRAITS_INFO_TYPE_AND_VALUE_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/cmp/info_type_and_value_traits.h>

#endif

#ifndef BREVANTIS_ASN1_VALUES_TYPES_TRAITS_POLICY_INFORMATION_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_TRAITS_POLICY_INFORMATION_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/types/policy_information_traits.h>

#endif

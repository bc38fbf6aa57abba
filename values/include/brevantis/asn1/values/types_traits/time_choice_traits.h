#ifndef BREVANTIS_ASN1_VALUES_TYPES_TRAITS_TIME_CHOICE_TRAITS_H
#define BREVANTIS_ASN1_VALUES_TYPES_TRAITS_TIME_CHOICE_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/types/time_choice_traits.h>

#endif

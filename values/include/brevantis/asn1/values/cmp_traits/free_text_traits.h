#ifndef BREVANTIS_ASN1_VALUES_CMP_TRAITS_FREE_TEXT_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMP_TRAITS_FREE_TEXT_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/cmp/free_text_traits.h>

#endif

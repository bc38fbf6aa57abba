#ifndef BREVANTIS_ASN1_VALUES_ATTRIBUTE_TRAITS_ATTRIBUTE_TRAITS_H
#define BREVANTIS_ASN1_VALUES_ATTRIBUTE_TRAITS_ATTRIBUTE_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/attribute/attribute_traits.h>

#endif

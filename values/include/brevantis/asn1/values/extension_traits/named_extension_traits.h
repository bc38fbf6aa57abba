#ifndef BREVANTIS_ASN1_VALUES_EXTENSION_TRAITS_NAMED_EXTENSION_TRAITS_H
#define BREVANTIS_ASN1_VALUES_EXTENSION_TRAITS_NAMED_EXTENSION_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/extension/named_extension_traits.h>

#endif

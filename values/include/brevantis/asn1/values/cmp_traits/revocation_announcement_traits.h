#ifndef BREVANTIS_ASN1_VALUES_CMP_TRAITS_REVOCATION_ANNOUNCEMENT_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMP_TRAITS_REVOCATION_ANNOUNCEMENT_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/cmp/revocation_announcement_traits.h>

#endif

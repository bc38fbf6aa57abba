#ifndef BREVANTIS_ASN1_VALUES_CMP_TRAITS_STATUS_INFO_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMP_TRAITS_STATUS_INFO_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/cmp/status_info_traits.h>

#endif

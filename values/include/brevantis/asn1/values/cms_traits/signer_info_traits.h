#ifndef BREVANTIS_ASN1_VALUES_CMS_TRAITS_SIGNER_INFO_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMS_TRAITS_SIGNER_INFO_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/cms/signer_info_traits.h>

#endif

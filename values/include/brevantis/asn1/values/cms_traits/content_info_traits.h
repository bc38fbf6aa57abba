#ifndef BREVANTIS_ASN1_VALUES_CMS_TRAITS_CONTENT_INFO_TRAITS_H
#define BREVANTIS_ASN1_VALUES_CMS_TRAITS_CONTENT_INFO_TRAITS_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/cms/content_info_traits.h>

#endif

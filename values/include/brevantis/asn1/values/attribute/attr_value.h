#ifndef BREVANTIS_ASN1_VALUES_ATTRIBUTE_ATTR_VALUE_H
#define BREVANTIS_ASN1_VALUES_ATTRIBUTE_ATTR_VALUE_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/types/attr_value.h>

#endif

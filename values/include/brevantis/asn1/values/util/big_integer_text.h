#ifndef BREVANTIS_ASN1_VALUES_UTIL_BIG_INTEGER_TEXT_H
#define BREVANTIS_ASN1_VALUES_UTIL_BIG_INTEGER_TEXT_H

/// @file
/// The earlier place of this header.

#include <brevantis/asn1/values/types/big_integer_text.h>

#endif

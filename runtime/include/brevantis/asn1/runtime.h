#ifndef BREVANTIS_ASN1_RUNTIME_H
#define BREVANTIS_ASN1_RUNTIME_H

/// @file
/// The coding runtime as a whole: context and heap, buffers, coders, value classes.

#include <brevantis/asn1/runtime/big_integer.h>
#include <brevantis/asn1/runtime/bit_set.h>
#include <brevantis/asn1/runtime/bit_string.h>
#include <brevantis/asn1/runtime/character_classes.h>
#include <brevantis/asn1/runtime/character_string.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/control.h>
#include <brevantis/asn1/runtime/der_order.h>
#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/generalized_time.h>
#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/runtime/heap.h>
#include <brevantis/asn1/runtime/list.h>
#include <brevantis/asn1/runtime/measure.h>
#include <brevantis/asn1/runtime/memory_buffer.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <brevantis/asn1/runtime/object_identifier.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>
#include <brevantis/asn1/runtime/octet_string.h>
#include <brevantis/asn1/runtime/open_type.h>
#include <brevantis/asn1/runtime/scalar.h>
#include <brevantis/asn1/runtime/sequence_of_list.h>
#include <brevantis/asn1/runtime/single_list.h>
#include <brevantis/asn1/runtime/status.h>
#include <brevantis/asn1/runtime/stream.h>
#include <brevantis/asn1/runtime/tag_length.h>
#include <brevantis/asn1/runtime/time.h>
#include <brevantis/asn1/runtime/time_text.h>
#include <brevantis/asn1/runtime/utc_time.h>
#include <brevantis/asn1/runtime/utf8.h>
#include <brevantis/asn1/runtime/value_copy.h>
#include <brevantis/asn1/runtime/value_types.h>
#include <brevantis/asn1/runtime/wide_text.h>

#endif

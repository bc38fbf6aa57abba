#ifndef BREVANTIS_ASN1_ASN1DATA_H
#define BREVANTIS_ASN1_ASN1DATA_H

/// @file
/// The whole catalogue of types.

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/information_objects.h>
#include <brevantis/asn1/asn1data/object.h>
#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/asn1data/x509.h>

#endif

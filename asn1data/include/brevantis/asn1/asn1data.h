#ifndef BREVANTIS_ASN1_ASN1DATA_H
#define BREVANTIS_ASN1_ASN1DATA_H

/// @file
/// The whole catalogue of types.

#include <brevantis/asn1/asn1data/algorithms.h>
#include <brevantis/asn1/asn1data/attribute_certificates.h>
#include <brevantis/asn1/asn1data/cmp.h>
#include <brevantis/asn1/asn1data/cms.h>
#include <brevantis/asn1/asn1data/crmf.h>
#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/asn1data/enrolment.h>
#include <brevantis/asn1/asn1data/ess.h>
#include <brevantis/asn1/asn1data/extensions.h>
#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/information_objects.h>
#include <brevantis/asn1/asn1data/object.h>
#include <brevantis/asn1/asn1data/ocsp.h>
#include <brevantis/asn1/asn1data/oids.h>
#include <brevantis/asn1/asn1data/pkcs.h>
#include <brevantis/asn1/asn1data/reading_policy.h>
#include <brevantis/asn1/asn1data/revocation_list.h>
#include <brevantis/asn1/asn1data/tsp_dvcs.h>
#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/asn1data/x400.h>
#include <brevantis/asn1/asn1data/x509.h>

#endif

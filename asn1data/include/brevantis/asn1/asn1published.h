#ifndef BREVANTIS_ASN1_ASN1PUBLISHED_H
#define BREVANTIS_ASN1_ASN1PUBLISHED_H

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/asn1published/cms.h>
#include <brevantis/asn1/asn1published/ess.h>
#include <brevantis/asn1/asn1published/keys.h>
#include <brevantis/asn1/asn1published/ocsp.h>
#include <brevantis/asn1/asn1published/x509.h>

/// @file
/// Types as they are published and met where those of the catalogue are narrower: cryptographic
/// messages with every kind of certificate and of revocation information, references to what
/// verifies a signature, numbers of any size, keys in the forms that their algorithms give them.
/// They are used like the catalogue's, whose types stand in them where these are as published.

namespace asn1published {

/// All of them, sorted by name.
BREVANTIS_ASN1_API asn1data::TypeRange allTypes() noexcept;

/// Finds a type.
/// @param name with its module, as "PublishedCMS.SignedData"
/// @return its description, null when there is no such type
BREVANTIS_ASN1_API const asn1data::TypeDescription* findType(const char* name) noexcept;

} // namespace asn1published

#endif

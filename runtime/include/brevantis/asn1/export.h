#ifndef BREVANTIS_ASN1_EXPORT_H
#define BREVANTIS_ASN1_EXPORT_H

/// @file
/// Marks what the shared library offers; everything else stays hidden in it.

#if defined(BREVANTIS_ASN1_STATIC)
#define BREVANTIS_ASN1_API
#else
/// In front of a declaration: the shared library offers it. Means nothing where the library is
/// linked statically (BREVANTIS_ASN1_STATIC).
#define BREVANTIS_ASN1_API __attribute__((visibility("default")))
#endif

#endif

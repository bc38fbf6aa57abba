#ifndef BREVANTIS_ASN1_TEXT_EXPORT_H
#define BREVANTIS_ASN1_TEXT_EXPORT_H

/// @file
/// Marks what the shared library of messages as text offers; everything else stays hidden in it.

/// In front of a declaration: the library of messages as text offers it.
#define BREVANTIS_ASN1_TEXT_API __attribute__((visibility("default")))

#endif

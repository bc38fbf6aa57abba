#ifndef DERVIEW_TYPE_PRINTER_H
#define DERVIEW_TYPE_PRINTER_H

#include <brevantis/asn1/asn1data/describe.h>

#include "output.h"

namespace derview {

/// Writes the name of each type and where it is published, a line each.
void listTypes(Output& output, const asn1data::TypeRange& types);

/// Writes a type's ASN.1, what its open value can be, and where it is published.
void describeType(Output& output, const asn1data::TypeDescription& type);

} // namespace derview

#endif

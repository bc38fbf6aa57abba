#ifndef DERVIEW_OCTETS_H
#define DERVIEW_OCTETS_H

#include <brevantis/asn1/text/octets.h>

namespace derview {

/// The viewer stands on the layer of messages as text, and speaks its words.
using namespace asn1text;

} // namespace derview

#endif

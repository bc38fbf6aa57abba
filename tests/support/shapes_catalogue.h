#ifndef TESTS_SUPPORT_SHAPES_CATALOGUE_H
#define TESTS_SUPPORT_SHAPES_CATALOGUE_H

#include <brevantis/asn1/asn1data/describe.h>

// The catalogue of the module with every shape, whose functions no generated header declares.

namespace shapes {

asn1data::TypeRange allTypes() noexcept;
const asn1data::TypeDescription* findType(const char* name) noexcept;

} // namespace shapes

#endif

#ifndef FUZZ_TYPE_TALLY_H
#define FUZZ_TYPE_TALLY_H

#include <cstddef>

namespace fuzz {

/// Notes that a value of a type came through whole. The fuzzer keeps an input for every type, since
/// all of them run through the same code. At the end of the process the names of the types go to
/// the file that the environment calls BREVANTIS_FUZZ_REACHED, one a line.
/// @param index of the type in asn1data::allTypes()
void noteReached(std::size_t index);

} // namespace fuzz

#endif

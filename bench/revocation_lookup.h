#ifndef BENCH_REVOCATION_LOOKUP_H
#define BENCH_REVOCATION_LOOKUP_H

#include <ostream>

namespace bench {

/// Measures how revocation lists of 10,000 to 5,000,000 entries are gone through and looked up in
/// place, beside OpenSSL, which decodes them first, and writes a table in Markdown.
/// @throws std::runtime_error when a list is refused, or an entry is not found
void writeRevocationLookup(std::ostream& out);

} // namespace bench

#endif

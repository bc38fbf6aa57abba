#include <brevantis/asn1/asn1data/revocation_list.h>

#include "entry.h"

/// Reads a list in place; one that can be read has an index that finds each of its entries, and
/// that can be kept.
int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace asn1data;
    RevocationList list;
    if (list.open(data, size) != 0) {
        return 0;
    }
    RevokedEntries entries(list);
    RevokedEntry entry;
    std::size_t count = 0;
    while (entries.next(entry)) {
        EntryExtensions extensions(entry);
        EntryExtension extension;
        while (extensions.next(extension)) {
        }
        if (extensions.status() != 0) {
            fuzz::report("an entry was read whose extensions cannot be");
        }
        ++count;
    }
    RevocationIndex index;
    if (index.build(list) != entries.status()) {
        fuzz::report("the index says otherwise than the entries");
    }
    if (entries.status() != 0) {
        return 0;
    }
    RevocationIndex kept;
    if (index.entryCount() != count ||
        kept.load(list, index.octets().data, index.octets().size) != 0) {
        fuzz::report("the index does not fit its list");
    }
    RevokedEntries again(list);
    while (again.next(entry)) {
        RevokedMatches matches(kept, entry.serialNumber.data, entry.serialNumber.size);
        RevokedEntry match;
        bool found = false;
        while (!found && matches.next(match)) {
            found = match.octets.data == entry.octets.data && match.reason == entry.reason &&
                    match.certificateIssuer.data == entry.certificateIssuer.data &&
                    match.issuerInherited == entry.issuerInherited;
        }
        if (!found) {
            fuzz::report("an entry is not found");
        }
    }
    return 0;
}

#include <stdexcept>

#include <brevantis/asn1/values/util/one_element.h>

#include "entry.h"
#include "refusal.h"
#include "support/message_classes.h"

// Messages of the value classes: the first octet chooses the class. Values throw what their headers
// tell and nothing else.

namespace {

using Brevantis::CBlob;
using fuzz::succeeds;

template <class Value>
auto show(const Value& value, int /*first*/) -> decltype(value.toString(), void()) {
    succeeds([&] { value.toString(); });
}
template <class Value>
void show(const Value& /*value*/, long /*second*/) {}

void search(const Brevantis::ASN1::CExtensions& extensions) {
    for (const auto& extension : extensions) {
        if (extensions.find(extension.get_extnID()) == extensions.end()) {
            fuzz::report("an extension is not found");
        }
    }
}
void search(const Brevantis::ASN1::CAttributes& attributes) {
    for (const auto& attribute : attributes) {
        if (attributes.find(attribute.get_oid()) == attributes.end()) {
            fuzz::report("an attribute is not found");
        }
    }
}
void search(const Brevantis::ASN1::CGeneralNames& names) {
    for (const auto& name : names) {
        succeeds([&] { name.wholeText(); });
    }
}
template <class Value>
void search(const Value& /*value*/) {}

/// What can be read and written again has to come out the same a second time, and copies are equal.
template <class Value>
void check(const CBlob& message) {
    auto value = tests::emptyValue<Value>();
    CBlob written;
    if (!succeeds([&] { value.decode(message); })) {
        return;
    }
    show(value, 0);
    search(value);
    if (!succeeds([&] { written = value.encode(); })) {
        return;
    }
    auto other = tests::emptyValue<Value>();
    if (succeeds([&] { other.decode(written); }) && other.encode() != written) {
        fuzz::report("the second encoding differs");
    }
    other = value;
    if (other.encode() != written || Value(value).encode() != written) {
        fuzz::report("the copy differs");
    }
}

struct Row {
    const char* name;
    void (*check)(const CBlob& message);
};

std::vector<Row> allRows() {
    std::vector<Row> rows;
    tests::forEachMessageClass([&](const char* name, auto named) {
        rows.push_back({name, check<typename decltype(named)::type>});
    });
    return rows;
}

} // namespace

int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const std::vector<Row> rows = allRows();
    fuzz::Input input(data, size);
    const Row& row = rows[input.below(rows.size())];
    const std::vector<unsigned char> octets = input.rest();
    const CBlob message(octets.data(), octets.size());
    if (Brevantis::ASN1::isOneElement(message) && octets.size() < 2) {
        fuzz::report("less than a header is an element");
    }
    try {
        row.check(message);
    } catch (const std::exception& unexpected) {
        std::fprintf(stderr, "%s: %s\n", row.name, unexpected.what());
        fuzz::report("an exception that no header tells of");
    }
    return 0;
}

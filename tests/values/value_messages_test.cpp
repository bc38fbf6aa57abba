#include <list>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/values/util/object_identifier_text.h>

#include "support/blob.h"
#include "support/ca_bundle.h"
#include "support/data_file.h"
#include "support/failing_allocations.h"
#include "support/message_classes.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::DataRow;

// What all value classes with a message of their own do alike. The files of the single classes test
// what is theirs alone.

namespace {

template <class Value>
Value read(const CBlob& message) {
    auto value = tests::emptyValue<Value>();
    value.decode(message);
    return value;
}

/// Whether a value is a list, which keeps what was put into it before a failure.
template <class Element>
bool isList(const std::list<Element>* /*value*/) {
    return true;
}
bool isList(const void* /*value*/) {
    return false;
}

/// Changes a copy of a value while every single allocation fails: a copy that could not be changed
/// must stay as it was.
/// @return the number of failures
template <class Value, class Change>
long failEveryChange(const Value& held, Change change) {
    const CBlob before = held.encode();
    bool kept = true;
    const long failures = tests::failEveryAllocation([&] {
        Value target(held);
        try {
            change(target);
        } catch (...) {
            kept = kept && target.encode() == before;
            throw;
        }
    });
    EXPECT_TRUE(kept || isList(&held)) << "changed by a failure";
    return failures;
}

/// @param other another message of the type, empty if there is none
template <class Value>
void expectAccepted(const CBlob& message, const CBlob& written, const CBlob& other) {
    const auto value = read<Value>(message);
    EXPECT_EQ(value.encode(), written);
    EXPECT_GT(tests::failEveryAllocation([&] { value.encode(); }), 2);
    CBlob longer = message;
    longer.resize_to(message.cbData() + 1);
    EXPECT_EQ(read<Value>(longer).encode(), written) << "octets behind the message";
    for (unsigned long size = 0; size < message.cbData(); ++size) {
        Value target(value);
        // Some end where an optional element could be missing, which the decoders allow.
        const int code = tests::thrownCode([&] { target.decode(CBlob(message.pbData(), size)); });
        EXPECT_TRUE(code == 0 || code == CRYPT_E_ASN1_INTERNAL) << code;
        EXPECT_TRUE(code == 0 || target.encode() == written) << size << " octets";
    }

    const auto held = read<Value>(other);
    EXPECT_GT(failEveryChange(held, [&](Value& target) { target.decode(message); }), 1);
    failEveryChange(held, [&](Value& target) { target = value; });
    Value target(held);
    target.decode(message);
    EXPECT_EQ(target.encode(), written) << "in place of another";
    Value copy(target);
    target = held;
    EXPECT_EQ(target.encode(), held.encode());
    EXPECT_EQ(copy.encode(), written) << "a copy has its own content";
    const Value& same = copy;
    copy = same;
    target = std::move(copy);
    EXPECT_EQ(target.encode(), written);
    copy = held; // NOLINT(bugprone-use-after-move): it can be assigned to
    EXPECT_EQ(copy.encode(), held.encode());
}

template <class Value>
void expectRefused(const CBlob& message, const std::string& code, const CBlob& first) {
    auto value = read<Value>(first);
    const CBlob before = value.encode();
    EXPECT_EQ(tests::thrownName([&] { value.decode(message); }), code);
    EXPECT_EQ(value.encode(), before) << "changed by a failure";
    EXPECT_EQ(tests::thrownCode([&] { value.decode(CBlob()); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(value.encode(), before) << "changed by a failure";
}

struct Checks {
    void (*accepted)(const CBlob& message, const CBlob& written, const CBlob& other);
    void (*refused)(const CBlob& message, const std::string& code, const CBlob& first);
};

const std::map<std::string, Checks> types = [] {
    std::map<std::string, Checks> result;
    tests::forEachMessageClass([&](const char* name, auto named) {
        using Value = typename decltype(named)::type;
        result[name] = {expectAccepted<Value>, expectRefused<Value>};
    });
    return result;
}();

/// Each message meets values that hold the one of the row before of its type.
void expectRowsAccepted(const std::string& file, const std::string& table) {
    std::map<std::string, CBlob> last;
    for (const DataRow& row : tests::dataRows(file, table)) {
        last[row["type"]] = blob(row["message"]);
    }
    tests::forEachRow(file, table, [&](const DataRow& row) {
        const CBlob message = blob(row["message"]);
        CBlob& other = last[row["type"]];
        const CBlob written = row["written"] == "same" ? message : blob(row["written"]);
        const auto check = types.at(row["type"]).accepted;
        EXPECT_EQ(tests::thrownName([&] { check(message, written, other); }), "ok");
        other = message;
    });
}

TEST(ValueMessages, GoInAndOut) {
    expectRowsAccepted("value_messages.txt", "accepted");
}

TEST(ValueMessages, OfTheOpensslCommandGoInAndOut) {
    expectRowsAccepted("certificate_parts.txt", "parts");
}

TEST(ValueMessages, ThatAreRefusedChangeNothing) {
    std::map<std::string, CBlob> first;
    for (const DataRow& row : tests::dataRows("value_messages.txt", "accepted")) {
        first.emplace(row["type"], blob(row["message"]));
    }
    tests::forEachRow("value_messages.txt", "refused", [&](const DataRow& row) {
        types.at(row["type"]).refused(blob(row["message"]), row["code"], first.at(row["type"]));
    });
}

TEST(ValueMessages, OfTheCaBundleGoInAndOut) {
    if (tests::caBundle().empty()) {
        GTEST_SKIP() << tests::NoCaBundle;
    }
    int points = 0;
    int services = 0;
    for (const tests::Octets& octets : tests::caBundle()) {
        ASN1BERDecodeBuffer buffer(octets.data(), static_cast<int>(octets.size()));
        asn1data::ASN1T_Certificate certificate;
        asn1data::ASN1C_Certificate control(buffer, certificate);
        ASSERT_EQ(control.DecodeFrom(buffer), 0);
        const Asn1RTDList& extensions = certificate.tbsCertificate.extensions;
        for (const Asn1RTDListNode* node = extensions.head; node != nullptr; node = node->next) {
            const auto& extension = *static_cast<const asn1data::ASN1T_Extension*>(node->data);
            const CBlob value(extension.extnValue.data, extension.extnValue.numocts);
            if (toOID(extension.extnID) == "2.5.29.31") {
                EXPECT_EQ(read<CCRLDistPointsSyntax>(value).encode(), value);
                ++points;
            } else if (toOID(extension.extnID) == "1.3.6.1.5.5.7.1.1") {
                EXPECT_EQ(read<CAuthorityInfoAccessSyntax>(value).encode(), value);
                ++services;
            }
        }
    }
    RecordProperty("points", points);
    RecordProperty("services", services);
    EXPECT_GT(points + services, 0);
}

} // namespace

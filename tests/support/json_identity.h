#ifndef TESTS_SUPPORT_JSON_IDENTITY_H
#define TESTS_SUPPORT_JSON_IDENTITY_H

#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/text/json_reader.h>
#include <brevantis/asn1/text/json_writer.h>

#include "support/hex.h"

namespace tests {

/// Checks that a message comes back from its JSON octet for octet.
inline void expectBackFromJson(const asn1data::TypeDescription& type, const Octets& message) {
    asn1text::TextSink json;
    ASSERT_EQ(asn1text::writeJson(type, message, json).status, 0) << toHex(message);
    Octets back;
    asn1text::JsonFailure failure;
    const bool encoded = asn1text::encodeJson(type, json.whole, back, failure);
    ASSERT_TRUE(encoded) << type.name << ": " << asn1text::failureText(failure) << "\n"
                         << json.whole.substr(0, 4000);
    ASSERT_EQ(toHex(back), toHex(message)) << type.name << "\n" << json.whole.substr(0, 4000);
}

} // namespace tests

#endif

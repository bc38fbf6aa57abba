#include <tuple>
#include <type_traits>

#include <gtest/gtest.h>

#include <brevantis/asn1/values.h>

#include "support/blob.h"
#include "support/failing_allocations.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;

namespace {

// Two of each that an object is made of. Every one takes memory, so that every part's copy can be
// the one that fails, and names differ in their first characters, which is what they compare by.
constexpr const char* oid[] = {"1.2.840.113549.1.7.1", "2.16.840.1.101.3.4.2.1"};
const CBlob octets[] = {blob("0500"), blob("0401AA")};
const CAlgorithmIdentifier algorithms[] = {CAlgorithmIdentifier(oid[0]),
                                           CAlgorithmIdentifier(oid[1])};

CBigInteger number(int i) {
    return CBigInteger(octets[i].pbData(), octets[i].cbData());
}

CGeneralName name(int i) {
    return CGeneralName::dNSName(i == 0 ? L"before.example" : L"after.example");
}

CGeneralNames names(int i) {
    return CGeneralNames(i == 0 ? 1 : 2, name(i));
}

CPKIFreeText text(int i) {
    return i == 0 ? L"a text that is in use before" : L"the text that comes in its place";
}

CStringProxy copied(const char* value) {
    return value;
}

/// What a failing change has to leave alone: lets every allocation of it fail.
/// @param before the value to be changed
/// @param content gives the fields of a value, to be compared
template <class Value, class Change, class Content>
void expectWholeOrNothing(const Value& before, Change change, Content content) {
    EXPECT_GT(tests::failEveryAllocation([&] {
                  Value target(before);
                  try {
                      change(target);
                  } catch (...) {
                      EXPECT_TRUE(content(target) == content(before)) << "changed in part";
                      throw;
                  }
                  EXPECT_FALSE(content(target) == content(before));
              }),
              2);
}

/// Assigns the second value that @p make gives to the first, and each to itself.
template <class Make, class Content>
void expectWholeAssignment(const char* type, Make make, Content content) {
    SCOPED_TRACE(type);
    const auto before = make(0);
    const auto after = make(1);
    using Value = std::decay_t<decltype(before)>;
    static_assert(std::is_nothrow_move_constructible_v<Value>);
    const auto assign = [&after](Value& target) { target = after; };
    expectWholeOrNothing(before, assign, content);
    Value target(before);
    assign(target);
    EXPECT_TRUE(content(target) == content(after));
    target = static_cast<const Value&>(target);
    EXPECT_TRUE(content(target) == content(after)) << "assigned to itself";
}

TEST(Assignment, ChangesEveryFieldOrNone) {
    const auto value = [](const auto& of) {
        return std::tuple(copied(of.get_oid()), of.get_value());
    };
    const auto serial = [](const auto& of) {
        return std::tuple(of.get_issuer(), of.get_serialNumber());
    };
    const auto itself = [](const auto& of) { return of; };
    expectWholeAssignment(
        "CAttrValue", [](int i) { return CAttrValue(oid[i], octets[i]); }, value);
    expectWholeAssignment(
        "CExtValue", [](int i) { return CExtValue(oid[i], octets[i]); }, value);
    expectWholeAssignment(
        "CExtension", [](int i) { return CExtension(oid[i], octets[i], i == 1); }, itself);
    expectWholeAssignment(
        "CExtHoldInstructionCode", [](int i) { return CExtHoldInstructionCode(oid[i]); },
        [](const auto& of) { return std::tuple(copied(of.get_code()), of.get_value()); });
    expectWholeAssignment(
        "CExtCertificateIssuer", [](int i) { return CExtCertificateIssuer(names(i)); },
        [](const auto& of) { return std::tuple(of.get_issuer(), of.get_value()); });
    expectWholeAssignment(
        "CAttributeTypeAndValue", [](int i) { return CAttributeTypeAndValue(oid[i], octets[i]); },
        itself);
    expectWholeAssignment(
        "CAlgorithmIdentifier",
        [](int i) {
            CAlgorithmIdentifier made(algorithms[i]);
            made.put_parameters(octets[i]);
            return made;
        },
        itself);
    expectWholeAssignment(
        "CAccessDescription", [](int i) { return CAccessDescription(oid[i], name(i)); }, itself);
    expectWholeAssignment(
        "CIssuerSerial", [](int i) { return CIssuerSerial(names(i), number(i)); }, serial);
    expectWholeAssignment(
        "CCertId", [](int i) { return CCertId(name(i), number(i)); }, serial);
    expectWholeAssignment(
        "COtherHashAlgAndValue",
        [](int i) { return COtherHashAlgAndValue(octets[i], algorithms[i]); }, itself);
    expectWholeAssignment(
        "CContentInfo", [](int i) { return CContentInfo(oid[i], octets[i]); },
        [](const auto& of) { return std::tuple(copied(of.get_contentType()), of.get_content()); });
    expectWholeAssignment(
        "CSignerInfo",
        [](int i) {
            CSignerInfo made;
            made.put_version(static_cast<unsigned>(i));
            made.put_issuer(octets[i]);
            made.put_serialNumber(number(i));
            made.put_digestAlgorithm(algorithms[i]);
            made.put_signatureAlgorithm(algorithms[i]);
            made.put_signature(octets[i]);
            return made;
        },
        itself);
    expectWholeAssignment(
        "CInfoTypeAndValue", [](int i) { return CInfoTypeAndValue(oid[i], octets[i]); }, itself);
    expectWholeAssignment(
        "CPKIStatusInfo",
        [](int i) {
            CPKIStatusInfo made(i == 0 ? PKIStatusEnum_accepted : PKIStatusEnum_waiting);
            made.put_statusString(text(i));
            return made;
        },
        [](const auto& of) { return std::tuple(of.get_pkiStatus(), of.get_statusString()); });
}

TEST(Assignment, OfAFieldThatIsAListIsWholeToo) {
    expectWholeOrNothing(
        CIssuerSerial(names(0), number(0)),
        [](CIssuerSerial& target) { target.put_issuer(names(1)); },
        [](const CIssuerSerial& of) { return of.get_issuer(); });
    CPKIStatusInfo status(PKIStatusEnum_accepted);
    status.put_statusString(text(0));
    CPKIFreeText two = text(1);
    two.push_back(two.front());
    expectWholeOrNothing(
        status, [&two](CPKIStatusInfo& target) { target.put_statusString(two); },
        [](const CPKIStatusInfo& of) { return of.get_statusString(); });
}

} // namespace

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/asn1data/generated.h>
#include <brevantis/asn1/runtime/object_identifier.h>

// The types that the notation brings along, described like every other one.

namespace asn1data::builtin {

namespace {

constexpr TypeDescription describe(const char* name, Shape shape, ASN1TAG tag, unsigned valueSize,
                                   IdentifierSet identifiers, bool holdsMemory) {
    TypeDescription type{};
    type.name = name;
    type.shape = shape;
    type.copyable = true;
    type.holdsMemory = holdsMemory;
    type.tag = tag;
    type.valueSize = valueSize;
    type.presenceOffset = NoOffset;
    type.extensionOffset = NoOffset;
    type.identifiers = identifiers;
    type.parameter = "*pvalue";
    return type;
}

/// Scalars are primitive alone (X.690, 8.2 to 8.4, 8.8, 8.19).
constexpr TypeDescription scalar(const char* name, Shape shape, unsigned char number,
                                 unsigned valueSize) {
    return describe(name, shape, number, valueSize, beginsWith({number}), false);
}

/// Strings come primitive or constructed (X.690, 8.6.4, 8.7.3, 8.23).
constexpr TypeDescription string(const char* name, Shape shape, unsigned char number,
                                 unsigned valueSize) {
    return describe(name, shape, number, valueSize,
                    beginsWith({number, static_cast<unsigned char>(number | 0x20u)}), true);
}

} // namespace

constexpr TypeDescription boolean = scalar("BOOLEAN", Shape::Boolean, 1, sizeof(unsigned char));
constexpr TypeDescription integer = scalar("INTEGER", Shape::Integer, 2, sizeof(int));
constexpr TypeDescription unsignedInteger =
    scalar("INTEGER", Shape::Unsigned, 2, sizeof(unsigned int));
constexpr TypeDescription unsignedInteger16 =
    scalar("INTEGER", Shape::Unsigned16, 2, sizeof(unsigned short));
constexpr TypeDescription enumerated =
    scalar("ENUMERATED", Shape::Enumerated, 10, sizeof(unsigned int));
constexpr TypeDescription bigInteger = scalar("INTEGER", Shape::BigInteger, 2, sizeof(char const*));
constexpr TypeDescription bigUnsigned =
    scalar("INTEGER", Shape::BigUnsigned, 2, sizeof(char const*));
constexpr TypeDescription null = scalar("NULL", Shape::Null, 5, 0);
constexpr TypeDescription objectIdentifier =
    scalar("OBJECT IDENTIFIER", Shape::ObjectIdentifier, 6, sizeof(ASN1TObjId));

constexpr TypeDescription octetString =
    string("OCTET STRING", Shape::OctetString, 4, sizeof(ASN1TDynOctStr));
constexpr TypeDescription bitString =
    string("BIT STRING", Shape::BitString, 3, sizeof(ASN1TDynBitStr));
constexpr TypeDescription utf8String = string("UTF8String", Shape::Text, 12, sizeof(char const*));
constexpr TypeDescription numericString =
    string("NumericString", Shape::Text, 18, sizeof(char const*));
constexpr TypeDescription printableString =
    string("PrintableString", Shape::Text, 19, sizeof(char const*));
constexpr TypeDescription teletexString =
    string("TeletexString", Shape::Text, 20, sizeof(char const*));
constexpr TypeDescription ia5String = string("IA5String", Shape::Text, 22, sizeof(char const*));
constexpr TypeDescription utcTime = string("UTCTime", Shape::Text, 23, sizeof(char const*));
constexpr TypeDescription generalizedTime =
    string("GeneralizedTime", Shape::Text, 24, sizeof(char const*));
constexpr TypeDescription visibleString =
    string("VisibleString", Shape::Text, 26, sizeof(char const*));
constexpr TypeDescription generalString =
    string("GeneralString", Shape::Text, 27, sizeof(char const*));
constexpr TypeDescription universalString =
    string("UniversalString", Shape::Text32, 28, sizeof(Asn132BitCharString));
constexpr TypeDescription bmpString =
    string("BMPString", Shape::Text16, 30, sizeof(Asn116BitCharString));

constexpr TypeDescription openType =
    describe("open type", Shape::OpenType, 0, sizeof(ASN1TOpenType), beginsWithAny(), true);
constexpr TypeDescription typedOpenType =
    describe("open type", Shape::OpenType, 0, sizeof(Asn1TObject), beginsWithAny(), true);

} // namespace asn1data::builtin

#include <map>
#include <string>
#include <typeinfo>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data.h>
#include <brevantis/asn1/runtime/message_buffer.h>
#include <brevantis/asn1/runtime/object_identifier.h>

#include "support/coding.h"
#include "support/locked_list.h"

// What the library says about itself, written out as text, so that a difference reads as one.

namespace {

using namespace asn1data;

std::string tagText(ASN1TAG tag) {
    static const char* const classes[] = {"UNIVERSAL ", "APPLICATION ", "", "PRIVATE "};
    return std::string("[") + classes[tag >> 30] + std::to_string(tag & 0x1FFFFFFFu) + "]";
}

std::string boundText(long long bound) {
    return bound >= 0x7FFFFFFF ? "MAX" : std::to_string(bound);
}

std::string constraintText(const Constraint& constraint) {
    std::string text;
    for (unsigned i = 0; i < constraint.count; ++i) {
        const ValueRange& range = constraint.ranges[i];
        text += (i != 0 ? " or " : "") + boundText(range.lower);
        text += range.lower == range.upper ? "" : ".." + boundText(range.upper);
    }
    return text;
}

bool isConstructedOf(const TypeDescription& type) {
    return type.shape == Shape::List || type.shape == Shape::Array ||
           type.shape == Shape::FixedArray;
}

/// How the value is held, where the notation alone does not say so.
std::string storageText(const TypeDescription& type) {
    switch (type.shape) {
    case Shape::FixedOctetString:
        return std::to_string(type.capacity) + " octets";
    case Shape::FixedBitString:
        return std::to_string(type.capacity) + " bits";
    case Shape::List:
        return "list";
    case Shape::Array:
        return "array";
    case Shape::FixedArray:
        return "fixed array of " + std::to_string(type.capacity);
    default:
        return "";
    }
}

const std::map<ASN1TAG, const char*>& universalTypes() {
    static const std::map<ASN1TAG, const char*> names = {
        {1, "BOOLEAN"},        {2, "INTEGER"},
        {3, "BIT STRING"},     {4, "OCTET STRING"},
        {5, "NULL"},           {6, "OBJECT IDENTIFIER"},
        {10, "ENUMERATED"},    {12, "UTF8String"},
        {18, "NumericString"}, {19, "PrintableString"},
        {20, "TeletexString"}, {22, "IA5String"},
        {23, "UTCTime"},       {24, "GeneralizedTime"},
        {26, "VisibleString"}, {28, "UniversalString"},
        {30, "BMPString"}};
    return names;
}

/// A type that the notation brings along, with the width of a number.
std::string builtinText(const TypeDescription& type) {
    if (type.shape == Shape::OpenType) {
        return "open type";
    }
    const auto name = universalTypes().find(type.tag);
    const std::string text = name != universalTypes().end() ? name->second : "?";
    const ShapeTraits& traits = traitsOf(type.shape);
    if (traits.kind == ShapeKind::BigNumber) {
        return text + (traits.lower < 0 ? ", text" : ", unsigned text");
    }
    if (traits.kind == ShapeKind::Number && type.shape != Shape::Enumerated) {
        return text + (traits.lower < 0 ? ", signed " : ", unsigned ") +
               std::to_string(type.valueSize * 8) + "-bit";
    }
    return text;
}

std::string typeText(const TypeDescription& type) {
    return type.notation != nullptr ? type.name : builtinText(type);
}

std::string kindText(const TypeDescription& type) {
    if (isConstructedOf(type) && type.aliasOf == nullptr) {
        return type.setOf ? "SET OF" : "SEQUENCE OF";
    }
    switch (type.aliasOf != nullptr ? Shape::Null : type.shape) {
    case Shape::Sequence:
        return "SEQUENCE";
    case Shape::Set:
        return "SET";
    case Shape::Choice:
        return "CHOICE";
    default:
        return "alias";
    }
}

std::string ownTagText(const TypeDescription& type) {
    if (type.aliasOf != nullptr) {
        return "";
    }
    if (type.outerTag != 0) {
        return tagText(type.outerTag) + " EXPLICIT";
    }
    return type.tag >> 30 != 0 ? tagText(type.tag) : "";
}

void append(std::string& text, const char* part) {
    text += (text.empty() ? "" : ", ") + std::string(part);
}

std::string remarksText(const TypeDescription& type) {
    std::string text;
    if (type.stepsOverEndOfContents) {
        append(text, "end-of-contents");
    }
    if (!type.copyable) {
        append(text, "no copy");
    }
    if (type.table != nullptr && type.aliasOf == nullptr) {
        append(text, "by ");
        text += type.table->objects->name;
    }
    return text;
}

std::string line(std::initializer_list<std::string> columns) {
    std::string text;
    for (const std::string& column : columns) {
        text += text.empty() ? column : (column.empty() ? " |" : " | " + column);
    }
    return text;
}

std::string presenceText(const ElementDescription& element) {
    switch (element.presence) {
    case Presence::Optional:
        return "bit " + std::to_string(element.presenceBit);
    case Presence::Default:
        if (element.defaultText != nullptr) {
            return std::string("DEFAULT ") + element.defaultText;
        }
        if (element.type->shape == Shape::Boolean) {
            return element.defaultNumber != 0 ? "DEFAULT TRUE" : "DEFAULT FALSE";
        }
        return "DEFAULT " + std::to_string(element.defaultNumber);
    case Presence::Mandatory:
        break;
    }
    return "";
}

std::string elementText(const ElementDescription& element) {
    std::string tag;
    if (element.tagging != Tagging::Untagged) {
        tag = tagText(element.tag);
        tag += element.tagging == Tagging::Explicit ? " EXPLICIT" : " IMPLICIT";
    }
    return line({std::string(". ") + element.name, tag, typeText(*element.type),
                 presenceText(element), constraintText(element.constraint)});
}

/// The lines of a type in the form of the data file.
std::vector<std::string> describe(const TypeDescription& type) {
    std::string of;
    if (type.aliasOf != nullptr) {
        of = type.aliasOf->name;
    } else if (isConstructedOf(type)) {
        of = typeText(*type.element);
    } else if (kindText(type) == "alias") {
        of = builtinText(type);
    }
    const bool own = type.aliasOf == nullptr;
    std::vector<std::string> lines = {
        line({type.name, kindText(type), ownTagText(type), of, own ? storageText(type) : "",
              own ? constraintText(type.constraint) : "", remarksText(type)})};
    for (unsigned i = 0; own && i < type.elementCount; ++i) {
        lines.push_back(elementText(type.elements[i]));
    }
    if (own && type.extensionOffset != NoOffset) {
        lines.push_back("... | | unknown elements");
    }
    return lines;
}

TEST(Catalogue, TypesAsListed) {
    std::vector<std::string> lines;
    for (const TypeDescription* type : allTypes()) {
        const std::vector<std::string> described = describe(*type);
        lines.insert(lines.end(), described.begin(), described.end());
    }
    tests::expectLocked("catalogue.txt", lines);
}

TEST(Catalogue, FindsItsTypes) {
    for (const TypeDescription* type : allTypes()) {
        EXPECT_EQ(findType(type->name), type);
        EXPECT_NE(type->standard, nullptr) << type->name;
    }
    EXPECT_EQ(findType("NoSuchType"), nullptr);
    EXPECT_EQ(findType(""), nullptr);
}

std::string dotted(const unsigned* arcs, unsigned count) {
    std::string text;
    for (unsigned i = 0; i < count; ++i) {
        text += (i != 0 ? "." : "") + std::to_string(arcs[i]);
    }
    return text;
}

std::string valueText(const TypeDescription* type) {
    return type != nullptr ? typeText(*type) : "";
}

TEST(Catalogue, ObjectSetsAsListed) {
    std::vector<std::string> lines;
    for (const ObjectSetDescription* set : allObjectSets()) {
        lines.push_back(line({std::string("set ") + set->name, set->objectClass}));
        for (unsigned i = 0; i < set->count; ++i) {
            const ObjectDescription& object = set->objects[i];
            lines.push_back(line({std::string(". ") + object.name,
                                  dotted(object.arcs, object.arcCount), valueText(object.type)}));
        }
    }
    tests::expectLocked("object_sets.txt", lines);
}

/// The set that a program sees holds the objects that the coders find.
template <class Set>
void expectInstances(const char* name) {
    const Set& set = *Set::instance(nullptr);
    for (const ObjectSetDescription* described : allObjectSets()) {
        if (described->name != std::string(name)) {
            continue;
        }
        ASSERT_EQ(set.count, described->count) << name;
        for (unsigned i = 0; i < set.count; ++i) {
            EXPECT_EQ(dotted(set.objects[i]->id.subid, set.objects[i]->id.numids),
                      dotted(described->objects[i].arcs, described->objects[i].arcCount))
                << name;
        }
        return;
    }
    ADD_FAILURE() << "not described: " << name;
}

TEST(Catalogue, InstancesOfSetsHoldTheObjectsDescribed) {
    expectInstances<CRLTypes>("CRLTypes");
    expectInstances<CertTypes>("CertTypes");
    expectInstances<ExtensionSet>("ExtensionSet");
    expectInstances<PKCS12AttrSet>("PKCS12AttrSet");
    expectInstances<PKCS12BagSet>("PKCS12BagSet");
    expectInstances<SecretTypes>("SecretTypes");
    expectInstances<SupportedAlgorithms>("SupportedAlgorithms");
    expectInstances<SupportedAttributes>("SupportedAttributes");
    expectInstances<SupportedContentTypes>("SupportedContentTypes");
    expectInstances<SupportedEContentTypes>("SupportedEContentTypes");
    expectInstances<SupportedInfos>("SupportedInfos");
    expectInstances<SupportedOCSPResponseTypes>("SupportedOCSPResponseTypes");
    expectInstances<SupportedPolicyQualifiers>("SupportedPolicyQualifiers");
    expectInstances<SupportedSigPolicyQualifiers>("SupportedSigPolicyQualifiers");
}

/// The members of an object class bear the name of its type field.
template <class Class>
struct Members {
    void* (Class::*makeValue)(ASN1CTXT*);
    ASN1CType* (Class::*makeControl)(ASN1MessageBufferIF&, void*);
    void (Class::*endControl)(ASN1CType*);
};

template <class Class>
constexpr Members<Class> byType = {&Class::constructASN1TType, &Class::constructASN1CType,
                                   &Class::destructASN1CType};
constexpr Members<MATCHING_RULE> byAssertionType = {&MATCHING_RULE::constructASN1TAssertionType,
                                                    &MATCHING_RULE::constructASN1CAssertionType,
                                                    &MATCHING_RULE::destructASN1CAssertionType};
constexpr Members<EXTENSION> byExtnType = {&EXTENSION::constructASN1TExtnType,
                                           &EXTENSION::constructASN1CExtnType,
                                           &EXTENSION::destructASN1CExtnType};

/// An object outside any set: its class, its identifier, and the control class of its value.
template <class Object, class Control, class Class>
void expectObject(const char* identifier, const Members<Class>& members) {
    SCOPED_TRACE(identifier);
    Class* object = Object::instance();
    EXPECT_EQ(dotted(object->id.subid, object->id.numids), identifier);
    ASN1BEREncodeBuffer buffer;
    void* value = (object->*members.makeValue)(buffer.getCtxtPtr());
    ASN1CType* control = (object->*members.makeControl)(buffer, value);
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(typeid(*control), typeid(Control));
    (object->*members.endControl)(control);
}

TEST(Catalogue, HasObjectsOutsideAnySet) {
    expectObject<algorithmIdentifierMatch, ASN1C_AlgorithmIdentifier>("2.5.13.40", byAssertionType);
    expectObject<certificateExactMatch, ASN1C_Certificate>("2.5.13.34", byAssertionType);
    expectObject<certificateListExactMatch, ASN1C_CertificateList>("2.5.13.38", byAssertionType);
    expectObject<certificateListMatch, ASN1C_CertificateListAssertion>("2.5.13.39",
                                                                       byAssertionType);
    expectObject<certificateMatch, ASN1C_CertificateAssertion>("2.5.13.35", byAssertionType);
    expectObject<certificatePairExactMatch, ASN1C_CertificatePair>("2.5.13.36", byAssertionType);
    expectObject<certificatePairMatch, ASN1C_CertificatePairAssertion>("2.5.13.37",
                                                                       byAssertionType);
    expectObject<contentInfo, ASN1C_ContentInfo>("1.2.840.113549.1.9.16.1.6", byType<CONTENT_TYPE>);
    expectObject<e_contentInfo, ASN1C_ContentInfo>("1.2.840.113549.1.9.16.1.6",
                                                   byType<ECONTENT_TYPE>);
    expectObject<encryptedPrivateKeyInfo, ASN1C_EncryptedPrivateKeyInfo>("1.2.840.113549.1.9.25.2",
                                                                         byType<ATTRIBUTE>);
    expectObject<gost2012_256DH_PubKey, ASN1C__gost2012_256DH_PubKey_Type>("1.2.643.7.1.1.6.1",
                                                                           byType<ALGORITHM_ID>);
    expectObject<gost2012_512DH_PubKey, ASN1C__gost2012_512DH_PubKey_Type>("1.2.643.7.1.1.6.2",
                                                                           byType<ALGORITHM_ID>);
    expectObject<ocspNoCheck, ASN1C_NULLParams_>("1.3.6.1.5.5.7.48.1.5", byExtnType);
    expectObject<pKCS7PDU, ASN1C_ContentInfo>("1.2.840.113549.1.9.25.5", byType<ATTRIBUTE>);
}

} // namespace

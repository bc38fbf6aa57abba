#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include <brevantis/asn1/asn1data/extensions.h>
#include <brevantis/asn1/asn1data/x509.h>
#include <brevantis/asn1/runtime.h>
#include <gtest/gtest.h>
#include <shapes/shapes.h>

#include "support/counting_allocator.h"
#include "support/hex.h"

// Who owns what, where records, controls, buffers and contexts are used over and over. Most of
// these fail by a sanitizer's report alone.

namespace {

using namespace asn1data;
using tests::fromHex;
using tests::Octets;

const Octets keyUsageExtension = fromHex("30 0B 06 03 55 1D 0F 04 04 03 02 05 A0");
const Octets name = fromHex("30 0F 31 0D 30 0B 06 03 55 04 03 0C 04 61 62 63 64");

ASN1BERDecodeBuffer reader(const Octets& octets) {
    return ASN1BERDecodeBuffer(octets.data(), static_cast<int>(octets.size()));
}

template <class Control, class Record>
Octets encoded(Record& value) {
    ASN1BEREncodeBuffer output;
    const int length = Control(output, value).Encode();
    EXPECT_GE(length, 0);
    return length < 0 ? Octets() : Octets(output.getMsgPtr(), output.getMsgPtr() + length);
}

TEST(Lifetime, FailedDecodingIntoAUsedRecordForgetsItsOpenValue) {
    // The second message names another extension and ends there.
    const Octets cut = fromHex("30 05 06 03 55 1D 11");
    ASN1BERDecodeBuffer buffer = reader(keyUsageExtension);
    ASN1T_Extension value;
    ASN1C_Extension control(buffer, value);
    ASSERT_EQ(control.Decode(), 0);
    ASSERT_EQ(buffer.setBuffer(cut.data(), static_cast<int>(cut.size()), 0), 0);
    ASSERT_EQ(control.Decode(), ASN1S_MISSING_ELEMENT);
    EXPECT_EQ(value.extnValueTyped.decoded, nullptr);
    asn1Free_Extension(buffer.getCtxtPtr(), &value);
}

TEST(Lifetime, DecodingAgainAfterAFailedOpenValueReadsTheMessage) {
    const Octets wrong = fromHex("30 0B 06 03 55 1D 0F 04 04 04 02 05 A0");
    ASN1BERDecodeBuffer buffer = reader(wrong);
    ASN1T_Extension value;
    ASN1C_Extension control(buffer, value);
    ASSERT_EQ(control.Decode(), ASN1S_TAG_NOT_FOUND);
    asn1Free_Extension(buffer.getCtxtPtr(), &value);
    rtErrReset(&buffer.getCtxtPtr()->errInfo);
    EXPECT_EQ(control.Decode(), ASN1S_TAG_NOT_FOUND);
    asn1Free_Extension(buffer.getCtxtPtr(), &value);
}

TEST(Lifetime, DecodingAgainAfterAFailedOpenValueReadsWhatTheBufferWasTurnedTo) {
    const Octets wrong = fromHex("30 0B 06 03 55 1D 0F 04 04 04 02 05 A0");
    const Octets indefinite = fromHex("30 80 06 03 55 1D 0F 04 04 04 02 05 A0 00 00");
    const auto size = static_cast<int>(wrong.size());
    ASN1BERDecodeBuffer buffer = reader(keyUsageExtension);
    ASN1CTXT* const ctxt = buffer.getCtxtPtr();
    ASN1MemBuf memory;
    rtMemBufInit(ctxt, &memory, 16);
    ASSERT_EQ(rtMemBufAppend(&memory, wrong.data(), static_cast<unsigned>(size)), 0);
    ASN1T_Extension value;
    ASN1C_Extension control(buffer, value);
    const auto failsTwice = [&](const unsigned char* message) {
        EXPECT_EQ(control.Decode(), ASN1S_TAG_NOT_FOUND);
        EXPECT_NE(buffer.getMsgPtr(), message) << "where the decoder failed";
        asn1Free_Extension(ctxt, &value);
        const unsigned bound = ctxt->buffer.size;
        EXPECT_EQ(buffer.init(), 0);
        EXPECT_EQ(buffer.getMsgPtr(), message);
        EXPECT_EQ(ctxt->buffer.byteIndex, 0u);
        EXPECT_GT(ctxt->buffer.size, bound);
        EXPECT_EQ(control.Decode(), ASN1S_TAG_NOT_FOUND);
        asn1Free_Extension(ctxt, &value);
        rtErrReset(&ctxt->errInfo);
    };
    ASSERT_EQ(control.Decode(), 0);
    ASSERT_EQ(buffer.initBuffer(memory), 0);
    failsTwice(memory.buffer);

    // A call on the context is seen by the decode that comes next.
    ASSERT_EQ(xd_setp(ctxt, wrong.data(), size, nullptr, nullptr), 0);
    failsTwice(wrong.data());
    ASSERT_EQ(xd_setp(ctxt, indefinite.data(), size + 2, nullptr, nullptr), 0);
    failsTwice(indefinite.data());
    buffer.init();
    EXPECT_NE(ctxt->flags & ASN1F_INDEF_MESSAGE, 0);

    // Decoded by the plain function, so that no init() has seen the memory buffer.
    ASSERT_EQ(buffer.initBuffer(memory), 0);
    EXPECT_EQ(asn1D_Extension(ctxt, &value, ASN1TagExplicit, 0), ASN1S_TAG_NOT_FOUND);
    asn1Free_Extension(ctxt, &value);
    EXPECT_EQ(control.Decode(), ASN1S_TAG_NOT_FOUND);
    asn1Free_Extension(ctxt, &value);

    ASN1BERDecodeBuffer neverBound;
    ASSERT_EQ(neverBound.initBuffer(memory), 0);
    ASN1C_Extension other(neverBound, value);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(other.Decode(), ASN1S_TAG_NOT_FOUND);
        asn1Free_Extension(neverBound.getCtxtPtr(), &value);
        EXPECT_EQ(neverBound.init(), ASN1S_NOT_SUPPORTED) << "no message, whatever it reads";
        EXPECT_EQ(neverBound.getMsgPtr(), memory.buffer);
    }
}

TEST(Lifetime, AMessageThatIsCutOffMayDecode) {
    for (const char* const cut : {"30 0A 82 01 61", "30 80 82 01 61"}) {
        const Octets octets = fromHex(cut);
        ASN1BERDecodeBuffer buffer = reader(octets);
        ASN1T_GeneralNames value;
        EXPECT_EQ(ASN1C_GeneralNames(buffer, value).Decode(), 0) << cut;
        EXPECT_EQ(value.count, 1u) << cut;
    }
    const Octets definite = fromHex("30 0A 82 01 61");
    ASN1BERDecodeBuffer buffer;
    EXPECT_EQ(buffer.setBuffer(definite.data(), 5), ASN1S_INVALID_LENGTH);
}

TEST(Lifetime, ABitStringOfItsOwnStartsOutEmpty) {
    ASN1BEREncodeBuffer output;
    alignas(ASN1T_UniqueIdentifier) unsigned char storage[sizeof(ASN1T_UniqueIdentifier)];
    std::memset(storage, 0xA5, sizeof storage);
    auto& value = *new (storage) ASN1T_UniqueIdentifier;
    ASN1C_UniqueIdentifier control(output, value);
    EXPECT_EQ(control.length(), 0u);
    EXPECT_EQ(control.Encode(), 3);
    EXPECT_EQ(tests::toHex(output.getMsgPtr(), 3), "03 01 00");
}

TEST(Lifetime, StoringAnOpenValueLeavesTheMessageAlone) {
    const Octets message = keyUsageExtension;
    ASN1BERDecodeBuffer buffer = reader(message);
    ASN1T_Extension value;
    ASN1C_Extension control(buffer, value);
    ASSERT_EQ(control.Decode(), 0);
    const unsigned position = buffer.getCtxtPtr()->buffer.byteIndex;
    EXPECT_EQ(asn1ETC_Extension(buffer.getCtxtPtr(), &value), 0);
    EXPECT_EQ(message, keyUsageExtension);
    EXPECT_EQ(buffer.getCtxtPtr()->buffer.data, message.data());
    EXPECT_EQ(buffer.getCtxtPtr()->buffer.byteIndex, position);
    EXPECT_EQ(tests::toHex(value.extnValue.data, value.extnValue.numocts), "03 02 05 A0");
}

TEST(Lifetime, CopiesOutliveTheBuffersThatTheirControlWasTurnedTo) {
    ASN1BERDecodeBuffer buffer = reader(name);
    ASN1T_Name value;
    ASN1C_Name control(buffer, value);
    ASSERT_EQ(control.Decode(), 0);
    std::vector<std::unique_ptr<ASN1T_Name>> copies;
    for (int i = 0; i < 3; ++i) {
        ASN1BEREncodeBuffer output;
        ASSERT_EQ(control.EncodeTo(output), static_cast<int>(name.size()));
        copies.emplace_back(control.newCopy());
    }
    for (const auto& copy : copies) {
        ASN1BEREncodeBuffer output;
        EXPECT_EQ(ASN1C_Name(output, *copy).Encode(), static_cast<int>(name.size()));
    }
}

TEST(Lifetime, ValuesOfABufferOutliveTheBuffersThatAnotherControlWasTurnedTo) {
    ASN1BERDecodeBuffer buffer = reader(name);
    ASN1T_Name first;
    ASN1T_Name second;
    ASN1C_Name control(buffer, first);
    ASSERT_EQ(control.Decode(), 0);
    {
        ASN1BEREncodeBuffer output;
        ASSERT_GT(control.EncodeTo(output), 0);
    }
    ASSERT_EQ(buffer.setBuffer(name.data(), static_cast<int>(name.size()), 0), 0);
    ASSERT_EQ(ASN1C_Name(buffer, second).Decode(), 0);
    {
        ASN1BEREncodeBuffer output;
        ASSERT_GT(control.EncodeTo(output), 0);
    }
    ASN1BEREncodeBuffer output;
    EXPECT_EQ(ASN1C_Name(output, second).Encode(), static_cast<int>(name.size()));
}

TEST(Lifetime, TurningAControlBetweenBuffersKeepsNothingForEver) {
    tests::CountingAllocator allocator;
    ASN1BERDecodeBuffer buffer = reader(name);
    ASN1T_Name value;
    ASN1C_Name control(buffer, value);
    ASSERT_EQ(control.Decode(), 0);
    const long before = tests::CountingAllocator::live();
    for (int i = 0; i < 100; ++i) {
        ASN1BEREncodeBuffer output;
        ASSERT_GT(control.EncodeTo(output), 0);
    }
    // The last buffer's heap is the control's now.
    EXPECT_LE(tests::CountingAllocator::live(), before + 1);
}

TEST(Lifetime, ACopyIsReplacedByACopyFromElsewhere) {
    ASN1T_Name copy;
    for (int i = 0; i < 2; ++i) {
        ASN1BERDecodeBuffer buffer = reader(name);
        ASN1T_Name value;
        ASN1C_Name control(buffer, value);
        ASSERT_EQ(control.Decode(), 0);
        EXPECT_EQ(control.getCopy(&copy), &copy);
    }
    ASN1BEREncodeBuffer output;
    EXPECT_EQ(ASN1C_Name(output, copy).Encode(), static_cast<int>(name.size()));
}

TEST(Lifetime, DecodingIntoACopyMakesItTheBuffers) {
    ASN1BERDecodeBuffer buffer = reader(name);
    ASN1T_Name value;
    ASN1C_Name control(buffer, value);
    ASSERT_EQ(control.Decode(), 0);
    ASN1T_Name copy(control);
    {
        ASN1BERDecodeBuffer other = reader(name);
        ASSERT_EQ(ASN1C_Name(other, copy).Decode(), 0);
    }
    EXPECT_FALSE(copy.ownerContext);
}

/// Decodes a message and copies it into a record that outlives the message's buffer.
template <class Control, class Record>
void copyOf(const Octets& message, Record& copy) {
    ASN1BERDecodeBuffer buffer = reader(message);
    Record value;
    Control control(buffer, value);
    ASSERT_EQ(control.Decode(), 0);
    ASSERT_EQ(control.getCopy(&copy), &copy);
}

/// Every shape that a record can have, with its control class and a message.
template <template <class, class> class Check>
void forEveryShape() {
    using namespace shapes;
    Check<ASN1C_Optionals, ASN1T_Optionals>()("30 0A 04 01 AA 0C 02 41 42 01 01 FF");
    Check<ASN1C_Choice, ASN1T_Choice>()("85 02 01 02");
    Check<ASN1C_Choice, ASN1T_Choice>()("83 02 41 42");
    Check<ASN1C_ChoiceList, ASN1T_ChoiceList>()("30 07 83 01 41 85 02 01 02");
    Check<ASN1C_TextArray, ASN1T_TextArray>()("30 06 0C 01 41 0C 01 42");
    Check<ASN1C_FixedTexts, ASN1T_FixedTexts>()("30 06 13 01 41 13 01 42");
    Check<ASN1C_Tree, ASN1T_Tree>()("30 07 A0 05 30 03 0C 01 41");
}

template <class Control, class Record>
struct NamesTheContextOfItsNewContent {
    void operator()(const char* hex) const {
        SCOPED_TRACE(hex);
        const Octets message = fromHex(hex);
        Record copy;
        copyOf<Control>(message, copy);
        ASN1ContextRef first = copy.ownerContext;
        {
            ASN1BERDecodeBuffer buffer = reader(message);
            Record value;
            Control source(buffer, value);
            ASSERT_EQ(source.Decode(), 0);
            Control control(copy);
            control = source;
            EXPECT_EQ(copy.ownerContext.get(), control.getContext().get());
        }
        EXPECT_EQ(first->getRefCount(), 1u);
        first.reset();
        EXPECT_EQ(encoded<Control>(copy), message);
    }
};

TEST(Lifetime, ACopyThatIsAssignedToNamesTheContextOfItsNewContent) {
    forEveryShape<NamesTheContextOfItsNewContent>();
    NamesTheContextOfItsNewContent<shapes::ASN1C_Extended, shapes::ASN1T_Extended>()(
        "30 07 06 01 2A 05 00 05 00");
}

template <class Control, class Record>
struct LeavesNothingBehind {
    void operator()(const char* hex) const {
        SCOPED_TRACE(hex);
        const Octets message = fromHex(hex);
        const tests::CountingAllocator allocator;
        ASN1BERDecodeBuffer buffer = reader(message);
        Record value;
        Record other;
        Control control(buffer, value);
        Control source(buffer, other);
        ASSERT_EQ(control.Decode(), 0);
        ASSERT_EQ(buffer.setBuffer(message.data(), static_cast<int>(message.size()), 0), 0);
        ASSERT_EQ(source.Decode(), 0);
        const long before = tests::CountingAllocator::live();
        for (int i = 0; i < 100; ++i) {
            control = source;
        }
        EXPECT_EQ(tests::CountingAllocator::live(), before);
        EXPECT_EQ(encoded<Control>(value), message);
    }
};

TEST(Lifetime, AssignmentGivesBackWhatItReplaces) {
    forEveryShape<LeavesNothingBehind>();
    LeavesNothingBehind<shapes::ASN1C_Any, shapes::ASN1T_Any>()("05 00");
    LeavesNothingBehind<shapes::ASN1C_Octets, shapes::ASN1T_Octets>()("04 01 AA");
    LeavesNothingBehind<shapes::ASN1C_Bits, shapes::ASN1T_Bits>()("03 02 00 AA");
    LeavesNothingBehind<shapes::ASN1C_ShortBmp, shapes::ASN1T_ShortBmp>()("1E 02 00 41");
    LeavesNothingBehind<shapes::ASN1C_ShortUniversal, shapes::ASN1T_ShortUniversal>()(
        "1C 04 00 00 00 41");
    LeavesNothingBehind<ASN1C_Validity, ASN1T_Validity>()(
        "30 1E 17 0D 32 34 30 31 30 31 30 30 30 30 30 30 5A "
        "17 0D 32 35 30 31 30 31 30 30 30 30 30 30 5A");
}

TEST(Lifetime, AssignmentLeavesWhatNobodyInitialisedOrAProgramPutThere) {
    const Octets message = fromHex("0C 02 41 42");
    ASN1BERDecodeBuffer buffer = reader(message);
    shapes::ASN1T_Utf8 decoded = nullptr;
    shapes::ASN1C_Utf8 source(buffer, decoded);
    ASSERT_EQ(source.Decode(), 0);
    shapes::ASN1T_Utf8 text = "of the program";
    shapes::ASN1C_Utf8 control(text);
    control = source;
    EXPECT_STREQ(text, "AB");

    // Elements that a program has put into a list are its own.
    const Octets elements = fromHex("30 03 83 01 41");
    ASN1BERDecodeBuffer listBuffer = reader(elements);
    shapes::ASN1T_ChoiceList decodedList;
    shapes::ASN1C_ChoiceList listSource(listBuffer, decodedList);
    ASSERT_EQ(listSource.Decode(), 0);
    shapes::ASN1T_Choice element;
    element.t = shapes::T_Choice_text;
    element.u.text = "mine";
    shapes::ASN1T_ChoiceList list;
    shapes::ASN1C_ChoiceList listControl(list);
    listControl.append(&element);
    ASN1CSeqOfListIterator* const iterator = listControl.iterator();
    listControl = listSource;
    EXPECT_STREQ(element.u.text, "mine");
    EXPECT_EQ(listControl.size(), 1);
    EXPECT_EQ(iterator->next(), nullptr);
    EXPECT_EQ(iterator->getState(), ASN1S_CONCURRENT_MODIFICATION);
}

TEST(Lifetime, ACopyIsReplacedByPlainFunctionsOnceItIsGivenBack) {
    const Octets message = fromHex("30 07 83 01 41 85 02 01 02");
    shapes::ASN1T_ChoiceList copy;
    copyOf<shapes::ASN1C_ChoiceList>(message, copy);
    shapes::asn1Free_ChoiceList(copy.ownerContext.get(), &copy);
    copy.ownerContext.reset();
    {
        ASN1BERDecodeBuffer buffer = reader(message);
        ASN1CTXT* const ctxt = buffer.getCtxtPtr();
        ASSERT_EQ(buffer.init(), 0);
        ASSERT_EQ(shapes::asn1D_ChoiceList(ctxt, &copy, ASN1TagExplicit, 0), 0);
        EXPECT_EQ(encoded<shapes::ASN1C_ChoiceList>(copy), message);
    }
}

// A tree "A" with a tree "B" inside.
const Octets outerTree = fromHex("30 0C 0C 01 41 A0 07 30 05 0C 01 42 A0 00");
const Octets innerTree = fromHex("30 05 0C 01 42 A0 00");

TEST(Lifetime, APartReplacesTheWholeThatContainsIt) {
    shapes::ASN1T_Tree copy;
    copyOf<shapes::ASN1C_Tree>(outerTree, copy);
    shapes::ASN1C_Tree part(*static_cast<shapes::ASN1T_Tree*>(copy.children.head->data));
    part.getCopy(&copy);
    EXPECT_EQ(encoded<shapes::ASN1C_Tree>(copy), innerTree);

    shapes::ASN1T_Tree assigned;
    copyOf<shapes::ASN1C_Tree>(outerTree, assigned);
    shapes::ASN1C_Tree source(*static_cast<shapes::ASN1T_Tree*>(assigned.children.head->data));
    shapes::ASN1C_Tree target(assigned);
    target = source;
    EXPECT_EQ(encoded<shapes::ASN1C_Tree>(assigned), innerTree);

    // An open value's raw octets, which hold a message of the record's own type.
    const Octets wrapped = fromHex("30 10 06 03 2A 03 06 30 09 06 03 2A 03 02 0C 02 41 42");
    shapes::ASN1T_Open open;
    copyOf<shapes::ASN1C_Open>(wrapped, open);
    ASN1BERDecodeBuffer inside(open.value.data, static_cast<int>(open.value.numocts));
    EXPECT_EQ(shapes::ASN1C_Open(inside, open).Decode(), 0);
    EXPECT_FALSE(open.ownerContext);
    EXPECT_EQ(encoded<shapes::ASN1C_Open>(open), fromHex("30 09 06 03 2A 03 02 0C 02 41 42"));
}

TEST(Lifetime, TheWholeReplacesAPartOfIt) {
    ASN1BERDecodeBuffer buffer = reader(outerTree);
    shapes::ASN1T_Tree whole;
    shapes::ASN1C_Tree source(buffer, whole);
    ASSERT_EQ(source.Decode(), 0);
    auto& part = *static_cast<shapes::ASN1T_Tree*>(whole.children.head->data);
    shapes::ASN1C_Tree target(buffer, part);
    target = source;
    EXPECT_EQ(encoded<shapes::ASN1C_Tree>(part), outerTree);
}

// The object has moved a string that outgrew its octets to a block of its own.
TEST(Lifetime, ABitStringThatHasGrownTakesANewValue) {
    const Octets message = fromHex("03 03 01 12 34");
    ASN1BERDecodeBuffer buffer = reader(message);
    shapes::ASN1T_Bits decoded{};
    shapes::ASN1C_Bits source(buffer, decoded);
    ASSERT_EQ(source.Decode(), 0);
    unsigned char octets[] = {0xFF};
    shapes::ASN1T_Bits value{8, octets};
    {
        shapes::ASN1C_Bits control(buffer, value);
        ASSERT_EQ(control.set(40), 0);
        control = source;
        EXPECT_EQ(encoded<shapes::ASN1C_Bits>(value), message);
        ASSERT_EQ(control.set(40), 0);
        ASSERT_EQ(buffer.setBuffer(message.data(), static_cast<int>(message.size()), 0), 0);
        ASSERT_EQ(control.Decode(), 0);
    }
    EXPECT_EQ(encoded<shapes::ASN1C_Bits>(value), message);
}

TEST(Lifetime, WhatPointsIntoTheMessageIsNotFreedThroughAControlsContext) {
    ASN1BERDecodeBuffer buffer = reader(keyUsageExtension);
    rtCtxtSetFlag(buffer.getCtxtPtr(), ASN1F_NO_COPY);
    ASN1T_Extension value;
    ASN1C_Extension control(value);
    ASSERT_EQ(control.DecodeFrom(buffer), 0);
    asn1Free_Extension(control.getCtxtPtr(), &value);
}

} // namespace

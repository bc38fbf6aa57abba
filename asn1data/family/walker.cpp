#include <algorithm>
#include <cstring>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/measure.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>
#include <brevantis/asn1/runtime/octet_string.h>
#include <brevantis/asn1/runtime/open_type.h>
#include <brevantis/asn1/runtime/scalar.h>
#include <brevantis/asn1/runtime/utf8.h>

#include "open_value.h"
#include "strict_reading.h"
#include "walker.h"

namespace asn1data::family {

namespace {

/// Counts the characters of a text that a constraint is about: those in front of a zero octet.
struct TextCount {
    ASN1UTF8Count count{};
    bool utf8;

    static void take(void* state, const unsigned char* octets, unsigned size) noexcept {
        auto& text = *static_cast<TextCount*>(state);
        if (text.utf8) {
            rtUTF8CountPiece(&text.count, octets, size);
        } else if (!text.count.ended) {
            const auto* end = static_cast<const unsigned char*>(std::memchr(octets, 0, size));
            text.count.ended = end != nullptr;
            text.count.characters += static_cast<int>(end != nullptr ? end - octets : size);
        }
    }
};

bool isString(const TypeDescription* type) {
    return type != nullptr && family::isString(*type);
}

} // namespace

Walker::Walker(const unsigned char* message, unsigned size, WalkVisitor& visitor,
               WalkFailure& failure)
    : base(message), visitor_(visitor), interest_(visitor.interest()), failure_(failure) {
    static const unsigned char nothing = 0;
    base = message != nullptr ? message : &nothing;
    rtInitReader(&ctxt, base, size);
    ctxt.flags = ASN1F_NO_COPY;
    if (size != 0) { // without octets there is no size to state
        // A message that cannot be bound is met by the decoder itself, with the status that fits.
        bound = xd_setp(&ctxt, base, static_cast<int>(size), nullptr, nullptr);
    }
}

Walker::~Walker() {
    rtMemHeapRelease(&ctxt.memHeap);
}

void Walker::setPolicy(const ReadingPolicy& policy) {
    ctxt.flags = static_cast<unsigned short>(ctxt.flags | (policy.flags & PolicyFlags));
    rtCtxtSetDepthLimit(&ctxt, std::min<unsigned>(policy.depthLimit, Nesting::Limit));
    elementLimit = policy.elementLimit != 0;
    elementsLeft = policy.elementLimit;
}

int Walker::run(const TypeDescription& type) {
    atElement();
    WalkPlace root(nullptr, nullptr, 0, StepKind::Message, nullptr, nullptr, nullptr, elementStart);
    here = &root;
    const int status = DecodeFlow<Walking>::decode(Walking(*this), type, {}, ASN1TagExplicit, 0);
    here = nullptr;
    return status;
}

int Walker::readElement(const TypeDescription& container, const ElementDescription& element) {
    return DecodeFlow<Walking>::decodeElement(Walking(*this), container, element, {});
}

/// The header and the contents of the value that ends at the position.
WalkScope Walker::scopeBehind() const {
    const bool whole = octets() - valueStart >= 2; // not so where a length is missing
    if (whole && (valueStart[0] & ASN1LongTagNumber) != ASN1LongTagNumber && valueStart[1] < 0x80) {
        return {valueStart, valueStart + 2, static_cast<int>(octets() - valueStart) - 2};
    }
    ASN1Header header;
    const auto left = static_cast<unsigned>(ctxt.buffer.data + ctxt.buffer.size - valueStart);
    if (rtReadHeader(valueStart, left, &header) != ASN1S_SUCCESS) {
        // A fixed string with a length that cannot be read is one without octets.
        return {valueStart, octets(), 0};
    }
    const unsigned char* const contents = valueStart + header.size;
    return {valueStart, contents,
            header.length == ASN1IndefiniteLength ? header.length
                                                  : static_cast<int>(octets() - contents)};
}

/// Everything of the report that the step has not told, but for its value.
[[gnu::always_inline]] inline void Walker::describe(const TypeDescription* type,
                                                    const WalkScope& scope) {
    WalkElement& element = here->element;
    const unsigned char* const start = scope.valueStart;
    element.type = type;
    element.offset = static_cast<unsigned>(element.data - base);
    element.valueOffset = static_cast<unsigned>(start - base);
    element.headerLength = static_cast<unsigned>(scope.contents - element.data);
    element.contentLength = scope.length;
    element.tag = rtTagOfOctet(*start);
    if ((*start & ASN1LongTagNumber) == ASN1LongTagNumber) {
        ASN1Header header{};
        rtReadHeader(start, static_cast<unsigned>(scope.contents - start), &header);
        element.tag = header.tag;
    }
    element.depth = depth;
    element.segmented = (element.tag & ASN1TagConstructed) != 0 && isString(type);
    element.encapsulates = false;
    element.assembled = assembled;
}

bool Walker::enter(const TypeDescription& type, const WalkScope& scope, const WalkOctets* octets) {
    if (interest_.containers) {
        describe(&type, scope);
        WalkElement& element = here->element;
        element.value = WalkValue{};
        if (octets != nullptr) {
            element.encapsulates = true;
            element.value.octets = octets->data;
            element.value.octetCount = octets->count;
        }
        const WalkAction action = visitor_.enter(element);
        if (action != WalkAction::Continue) {
            stopped = stopped || action == WalkAction::Stop;
            return false;
        }
    }
    ++depth;
    return true;
}

// Not inline, as what takes room on the stack here would take it under all that is inside.
[[gnu::noinline]] bool Walker::enterHere(const TypeDescription& type, int length) {
    return enter(type, {valueStart, octets(), length}, nullptr);
}

/// The report is the one that the visitor saw when the element was entered.
int Walker::leave() {
    --depth;
    if (interest_.containers) {
        stopped = visitor_.leave(here->element) == WalkAction::Stop;
    }
    return stopped ? int{WalkStopped} : int{ASN1S_SUCCESS};
}

int Walker::stepOver(const TypeDescription& type, int length) {
    if (stopped) {
        return WalkStopped;
    }
    stepped = true;
    if (length == ASN1IndefiniteLength) {
        const int status = xd_MovePastEOC(&ctxt);
        if (status != ASN1S_SUCCESS) {
            return fail(status, {Expectation::EndOfContents});
        }
        // Whoever reads the element takes its end-of-contents, or leaves it.
        ctxt.buffer.byteIndex -= 2;
        return ASN1S_SUCCESS;
    }
    const unsigned left =
        ctxt.buffer.byteIndex < ctxt.buffer.size ? ctxt.buffer.size - ctxt.buffer.byteIndex : 0;
    if (static_cast<unsigned>(length) > left) {
        return fail(ASN1S_END_OF_BUFFER, {Expectation::Contents, &type});
    }
    ctxt.buffer.byteIndex += static_cast<unsigned>(length);
    return ASN1S_SUCCESS;
}

[[gnu::noinline]] int Walker::checkConstraint(const TypeDescription& type,
                                              const Constraint& constraint, const char* parameter) {
    const int status = checkNumber(&ctxt, type, number, constraint, parameter);
    if (status != ASN1S_SUCCESS) {
        failure_.constraint = constraint;
        fail(status, {Expectation::InRange, &type});
    }
    return status;
}

int Walker::readRaw() {
    atHeader();
    return xd_OpenType(&ctxt, &here->element.value.octets, &here->element.value.octetCount);
}

/// Reads the value of a primitive without keeping it. What its constraint is about goes to
/// Walker::number.
struct Walker::PrimitiveReader {
    Walker& walker;
    const TypeDescription& type;
    ASN1TagType tagging;
    int length;
    WalkValue& value;

    int operator()(Is<Shape::Boolean>) const { return number<unsigned char>(xd_boolean); }
    int operator()(Is<Shape::Integer>) const { return number<int>(xd_integer); }
    int operator()(Is<Shape::Unsigned>) const { return number<unsigned>(xd_unsigned); }
    int operator()(Is<Shape::Unsigned16>) const { return number<unsigned short>(xd_uint16); }
    int operator()(Is<Shape::Enumerated>) const {
        const int status = number<int>(xd_enum);
        value.number = walker.number = static_cast<unsigned>(value.number);
        return status;
    }
    int operator()(Is<Shape::BigInteger>) const {
        ASN1Extent extent{};
        const int status = xd_measureBigInt(&walker.ctxt, &extent, tagging, length);
        return octets(extent, status);
    }
    int operator()(Is<Shape::BigUnsigned>) const { return (*this)(Is<Shape::BigInteger>()); }
    int operator()(Is<Shape::Null>) const { return xd_null(&walker.ctxt, tagging); }
    int operator()(Is<Shape::ObjectIdentifier>) const {
        value.identifier = &walker.identifier_;
        return xd_objid(&walker.ctxt, &walker.identifier_, tagging, length);
    }
    int operator()(Is<Shape::OctetString>) const {
        ASN1Extent extent{};
        const int status = xd_measureOctets(&walker.ctxt, &extent, nullptr, tagging, length);
        return counted(extent, status);
    }
    int operator()(Is<Shape::FixedOctetString>) const {
        ASN1Extent extent{};
        const int status =
            xd_measureFixedOctets(&walker.ctxt, &extent, type.capacity, tagging, length);
        return counted(extent, status);
    }
    int operator()(Is<Shape::BitString>) const {
        ASN1Extent extent{};
        const int status = xd_measureBits(&walker.ctxt, &extent, tagging, length);
        return bits(extent, status);
    }
    int operator()(Is<Shape::FixedBitString>) const {
        ASN1Extent extent{};
        const int status =
            xd_measureFixedBits(&walker.ctxt, &extent, type.capacity, tagging, length);
        return bits(extent, status);
    }
    int operator()(Is<Shape::Text>) const {
        TextCount text{{}, type.tag == Utf8StringTag};
        const ASN1OctetSink sink{&TextCount::take, &text};
        ASN1Extent extent{};
        const int status = xd_measureText(&walker.ctxt, &extent, &sink, tagging, type.tag, length);
        walker.number = static_cast<unsigned>(text.count.characters);
        return octets(extent, status);
    }
    int operator()(Is<Shape::Text16>) const { return wideText(2); }
    int operator()(Is<Shape::Text32>) const { return wideText(4); }
    int operator()(Is<Shape::OpenType>) const { return walker.readRaw(); }
    template <Shape S, class = std::enable_if_t<!isPrimitive(S)>>
    int operator()(Is<S>) const {
        return ASN1S_NOT_SUPPORTED; // no coder reads these as a whole
    }

private:
    template <class Number, class Coder>
    int number(Coder coder) const {
        Number read = 0;
        const int status = coder(&walker.ctxt, &read, tagging, length);
        value.number = walker.number = read;
        return status;
    }
    int octets(const ASN1Extent& extent, int status) const {
        value.octets = extent.count != 0 ? extent.data : nullptr;
        value.octetCount = extent.count;
        return status;
    }
    int counted(const ASN1Extent& extent, int status) const {
        walker.number = extent.count;
        return octets(extent, status);
    }
    int bits(ASN1Extent extent, int status) const {
        walker.number = value.bitCount = extent.count;
        extent.count = extent.count / 8 + (extent.count % 8 != 0 ? 1 : 0);
        return octets(extent, status);
    }
    int wideText(unsigned width) const {
        ASN1Extent extent{};
        const int status =
            xd_measureWideText(&walker.ctxt, &extent, width, tagging, type.tag, length);
        walker.number = extent.count;
        extent.count *= width;
        return octets(extent, status);
    }
};

namespace {

/// Most octets of an IMPLICIT value that are read as a whole: their bits can be counted.
constexpr unsigned LongestWhole = 0xFFFFFF;

} // namespace

/// Takes the usual form of a value, which stands whole in a primitive element: what most messages
/// consist of is to be read in few steps. It says no to everything else, and to what a coder might
/// refuse; PrimitiveReader then reads it from the start.
struct Walker::WholeReader {
    Walker& walker;
    const TypeDescription& type;
    const WholeContents& whole;
    WalkValue& value;

    // The coders of these two take lengths of one octet alone.
    bool operator()(Is<Shape::Boolean>) const {
        return whole.count == 1 && !whole.longForm && number(*whole.octets);
    }
    bool operator()(Is<Shape::Unsigned16>) const {
        return whole.count - 1 < 2 && !whole.longForm && number(unsignedOctets());
    }
    bool operator()(Is<Shape::Integer>) const {
        return whole.count - 1 < 4 && number(static_cast<int>(signedOctets()));
    }
    bool operator()(Is<Shape::Unsigned>) const {
        return whole.count - 1 < 4 && number(unsignedOctets());
    }
    bool operator()(Is<Shape::Enumerated>) const {
        return whole.count - 1 < 4 && number(signedOctets());
    }
    bool operator()(Is<Shape::BigInteger>) const { return octets(whole.octets, whole.count); }
    bool operator()(Is<Shape::BigUnsigned>) const { return octets(whole.octets, whole.count); }
    bool operator()(Is<Shape::Null>) const { return false; }
    bool operator()(Is<Shape::ObjectIdentifier>) const {
        constexpr unsigned fewest =
            ASN1MaxSubIds - 1; // octets that more arcs than there are room for take
        if (whole.count == 0 || whole.count >= fewest) {
            return false;
        }
        value.identifier = &walker.identifier_;
        ASN1Buffer& buffer = walker.ctxt.buffer;
        buffer.byteIndex = static_cast<unsigned>(whole.octets - buffer.data);
        xd_objid(&walker.ctxt, &walker.identifier_, ASN1TagImplicit, static_cast<int>(whole.count));
        return true;
    }
    bool operator()(Is<Shape::OctetString>) const {
        walker.number = whole.count;
        return octets(whole.octets, whole.count);
    }
    bool operator()(Is<Shape::FixedOctetString>) const {
        walker.number = whole.count;
        return whole.count <= type.capacity && octets(whole.octets, whole.count);
    }
    bool operator()(Is<Shape::BitString>) const {
        if (whole.count < 2 || *whole.octets > 7) { // X.690, 8.6.2
            return false;
        }
        walker.number = value.bitCount = (whole.count - 1) * 8 - *whole.octets;
        return octets(whole.octets + 1, whole.count - 1);
    }
    bool operator()(Is<Shape::FixedBitString>) const {
        return whole.count <= type.capacity / 8 + 1 && (*this)(Is<Shape::BitString>());
    }
    bool operator()(Is<Shape::Text>) const {
        const ElementDescription* const element = walker.here->element.element;
        if (type.constraint.count != 0 || (element != nullptr && element->constraint.count != 0)) {
            TextCount text{{}, type.tag == Utf8StringTag};
            TextCount::take(&text, whole.octets, whole.count);
            walker.number = static_cast<unsigned>(text.count.characters);
        }
        return octets(whole.octets, whole.count);
    }
    bool operator()(Is<Shape::Text16>) const { return wideText(2); }
    bool operator()(Is<Shape::Text32>) const { return wideText(4); }
    template <Shape S, class = std::enable_if_t<S == Shape::OpenType || !isPrimitive(S)>>
    bool operator()(Is<S>) const {
        return false;
    }

private:
    bool number(long long read) const {
        value.number = walker.number = read;
        return true;
    }
    unsigned unsignedOctets() const {
        unsigned read = 0;
        for (unsigned i = 0; i < whole.count; ++i) {
            read = read << 8 | whole.octets[i];
        }
        return read;
    }
    unsigned signedOctets() const { // X.690, 8.3.3
        const unsigned read = unsignedOctets();
        return *whole.octets < 0x80 || whole.count == 4 ? read : read | ~0u << 8 * whole.count;
    }
    bool octets(const unsigned char* first, unsigned size) const {
        value.octets = size != 0 ? first : nullptr;
        value.octetCount = size;
        return true;
    }
    bool wideText(unsigned width) const {
        walker.number = whole.count / width;
        return octets(whole.octets, whole.count - whole.count % width);
    }
};

[[gnu::always_inline]] inline int Walker::reportPrimitive(const TypeDescription* type,
                                                          const WalkScope& scope) {
    if (interest_.values) {
        describe(type, scope);
        stopped = visitor_.primitive(here->element) == WalkAction::Stop;
    }
    return stopped ? int{WalkStopped} : int{ASN1S_SUCCESS};
}

inline int Walker::resolve(const TypeDescription* type, const WalkScope& scope, WalkOctets value,
                           const WalkHeader& header) {
    return type != nullptr && type->shape == Shape::OctetString
               ? resolveOctets(*type, scope, value, header)
               : resolved(value, here->element.data);
}

/// A value has been read.
[[gnu::always_inline]] inline int Walker::took(const TypeDescription* type, const WalkScope& scope,
                                               const WalkHeader& header) {
    if (isBeyondLimit()) {
        return fail(ASN1S_NO_MEMORY, {Expectation::FewerElements, type});
    }
    if (silence != 0) {
        return ASN1S_SUCCESS;
    }
    const bool raw = type == nullptr || type->shape == Shape::OpenType;
    if (object != nullptr && (raw || type->shape == Shape::OctetString)) {
        const WalkOctets octets{here->element.value.octets, here->element.value.octetCount};
        if (raw || octets.count != 0) {
            return (ctxt.flags & ASN1F_TOLERATE_OPEN_VALUES) == 0 || trusts_
                       ? resolve(type, scope, octets, header)
                       : resolveOrKeep(type, scope, octets, header);
        }
    }
    if (raw && here->element.value.octetCount == 0) { // none is there
        return ASN1S_SUCCESS;
    }
    return reportPrimitive(type, scope);
}

/// Reads a primitive.
int Walker::primitive(const TypeDescription& type, ASN1TagType tagging, int length) {
    ASN1Buffer& buffer = ctxt.buffer;
    const WalkHeader header{buffer.byteIndex, ctxt.flags, tagging, length};
    const unsigned left = buffer.byteIndex < buffer.size ? buffer.size - buffer.byteIndex : 0;
    const unsigned char* const start = octets();
    WholeContents whole{start, static_cast<unsigned>(length)};
    here->element.value = WalkValue{};
    number = 0;
    if (tagging == ASN1TagExplicit) {
        valueStart = start;
        if (!whole.behindHeader(left) || *start != type.identifier) {
            return readAny(&type, header);
        }
        ctxt.flags = static_cast<unsigned short>(ctxt.flags & ~ASN1F_CONSTRUCTED);
    } else if ((ctxt.flags & ASN1F_CONSTRUCTED) != 0 ||
               whole.count > std::min(left, LongestWhole)) {
        return readAny(&type, header);
    }
    if (!withShape(type.shape, WholeReader{*this, type, whole, here->element.value})) {
        ctxt.flags = header.flags;
        return readAny(&type, header);
    }
    buffer.byteIndex = static_cast<unsigned>(whole.octets + whole.count - buffer.data);
    return took(&type, {valueStart, whole.octets, static_cast<int>(whole.count)}, header);
}

[[gnu::noinline]] int Walker::openType(const TypeDescription& type) {
    ASN1Buffer& buffer = ctxt.buffer;
    const WalkHeader header{buffer.byteIndex, ctxt.flags, ASN1TagExplicit, 0};
    const unsigned left = buffer.byteIndex < buffer.size ? buffer.size - buffer.byteIndex : 0;
    valueStart = octets();
    WholeContents whole{valueStart, 0};
    here->element.value = WalkValue{};
    number = 0;
    if (!whole.behindHeader(left) || (*valueStart & ASN1LongTagNumber) == ASN1LongTagNumber ||
        *valueStart == 0) {
        return readAny(&type, header);
    }
    const auto size = static_cast<unsigned>(whole.octets + whole.count - valueStart);
    buffer.byteIndex += size;
    here->element.value.octets = valueStart;
    here->element.value.octetCount = size;
    return took(&type, {valueStart, whole.octets, static_cast<int>(whole.count)}, header);
}

int Walker::addition() {
    atHeader();
    const WalkHeader header{ctxt.buffer.byteIndex, ctxt.flags, ASN1TagExplicit, 0};
    here->element.value = WalkValue{};
    number = 0;
    return readAny(nullptr, header);
}

/// Reads a value in any form.
[[gnu::noinline]] int Walker::readAny(const TypeDescription* type, const WalkHeader& header) {
    here->element.value = WalkValue{};
    number = 0;
    const int status =
        type != nullptr
            ? withShape(type->shape, PrimitiveReader{*this, *type, header.tagging, header.length,
                                                     here->element.value})
            : readRaw();
    if (status != ASN1S_SUCCESS) {
        return fail(
            status,
            {status == ASN1S_TAG_NOT_FOUND ? Expectation::Element : Expectation::Contents, type});
    }
    return took(type, scopeBehind(), header);
}

/// Reads an open value for nobody first: if it fails nothing of it may have been reported. What is
/// inside of one that did not fail is read likewise, so the octets of an open value are read once
/// more for each of those around it, unless none of these is left raw.
[[gnu::noinline]] int Walker::resolveOrKeep(const TypeDescription* type, const WalkScope& scope,
                                            WalkOctets value, const WalkHeader& header) {
    const WalkInterest wanted = interest_;
    const bool watched = wanted.containers || wanted.values;
    const unsigned faults = faults_;
    const unsigned left = elementsLeft;
    const ASN1Buffer buffer = ctxt.buffer;
    const auto goBack = [this, buffer, scope, flags = ctxt.flags, recorded = ctxt.errInfo.status,
                         outerBase = base, outerDepth = depth, wasAssembled = assembled,
                         selected = object, measured = number, again = rereads] {
        ctxt.buffer = buffer;
        ctxt.flags = flags;
        ctxt.errInfo.status = recorded;
        base = outerBase;
        valueStart = scope.valueStart;
        depth = outerDepth;
        assembled = wasAssembled;
        object = selected;
        number = measured;
        rereads = again;
        stepped = false;
        failure_ = {};
    };
    interest_ = {false, false};
    ++trials_;
    int status = resolve(type, scope, value, header);
    --trials_;
    interest_ = wanted;
    const bool keeps = status != ASN1S_SUCCESS && staysRaw(ctxt, status);
    const bool tells = watched || (status == ASN1S_SUCCESS && faults != faults_);
    if (!keeps && (trials_ != 0 || !tells)) {
        return status;
    }
    if (!keeps) {
        goBack();
        elementsLeft = left;
        trusts_ = status == ASN1S_SUCCESS && faults == faults_;
        status = resolve(type, scope, value, header);
        trusts_ = false;
        return status;
    }
    ++faults_;
    stopped = trials_ == 0 && visitor_.tolerated(failure_) == WalkAction::Stop;
    goBack();
    if (stopped || value.count == 0) {
        return stopped ? int{WalkStopped} : int{ASN1S_SUCCESS};
    }
    here->element.value = WalkValue{};
    here->element.value.octets = value.data;
    here->element.value.octetCount = value.count;
    return reportPrimitive(type, scope);
}

int Walker::resolveOctets(const TypeDescription& type, const WalkScope& scope, WalkOctets value,
                          const WalkHeader& header) {
    const ASN1Buffer behind = ctxt.buffer;
    const unsigned short flags = ctxt.flags;
    if (!enter(type, scope, &value)) {
        return stopped ? int{WalkStopped} : int{ASN1S_SUCCESS};
    }
    WalkOctets whole = value;
    const bool segmented = whole.data == nullptr;
    const unsigned char* const outerBase = base;
    const bool outerAssembled = assembled;
    if (segmented) {
        ctxt.buffer.byteIndex = header.position;
        ctxt.flags = header.flags;
        const int status =
            xd_octstr(&ctxt, &whole.data, &whole.count, header.tagging, header.length);
        if (status != ASN1S_SUCCESS) {
            return fail(status, {Expectation::Memory, &type});
        }
        base = whole.data;
        assembled = true;
    }
    const int status = resolved(whole, whole.data);
    if (segmented) {
        // The heap gave it out.
        rtMemHeapFreePtr(&ctxt.memHeap, const_cast<unsigned char*>(whole.data));
    }
    if (status != ASN1S_SUCCESS) {
        return status;
    }
    if (segmented) {
        base = outerBase;
        assembled = outerAssembled;
    }
    ctxt.buffer = behind;
    ctxt.flags = flags;
    number = value.count;
    return leave();
}

/// Goes through the octets of an open value. A failure leaves the context on them, success brings
/// it back behind the raw value.
/// @param element first octet of the element that they are
int Walker::resolved(WalkOctets value, const unsigned char* element) {
    const ObjectDescription* const selected = object;
    const ASN1Buffer behind = ctxt.buffer;
    const unsigned short flags = ctxt.flags;
    if (value.count == 0) {
        ctxt.buffer = openValue->failing_;
        return fail(ASN1S_END_OF_BUFFER, {Expectation::Octets, selected->type});
    }
    const StepWalk step(*this, *selected, element);
    valueStart = value.data;
    int status = xd_setp(&ctxt, value.data, static_cast<int>(value.count), nullptr, nullptr);
    if (status != ASN1S_SUCCESS) {
        return fail(status, {Expectation::Header, selected->type});
    }
    const Nesting nesting(&ctxt, true);
    if (nesting.tooDeep()) {
        return fail(ASN1S_NO_MEMORY, {Expectation::LessNesting, selected->type});
    }
    const bool again = rereads;
    object = nullptr;
    rereads = false;
    status = DecodeFlow<Walking>::decode(Walking(*this), *selected->type, {}, ASN1TagExplicit, 0);
    if (status == ASN1S_SUCCESS) {
        rereads = again;
        object = selected;
        openValue->failing_ = ctxt.buffer;
        ctxt.buffer = behind;
        ctxt.flags = flags;
        number = 0;
    }
    return status;
}

[[gnu::cold]] int Walker::fail(int status, Expectation expectation, const TypeDescription* type,
                               const TypeDescription* container, unsigned first, unsigned count) {
    if (status == WalkStopped || failure_.expectation != Expectation::Nothing) {
        return status;
    }
    WalkFailure& failure = failure_;
    failure.status = status;
    failure.offset = static_cast<unsigned>(octets() - base);
    failure.partOffset = ctxt.buffer.byteIndex;
    failure.elementOffset = static_cast<unsigned>(here->element.data - base);
    failure.assembled = assembled;
    failure.expectation = expectation;
    failure.type = type;
    failure.container = container;
    failure.firstExpected = first;
    failure.expectedCount = count;
    if (status == ASN1S_TAG_NOT_FOUND) {
        expectCandidates();
    }
    failure.pathCut =
        writePath(here->step, failure.path, sizeof failure.path) >= sizeof failure.path;
    findFound(status, expectation, type);
    if (openValue != nullptr) {
        openValue->reportRaw();
    }
    return status;
}

/// Where other elements could have stood in place of the one that is missing, all are told.
void Walker::expectCandidates() {
    const WalkPlace* place = here;
    while (place != nullptr && place->first == WalkPlace::NoElement) {
        place = place->outer();
    }
    if (place == nullptr || place->element.data != octets()) {
        return;
    }
    const TypeDescription& container = *place->element.container;
    const auto last = static_cast<unsigned>(place->element.element - container.elements);
    if (last != place->first) {
        failure_.expectation = Expectation::OneOf;
        failure_.container = &container;
        failure_.firstExpected = place->first;
        failure_.expectedCount = last + 1 - place->first;
    }
}

void Walker::findFound(int status, Expectation expectation, const TypeDescription* type) {
    const unsigned char* const end = ctxt.buffer.data + ctxt.buffer.size;
    const auto identifierAt = [&](const unsigned char* place) {
        failure_.finding = place < end ? Finding::Identifier : Finding::EndOfMessage;
        failure_.foundNumber = place < end ? *place : 0;
    };
    switch (status) {
    case ASN1S_TAG_NOT_FOUND:
    case ASN1S_EXTRA_ELEMENT:
        identifierAt(octets());
        break;
    case ASN1S_INVALID_CHOICE:
        identifierAt(valueStart);
        break;
    case ASN1S_UNKNOWN_SET_MEMBER:
        identifierAt(elementStart);
        break;
    case ASN1S_DUPLICATE_SET_MEMBER:
        identifierAt(here->element.data);
        break;
    case ASN1S_MISSING_ELEMENT:
        failure_.finding = octets() < end ? Finding::EndOfElement : Finding::EndOfMessage;
        break;
    case ASN1S_END_OF_BUFFER:
        failure_.finding = Finding::EndOfMessage;
        break;
    case ASN1S_CONSTRAINT_VIOLATION:
    case ASN1S_INVALID_ENUM: {
        const bool text = type != nullptr && type->shape == Shape::Text;
        const bool bad = text && static_cast<int>(static_cast<unsigned>(number)) < 0;
        failure_.finding = bad ? Finding::BadText : Finding::Number;
        failure_.foundNumber = number;
        break;
    }
    case ASN1S_INVALID_LENGTH:
    case ASN1S_VALUE_TOO_BIG:
    case ASN1S_STRING_OVERFLOW:
        if (expectation == Expectation::EndOfContents) {
            identifierAt(octets());
        } else if (valueStart < end) {
            ASN1CTXT reader;
            rtInitReader(&reader, valueStart, static_cast<unsigned>(end - valueStart));
            rtCtxtSetFlag(&reader, ASN1F_LENGTH_UNCHECKED);
            ASN1TAG tag = 0;
            int length = 0;
            const bool known =
                xd_tag(&reader, &tag) == ASN1S_SUCCESS && xd_len(&reader, &length) == ASN1S_SUCCESS;
            failure_.finding = known ? Finding::Length : Finding::Nothing;
            failure_.foundNumber = length == ASN1IndefiniteLength
                                       ? length
                                       : static_cast<long long>(static_cast<unsigned>(length));
        }
        break;
    default:
        break;
    }
}

} // namespace asn1data::family

#include "walker.h"

#include <algorithm>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/octet_string.h>

#include "open_value.h"
#include "strict_reading.h"
#include "walk_values.h"

namespace asn1data::family {

namespace {

bool isString(const TypeDescription* type) {
    return type != nullptr && family::isString(*type);
}

} // namespace

Walker::Walker(const unsigned char* message, unsigned size, WalkVisitor& visitor,
               WalkFailure& failure)
    : base(message), visitor_(visitor), interest_(visitor.interest()), failure_(failure) {
    static const unsigned char nothing = 0;
    base = message != nullptr ? message : &nothing;
    interest_.containers = interest_.containers || interest_.faults;
    interest_.values = interest_.values || interest_.faults;
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
    reached_ = base;
    scopeEnd = ctxt.buffer.data + ctxt.buffer.size;
    int status = DecodeFlow<Walking>::decode(Walking(*this), type, {}, ASN1TagExplicit, 0);
    if (status < 0) {
        status = goOn(status, scopeEnd);
    }
    here = nullptr;
    if (status == ASN1S_SUCCESS && first_.status != ASN1S_SUCCESS) {
        failure_ = first_;
        status = first_.status;
    }
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
        reach(scope.contents);
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

[[gnu::always_inline]] inline int Walker::reportPrimitive(const TypeDescription* type,
                                                          const WalkScope& scope) {
    if (interest_.values) {
        describe(type, scope);
        reach(octets());
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
    const unsigned char* const outerReached = reached_;
    if (segmented) {
        ctxt.buffer.byteIndex = header.position;
        ctxt.flags = header.flags;
        const int status =
            xd_octstr(&ctxt, &whole.data, &whole.count, header.tagging, header.length);
        if (status != ASN1S_SUCCESS) {
            return fail(status, {Expectation::Memory, &type});
        }
        base = whole.data;
        reached_ = whole.data;
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
        reached_ = outerReached;
        assembled = outerAssembled;
    }
    ctxt.buffer = behind;
    ctxt.flags = flags;
    number = value.count;
    return leave();
}

/// Goes through the octets of an open value. Unless the walk goes on behind faults, a failure
/// leaves the context on them; success brings it back behind the raw value.
/// @param element first octet of the element that they are
int Walker::resolved(WalkOctets value, const unsigned char* element) {
    const ObjectDescription* const selected = object;
    const ASN1Buffer behind = ctxt.buffer;
    const unsigned short flags = ctxt.flags;
    const bool again = rereads;
    if (value.count == 0) {
        ctxt.buffer = openValue->failing_;
        return fail(ASN1S_END_OF_BUFFER, {Expectation::Octets, selected->type});
    }
    const StepWalk step(*this, *selected, element);
    int status = readResolved(value, *selected);
    if (status < 0) {
        status = goOn(status, value.data + value.count);
    }
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

int Walker::readResolved(WalkOctets value, const ObjectDescription& selected) {
    valueStart = value.data;
    int status = xd_setp(&ctxt, value.data, static_cast<int>(value.count), nullptr, nullptr);
    if (status != ASN1S_SUCCESS) {
        return fail(status, {Expectation::Header, selected.type});
    }
    const Nesting nesting(&ctxt, true);
    if (nesting.tooDeep()) {
        return fail(ASN1S_NO_MEMORY, {Expectation::LessNesting, selected.type});
    }
    object = nullptr;
    rereads = false;
    const unsigned char* const outerEnd = scopeEnd;
    scopeEnd = value.data + value.count;
    status = DecodeFlow<Walking>::decode(Walking(*this), *selected.type, {}, ASN1TagExplicit, 0);
    scopeEnd = outerEnd;
    return status;
}

} // namespace asn1data::family

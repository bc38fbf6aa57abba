#include "strict_reading.h"

#include <cstring>
#include <new>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/header.h>

#include "exact_rules.h"
#include "octets.h"
#include "value_access.h"

namespace asn1data {

namespace {

using family::ExactRules;
using family::Inexactness;
using family::Octets;

/// Stands in front of a visitor: shows it what keeps to the rules, and stops the walk at the first
/// element that does not.
class RuleHolder : public DerVisitor {
public:
    RuleHolder(Octets message, WalkVisitor& visitor, int policies)
        : DerVisitor(message.begin(), message.size()), exact_(message), visitor_(visitor),
          interest_(visitor.interest()), policies_(policies) {}

    /// The rule that was broken; with the status 0 when none was.
    const WalkFailure& failure() const { return failure_; }

    WalkInterest interest() const override { return {true, true}; }
    WalkAction tolerated(const WalkFailure& failure) override {
        return visitor_.tolerated(failure);
    }
    WalkAction enter(const WalkElement& element) override {
        sawSomething_ = true;
        if (holdsDer()) {
            DerVisitor::enter(element);
        }
        if (holdsExact()) {
            look(element, exact_.enter(element));
        }
        if (isBroken()) {
            return WalkAction::Stop;
        }
        if (element.segmented && ++segmented_ == 1) {
            joined_ = element.offset;
        }
        const WalkAction action =
            interest_.containers ? visitor_.enter(element) : WalkAction::Continue;
        if (action == WalkAction::Skip) {
            forget(element);
        }
        return action;
    }
    WalkAction leave(const WalkElement& element) override {
        segmented_ -= element.segmented ? 1 : 0;
        if (holdsDer()) {
            DerVisitor::leave(element);
        }
        if (holdsExact()) {
            look(element, exact_.leave(element));
        }
        return isBroken()             ? WalkAction::Stop
               : interest_.containers ? visitor_.leave(element)
                                      : WalkAction::Continue;
    }
    WalkAction primitive(const WalkElement& element) override {
        sawSomething_ = true;
        if (holdsDer()) {
            DerVisitor::primitive(element);
        }
        if (holdsExact()) {
            look(element, exact_.primitive(element));
        }
        return isBroken()         ? WalkAction::Stop
               : interest_.values ? visitor_.primitive(element)
                                  : WalkAction::Continue;
    }
    /// An open type that is cut off counts as absent for the walk.
    void holdEnd(bool octetsAreThere) {
        if (octetsAreThere && !sawSomething_ && holdsExact()) {
            failure_.expectation = Expectation::Exact;
            failure_.deviation = "an element that is cut off";
            tell(WalkStep{}, 0, false, ASN1S_INVALID_LENGTH);
        }
    }
    WalkAction deviates(const Deviation& deviation) override {
        failure_.expectation = Expectation::Der;
        failure_.deviation = deviation.what;
        failure_.clause = deviation.clause;
        tell(*deviation.step, deviation.offset, deviation.assembled, deviation.status);
        return WalkAction::Stop;
    }

private:
    bool holdsDer() const { return (policies_ & ASN1F_DER) != 0; }
    /// What is not DER is not looked at further.
    bool holdsExact() const { return (policies_ & ASN1F_EXACT) != 0 && !isBroken(); }
    bool isBroken() const { return failure_.status != ASN1S_SUCCESS; }

    void look(const WalkElement& element, const Inexactness& found) {
        if (found.what != nullptr) {
            failure_.expectation = Expectation::Exact;
            failure_.deviation = found.what;
            failure_.type = element.type;
            tell(*element.step, element.offset, element.assembled, found.status);
        }
    }

    void forget(const WalkElement& element) {
        segmented_ -= element.segmented ? 1 : 0;
        if (holdsDer()) {
            DerVisitor::leave(element);
        }
        if (holdsExact()) {
            exact_.skip(element);
        }
    }

    void tell(const WalkStep& step, unsigned offset, bool assembled, int status) {
        failure_.status = status;
        failure_.offset = offset;
        // What was put together has no place in the message but that of the OCTET STRING.
        failure_.partOffset = assembled ? joined_ : offset;
        failure_.elementOffset = offset;
        failure_.assembled = assembled;
        failure_.finding = Finding::Deviation;
        failure_.pathCut =
            writePath(step, failure_.path, sizeof failure_.path) >= sizeof failure_.path;
    }

    ExactRules exact_;
    WalkVisitor& visitor_;
    const WalkInterest interest_;
    const int policies_;
    bool sawSomething_ = false;
    unsigned segmented_ = 0; ///< OCTET STRINGs in segments around what is reported
    unsigned joined_ = 0;    ///< offset of the outermost of them
    WalkFailure failure_{};
};

/// The octets that a reading of the first element is bound to.
Octets firstElement(Octets octets) {
    ASN1Header header{};
    return family::readHeader(octets, header) && header.length != ASN1IndefiniteLength
               ? octets.first(header.size + static_cast<std::size_t>(header.length))
               : octets;
}

/// Gathers what is tolerated.
class FaultList : public WalkVisitor {
public:
    WalkInterest interest() const override { return {false, false}; }
    WalkAction tolerated(const WalkFailure& failure) override {
        faults.push_back(failure);
        return WalkAction::Continue;
    }
    std::vector<WalkFailure> faults;
};

/// Looks at nothing.
class Nobody : public WalkVisitor {
public:
    WalkInterest interest() const override { return {false, false}; }
};

} // namespace

ReadingPolicy::ReadingPolicy(const ASN1CTXT& ctxt) noexcept
    : flags(ctxt.flags & family::PolicyFlags), elementLimit(ctxt.elementLimit),
      depthLimit(ctxt.nestingDepth < family::Nesting::Limit
                     ? family::Nesting::Limit - ctxt.nestingDepth
                     : 0) {}

int ReadingPolicy::apply(ASN1CTXT* ctxt) const noexcept {
    rtCtxtSetFlag(ctxt, flags & family::PolicyFlags);
    rtCtxtSetElementLimit(ctxt, elementLimit);
    rtCtxtSetDepthLimit(ctxt, std::min<unsigned>(depthLimit, family::Nesting::Limit));
    return octetLimit != 0 ? rtMemHeapSetLimit(&ctxt->memHeap, octetLimit) : int{ASN1S_SUCCESS};
}

WalkResult walk(const TypeDescription& type, const unsigned char* message, std::size_t size,
                WalkVisitor& visitor, const ReadingPolicy& policy) {
    if ((policy.flags & family::StrictFlags) == 0) {
        return family::walkPlainly(type, message, size, visitor, policy);
    }
    RuleHolder holder(firstElement({message, message != nullptr ? size : 0}), visitor,
                      policy.flags);
    WalkResult result = family::walkPlainly(type, message, size, holder, policy);
    if (result.status == ASN1S_SUCCESS && !result.stopped) {
        ASN1Header header{};
        holder.holdEnd(size != 0 && family::readHeader({message, size}, header));
    }
    if (holder.failure().status != ASN1S_SUCCESS) {
        result.failure = holder.failure();
        result.status = result.failure.status;
        result.stopped = false;
    }
    return result;
}

WalkFailure explain(const TypeDescription& type, const unsigned char* message, std::size_t size,
                    const ReadingPolicy& policy) {
    Nobody nobody;
    WalkFailure failure = walk(type, message, size, nobody, policy).failure;
    // A reading goes on in a message that is cut off, and may come to a good end.
    ASN1CTXT reader;
    rtInitReader(&reader, message, static_cast<unsigned>(size));
    const int bound = failure.status == ASN1S_SUCCESS && size != 0
                          ? xd_setp(&reader, message, static_cast<int>(size), nullptr, nullptr)
                          : ASN1S_SUCCESS;
    if (bound != ASN1S_SUCCESS) {
        failure.status = bound;
        failure.offset = failure.partOffset = static_cast<unsigned>(size);
        failure.expectation = Expectation::Contents;
        failure.type = &type;
        failure.finding = Finding::EndOfMessage;
    }
    return failure;
}

std::vector<WalkFailure> toleratedFaults(const TypeDescription& type, const unsigned char* message,
                                         std::size_t size, const ReadingPolicy& policy) {
    ReadingPolicy tolerant = policy;
    tolerant.flags |= ASN1F_TOLERATE_OPEN_VALUES;
    FaultList list;
    walk(type, message, size, list, tolerant);
    return std::move(list.faults);
}

namespace family {

namespace {

/// A failure of rules at the context's position.
/// @param start of what was walked
int refuse(ASN1CTXT* ctxt, const WalkFailure& failure, unsigned start) {
    const bool isRule = failure.finding == Finding::Deviation;
    if (isRule) {
        ctxt->buffer.byteIndex = start + failure.partOffset;
    }
    return isRule ? failure.status : int{ASN1S_SUCCESS};
}

/// The tag that a caller has read in front of the context's position.
ASN1TAG readTag(const ASN1CTXT& ctxt, const TypeDescription& type) {
    const ASN1TAG tag = type.outerTag != 0 ? type.outerTag : type.tag;
    const bool segmented = isString(type) && (ctxt.flags & ASN1F_CONSTRUCTED) != 0;
    return segmented ? tag | ASN1TagConstructed : tag;
}

/// Contents whose header was read by the caller get one again, of its DER: the walk wants whole
/// elements.
int checkContents(ASN1CTXT* ctxt, const TypeDescription& type, int length,
                  const ReadingPolicy& policy) {
    const unsigned start = ctxt->buffer.byteIndex;
    const unsigned left = start < ctxt->buffer.size ? ctxt->buffer.size - start : 0;
    const bool definite = length >= 0;
    if (length != ASN1IndefiniteLength && (!definite || static_cast<unsigned>(length) > left)) {
        return ASN1S_SUCCESS; // for the decoder to refuse
    }
    const unsigned count = definite ? static_cast<unsigned>(length) : left;
    std::vector<unsigned char> element(ASN1LongestHeader + std::size_t{count});
    const unsigned size = rtWriteHeader(readTag(*ctxt, type), length, element.data());
    if (count != 0) {
        std::memcpy(element.data() + size, ctxt->buffer.data + start, count);
    }
    WalkFailure failure = explain(type, element.data(), size + std::size_t{count}, policy);
    failure.partOffset -= std::min(failure.partOffset, size);
    return refuse(ctxt, failure, start);
}

} // namespace

int checkStrictly(ASN1CTXT* ctxt, const TypeDescription& type, ASN1TagType tagging,
                  int length) noexcept {
    const ReadingPolicy policy(*ctxt);
    try {
        if (tagging == ASN1TagImplicit && type.tag != 0) {
            return checkContents(ctxt, type, length, policy);
        }
        const unsigned start = std::min(ctxt->buffer.byteIndex, ctxt->buffer.size);
        return refuse(ctxt,
                      explain(type, ctxt->buffer.data + start, ctxt->buffer.size - start, policy),
                      start);
    } catch (const std::bad_alloc&) {
        return ASN1S_NO_MEMORY;
    }
}

} // namespace family

} // namespace asn1data

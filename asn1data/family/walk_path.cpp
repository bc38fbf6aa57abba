#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/object_identifier.h>

#include "walker.h"

// Where a walk stands: the steps of the path, and the records that wait for their open value.

namespace asn1data::family {

bool OpenValueWalk::valueBegins(const ElementDescription& element) {
    begun_ = true;
    if (identified_ && !walker_.elementLimit && endsRecord(element)) {
        walker_.object = object_;
        return false;
    }
    element_ = &element;
    here_ = walker_.here;
    depth_ = walker_.depth;
    start_ = static_cast<unsigned>(walker_.elementStart - walker_.ctxt.buffer.data);
    flags_ = walker_.ctxt.flags;
    return true;
}

namespace {

/// The contents octets of a header of definite length; null octets for any other.
struct Contents {
    const unsigned char* octets = nullptr;
    const unsigned char* end = nullptr;
    unsigned char identifier = 0; ///< first identifier octet

    Contents(const unsigned char* start, const unsigned char* bound) {
        const auto left = static_cast<unsigned>(bound - start);
        WholeContents whole{start, 0};
        if (left >= 2 && (*start & ASN1LongTagNumber) != ASN1LongTagNumber &&
            whole.behindHeader(left)) {
            set(start, whole.octets, whole.count);
            return;
        }
        ASN1Header header;
        if (rtReadHeader(start, left, &header) == ASN1S_SUCCESS && header.length >= 0 &&
            static_cast<unsigned>(header.length) <= left - header.size) {
            set(start, start + header.size, static_cast<unsigned>(header.length));
        }
    }
    /// An end-of-contents is no value (X.690, 8.1.5).
    bool isElement() const { return octets != nullptr && (identifier != 0 || octets != end); }

private:
    void set(const unsigned char* start, const unsigned char* first, unsigned count) {
        identifier = *start;
        octets = first;
        end = first + count;
    }
};

/// Whether contents are whole elements, of a number that a constraint permits.
bool areElements(const Contents& list, const Constraint& constraint) {
    long long count = 0;
    for (const unsigned char* place = list.octets; place != list.end; ++count) {
        const Contents member(place, list.end);
        if (!member.isElement()) {
            return false;
        }
        place = member.end;
    }
    bool permitted = constraint.count == 0;
    for (unsigned i = 0; i < constraint.count; ++i) {
        permitted = permitted ||
                    (count >= constraint.ranges[i].lower && count <= constraint.ranges[i].upper);
    }
    return permitted;
}

} // namespace

/// Whether nothing in the record can fail behind the value's octets, nor in front of what is in
/// them: its headers are of definite lengths that end the record together, and no element is
/// missing.
bool OpenValueWalk::endsRecord(const ElementDescription& element) const {
    const ElementDescription* const last = type_.elements + type_.elementCount;
    for (const ElementDescription* later = &element + 1; later != last; ++later) {
        if (later->presence == Presence::Mandatory) {
            return false;
        }
    }
    const bool tagged = element.tagging != Tagging::Untagged;
    if (end_ == nullptr || type_.road != Road::Constructed || type_.shape != Shape::Sequence ||
        element.constraint.count != 0 || element.tagging == Tagging::Implicit ||
        (tagged && (element.tag & ASN1TagNumberMask) >= ASN1LongTagNumber)) {
        return false;
    }
    const unsigned char* start = walker_.elementStart;
    if (tagged) {
        const Contents outer(start, end_);
        if (outer.octets == nullptr || outer.end != end_) {
            return false;
        }
        start = outer.octets;
    }
    const Contents value(start, end_);
    if (value.octets == nullptr || value.end != end_) {
        return false;
    }
    const TypeDescription& type = *element.type;
    if (type_.table->value == OpenValue::OpenTypes) {
        return type.road == Road::Constructed && type.shape == Shape::List &&
               type.element->shape == Shape::OpenType && value.identifier == type.identifier &&
               areElements(value, type.constraint);
    }
    return type.constraint.count == 0 && type.road == Road::Primitive &&
           (type_.table->value == OpenValue::OctetString ? value.identifier == type.identifier
                                                         : value.isElement());
}

void OpenValueWalk::identify() {
    object_ = findObject(*type_.table->objects, walker_.identifier_);
    object_ = object_ != nullptr && object_->type != nullptr ? object_ : nullptr;
    identified_ = true;
}

int OpenValueWalk::resolve() {
    int status = ASN1S_SUCCESS;
    if (complete_) {
        const ASN1Buffer behind = walker_.ctxt.buffer;
        const unsigned short flags = walker_.ctxt.flags;
        failing_ = behind;
        status = readAgain(object_);
        if (status == ASN1S_SUCCESS || walker_.goesOn()) {
            walker_.ctxt.buffer = behind;
            walker_.ctxt.flags = flags;
        }
        if (status < 0) {
            status = walker_.goOnHere(status);
        }
    }
    if (status == ASN1S_SUCCESS && entered_) {
        walker_.stepped = false;
        walker_.number = 0;
        status = walker_.leave();
    }
    return status;
}

/// Silent or failed, the first reading left its mark: this one starts where that one did.
int OpenValueWalk::readAgain(const ObjectDescription* object) {
    const ElementDescription& element = *element_;
    element_ = nullptr;
    walker_.ctxt.buffer.byteIndex = start_;
    walker_.ctxt.flags = flags_;
    walker_.object = object;
    walker_.atElement();
    const unsigned char* const reached = walker_.reached_;
    walker_.reached_ = walker_.elementStart;
    const StepWalk step(walker_, type_, element);
    walker_.rereads = true;
    const int status = walker_.readElement(type_, element);
    walker_.reach(reached);
    walker_.rereads = false;
    walker_.object = nullptr;
    return status;
}

void OpenValueWalk::reportRaw() {
    if (element_ == nullptr || walker_.depth != depth_) {
        return;
    }
    WalkPlace* const here = walker_.here;
    const ASN1Buffer buffer = walker_.ctxt.buffer;
    const unsigned silence = walker_.silence;
    walker_.here = here_;
    walker_.silence = 0;
    readAgain(nullptr);
    walker_.here = here;
    walker_.ctxt.buffer = buffer;
    walker_.silence = silence;
}

} // namespace asn1data::family

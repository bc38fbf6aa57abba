#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/runtime/object_identifier.h>

#include "walker.h"

// Where a walk stands: the steps of the path, and the records that wait for their open value.

namespace asn1data::family {

StepWalk::StepWalk(Walker& walker, const TypeDescription& container,
                   const ElementDescription& element, unsigned next)
    : StepWalk(walker, container, element) {
    const auto place = static_cast<unsigned>(&element - container.elements);
    walker.candidateOwner = &container;
    walker.candidateStart = walker.elementStart;
    walker.candidateFirst = next;
    walker.candidateCount = place + 1 - next;
}

StepWalk::StepWalk(Walker& walker, const TypeDescription& container,
                   const ElementDescription& element)
    : walker_(walker), step_{walker.here.step, element.name, 0,
                             container.shape == Shape::Choice ? StepKind::Alternative
                                                              : StepKind::Member} {
    if (container.table != nullptr && walker.openValue->begins(element)) {
        ++walker.silence;
        silent_ = true;
    }
    begin(&container, &element);
}

StepWalk::StepWalk(Walker& walker, const TypeDescription& container, unsigned index)
    : walker_(walker), step_{walker.here.step, nullptr, index, StepKind::Index} {
    walker.atElement();
    begin(&container, nullptr);
}

StepWalk::StepWalk(Walker& walker, const ObjectDescription& object)
    : walker_(walker), step_{walker.here.step, object.name, 0, StepKind::Object} {
    begin(nullptr, nullptr);
    walker.here.object = &object;
}

StepWalk::StepWalk(Walker& walker, const TypeDescription& container, unsigned place, StepKind kind)
    : walker_(walker), step_{walker.here.step, nullptr, place, kind} {
    walker.atElement();
    begin(&container, nullptr);
}

void StepWalk::begin(const TypeDescription* container, const ElementDescription* element) {
    WalkPlace& here = walker_.here;
    data_ = here.data;
    if (step_.kind != StepKind::Alternative && step_.kind != StepKind::Object) {
        here.data = walker_.elementStart;
    }
    container_ = here.container;
    element_ = here.element;
    object_ = here.object;
    here.step = &step_;
    here.container = container;
    here.element = element;
    here.object = nullptr;
    walker_.stepped = false;
}

StepWalk::~StepWalk() {
    WalkPlace& here = walker_.here;
    here.step = step_.outer;
    here.data = data_;
    here.container = container_;
    here.element = element_;
    here.object = object_;
    walker_.silence -= silent_ ? 1 : 0;
}

// What the flags do not tell of yet is not cleared: most records end up without it.
OpenValueWalk::OpenValueWalk(Walker& walker, const TypeDescription& type)
    : walker_(walker), type_(type), outer_(walker.openValue) {
    walker.openValue = this; // NOLINT(clang-analyzer-optin.cplusplus.UninitializedObject)
}

OpenValueWalk::~OpenValueWalk() {
    walker_.openValue = outer_;
}

bool OpenValueWalk::begins(const ElementDescription& element) {
    if (begun_ || element.offset != type_.table->valueOffset) {
        return false;
    }
    begun_ = true;
    element_ = &element;
    here_ = walker_.here;
    buffer_ = walker_.ctxt.buffer;
    buffer_.byteIndex = static_cast<unsigned>(walker_.elementStart - buffer_.data);
    flags_ = walker_.ctxt.flags;
    return true;
}

void OpenValueWalk::took(const ElementDescription& element) {
    if (&element == element_) {
        complete_ = true;
    } else if (element.offset == type_.table->identifierOffset &&
               element.type->shape == Shape::ObjectIdentifier) {
        rtSetOID(&identifier_, &walker_.identifier_);
        identified_ = true;
    }
}

void OpenValueWalk::leaves(const WalkElement& record) {
    record_ = record;
    entered_ = true;
}

int OpenValueWalk::resolve() {
    int status = ASN1S_SUCCESS;
    if (complete_) {
        const ObjectDescription* object =
            identified_ ? findObject(*type_.table->objects, identifier_) : nullptr;
        object = object != nullptr && object->type != nullptr ? object : nullptr;
        const ASN1Buffer behind = walker_.ctxt.buffer;
        const unsigned short flags = walker_.ctxt.flags;
        failing_ = behind;
        status = readAgain(object);
        if (status == ASN1S_SUCCESS) {
            walker_.ctxt.buffer = behind;
            walker_.ctxt.flags = flags;
        }
    }
    if (status == ASN1S_SUCCESS && entered_) {
        walker_.stepped = false;
        walker_.number = 0;
        status = walker_.leave(record_);
    }
    return status;
}

/// Silent or failed, the first reading left its mark: this one starts where that one did.
int OpenValueWalk::readAgain(const ObjectDescription* object) {
    const ElementDescription& element = *element_;
    element_ = nullptr;
    walker_.ctxt.buffer = buffer_;
    walker_.ctxt.flags = flags_;
    walker_.object = object;
    walker_.atElement();
    const StepWalk step(walker_, type_, element);
    const int status = DecodeFlow<Walking>::decodeElement(Walking(walker_), type_, element, {});
    walker_.object = nullptr;
    return status;
}

void OpenValueWalk::reportRaw() {
    if (element_ == nullptr || walker_.here.depth != here_.depth) {
        return;
    }
    const WalkPlace here = walker_.here;
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

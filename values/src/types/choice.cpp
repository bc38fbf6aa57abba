#include <brevantis/asn1/values/types/choice.h>

#include <utility>

namespace Brevantis::ASN1 {

ChoiceValueTraits::~ChoiceValueTraits() = default;

Choice::~Choice() = default;

void Choice::put(unsigned int number, const void* newContent) {
    const ChoiceValueTraits* oldTraits = findTraits(type);
    const ChoiceValueTraits* newTraits = findTraits(number);
    if (newTraits == nullptr) {
        ATL::AtlThrowImpl(E_INVALIDARG);
    }
    // The old value goes on every way out, but not before it was copied from: the new content may
    // be a part of it.
    const auto deleteOld = [oldTraits](void* old) { oldTraits->deleteValue(old); };
    const std::unique_ptr<void, decltype(deleteOld)> old(std::exchange(value, nullptr), deleteOld);
    type = 0;
    value = newTraits->newValue(newContent);
    type = number;
}

void Choice::adopt(unsigned int number, void* newContent) noexcept {
    findTraits(type)->deleteValue(std::exchange(value, newContent));
    type = number;
}

void Choice::copyTo(Choice& empty) const {
    empty.value = findTraits(type)->newValue(value);
    empty.type = type;
}

} // namespace Brevantis::ASN1

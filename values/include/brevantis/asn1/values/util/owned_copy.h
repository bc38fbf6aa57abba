#ifndef BREVANTIS_ASN1_VALUES_UTIL_OWNED_COPY_H
#define BREVANTIS_ASN1_VALUES_UTIL_OWNED_COPY_H

#include <memory>

/// @file
/// The pointers inside value classes: to their content, and to members that may be absent.

namespace Brevantis::ASN1 {

/// Owns an object or none. A copy owns an object of its own, so that a class made of these needs no
/// copy operations of its own. Copying throws what the copies of @p T throw, and leaves the target
/// as it was.
template <class T>
class OwnedCopy {
public:
    /// No object.
    OwnedCopy() noexcept = default;
    /// A copy of the object, if there is one.
    OwnedCopy(const OwnedCopy& other) { put(other.get()); }
    OwnedCopy(OwnedCopy&& other) noexcept = default;
    OwnedCopy& operator=(const OwnedCopy& other) {
        put(other.get());
        return *this;
    }
    OwnedCopy& operator=(OwnedCopy&& other) noexcept = default;
    ~OwnedCopy() = default;

    /// @return null when there is no object
    const T* get() const noexcept { return object_.get(); }

    /// Takes a copy of an object in place of what was held; null takes the object away, and the
    /// held object itself changes nothing.
    void put(const T* source) {
        if (source != object_.get()) {
            object_ = source != nullptr ? std::make_unique<T>(*source) : nullptr;
        }
    }

    /// The object for reading; one as the default constructor makes it when there is none.
    const T& read() const {
        static const T none{};
        return object_ != nullptr ? *object_ : none;
    }

    /// The object for changing, made by its default constructor when there is none.
    T& edit() {
        if (object_ == nullptr) {
            object_ = std::make_unique<T>();
        }
        return *object_;
    }

    /// Takes the object away.
    void clear() noexcept { object_.reset(); }

private:
    std::unique_ptr<T> object_;
};

/// Both without an object, or with objects that are equal.
template <class T>
bool operator==(const OwnedCopy<T>& a, const OwnedCopy<T>& b) {
    return a.get() == nullptr || b.get() == nullptr ? a.get() == b.get() : *a.get() == *b.get();
}

} // namespace Brevantis::ASN1

#endif

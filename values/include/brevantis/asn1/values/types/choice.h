#ifndef BREVANTIS_ASN1_VALUES_TYPES_CHOICE_H
#define BREVANTIS_ASN1_VALUES_TYPES_CHOICE_H

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/values/util/instances.h>
#include <brevantis/support/blob.h>
#include <brevantis/support/error.h>

/// @file
/// What the value classes of a CHOICE (X.680, 29) are made of.
///
/// Such a class has numbered alternatives, 0 standing for none. Its implementation object holds the
/// number and, type-erased, the value; a traits object for each alternative knows the value's type.
///
/// A new class takes three steps:
///
///     // 1. The traits of alternatives that have a type of their own, see util/instances.h.
///     BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<CGeneralNames, 1>;
///
///     // 2. The implementation: the table of the alternatives, and nothing else.
///     class BREVANTIS_ASN1_API CDistributionPointNameImpl final
///         : public ChoiceOf<ChoiceValueTraitsT<CGeneralNames, 1>> {};
///
///     // 3. A ChoicePointer to it as the one member. Default construction, copying, moving and
///     //    destruction need not be written any more; the rest is one line each.
///     class BREVANTIS_ASN1_API CDistributionPointName {
///     public:
///         unsigned get_type() const { return choice_.type(); }
///         const CGeneralNames* get_fullName() const { return choice_.get<FullName>(); }
///         void put_fullName(const CGeneralNames& names) { choice_.put<FullName>(names); }
///         void clear() { choice_.clear(); }
///
///     private:
///         using FullName = ChoiceValueTraitsT<CGeneralNames, 1>;
///         ChoicePointer<CDistributionPointNameImpl> choice_;
///     };

namespace Brevantis::ASN1 {

/// Creates, copies and deletes the values of one alternative. Objects are constants, shared by all
/// threads.
class BREVANTIS_ASN1_API ChoiceValueTraits {
public:
    virtual ~ChoiceValueTraits();

    /// Whether the alternative has this number.
    virtual bool isType(unsigned int type) const = 0;
    /// Destroys and frees a value that newValue gave; null is left alone.
    virtual void deleteValue(void* value) const = 0;
    /// @return a copy of the value, for deleteValue
    virtual void* newValue(const void* value) const = 0;
    /// Assigns one value to another.
    virtual void copyValue(void* target, const void* source) const = 0;

protected:
    /// For the classes of the alternatives.
    ChoiceValueTraits() = default;
    ChoiceValueTraits(const ChoiceValueTraits&) = default;
    ChoiceValueTraits& operator=(const ChoiceValueTraits&) = default;
};

/// The traits of alternative @p N, whose values are of type @p T. A null pointer to a value that
/// would be read or written throws ATL::CAtlException with E_INVALIDARG; copying throws what the
/// copies of @p T throw.
///
/// `ChoiceValueTraitsT<void*, 0>` stands for no alternative. Its values are cells of one pointer,
/// and a null argument of `newValue` counts as a cell that holds null.
template <class T, unsigned int N>
class BREVANTIS_ASN1_API ChoiceValueTraitsT final : public ChoiceValueTraits {
public:
    using Value = T;                          ///< what the values of the alternative are
    static constexpr unsigned int number = N; ///< of the alternative

    /// The one object of this type.
    static const ChoiceValueTraitsT instance;

    bool isType(unsigned int type) const override { return type == N; }
    void deleteValue(void* value) const override { delete static_cast<T*>(value); }
    void* newValue(const void* value) const override {
        if constexpr (std::is_same_v<T, void*>) {
            if (value == nullptr) {
                return new T(nullptr);
            }
        }
        requireValue(value);
        return new T(*static_cast<const T*>(value));
    }
    void copyValue(void* target, const void* source) const override {
        requireValue(target);
        requireValue(source);
        *static_cast<T*>(target) = *static_cast<const T*>(source);
    }

private:
    static void requireValue(const void* value) {
        if (value == nullptr) {
            ATL::AtlThrowImpl(E_INVALIDARG);
        }
    }
};

template <class T, unsigned int N>
const ChoiceValueTraitsT<T, N> ChoiceValueTraitsT<T, N>::instance{};

/// No alternative, in every choice.
using EmptyChoiceTraits = ChoiceValueTraitsT<void*, 0>;

BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<void*, 0>;

/// The implementation object of a choice: the alternative and its value.
class BREVANTIS_ASN1_API Choice {
public:
    unsigned int type = 0; ///< number of the alternative; 0: none
    void* value = nullptr; ///< owned, of the type that the traits of `type` know; null when unset

    virtual ~Choice();
    Choice(const Choice&) = delete;
    Choice& operator=(const Choice&) = delete;

    /// The traits of an alternative.
    /// @return never null in the choices of this library: a number that is none of theirs has the
    ///         traits of the empty alternative
    virtual const ChoiceValueTraits* findTraits(unsigned int number) const = 0;

    /// Stores a copy of a value as another alternative, or as the same. The value may be part of
    /// the one that is stored already.
    /// @param number of the alternative
    /// @param newContent of the type that its traits know
    /// @throws ATL::CAtlException with E_INVALIDARG when there are no traits for @p number; nothing
    ///         changes then. What copying throws passes through, and the choice is empty then: the
    ///         old value is not kept.
    void put(unsigned int number, const void* newContent);

    /// Stores a value as another alternative, or as the same, without copying it.
    /// @param number of an alternative of this choice
    /// @param newContent of the type that its traits know, made by `new`; owned from here on
    void adopt(unsigned int number, void* newContent) noexcept;

    /// Gives a copy of the alternative and its value to a choice of the same class.
    /// @param empty holds nothing so far, and still does when copying the value throws
    void copyTo(Choice& empty) const;

protected:
    /// No alternative.
    Choice() = default;
};

/// The implementation object over a table of alternatives.
/// @tparam Traits a ChoiceValueTraitsT for each
template <class... Traits>
class BREVANTIS_ASN1_API ChoiceOf : public Choice {
public:
    ~ChoiceOf() override { traitsOf(type)->deleteValue(value); }

    /// As the table has it.
    /// @return the traits of the empty alternative for a number that is not in it
    const ChoiceValueTraits* findTraits(unsigned int number) const override {
        return traitsOf(number);
    }

private:
    static const ChoiceValueTraits* traitsOf(unsigned int number) {
        const ChoiceValueTraits* found = &EmptyChoiceTraits::instance;
        ((Traits::instance.isType(number) ? static_cast<void>(found = &Traits::instance) : void()),
         ...);
        return found;
    }
};

/// The one member of a value class: owns its implementation object. A copy has a value of its own.
///
/// After `clear`, and when it was moved from, there is no implementation object. It then counts as
/// empty everywhere, and can be used again like a new one.
/// @tparam Implementation a ChoiceOf, or derived from one
template <class Implementation>
class BREVANTIS_ASN1_API ChoicePointer {
public:
    /// No alternative.
    ChoicePointer() : choice_(std::make_unique<Implementation>()) {}
    /// A copy of the value, in an implementation object of its own.
    ChoicePointer(const ChoicePointer& other) : ChoicePointer() {
        if (other.choice_ != nullptr) {
            other.choice_->copyTo(*choice_);
        }
    }
    ChoicePointer(ChoicePointer&& other) noexcept = default;
    /// What this held stays when copying throws.
    ChoicePointer& operator=(const ChoicePointer& other) {
        if (choice_ != other.choice_) {
            choice_ = std::move(ChoicePointer(other).choice_);
        }
        return *this;
    }
    ChoicePointer& operator=(ChoicePointer&& other) noexcept = default;
    ~ChoicePointer() = default;

    /// Number of the alternative, 0 for none.
    unsigned int type() const noexcept { return choice_ != nullptr ? choice_->type : 0; }

    /// The value of an alternative.
    /// @tparam Traits of the alternative
    /// @return null when another one is stored; otherwise valid until the choice changes or goes
    template <class Traits>
    const typename Traits::Value* get() const noexcept {
        return type() == Traits::number ? static_cast<const typename Traits::Value*>(choice_->value)
                                        : nullptr;
    }

    /// Stores a copy of a value, as Choice::put tells.
    /// @tparam Traits of the alternative
    template <class Traits>
    void put(const typename Traits::Value& value) {
        if (choice_ == nullptr) {
            choice_ = std::make_unique<Implementation>();
        }
        choice_->put(Traits::number, &value);
    }

    /// Stores a value itself. What this held stays when memory is out.
    /// @tparam Traits of the alternative
    template <class Traits>
    void put(typename Traits::Value&& value) {
        auto content = std::make_unique<typename Traits::Value>(std::move(value));
        if (choice_ == nullptr) {
            choice_ = std::make_unique<Implementation>();
        }
        choice_->adopt(Traits::number, content.release());
    }

    /// Deletes the implementation object.
    void clear() noexcept { choice_.reset(); }

private:
    std::unique_ptr<Implementation> choice_;
};

// Octets as the first alternative are used in several classes.
BREVANTIS_ASN1_INSTANCE class ChoiceValueTraitsT<CBlob, 1>;

} // namespace Brevantis::ASN1

#endif

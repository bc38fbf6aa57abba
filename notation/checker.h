#ifndef BREVANTIS_NOTATION_CHECKER_H
#define BREVANTIS_NOTATION_CHECKER_H

#include <functional>
#include <vector>

#include "model.h"

namespace notation {

/// Settles what needs all names to be known (tags, bounds, defaults, what a value can begin with)
/// and refuses what could not be held in memory or told apart on the wire.
class Checker {
public:
    using Number = std::function<std::optional<long long>(const Module&, const ValueNode&)>;

    /// @param number evaluates a bound or a default
    Checker(Model& model, Diagnostics& diagnostics, Number number)
        : model_(model), diagnostics_(diagnostics), number_(std::move(number)) {}

    void run();

private:
    void finish(Type& type);
    void finishTags(Type& type);
    void finishElement(const Type& type, Element& element);
    void finishConstraint(Type& type);
    std::vector<Range> ranges(const Module& module, const TypeNode& node, const Type& base);
    void finishDefault(const Type& type, Element& element);

    void checkByValueRecursion(const Type& type);
    bool computeHoldsMemory(const Type& type) const;
    void markRecursion();
    void walkRecursion(Type& type);

    Octets beginsWith(const Type& type, bool wholeTag) const;
    Octets beginsWith(const Element& element, bool wholeTag) const;
    void checkAmbiguity(const Type& type);
    void complainAmbiguity(const Type& type, const Element& first, const Element& second);

    Model& model_;
    Diagnostics& diagnostics_;
    Number number_;
    std::vector<const Type*> path_;
    std::map<const Type*, int> visited_;
};

} // namespace notation

#endif

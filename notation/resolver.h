#ifndef BREVANTIS_NOTATION_RESOLVER_H
#define BREVANTIS_NOTATION_RESOLVER_H

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "model.h"

namespace notation {

/// Looks names up, hoists the types that are described in place, gathers shared lists. What it
/// leaves open (tags, constraints, defaults, recursion) is the checker's.
class Resolver {
public:
    Resolver(Model& model, Diagnostics& diagnostics);

    void run();

    /// Evaluates an INTEGER value, a reference to one included.
    std::optional<long long> number(const Module& module, const ValueNode& value);

private:
    struct Symbol {
        Assignment* assignment = nullptr;
        Module* module = nullptr;
        Type* type = nullptr;
        ObjectClass* objectClass = nullptr;
        Object* object = nullptr;
        ObjectSet* set = nullptr;
        bool isTemplate = false; ///< stands for its right-hand side, wherever it is named
    };
    /// Where a type stands: what names, documents and instructs it.
    struct Place {
        Module* module;
        std::string name; ///< that a hoisted type would get
        std::string standard;
        std::vector<Remark*>* remarks;
    };

    void addBuiltins();
    void declare(Module& module);
    void declareAssignment(Module& module, Assignment& assignment);
    void checkImports(const Module& module);
    void expandTemplates(const Module& module, std::unique_ptr<TypeNode>& node);
    const Symbol* findTemplate(const Module& module, const std::string& name);
    const Symbol* find(const Module& module, const std::string& name, const Location& at,
                       const char* what);
    void checkRemarks(const Module& module);
    void breakNameCycle(Type& type);

    Type& newType(Module& module, const std::string& name, const Location& at);
    void fill(Type& type, const TypeNode& node, const Place& place);
    void fillList(Type& type, const TypeNode& node, const Place& place);
    void fillElements(Type& type, const TypeNode& node, const Place& place);
    void fillTable(Type& type, const Module& module);
    void fillBuiltin(Type& type, const TypeNode& node, const Place& place);

    bool standsInPlace(const TypeNode& node, const Place& place) const;
    Type* use(const TypeNode& node, const Place& place, bool& tagTaken);
    Type* hoist(const TypeNode& node, Place place);
    Type* sharedList(const TypeNode& node, Type& element, const Place& place);
    Type* builtinOf(const TypeNode& node, const Place& place);
    Type* integerOf(const TypeNode& node, const Place& place);

    void resolveValue(Module& module, Assignment& assignment);
    std::optional<ValueNode> valueOf(Module& module, const Assignment& assignment);
    std::vector<unsigned> arcs(const Module& module, const ValueNode& value);
    void resolveObject(Module& module, Assignment& assignment, Object& object);
    void resolveSet(Module& module, Assignment& assignment, ObjectSet& set);
    void declareClass(Module& module, Assignment& assignment, ObjectClass& objectClass);

    Remark* takeRemark(const Place& place, const char* key) const;
    Remark* hasRemark(const Place& place, const char* key) const;
    unsigned positiveNumber(const Remark& remark);

    Model& model_;
    Diagnostics& diagnostics_;
    std::map<const Module*, std::map<std::string, Symbol>> symbols_;
    std::map<std::string, Type*> typesByName_;
    std::map<std::string, Location> valuesByName_;
    std::set<const Assignment*> evaluating_;
    std::set<const TypeNode*> resolvedLists_; ///< lists that stand beside their identifier
};

} // namespace notation

#endif

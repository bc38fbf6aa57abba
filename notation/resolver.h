#ifndef BREVANTIS_NOTATION_RESOLVER_H
#define BREVANTIS_NOTATION_RESOLVER_H

#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "model.h"

namespace notation {

enum : std::size_t { LongestChain = 1000 };
/// Tokens and components that parameters and COMPONENTS OF may make in all: each can double what
/// the one before has made.
enum : std::size_t { MostPieces = 500000 };
extern const char* const ChainTooLong;
extern const char* const TypesTooDeep;

/// Looks names up, expands what stands for something else, hoists the types that are described in
/// place, gathers shared lists. What it leaves open (tags, constraints, defaults, recursion) is the
/// checker's.
class Resolver {
public:
    Resolver(Model& model, Diagnostics& diagnostics);

    void run();

    /// Evaluates an INTEGER value, a reference to one included.
    std::optional<long long> number(const ValueNode& value);

private:
    /// Counts how deep something stands in itself.
    class Level {
    public:
        explicit Level(std::size_t& count) : count_(count) { ++count_; }
        ~Level() { --count_; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        std::size_t& count_;
    };
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
        Module* module;   ///< that the type belongs to
        std::string name; ///< that a hoisted type would get
        std::string standard;
        std::vector<Remark*>* remarks;
    };
    /// A use of a type with parameters.
    struct Instance {
        Owned<TypeNode> node;
        Type* type = nullptr;
    };

    void addBuiltins();
    void declare(Module& module);
    void declareAssignment(Module& module, Assignment& assignment);
    void declareValue(Module& module, const Assignment& assignment);
    void checkImports(const Module& module);
    Module* moduleNamed(const ModuleNode* scope, const std::string& name,
                        const std::string& identifier) const;
    std::string hintFor(const ImportNode& import);
    Symbol* lookUp(const ModuleNode* scope, const std::string& name, unsigned depth = 0);
    Symbol* find(const ModuleNode* scope, const std::string& name, const Location& at,
                 const char* what);
    Symbol* findType(const TypeNode& node);
    Symbol* classOf(const ModuleNode* scope, const std::string& name, unsigned depth = 0);
    void checkRemarks();
    void breakNameCycles();
    void breakRecordCycles();
    void holdByPointer(Type& record, Element& element);
    void separateNames();

    // expansion
    void expand(Owned<TypeNode>& node);
    void expandTemplate(Owned<TypeNode>& node, const Symbol& symbol);
    void expandSelection(Owned<TypeNode>& node);
    void expandField(Owned<TypeNode>& node);
    void spliceComponents(TypeNode& node);
    bool spend(std::size_t pieces, const Location& at);
    void tagAutomatically(TypeNode& node);
    const TypeNode* structureOf(const TypeNode& node);
    const ClassFieldNode* fieldOf(const TypeNode& node);
    Instance* instanceOf(const TypeNode& node, const Symbol& symbol);
    Tokens filledIn(const Assignment& assignment, const ModuleNode& home, const Tokens& arguments,
                    const Location& at);

    Type& newType(Module& module, const std::string& name, const Location& at);
    void fill(Type& type, const TypeNode& node, const Place& place);
    void fillReference(Type& type, const TypeNode& node, const Place& place);
    void fillList(Type& type, const TypeNode& node, const Place& place);
    void fillElements(Type& type, const TypeNode& node, const Place& place);
    void fillTable(Type& type);
    void fillBuiltin(Type& type, const TypeNode& node, const Place& place);
    void fillNames(Type& type, const TypeNode& node);
    ObjectSet* setOf(const Type& type, std::size_t index, const TypeNode& node);
    static void declareSet(ObjectSet& set);
    bool bindTable(Type& type, std::size_t index, const TypeNode& node, Table table);
    void leaveOpen(Type& type, std::size_t index, Table::Kind kind);

    bool standsInPlace(const TypeNode& node, const Place& place) const;
    Type* use(const TypeNode& node, const Place& place, bool& tagTaken);
    Type* useReference(const TypeNode& node, const Place& place);
    Type* hoist(const TypeNode& node, Place place);
    Type* sharedList(const TypeNode& node, Type& element, const Place& place);
    Type* builtinOf(const TypeNode& node, const Place& place);
    bool boundWithin(const TypeNode& node, const BoundNode& bound, long long lowest,
                     long long highest);
    Type* integerOf(const TypeNode& node, const Place& place);

    void resolveValue(Module& module, Assignment& assignment);
    std::optional<ValueNode> valueOf(const Module& module, const Assignment& assignment);
    std::vector<unsigned> arcs(const ValueNode& value);
    void appendArcs(std::vector<unsigned>& result, const ValueNode& value, const std::string& name,
                    const Location& at, bool first);
    void resolveObject(Object& object, Assignment& assignment);
    void resolveOtherName(Object& object, const Assignment& assignment);
    void resolveSet(ObjectSet& set, const Assignment& assignment);
    void addMembers(ObjectSet& set, const Tokens& body, const Module& home);
    void addMembersOf(ObjectSet& set, const Symbol& other);
    void declareClass(Module& module, Assignment& assignment, ObjectClass& objectClass);

    Remark* takeRemark(const Place& place, const char* key) const;
    Remark* hasRemark(const Place& place, const char* key) const;
    unsigned positiveNumber(const Remark& remark);

    Model& model_;
    Diagnostics& diagnostics_;
    std::map<const ModuleNode*, std::map<std::string, Symbol>> symbols_;
    std::map<const ModuleNode*, Module*> modules_;
    /// In the order of the files; the library's apart.
    std::map<std::pair<bool, std::string>, std::vector<Module*>> modulesByName_;
    std::map<std::pair<const Module*, std::string>, Type*> typesByName_;
    std::map<std::pair<const Module*, std::string>, Location> valuesByName_;
    std::map<std::tuple<const Type*, bool, bool>, Type*> sharedLists_; ///< the library's apart
    std::map<std::string, Instance> instances_;
    std::set<const void*> evaluating_;
    std::size_t expanding_ = 0;
    std::size_t piecesLeft_ = MostPieces;
    bool tooDeep_ = false; ///< told once
    std::size_t filling_ = 0;
    std::map<const Assignment*, std::optional<long long>> numbers_;
    std::map<const Assignment*, std::vector<unsigned>> arcs_;
    std::set<const TypeNode*> resolvedLists_; ///< lists that stand beside their identifier
};

} // namespace notation

#endif

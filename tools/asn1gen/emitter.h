#ifndef BREVANTIS_ASN1GEN_EMITTER_H
#define BREVANTIS_ASN1GEN_EMITTER_H

#include <string>
#include <vector>

#include "writer.h"
#include <notation/model.h>

namespace asn1gen {

using namespace notation; // the model is what all emitters work from

/// What the command line says about the output.
struct Output {
    std::string nameSpace;
    std::string includePrefix;
    std::string exportMacro; ///< may be empty
};

/// How types are called in C++.
std::string recordName(const Type& type);     ///< `ASN1T_X`; of the aliased type if it has to
std::string controlName(const Type& type);    ///< `ASN1C_X`
std::string valueName(const Type& type);      ///< of the value in memory
std::string scalarName(Shape shape);          ///< of a value that is no record of its own
std::string descriptorName(const Type& type); ///< from inside the namespace of the module

/// Whether a union holds the type's value by pointer.
bool isIndirect(const Type& type);
/// Whether the type's record takes part in the ownership of memory.
bool ownsContext(const Type& type);

/// What the type's control class is derived from: the shapes differ by it.
enum class ControlBase { Plain, List, BitString, FixedBitString, Time, Null, Alias };
ControlBase controlBase(const Type& type);

/// Types of a module so that each comes behind those that it holds by value.
std::vector<const Type*> inOrderOfUse(const Module& module);

/// Records that a module's records point to.
std::vector<const Type*> pointedTo(const Module& module);

/// Modules whose headers a module's header needs.
std::vector<const Module*> neededHeaders(const Module& module);

/// Writes the generated files of a run.
class Emitter {
public:
    Emitter(const Model& model, Output output) : model_(model), output_(std::move(output)) {}

    std::string header(const Module& module);
    std::string privateHeader(const Module& module);
    std::string source(const Module& module);
    std::string catalogue();

private:
    // header
    void opening(Writer& out, const std::string& file, const std::string& digest);
    void forwardDeclarations(Writer& out, const Module& module);
    void documentType(Writer& out, const Type& type);
    void record(Writer& out, const Type& type);
    void sequenceMembers(Writer& out, const Type& type);
    void choiceMembers(Writer& out, const Type& type);
    void namedNumbers(Writer& out, const Type& type);
    void recordFunctions(Writer& out, const Type& type);
    void control(Writer& out, const Type& type);
    void functions(Writer& out, const Type& type);
    /// The functions of a type, declared or defined: those that it has.
    struct FamilyTemplates {
        const char* null; ///< all of a type without a value
        const char* coders;
        const char* copy;
        const char* free;
        const char* table;
    };
    static void familyFunctions(Writer& out, const Type& type, const Values& values,
                                const FamilyTemplates& templates);
    void objectClass(Writer& out, const ObjectClass& objectClass);
    void object(Writer& out, const Object& object);
    void objectSet(Writer& out, const ObjectSet& set);

    // source
    void rangeConstants(Writer& out, const Module& module);
    void elementTable(Writer& out, const Type& type);
    void nameTable(Writer& out, const Type& type);
    void tableConstraint(Writer& out, const Type& type);
    void description(Writer& out, const Type& type);
    void recordDefinitions(Writer& out, const Type& type);
    void controlDefinitions(Writer& out, const Type& type);
    void functionDefinitions(Writer& out, const Type& type);
    void objectClassDefinitions(Writer& out, const ObjectClass& objectClass);
    void objectDefinitions(Writer& out, const Object& object);
    void objectSetDefinitions(Writer& out, const ObjectSet& set);

    /// What templates call a type: X, its record T and its control class C; `family` qualifies
    /// names of the engine.
    Values namesOf(const Type& type) const;
    std::string exported(const std::string& keyword) const;
    std::string engine(const std::string& name) const;
    std::string memberType(const Type& type, const Module& module) const;
    std::string pointerType(const Type& type, const Module& module) const;

    const Model& model_;
    Output output_;
};

} // namespace asn1gen

#endif

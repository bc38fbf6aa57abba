#ifndef BREVANTIS_ASN1GEN_EMITTER_H
#define BREVANTIS_ASN1GEN_EMITTER_H

#include <map>
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
    std::string exportMacro;  ///< may be empty
    bool moduleNames = false; ///< descriptions are called `Module.Type`
};

/// The library's own modules, where they are imported from.
constexpr const char* LibrarySpace = "::asn1data";
constexpr const char* LibraryPrefix = "brevantis/asn1/asn1data";

/// Whether the library has the type: its description is looked up when the program starts.
bool isOfLibrary(const Type& type);

/// How types are called in C++.
std::string recordName(const Type& type);  ///< `ASN1T_X`; of the aliased type if it has to
std::string controlName(const Type& type); ///< `ASN1C_X`
std::string scalarName(Shape shape);       ///< of a value that is no record of its own

/// What the type's control class is derived from: the shapes differ by it.
enum class ControlBase { Plain, List, BitString, FixedBitString, Time, Null, Alias };
ControlBase controlBase(const Type& type);

using Modules = std::vector<const Module*>;

/// The lines of an include guard.
/// @param place what tells the header from others
void openGuard(Writer& out, std::string place);

/// Types of modules so that each comes behind those that it holds by value.
std::vector<const Type*> inOrderOfUse(const Modules& modules);

/// Records that a module's records point to.
std::vector<const Type*> pointedTo(const Module& module);

/// Modules whose types have to be complete in a module's header.
Modules neededHeaders(const Module& module);

/// Writes the generated files of a run.
class Emitter {
public:
    Emitter(const Model& model, Output output);

    std::string header(const File& file);
    std::string privateHeader(const File& file);
    std::string source(const File& file);
    std::string catalogue();

private:
    /// Modules that share a namespace.
    struct Part {
        std::string space;
        Modules modules;
    };
    static std::vector<Part> partsOf(const Modules& modules);
    // Names of another namespace than the one that is open are qualified.
    std::string spaceName(const std::string& space) const;
    std::string from(const Module* home, const std::string& name) const;
    std::string recordFrom(const Type& type) const;
    std::string controlFrom(const Type& type) const;
    std::string valueName(const Type& type) const;      ///< of the value in memory
    std::string descriptorName(const Type& type) const; ///< from the namespace of the module
    std::string tableName(const Type& type, const char* end = "") const; ///< from `types`
    std::string include(const File& file) const;

    // header
    void opening(Writer& out, const File& file);
    void forwardDeclarations(Writer& out, const Modules& modules);
    void includes(Writer& out, const Modules& modules);
    void moduleComment(Writer& out, const Module& module);
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
    void sourceIncludes(Writer& out, const File& file);
    void identifierConstants(Writer& out, const Module& module);
    void rangeConstants(Writer& out, const Modules& modules);
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
    std::string calledName(const Type& type) const; ///< what findType knows the type by
    std::string exported(const std::string& keyword) const;
    std::string engine(const std::string& name) const;
    std::string memberType(const Type& type, const Module& module) const;
    std::string referredType(const Type& type, const Module& module) const;

    const Model& model_;
    Output output_;
    std::string here_; ///< namespace that is open, below the common one
    /// Headers that would include each other are one: that of the first file.
    std::map<const Module*, const File*> headerOf_;
    std::map<const Module*, const File*> fileOf_;
};

} // namespace asn1gen

#endif

// libtasn1 decodes into a tree of nodes, each with a copy of its value, after a module that it
// reads at run time. What the module has as ANY stays a copy of the element: attribute values in
// names, algorithm parameters, policy qualifiers.

#include <cstdio>
#include <cstring>
#include <stdexcept>

#include <libtasn1.h>

#include "holder.h"
#include "operation.h"

namespace {

using bench::Kind;
using bench::Octets;
using bench::Task;

void deleteTree(asn1_node tree) {
    asn1_delete_structure(&tree);
}
using Tree = bench::Holder<asn1_node_st, deleteTree>;

Tree readModule() {
    asn1_node definitions = nullptr;
    char error[ASN1_MAX_ERROR_DESCRIPTION_SIZE] = "";
    if (asn1_parser2tree(BENCH_DATA_DIRECTORY "/libraries/pkix.asn", &definitions, error) !=
        ASN1_SUCCESS) {
        throw std::runtime_error(std::string("libtasn1: ") + error);
    }
    return Tree(definitions);
}

/// The tree of the message, none where it is refused.
Tree decodeTree(const char* type, Octets message) {
    static const Tree definitions = readModule();
    asn1_node tree = nullptr;
    int size = static_cast<int>(message.size);
    if (asn1_create_element(definitions.get(), type, &tree) == ASN1_SUCCESS) {
        // Deletes the tree when it fails.
        asn1_der_decoding2(&tree, message.data, &size, 0, nullptr);
    }
    return Tree(tree);
}

constexpr struct {
    const char* identifier;
    const char* type;
} extensionTypes[] = {
    {"2.5.29.9", "PKIX.SubjectDirectoryAttributes"},
    {"2.5.29.14", "PKIX.SubjectKeyIdentifier"},
    {"2.5.29.15", "PKIX.KeyUsage"},
    {"2.5.29.16", "PKIX.PrivateKeyUsagePeriod"},
    {"2.5.29.17", "PKIX.GeneralNames"},
    {"2.5.29.18", "PKIX.GeneralNames"},
    {"2.5.29.19", "PKIX.BasicConstraints"},
    {"2.5.29.20", "PKIX.CRLNumber"},
    {"2.5.29.21", "PKIX.CRLReason"},
    {"2.5.29.23", "PKIX.HoldInstructionCode"},
    {"2.5.29.24", "PKIX.InvalidityDate"},
    {"2.5.29.27", "PKIX.CRLNumber"},
    {"2.5.29.28", "PKIX.IssuingDistributionPoint"},
    {"2.5.29.29", "PKIX.GeneralNames"},
    {"2.5.29.30", "PKIX.NameConstraints"},
    {"2.5.29.31", "PKIX.CRLDistributionPoints"},
    {"2.5.29.32", "PKIX.CertificatePolicies"},
    {"2.5.29.33", "PKIX.PolicyMappings"},
    {"2.5.29.35", "PKIX.AuthorityKeyIdentifier"},
    {"2.5.29.36", "PKIX.PolicyConstraints"},
    {"2.5.29.37", "PKIX.ExtKeyUsageSyntax"},
    {"2.5.29.46", "PKIX.CRLDistributionPoints"},
    {"2.5.29.54", "PKIX.InhibitAnyPolicy"},
    {"1.3.6.1.5.5.7.1.1", "PKIX.InfoAccessSyntax"},
    {"1.3.6.1.5.5.7.1.3", "PKIX.QCStatements"},
    {"1.3.6.1.5.5.7.1.11", "PKIX.InfoAccessSyntax"},
    {"1.3.6.1.5.5.7.1.24", "PKIX.TLSFeatures"},
    {"1.3.6.1.5.5.7.48.1.5", "PKIX.OCSPNoCheck"},
    {"1.3.6.1.4.1.11129.2.4.2", "PKIX.SignedCertificateTimestampList"},
};

const char* typeOf(const char* identifier) {
    for (const auto& extension : extensionTypes) {
        if (std::strcmp(extension.identifier, identifier) == 0) {
            return extension.type;
        }
    }
    return nullptr;
}

/// Goes from each member of a list to the next one, where a search from the top would pass over all
/// those before it again.
/// @param first the member "?1", or nothing
/// @param visit called with a member and its name, tells whether to go on
template <typename Visit>
bool forEachMember(asn1_node first, Visit visit) {
    char name[ASN1_MAX_NAME_SIZE] = "?1";
    asn1_node member = first;
    for (unsigned number = 2; member != nullptr; ++number) {
        if (!visit(member, name)) {
            return false;
        }
        std::snprintf(name, sizeof(name), "?%u", number);
        member = asn1_find_node(member, name);
    }
    return true;
}

bool decodeExtension(asn1_node extension, const char* name) {
    char path[2 * ASN1_MAX_NAME_SIZE];
    char identifier[128];
    int size = sizeof(identifier);
    std::snprintf(path, sizeof(path), "%s.extnID", name);
    if (asn1_read_value(extension, path, identifier, &size) != ASN1_SUCCESS) {
        return false;
    }
    const char* const type = typeOf(identifier);
    if (type == nullptr) {
        return true;
    }
    std::snprintf(path, sizeof(path), "%s.extnValue", name);
    size = 0;
    asn1_read_value(extension, path, nullptr, &size);
    std::vector<unsigned char> value(static_cast<std::size_t>(size));
    return asn1_read_value(extension, path, value.data(), &size) == ASN1_SUCCESS &&
           decodeTree(type, {value.data(), value.size()}) != nullptr;
}

bool decodeExtensions(asn1_node start, const char* path) {
    return forEachMember(asn1_find_node(start, path), decodeExtension);
}

bool decodeCertificateExtensions(asn1_node tree) {
    return decodeExtensions(tree, "tbsCertificate.extensions.?1");
}

bool decodeEntryExtensions(asn1_node entry, const char* name) {
    char path[2 * ASN1_MAX_NAME_SIZE];
    std::snprintf(path, sizeof(path), "%s.crlEntryExtensions.?1", name);
    return decodeExtensions(entry, path);
}

bool decodeListExtensions(asn1_node tree) {
    return decodeExtensions(tree, "tbsCertList.crlExtensions.?1") &&
           forEachMember(asn1_find_node(tree, "tbsCertList.revokedCertificates.?1"),
                         decodeEntryExtensions);
}

template <const char* type>
bool decode(Octets message) {
    return decodeTree(type, message) != nullptr;
}

template <const char* type, bool (*more)(asn1_node)>
bool decodeAll(Octets message) {
    const Tree tree = decodeTree(type, message);
    return tree != nullptr && more(tree.get());
}

/// Extension values are encoded from the octets that they are in the tree.
template <const char* type>
bool recode(Octets message) {
    const Tree tree = decodeTree(type, message);
    if (tree == nullptr) {
        return false;
    }
    // Enough at once for a message in DER.
    int size = static_cast<int>(message.size);
    std::unique_ptr<unsigned char[]> output(new unsigned char[message.size]);
    int status = asn1_der_coding(tree.get(), "", output.get(), &size, nullptr);
    if (status == ASN1_MEM_ERROR) {
        output.reset(new unsigned char[static_cast<std::size_t>(size)]);
        status = asn1_der_coding(tree.get(), "", output.get(), &size, nullptr);
    }
    return status == ASN1_SUCCESS;
}

template <const char* type, bool (*more)(asn1_node)>
void add(std::vector<bench::Operation>& operations, Kind kind) {
    operations.push_back({kind, Task::Decode, "asn1_der_decoding2", decode<type>});
    operations.push_back({kind, Task::DecodeAll, "asn1_der_decoding2, also of extension values",
                          decodeAll<type, more>});
    operations.push_back({kind, Task::Recode, "asn1_der_decoding2, asn1_der_coding", recode<type>});
}

std::vector<bench::Operation> operations() {
    static constexpr char certificate[] = "PKIX.Certificate";
    static constexpr char list[] = "PKIX.CertificateList";

    std::vector<bench::Operation> all;
    add<certificate, decodeCertificateExtensions>(all, Kind::Certificate);
    add<list, decodeListExtensions>(all, Kind::RevocationList);
    return all;
}

const bench::Library libtasn1("libtasn1", asn1_check_version(nullptr), operations());

} // namespace

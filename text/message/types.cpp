#include <brevantis/asn1/text/types.h>

#include <cstring>

#include <brevantis/asn1/asn1published.h>

namespace asn1text {

using asn1data::TypeDescription;

namespace {

/// A published type by its name without the module.
const TypeDescription* publishedNamed(const char* name) noexcept {
    for (const TypeDescription* const type : asn1published::allTypes()) {
        const char* const dot = std::strchr(type->name, '.');
        if (dot != nullptr && std::strcmp(dot + 1, name) == 0) {
            return type;
        }
    }
    return nullptr;
}

} // namespace

const TypeDescription* findType(const char* name) noexcept {
    const TypeDescription* type = asn1data::findType(name);
    type = type != nullptr ? type : asn1published::findType(name);
    return type != nullptr ? type : publishedNamed(name);
}

const TypeDescription* publishedForm(const TypeDescription& type) noexcept {
    return asn1data::findType(type.name) == &type ? publishedNamed(type.name) : nullptr;
}

} // namespace asn1text

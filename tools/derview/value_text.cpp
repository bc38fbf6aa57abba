#include "value_text.h"

#include <brevantis/asn1/text/value.h>

#include "identifier_text.h"
#include "number_text.h"
#include "string_text.h"
#include "time_text.h"

namespace derview {

using asn1data::WalkElement;

ValueText valueText(const WalkElement& element, std::size_t room, const IdentifierNames& names) {
    switch (valueKind(element)) {
    case ValueKind::Null:
        return {"NULL"};
    case ValueKind::Boolean:
        return {element.value.number != 0 ? "TRUE" : "FALSE"};
    case ValueKind::Number:
        return {numberText(element)};
    case ValueKind::BigNumber:
        return bigNumberText(element, room);
    case ValueKind::Identifier:
        return {identifierText(*element.value.identifier, names)};
    case ValueKind::Time:
        if (auto text = timeText(element)) {
            return {*text};
        }
        return characterText(element, room);
    case ValueKind::Text:
        return characterText(element, room);
    case ValueKind::Bits:
        return bitText(element, room);
    case ValueKind::OctetString:
    case ValueKind::Raw:
        return octetText(element, room);
    }
    return {};
}

} // namespace derview

#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "compiler.h"

// Modules with mistakes, and what the compiler says about each.

namespace {

std::string readModule(const std::string& name) {
    std::ifstream in(std::string(MODULES_DIRECTORY "/") + name, std::ios::binary);
    EXPECT_TRUE(in.good()) << name;
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

struct Case {
    std::vector<std::string> modules; ///< the mistakes stand in the last one
    std::vector<std::string> expected;
};

const char* const sharedNames = "; the modules of a run share their names in C++.";

const Case cases[] = {
    {{"syntax.asn1"},
     {"2:29: error: expected the name of an element, found 'B'.",
      "3:21: error: tag numbers above 30 are not supported.",
      "4:18: error: '#' is not part of the notation.",
      "6:3: error: expected an assignment, found '::='.", "7:15: error: expected '{', found '5'.",
      "8:19: error: the number does not fit 64 bits.", "10:1: error: expected '{', found 'I'.",
      "10:37: error: expected '}', found 'DEFAULT'.",
      "11:14: error: expected 'IDENTIFIER', found 'STRING'.",
      "12:1: error: the comment has no end.",
      "13:1: error: expected 'END', found the end of the file."}},
    {{"automatic.asn1"},
     {"1:23: error: automatic tags are not supported.",
      "3:1: error: expected 'END', found the end of the file."}},
    {{"library.asn1", "names.asn1"},
     {"2:16: error: module 'Library' does not define 'Missing'.",
      "3:19: error: module 'Nowhere' is not among the files.",
      "6:7: error: type 'Unknown' is neither defined nor imported.",
      "7:5: error: 'a' is there twice; line 5 has it first.",
      "8:1: error: 'A' is assigned twice; line 4 does it first.",
      "9:15: error: type 'Also-Unknown' is neither defined nor imported.",
      "10:27: error: value 'c' is neither defined nor imported.",
      "11:31: error: an arc needs its number.", "12:27: error: 'e' is defined by itself.",
      "13:31: error: an arc above 32 bits is not supported.",
      "14:1: error: values can be of the types OBJECT IDENTIFIER and INTEGER.",
      "15:1: error: values can be of the types OBJECT IDENTIFIER and INTEGER.",
      "16:13: error: a constraint on another name of a type is not supported.",
      std::string("18:7: error: type 'K_l' already stands at names.asn1:19") + sharedNames,
      std::string("20:1: error: type 'K_m' already stands at library.asn1:3") + sharedNames,
      "21:26: error: 'b' repeats 'a'.", "21:32: error: 'a' repeats 'a'."}},
    {{"cycles.asn1"},
     {"2:1: error: a value of 'A' would hold itself: A -> B -> C -> A.",
      "7:1: error: a value of 'Fixed' would hold itself: Fixed -> Holder -> Fixed."}},
    {{"aliases.asn1"}, {"2:1: error: 'A' stands for itself: A -> B -> A."}},
    {{"ambiguity.asn1"},
     {"5:5: error: alternatives 'a' and 'c' begin with the same identifier octet.",
      "8:5: error: alternatives 'a' and 'b' begin with the same identifier octet.",
      "15:5: error: elements 'a' and 'c' begin with the same identifier octet.",
      "16:5: error: elements 'b' and 'd' begin with the same identifier octet.",
      "26:5: error: elements 'a' and 'c' begin with the same identifier octet.",
      "29:5: error: elements 'a' and 'b' begin with the same identifier octet.",
      "32:5: error: elements 'a' and 'b' begin with the same identifier octet."}},
    {{"remarks.asn1"},
     {"4:1: error: the remark 'value' does not fit here.",
      "6:15: error: an INTEGER is held as signed32, unsigned32, unsigned16 or magnitude.",
      "7:15: error: the remark 'colour' is unknown.",
      "8:20: error: the remark 'value' does not fit here.",
      "9:21: error: a list is held as array or fixed, or as list without a remark.",
      "10:7: error: a fixed array needs a SIZE with an upper bound or the remark 'capacity'.",
      "11:20: error: the remark 'capacity' needs a number above 0.",
      "12:15: error: the remark 'end-of-contents' does not fit here.",
      "13:24: error: the remark 'keep-extensions' does not fit here.",
      "16:11: error: only a SEQUENCE keeps unknown elements.",
      "18:10: error: the remark 'name' does not fit here.",
      "19:22: error: a list that is shared by its element type can be held as array, or as list "
      "without a remark.",
      std::string("20:7: error: type 'D' already stands at remarks.asn1:9") + sharedNames,
      "21:33: error: the list has a constraint, a tag or an element of its own, so it cannot be "
      "shared.",
      "24:7: error: '_SeqOfK' is held otherwise at remarks.asn1:23."}},
    {{"templates.asn1"},
     {"4:26: error: template 'Endless' holds itself.", "4:26: error: 'Endless' is not a type.",
      "8:11: error: a constraint or a second tag on a template is not supported.",
      "9:7: error: a constraint or a second tag on a template is not supported."}},
    {{"values.asn1"},
     {"3:27: error: the default of a BOOLEAN is TRUE or FALSE.",
      "4:27: error: the default of an INTEGER is a number.",
      "5:27: error: the default is outside what the element can hold.",
      "6:34: error: the default is outside what the element can hold.",
      "7:45: error: the default is not a name of the ENUMERATED.",
      "8:30: error: a default is supported on BOOLEAN, INTEGER and ENUMERATED.",
      "9:27: error: the default is outside what the element can hold.",
      "10:27: error: the default is outside what the element can hold.",
      "13:19: error: the constraint does not fit the type.",
      "14:25: error: the constraint does not fit the type.",
      "15:26: error: the bounds of the range are crossed.",
      "16:24: error: the bound is outside what the type can hold.",
      "17:22: error: an INTEGER held as text has no tested range; give it the remark 'value' or "
      "leave the range out.",
      "20:27: error: the size does not fit the capacity of 4.",
      "21:38: error: value 'upper' is neither defined nor imported.",
      "23:1: error: a negative value of ENUMERATED is not supported."}},
    {{"objects.asn1"},
     {"10:1: error: a class needs a type field and a mandatory field '&id'.",
      "14:20: error: expected 'VALUE', found 'ID'.",
      "16:25: error: 'other' is not an object of class 'KIND'.",
      "16:33: error: object 'missing' is neither defined nor imported.",
      "17:1: error: class 'ABSENT' is neither defined nor imported.",
      "21:29: error: there is no element 'kin' beside 'a'.",
      "24:21: error: object set 'Kind' is neither defined nor imported.",
      "27:21: error: 'Record' is not an object set.",
      "30:29: error: 'kind' is not an OBJECT IDENTIFIER.",
      "33:7: error: class 'KIND' has no field '&Valu'.",
      "36:21: error: the constraint does not tell which element identifies the value.",
      "37:34: error: object sets resolve open values of a SEQUENCE alone.",
      "40:32: error: CONTAINING needs a field of a class with its object set."}},
};

TEST(Diagnostics, PointsAtEveryMistake) {
    for (const Case& row : cases) {
        SCOPED_TRACE(row.modules.back());
        std::vector<asn1gen::SourceFile> files;
        for (const std::string& name : row.modules) {
            files.push_back({name, readModule(name)});
        }
        asn1gen::Diagnostics diagnostics;
        EXPECT_TRUE(asn1gen::compile(files, {}, diagnostics).empty());
        std::ostringstream printed;
        diagnostics.print(printed);
        std::string expected;
        for (const std::string& line : row.expected) {
            expected += row.modules.back() + ":" + line + "\n";
        }
        EXPECT_EQ(printed.str(), expected);
    }
}

TEST(Diagnostics, ModulesThatHoldEachOther) {
    asn1gen::Diagnostics diagnostics;
    asn1gen::compile({{"a.asn1", "A DEFINITIONS ::= BEGIN IMPORTS Y FROM B; X ::= BOOLEAN\n"
                                 "P ::= SEQUENCE { y Y } END\n"},
                      {"b.asn1", "B DEFINITIONS ::= BEGIN IMPORTS P FROM A;\n"
                                 "Y ::= SEQUENCE { a NULL }\nQ ::= SEQUENCE { p P } END\n"}},
                     {}, diagnostics);
    ASSERT_EQ(diagnostics.entries().size(), 1u);
    EXPECT_EQ(diagnostics.entries()[0].sentence, "modules hold values of each other: A -> B -> A");
}

} // namespace

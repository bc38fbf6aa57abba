#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/types/general_name.h>
#include <brevantis/asn1/values/types/general_name_traits.h>
#include <brevantis/asn1/values/types/name.h>
#include <brevantis/asn1/values/util/context_handle.h>
#include <brevantis/asn1/values/util/octet_string_value.h>
#include <brevantis/asn1/values/util/text_conversion.h>

#include "support/blob.h"
#include "support/data_file.h"
#include "support/failing_allocations.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::blob;
using tests::DataRow;
using tests::thrownCode;

namespace {

void put(CGeneralName& name, const DataRow& row) {
    const std::wstring text = towstring(row["content"].c_str());
    switch (row.number("type")) {
    case 2:
        return name.put_rfc822Name(text.c_str());
    case 3:
        return name.put_dNSName(text.c_str());
    case 5:
        return name.put_directoryName(blob(row["content"]));
    case 7:
        return name.put_uniformResourceIdentifier(text.c_str());
    case 8:
        return name.put_iPAddress(blob(row["content"]));
    default:
        return name.put_registeredID(text.c_str());
    }
}

CGeneralName made(const DataRow& row) {
    const std::wstring text = towstring(row["content"].c_str());
    switch (row.number("type")) {
    case 2:
        return CGeneralName::rfc822Name(text.c_str());
    case 3:
        return CGeneralName::dNSName(text.c_str());
    case 5:
        return CGeneralName::directoryName(blob(row["content"]));
    case 7:
        return CGeneralName::uniformResourceIdentifier(text.c_str());
    case 8:
        return CGeneralName::iPAddress(blob(row["content"]));
    default:
        return CGeneralName::registeredID(text.c_str());
    }
}

/// The whole text of a name: that of a directoryName ends what is shown.
std::wstring wholeText(const DataRow& row) {
    switch (row.number("type")) {
    case 5:
        return towstring(row["shown"].substr(std::string("directoryName: ").size()).c_str());
    case 8:
        return towstring(blob(row["content"]).writeToHexString(0).c_str());
    default:
        return towstring(row["content"].c_str());
    }
}

/// Every getter gives the content of its own alternative, and null for the others.
void expectContent(const CGeneralName& name, const DataRow& row) {
    const auto expected = row.number<unsigned>("type");
    EXPECT_EQ(name.get_type(), expected);
    const std::pair<unsigned, const wchar_t*> texts[] = {{2, name.get_rfc822Name()},
                                                         {3, name.get_dNSName()},
                                                         {7, name.get_uniformResourceIdentifier()},
                                                         {9, name.get_registeredID()}};
    for (const auto& [type, text] : texts) {
        EXPECT_EQ(text != nullptr, type == expected);
        EXPECT_TRUE(text == nullptr || towstring(row["content"].c_str()) == text);
    }
    const std::pair<unsigned, const CBlob*> blobs[] = {{5, name.get_directoryName()},
                                                       {8, name.get_iPAddress()}};
    for (const auto& [type, octets] : blobs) {
        EXPECT_EQ(octets != nullptr, type == expected);
        EXPECT_TRUE(octets == nullptr || *octets == blob(row["content"]));
    }
}

TEST(GeneralName, OfEachKindGoesInAndOut) {
    CGeneralName name; // takes each kind in place of the one before
    tests::forEachRow("general_name.txt", "names", [&](const DataRow& row) {
        put(name, row);
        expectContent(name, row);
        EXPECT_EQ(name.encode(), blob(row["message"]));
        EXPECT_EQ(name.toString(), towstring(row["shown"].c_str()));
        EXPECT_EQ(name.wholeText(), wholeText(row));
        expectContent(made(row), row);
        CGeneralName read;
        read.decode(blob(row["message"]));
        expectContent(read, row);
        EXPECT_TRUE(read == name);
    });
}

TEST(GeneralName, RefusesWhatItCannotCarry) {
    CGeneralName name;
    EXPECT_EQ(name.toString(), L"");
    EXPECT_EQ(name.wholeText(), L"");
    EXPECT_EQ(thrownCode([] { CGeneralName::rfc822Name(nullptr); }), E_INVALIDARG);
    EXPECT_EQ(thrownCode([&] { name.encode(); }), E_INVALIDARG) << "no name";
    EXPECT_EQ(thrownCode([&] { name.put_dNSName(nullptr); }), E_INVALIDARG);
    name.put_registeredID(L"1.2.x");
    EXPECT_EQ(thrownCode([&] { name.encode(); }), E_INVALIDARG);
    name.put_directoryName(blob("0500"));
    EXPECT_EQ(thrownCode([&] { name.encode(); }), CRYPT_E_ASN1_INTERNAL);
    EXPECT_EQ(thrownCode([&] { name.toString(); }), CRYPT_E_ASN1_INTERNAL);

    asn1data::ASN1T_GeneralName record;
    record.t = asn1data::T_GeneralName_iPAddress;
    EXPECT_EQ(thrownCode([&] { ASN1T_GeneralName_traits::get(record, name); }), E_INVALIDARG);
}

TEST(GeneralName, ComparesTextsByTheirFirstCharacter) {
    const auto named = &CGeneralName::dNSName;
    EXPECT_TRUE(CGeneralName() == CGeneralName());
    EXPECT_TRUE(named(L"example.org") == named(L"e"));
    EXPECT_TRUE(named(L"example.org") != named(L"www.example.org"));
    EXPECT_TRUE(named(L"e") != CGeneralName());
    const CGeneralName mail = CGeneralName::rfc822Name(L"e");
    EXPECT_TRUE(named(L"e") != mail);
    CGeneralName first;
    CGeneralName second;
    first.put_iPAddress(blob("C0000207"));
    second.put_iPAddress(blob("C0000208"));
    EXPECT_TRUE(first != second) << "octets count whole";
    second = first;
    EXPECT_TRUE(first == second);
    first.put_iPAddress(*first.get_iPAddress());
    EXPECT_TRUE(first == second) << "its own octets are a value like any other";
    first.clear();
    EXPECT_TRUE(first == CGeneralName());
}

TEST(GeneralName, HoldsTextAsUtf8UpToAnOctet0) {
    CGeneralName name;
    name.put_dNSName(L"\u0416");
    EXPECT_EQ(name.encode(), blob("8202D096"));
    CGeneralName read;
    read.decode(blob("8202D096"));
    EXPECT_STREQ(read.get_dNSName(), L"\u0416");
    read.decode(blob("8203610062"));
    EXPECT_STREQ(read.get_dNSName(), L"a");
}

TEST(GeneralName, LeavesARecordAsItWasWhenItCannotBeStored) {
    ScopedContext context;
    asn1data::ASN1T_GeneralName record;
    CGeneralName name;
    name.put_iPAddress(blob("7F000001"));
    ASN1T_GeneralName_traits::set(context.get(), record, name);
    name.put_registeredID(L"x");
    EXPECT_EQ(thrownCode([&] { ASN1T_GeneralName_traits::set(context.get(), record, name); }),
              E_INVALIDARG);
    ASN1T_GeneralName_traits::get(record, name);
    EXPECT_EQ(*name.get_iPAddress(), blob("7F000001"));
}

TEST(GeneralNames, GoInAndOutInOrder) {
    std::string content;
    CGeneralNames names;
    const auto rows = tests::dataRows("general_name.txt", "names");
    for (const DataRow& row : rows) {
        content += row["message"];
        put(names.emplace_back(), row);
    }
    const CBlob encoded = blob("3081A0" + content);
    EXPECT_EQ(names.encode(), encoded);
    CGeneralNames read;
    read.decode(encoded);
    auto row = rows.begin();
    for (const CGeneralName& name : read) {
        expectContent(name, *row++);
    }
    // What comes before a kind that is not carried has been taken.
    EXPECT_EQ(thrownCode([&] { read.decode(blob("30078201 61A3023000")); }), E_INVALIDARG);
    EXPECT_EQ(read.size(), 1u);
}

TEST(GeneralName, ShowsAllOrFailsWhenMemoryIsOut) {
    const CGeneralName name =
        CGeneralName::directoryName(CName(L"CN=a,O=b+OU=c,CN=some longer common name"));
    const CWStringProxy whole = name.toString();
    EXPECT_GT(tests::failEveryAllocation([&] { EXPECT_EQ(name.toString(), whole); }), 10);
}

TEST(OctetStringValue, WrapsAndUnwraps) {
    const CBlob longer(200);
    const std::pair<CBlob, CBlob> wrapped[] = {
        {CBlob(), blob("0400")},
        {blob("01"), blob("040101")},
        {longer, blob("0481C8" + std::string(longer.writeToHexString(0).c_str()))},
    };
    for (const auto& [octets, encoded] : wrapped) {
        EXPECT_EQ(toOctetString(octets), encoded);
        EXPECT_EQ(fromOctetString(encoded), octets);
        EXPECT_GT(tests::failEveryAllocation([&, &content = octets] { toOctetString(content); }),
                  1);
        EXPECT_GT(tests::failEveryAllocation([&, &from = encoded] { fromOctetString(from); }), 0);
    }
    EXPECT_EQ(fromOctetString(blob("0401AAFF")), blob("AA")) << "octets behind it";
    for (const char* hex : {"", "04", "0402AA", "0500", "2403040101", "048000000000"}) {
        EXPECT_EQ(thrownCode([&] { fromOctetString(blob(hex)); }), CRYPT_E_ASN1_INTERNAL) << hex;
    }
}

} // namespace

#include <climits>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <brevantis/support/blob.h>

#include "support/hex.h"
#include "support/thrown_code.h"

namespace {

using Brevantis::CBlob;
using Brevantis::CBlobList;

CBlob blobOf(const char* text) {
    const tests::Octets octets = tests::fromHex(text);
    return {octets.data(), octets.size()};
}

std::string hexOf(const CBlob& blob) {
    return blob.writeToHexString(0).c_str();
}

TEST(Blob, ownsItsOctets) {
    CBlob blob = blobOf("010203");
    const CBlob copy = blob;
    blob.pbData()[0] = 9;
    EXPECT_EQ(hexOf(copy), "010203");
    blob.resize_to(5);
    EXPECT_EQ(hexOf(blob), "0902030000");
    blob.assign(blob.pbData() + 1, 2);
    EXPECT_EQ(hexOf(blob), "0203") << "assigned from a part of itself";
    blob.resize_to(1);
    EXPECT_EQ(hexOf(blob), "02");
    blob.resize_to(2);
    EXPECT_EQ(hexOf(blob), "0200") << "octets once cut off do not come back";
    CBlob taken = std::move(blob);
    blob = copy;
    swap(blob, taken);
    EXPECT_EQ(hexOf(blob), "0200");
    EXPECT_EQ(taken, copy);
    taken.clear();
    EXPECT_EQ(taken.cbData(), 0u);
    EXPECT_EQ(hexOf(CBlob(3)), "000000");
}

TEST(Blob, refusesWhatItCannotHold) {
    CBlob blob = blobOf("0102");
    EXPECT_EQ(tests::thrownCode([&] { blob.assign(nullptr, 1); }), E_INVALIDARG);
    EXPECT_EQ(tests::thrownCode([] { const CBlob none(nullptr, 1); }), E_INVALIDARG);
    EXPECT_THROW(blob.resize_to(ULONG_MAX), std::length_error);
    EXPECT_EQ(hexOf(blob), "0102");
    blob.assign(nullptr, 0);
    EXPECT_EQ(blob, CBlob());
}

TEST(Blob, isOrderedAsDictionariesAre) {
    const CBlobList ascending = {CBlob(), blobOf("00"), blobOf("00ff"), blobOf("01"), blobOf("80")};
    for (auto low = ascending.begin(); low != ascending.end(); ++low) {
        EXPECT_EQ(*low, CBlob(*low));
        EXPECT_FALSE(*low < *low);
        for (auto high = std::next(low); high != ascending.end(); ++high) {
            EXPECT_LT(*low, *high) << hexOf(*low) << " and " << hexOf(*high);
            EXPECT_FALSE(*high < *low);
            EXPECT_NE(*low, *high);
        }
    }
}

TEST(Blob, readsHexadecimalText) {
    CBlob blob;
    for (const char* text : {"09afAF", " 0 9\tA\rf\naf\v\f"}) {
        blob.readFromHexString(text);
        EXPECT_EQ(hexOf(blob), "09afaf") << text;
    }
    // Odd counts, a prefix, and the neighbours of the digits.
    for (const char* text :
         {"0", "0 12", "0x01", "0/", "0:", "0@", "0G", "0`", "0g", "00\xC2\xA0"}) {
        EXPECT_EQ(tests::thrownCode([&] { blob.readFromHexString(text); }), E_INVALIDARG) << text;
    }
    EXPECT_EQ(tests::thrownCode([&] { blob.readFromHexString(nullptr); }), E_INVALIDARG);
    EXPECT_EQ(hexOf(blob), "09afaf") << "what is refused changes nothing";
    blob.readFromHexString("");
    EXPECT_EQ(blob, CBlob());
}

} // namespace

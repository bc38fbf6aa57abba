#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/types/choice.h>
#include <brevantis/asn1/values/types/time_choice.h>
#include <brevantis/asn1/values/types/time_choice_traits.h>

#include "support/data_file.h"
#include "support/thrown_code.h"

using namespace Brevantis;
using namespace Brevantis::ASN1;
using tests::thrownCode;

namespace {

/// A value of which copies can be made to fail, and which knows how many of it live.
struct Fragile {
    explicit Fragile(int number) : content(number) { ++live; }
    Fragile(const Fragile& other) : content(other.content) {
        if (broken) {
            throw std::bad_alloc();
        }
        ++live;
    }
    Fragile& operator=(const Fragile&) = default;
    ~Fragile() { --live; }

    int content;
    static inline int live = 0;
    static inline bool broken = false;
};

using First = ChoiceValueTraitsT<Fragile, 1>;
using Second = ChoiceValueTraitsT<Fragile, 2>;
class FragileImpl final : public ChoiceOf<First, Second> {};
using FragileChoice = ChoicePointer<FragileImpl>;

class WithoutTraits final : public Choice {
public:
    const ChoiceValueTraits* findTraits(unsigned number) const override {
        return number == 0 ? &EmptyChoiceTraits::instance : nullptr;
    }
};

TEST(ChoiceValueTraits, CreateAssignAndDeleteTheirType) {
    const ChoiceValueTraits& traits = First::instance;
    EXPECT_TRUE(traits.isType(1));
    EXPECT_FALSE(traits.isType(0) || traits.isType(2));
    const Fragile source(7);
    const Fragile other(8);
    void* value = traits.newValue(&source);
    EXPECT_EQ(static_cast<Fragile*>(value)->content, 7);
    traits.copyValue(value, &other);
    EXPECT_EQ(static_cast<Fragile*>(value)->content, 8);
    EXPECT_EQ(thrownCode([&] { traits.copyValue(value, nullptr); }), E_INVALIDARG);
    EXPECT_EQ(thrownCode([&] { traits.copyValue(nullptr, &source); }), E_INVALIDARG);
    EXPECT_EQ(thrownCode([&] { traits.newValue(nullptr); }), E_INVALIDARG);
    traits.deleteValue(value);
    traits.deleteValue(nullptr);
    EXPECT_EQ(Fragile::live, 2);
}

TEST(ChoiceValueTraits, OfNoAlternativeHoldAPointer) {
    const ChoiceValueTraits& traits = EmptyChoiceTraits::instance;
    EXPECT_TRUE(traits.isType(0));
    int target = 0;
    void* const pointer = &target;
    for (void* const* source : {&pointer, static_cast<void* const*>(nullptr)}) {
        void* cell = traits.newValue(source);
        EXPECT_EQ(*static_cast<void**>(cell), source != nullptr ? pointer : nullptr);
        traits.deleteValue(cell);
    }
}

TEST(Choice, FindsTraitsForEveryNumber) {
    const FragileImpl choice;
    EXPECT_EQ(choice.findTraits(1), &First::instance);
    EXPECT_EQ(choice.findTraits(2), &Second::instance);
    for (unsigned number : {0u, 3u, 0xFFFFFFFFu}) {
        EXPECT_EQ(choice.findTraits(number), &EmptyChoiceTraits::instance) << number;
    }
    WithoutTraits other;
    EXPECT_EQ(thrownCode([&] { other.put(1, &other); }), E_INVALIDARG);
    EXPECT_EQ(other.type, 0u);
}

TEST(Choice, HoldsOneValueOfItsOwn) {
    {
        FragileChoice choice;
        EXPECT_EQ(choice.type(), 0u);
        choice.put<First>(Fragile(1));
        FragileChoice copy(choice);
        choice.put<Second>(Fragile(2));
        EXPECT_EQ(choice.get<First>(), nullptr);
        EXPECT_EQ(choice.get<Second>()->content, 2);
        EXPECT_EQ(copy.get<First>()->content, 1) << "a copy has a value of its own";

        choice.put<First>(*choice.get<Second>());
        EXPECT_EQ(choice.get<First>()->content, 2) << "copied before it is deleted";

        const Fragile* held = choice.get<First>();
        const FragileChoice& itself = choice;
        choice = itself;
        EXPECT_EQ(choice.get<First>(), held) << "nothing moves";

        choice = FragileChoice();
        EXPECT_EQ(choice.type(), 0u);
        copy = choice;
        EXPECT_EQ(FragileChoice(copy).type(), 0u) << "a copy of nothing, copied again";
    }
    EXPECT_EQ(Fragile::live, 0);
}

TEST(Choice, WithoutImplementationIsEmptyAndCanBeUsedAgain) {
    FragileChoice choice;
    choice.put<First>(Fragile(1));
    FragileChoice moved(std::move(choice));
    FragileChoice cleared;
    cleared.clear();
    // NOLINTNEXTLINE(bugprone-use-after-move)
    for (FragileChoice* empty : {&choice, &cleared}) {
        EXPECT_EQ(empty->type(), 0u);
        EXPECT_EQ(empty->get<First>(), nullptr);
        EXPECT_EQ(FragileChoice(*empty).type(), 0u);
        empty->clear();
        empty->put<Second>(Fragile(3));
        EXPECT_EQ(empty->get<Second>()->content, 3);
    }
    EXPECT_EQ(moved.get<First>()->content, 1);
    choice.clear();
    moved = choice;
    EXPECT_EQ(moved.type(), 0u);
}

TEST(Choice, IsEmptyWhenANewValueCannotBeCopied) {
    FragileChoice choice;
    FragileChoice other;
    choice.put<First>(Fragile(1));
    other.put<Second>(Fragile(2));
    const Fragile given(3);
    Fragile::broken = true;
    EXPECT_THROW(choice = other, std::bad_alloc);
    EXPECT_EQ(choice.get<First>()->content, 1) << "assignment changes all or nothing";
    EXPECT_THROW(choice.put<Second>(given), std::bad_alloc);
    Fragile::broken = false;
    EXPECT_EQ(choice.type(), 0u);
    EXPECT_EQ(Fragile::live, 2) << "the old value is gone";
    choice.put<First>(given);
    EXPECT_EQ(choice.get<First>()->content, 3);
}

CBlob message(const std::string& type, const std::string& text) {
    const std::string octets =
        (type == "1" ? '\x17' : '\x18') + std::string(1, static_cast<char>(text.size())) + text;
    return CBlob(std::vector<unsigned char>(octets.begin(), octets.end()).data(), octets.size());
}

TEST(TimeChoice, WritesTheTypeThatTheYearDemands) {
    tests::forEachRow("time_choice.txt", "written", [](const tests::DataRow& row) {
        const CDateTime given(row["time"].c_str());
        const CTimeChoice time(given);
        EXPECT_EQ(time.get_type(), row.number<unsigned>("type"));
        EXPECT_EQ(*time.get_time(), given);
        EXPECT_EQ(time.encode(), message(row["type"], row["text"]));
        CTimeChoice read;
        read.decode(time.encode());
        EXPECT_EQ(read.get_type(), row.number<unsigned>("type"));
        EXPECT_EQ(*read.get_time(), CDateTime(row["read"].c_str()));
    });
}

TEST(TimeChoice, ReadsTheFieldsAsTheyStand) {
    tests::forEachRow("time_choice.txt", "read", [](const tests::DataRow& row) {
        CTimeChoice time(CDateTime(2077, 7, 7, 7, 7, 7));
        time.decode(message(row["tagged"], row["text"]));
        EXPECT_EQ(time.get_type(), row.number<unsigned>("type"));
        EXPECT_EQ(*time.get_time(), CDateTime(row["time"].c_str()));
    });
}

TEST(TimeChoice, WithoutATimeIsNotEncoded) {
    CTimeChoice time;
    EXPECT_EQ(time.get_type(), 1u);
    EXPECT_EQ(*time.get_time(), CDateTime(0, 0));
    time.clear();
    EXPECT_EQ(time.get_time(), nullptr);
    EXPECT_EQ(thrownCode([&] { time.encode(); }), CRYPT_E_ASN1_INTERNAL);
    asn1data::ASN1T_Time record;
    EXPECT_EQ(thrownCode([&] { ASN1T_Time_traits::get(record, time); }), CRYPT_E_ASN1_INTERNAL);
}

} // namespace

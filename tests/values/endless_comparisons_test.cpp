#include <csignal>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <brevantis/asn1/values/attribute/attribute.h>
#include <brevantis/asn1/values/types/name.h>

using namespace Brevantis::ASN1;

namespace {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

/// Starts a comparison of two equal values in a process of its own.
template <class Value>
pid_t start(bool (*compare)(const Value&, const Value&)) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
        _exit(compare(Value(), Value()) ? 0 : 1);
    }
    return child;
}

template <class Value>
void startBoth(std::vector<pid_t>& children) {
    children.push_back(start<Value>([](const Value& a, const Value& b) { return a == b; }));
    children.push_back(start<Value>([](const Value& a, const Value& b) { return a != b; }));
}

TEST(EndlessComparisons, StillRunAfterASecond) {
    std::vector<pid_t> children;
    startBoth<CAttributeTypeAndValueSet>(children);
    startBoth<CRelativeDistinguishedName>(children);
    startBoth<CAttrValueList>(children);
    startBoth<CAttribute>(children);
    sleep(1);
    for (const pid_t child : children) {
        ASSERT_GT(child, 0);
        EXPECT_EQ(waitpid(child, nullptr, WNOHANG), 0) << "a comparison came to an end";
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }
}

TEST(EndlessComparisons, AttributesOfOtherIdentifiersAreToldApart) {
    EXPECT_FALSE(CAttribute("1.2.3") == CAttribute("1.2.4"));
    EXPECT_TRUE(CAttribute("1.2.3") != CAttribute("1.2.4"));
}

#pragma GCC diagnostic pop

} // namespace

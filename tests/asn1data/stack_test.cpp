#include <pthread.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <brevantis/asn1/asn1data/family.h>
#include <brevantis/asn1/asn1data/walk.h>

#include "support/coding.h"
#include "support/deepest_message.h"

// Threads of a server have small stacks, and a message may be nested as deep as the limit allows.

namespace {

using namespace asn1data;
using tests::Octets;

/// Runs something on a thread of its own.
/// @return octets of stack that were written to, by the thread itself too
std::size_t stackOf(const std::function<void()>& operation) {
    constexpr std::size_t size = std::size_t{4} << 20;
    constexpr unsigned char untouched = 0xA5;
    const std::unique_ptr<unsigned char, decltype(&std::free)> stack(
        static_cast<unsigned char*>(std::aligned_alloc(1 << 16, size)), &std::free);
    std::memset(stack.get(), untouched, size);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, stack.get(), size);
    const auto run = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    pthread_t thread{};
    std::function<void()> copied = operation;
    EXPECT_EQ(pthread_create(&thread, &attributes, run, &copied), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    const unsigned char* const end = stack.get() + size;
    const auto isTouched = [](unsigned char octet) { return octet != untouched; };
    return static_cast<std::size_t>(
        end - std::find_if(static_cast<const unsigned char*>(stack.get()), end, isTouched));
}

/// The path to the innermost element.
class Innermost : public WalkVisitor {
public:
    WalkAction primitive(const WalkElement& element) override {
        if (element.depth >= depth_) {
            depth_ = element.depth;
            path = pathText(*element.step);
        }
        return WalkAction::Continue;
    }
    std::string path;

private:
    unsigned depth_ = 0;
};

const TypeDescription& deepestType() {
    const TypeDescription* deepest = nullptr;
    unsigned nesting = 0;
    for (const TypeDescription* type : allTypes()) {
        if (type->copyable && tests::deepestNesting(*type) > nesting) {
            deepest = type;
            nesting = tests::deepestNesting(*type);
        }
    }
    return *deepest;
}

TEST(Stack, IsSmallAtTheDeepestNesting) {
#if defined(__SANITIZE_ADDRESS__) || !defined(NDEBUG)
    GTEST_SKIP() << "frames are larger here";
#endif
    const TypeDescription& type = deepestType();
    const Octets message = tests::deepestMessage(type);
    Innermost innermost;
    const WalkResult walked = walk(type, message.data(), message.size(), innermost);
    ASSERT_EQ(walked.status, 0) << failureText(walked.failure);
    EXPECT_GT(tests::deepestNesting(type), 1000u);

    tests::Reader reader(message);
    void* const value = family::newRecord(reader, type);
    tests::Context copies;
    void* const copied = family::newRecord(copies, type);
    tests::Writer writer;
    WalkVisitor nobody;
    int status = 0;
    const struct {
        const char* name;
        std::size_t kibibytes;
        std::function<void()> run;
    } operations[] = {
        {"decode", 192, [&] { status = family::decode(reader, type, value, ASN1TagExplicit, 0); }},
        {"copy", 128,
         [&] {
             family::copy(copies, type, value, copied);
             status = copies->errInfo.status;
         }},
        {"encode", 224,
         [&] { status = std::min(0, family::encode(writer, type, value, ASN1TagExplicit)); }},
        {"release", 96, [&] { family::release(reader, type, value); }},
        {"walk", 480, [&] { status = walk(type, message.data(), message.size(), nobody).status; }},
        {"findElement", 480,
         [&] {
             status =
                 findElement(type, message.data(), message.size(), innermost.path.c_str()).status;
         }},
    };
    const std::size_t thread = stackOf([] {});
    for (const auto& operation : operations) {
        const std::size_t taken = stackOf(operation.run) - thread;
        EXPECT_EQ(status, 0) << operation.name;
        EXPECT_LT(taken, operation.kibibytes << 10) << operation.name;
        RecordProperty(operation.name, static_cast<int>(taken));
    }
}

} // namespace

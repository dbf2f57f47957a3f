// The entry object: identity texts, error texts, and the completion callback
// of dynamic runs on all networks.
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include "KavroLibrary.h"
#include "core/ErrorDictionary.h"

using namespace KavroLibrary;

namespace {

// What the completion callback (which takes no arguments) saw.
std::mutex callbackLock;
std::condition_variable done;
int calls = 0;
std::chrono::steady_clock::time_point calledAt;
std::thread::id calledOn;

void completed() {
    std::lock_guard<std::mutex> guard(callbackLock);
    calledAt = std::chrono::steady_clock::now();
    calledOn = std::this_thread::get_id();
    ++calls;
    done.notify_all();
}

}  // namespace

// Catches wrong identity texts, unknown codes not read as "Unknown Error", a search at construction.
TEST(KavroServer, IdentityErrorTextsAndAnEmptyCollection) {
    loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
    KavroServer server;
    EXPECT_EQ("837205", server.LibraryPartNumber());
    EXPECT_EQ("V 1.7", server.LibraryVersion());
    EXPECT_EQ("30/08/2022", server.LibraryBuildDate());
    EXPECT_EQ("Unknown Error", server.GetErrorDescription(0x7FFF0001));
    EXPECT_EQ("Unknown Error", server.GetErrorDescription(-1));
    EXPECT_NE("Unknown Error", server.GetErrorDescription(0x2112));
    EXPECT_EQ(GetErrorDescriptionInternal(0x2112), server.GetErrorDescription(0x2112));
    EXPECT_EQ(0u, server.Networks()->Count());
}

// Catches a callback that never comes, comes twice, or on the caller's thread.
TEST(KavroServer, AllDynamicWithoutNetworksCallsBackOnce) {
    calls = 0;
    KavroServer server;
    const auto start = std::chrono::steady_clock::now();
    server.StartAllDynamic(&completed);
    EXPECT_FALSE(server.DynamicInProgress());
    {
        std::unique_lock<std::mutex> guard(callbackLock);
        ASSERT_TRUE(done.wait_for(guard, std::chrono::seconds(5), [] { return calls > 0; }));
        EXPECT_LT(calledAt - start, std::chrono::seconds(2));
        EXPECT_NE(std::this_thread::get_id(), calledOn);
        EXPECT_EQ(1, calls);
    }
    server.StopAllDynamic();
}

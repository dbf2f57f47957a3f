// The entry object: identity texts, error texts, its collection, and the
// completion callback of dynamic runs on all networks.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include "KavroNetworks.h"
#include "KavroServer.h"
#include "core/ErrorDictionary.h"

using namespace KavroLibrary;

namespace {

// What the completion callback saw; it takes no arguments.
struct Completion {
    std::mutex lock;
    std::condition_variable done;
    std::atomic<int> calls{0};
    std::chrono::steady_clock::time_point at;
    std::thread::id thread;
};
Completion completion;

void completed() {
    std::lock_guard<std::mutex> guard(completion.lock);
    completion.at = std::chrono::steady_clock::now();
    completion.thread = std::this_thread::get_id();
    completion.calls.fetch_add(1);
    completion.done.notify_all();
}

}  // namespace

TEST(KavroServer, IdentityErrorTextsAndAnEmptyCollection) {
    loadErrorDictionaryFrom(KAVRO_SOURCE_DIR "/data/ErrLang_en.dat");
    KavroServer server;
    EXPECT_EQ("837205", server.LibraryPartNumber());
    EXPECT_EQ("V 1.7", server.LibraryVersion());
    EXPECT_EQ("30/08/2022", server.LibraryBuildDate());
    EXPECT_EQ("Unknown Error", server.GetErrorDescription(0x7FFF0001));
    EXPECT_EQ("Unknown Error", server.GetErrorDescription(-1));
    EXPECT_EQ(GetErrorDescriptionInternal(0x2112), server.GetErrorDescription(0x2112));
    EXPECT_NE("Unknown Error", server.GetErrorDescription(0x2112));

    // No search at construction.
    ASSERT_NE(nullptr, server.Networks());
    EXPECT_EQ(server.Networks(), server.Networks());
    EXPECT_EQ(0u, server.Networks()->Count());
    EXPECT_FALSE(server.DynamicInProgress());
}

TEST(KavroServer, AllDynamicWithoutNetworksCallsBackAfterTheFirstLook) {
    completion.calls = 0;
    KavroServer server;
    const auto start = std::chrono::steady_clock::now();
    server.StartAllDynamic(&completed);
    EXPECT_FALSE(server.DynamicInProgress());
    {
        std::unique_lock<std::mutex> guard(completion.lock);
        ASSERT_TRUE(completion.done.wait_for(guard, std::chrono::seconds(5), [] { return completion.calls > 0; }));
        // The watcher looks only after its first 50 ms, on its own thread.
        EXPECT_GE(completion.at - start, std::chrono::milliseconds(50));
        EXPECT_LT(completion.at - start, std::chrono::seconds(2));
        EXPECT_NE(std::this_thread::get_id(), completion.thread);
    }
    EXPECT_EQ(1, completion.calls.load());
    server.StopAllDynamic();
}

// The library's DLL in a process that did not begin with it.

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include <windows.h>

namespace {

using Count = int (*)();
constexpr int expected = 17; // 'ddaee-ddbee-ddcee'

class Event {
public:
    Event() : handle(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;
    ~Event() { CloseHandle(handle); }

    void Set() { SetEvent(handle); }
    void Wait() { WaitForSingleObject(handle, INFINITE); }

private:
    HANDLE handle;
};

} // namespace

TEST(Plugin, ServesThreadsOlderThanItself) {
    for (int round = 0; round < 3; ++round) {
        Event loaded;
        Count count = nullptr;
        std::vector<int> results(8);
        std::vector<std::thread> threads;
        for (int& result : results) {
            threads.emplace_back([&loaded, &count, &result] {
                loaded.Wait();
                for (int i = 0; i < 100; ++i) {
                    result = count();
                }
            });
        }
        const HMODULE plugin = LoadLibraryW(L"" PLUGIN_NAME);
        EXPECT_NE(plugin, nullptr) << GetLastError();
        if (plugin != nullptr) {
            count = reinterpret_cast<Count>(reinterpret_cast<void*>(GetProcAddress(plugin, "OrvUQLPluginCount")));
        }
        if (count == nullptr) {
            count = [] { return -2; };
        }
        EXPECT_EQ(count(), expected);
        loaded.Set();
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (const int result : results) {
            EXPECT_EQ(result, expected);
        }
        if (plugin != nullptr) {
            EXPECT_TRUE(FreeLibrary(plugin));
            EXPECT_EQ(GetModuleHandleW(L"OrvUQL.dll"), nullptr) << "nothing keeps it loaded";
        }
    }
}

TEST(Plugin, MayGoBeforeThreadsThatUsedIt) {
    const HMODULE plugin = LoadLibraryW(L"" PLUGIN_NAME);
    ASSERT_NE(plugin, nullptr) << GetLastError();
    const auto count = reinterpret_cast<Count>(reinterpret_cast<void*>(GetProcAddress(plugin, "OrvUQLPluginCount")));
    ASSERT_NE(count, nullptr);
    Event used;
    Event freed;
    int result = 0;
    std::thread thread([&] {
        result = count();
        used.Set();
        freed.Wait();
    });
    used.Wait();
    EXPECT_TRUE(FreeLibrary(plugin));
    freed.Set();
    thread.join(); // calls nothing that is gone
    EXPECT_EQ(result, expected);
}

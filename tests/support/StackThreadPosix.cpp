#include "support/StackThread.h"

#include <gtest/gtest.h>

#include <pthread.h>

namespace OrvUQL::Tests {

namespace {

void* RunBody(void* body) {
    (*static_cast<const std::function<void()>*>(body))();
    return nullptr;
}

} // namespace

void RunOnThread(std::size_t stackBytes, const std::function<void()>& body) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, stackBytes), 0);
    pthread_t thread;
    const int created = pthread_create(&thread, &attributes, RunBody, const_cast<std::function<void()>*>(&body));
    pthread_attr_destroy(&attributes);
    ASSERT_EQ(created, 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
}

} // namespace OrvUQL::Tests

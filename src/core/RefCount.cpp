#include "OrvUQL/RefCount.h"

#include "OrvUQL/QueryElement.h"

#include "platform/Pool.h"
#include "platform/Thread.h"

namespace OrvUQL {

namespace {

/// Releases nest this deep before they queue. Greater than anything people nest, so that they see their objects go in
/// the natural order; small enough for what is left of a stack when an evaluation has refused to go deeper.
constexpr int releaseDepthLimit = 32;

/// What one more level of releasing may take, by far.
constexpr std::size_t releaseStack = 8 * 1024;

/// What waits while the outermost release is over.
void ReleasePending(platform::ThreadState& thread) noexcept {
    while (!thread.pendingReleases.IsEmpty()) {
        IRefCountObject* const pending = static_cast<IRefCountObject*>(thread.pendingReleases.Pop());
        ++thread.releaseDepth;
        pending->Release();
        --thread.releaseDepth;
    }
}

} // namespace

void ReleaseNested(IRefCountObject* object) noexcept {
    if (object == nullptr) {
        return;
    }
    platform::ThreadState& thread = platform::CurrentThread();
    if (thread.releaseDepth >= releaseDepthLimit) {
        if (thread.pendingReleases.Push(object)) {
            return;
        }
        // Memory has ended for the queue: the stack has to do, and where that ends as well losing the object is all
        // that is left.
        if (!platform::HasStack(releaseStack)) {
            return;
        }
    }
    ++thread.releaseDepth;
    object->Release();
    if (--thread.releaseDepth == 0 && !thread.pendingReleases.IsEmpty()) {
        ReleasePending(thread);
    }
}

void ReleaseNested(IRefCountObject* const* objects, std::size_t count) noexcept {
    platform::ThreadState& thread = platform::CurrentThread();
    const bool isTooDeep = thread.releaseDepth >= releaseDepthLimit;
    for (IRefCountObject* const* const end = objects + count; objects != end; ++objects) {
        if (*objects == nullptr) {
            continue;
        }
        if (isTooDeep) {
            ReleaseNested(*objects);
            continue;
        }
        ++thread.releaseDepth;
        (*objects)->Release();
        if (--thread.releaseDepth == 0 && !thread.pendingReleases.IsEmpty()) {
            ReleasePending(thread);
        }
    }
}

void* detail::AllocateEntries(std::size_t bytes) { return platform::PoolAllocate(bytes); }

void detail::FreeEntries(void* entries, std::size_t bytes) noexcept {
    if (entries != nullptr) {
        platform::PoolFree(entries, bytes);
    }
}

QueryElementBase::~QueryElementBase() = default;

void* QueryElementBase::operator new(std::size_t size) { return platform::PoolAllocate(size); }
void QueryElementBase::operator delete(void* block, std::size_t size) noexcept { platform::PoolFree(block, size); }

} // namespace OrvUQL

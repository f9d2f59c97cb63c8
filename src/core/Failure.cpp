#include "core/Failure.h"

#include "platform/Meter.h"

namespace OrvUQL {

bool FailForExcess(platform::Excess excess, IError** err) noexcept {
    switch (excess) {
    case platform::Excess::Steps:
        return Fail(err, message::limitExceeded, L"steps");
    case platform::Excess::Memory:
        return Fail(err, message::limitExceeded, L"memory");
    case platform::Excess::Time:
        return Fail(err, message::limitExceeded, L"time");
    case platform::Excess::Cancelled:
        return Fail(err, message::cancelled);
    default:
        return Fail(err, message::internalError);
    }
}

bool FailForShortage(IError** err) noexcept {
    platform::ThreadState& thread = platform::CurrentThread();
    ++thread.shortages;
    return FailForExcess(thread.meter != nullptr ? thread.meter->GetExcess() : platform::Excess::None, err);
}

} // namespace OrvUQL

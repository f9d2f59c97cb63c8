// Arrays of a host: items that are made when they are asked for, slots that are empty, counts that change, items that
// cannot be had.
#pragma once

#include "support/Counted.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace OrvUQL::Tests {

/// An array whose items a function makes. Checks that it is asked only for positions that it has at that time.
class HostArray : public ObjectArrayBase {
public:
    using Maker = std::function<IObject*(int)>;

    HostArray(int itemCount, Maker itemMaker) : count(itemCount), make(std::move(itemMaker)) { Counted::Begin(); }
    HostArray(const HostArray&) = delete;
    HostArray& operator=(const HostArray&) = delete;
    ~HostArray() override { Counted::End({}); }

    int GetCount() const override {
        if (onCount) {
            onCount();
        }
        return count;
    }
    IObject* GetItem(int index) const override {
        EXPECT_GE(index, 0);
        EXPECT_LT(index, count) << "asked for more than there is";
        ++asked;
        return make(index);
    }

    mutable int count;
    mutable int asked = 0;         ///< how often it was asked for an item
    std::function<void()> onCount; ///< runs first whenever the count is asked for

private:
    Maker make;
};

/// The ints from 1, with an empty slot at each position (from 0) that `isEmpty` picks.
inline HostArray* MakeNumbers(
    int count, std::function<bool(int)> isEmpty = [](int) { return false; }) {
    return new HostArray(count, [isEmpty = std::move(isEmpty)](int index) -> IObject* {
        return isEmpty(index) ? nullptr : new ObjectInt(index + 1);
    });
}

} // namespace OrvUQL::Tests

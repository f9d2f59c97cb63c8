// A list of new values on its way to becoming an array.
#pragma once

#include "OrvUQL/ObjectArray.h"
#include "OrvUQL/ObjectString.h"

#include "core/Failure.h"
#include "platform/Meter.h"

namespace OrvUQL {

class ItemList {
public:
    /// Takes the reference over, also where memory ends (std::bad_alloc).
    void Add(IObject* taken) {
        Reference<IObject> item(taken);
        platform::Charge(1);
        items.push_back(taken);
        item.Detach();
    }
    void AddText(OrvStringT text) { Add(new ObjectString(std::move(text))); }
    /// The array with one reference; the list is empty afterwards.
    IObject* MakeArray() { return new ObjectArray(std::move(items)); }

private:
    ObjectList items;
};

} // namespace OrvUQL

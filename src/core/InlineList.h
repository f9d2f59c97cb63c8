// Lists that need no heap while they are short.
#pragma once

#include "OrvUQL/Object.h"
#include "OrvUQL/QueryElement.h"

namespace OrvUQL {

/// A list whose first N entries stand in the list itself.
template <class List, std::uint32_t N> class InlineList : public List {
public:
    InlineList() noexcept : List(storage, N) {}
    InlineList(const InlineList&) = delete;
    InlineList& operator=(const InlineList&) = delete;

private:
    typename List::value_type storage[N];
};

} // namespace OrvUQL

// Automation objects as values of the language: the seam of the command to COM.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "Ref.h"

#include <string>

namespace OrvUQL::Tool {

/// Whether the system has automation objects at all.
bool HasComObjects();

/// A thread's use of COM, from its first object on. Belongs to that thread, as its objects do: each thread that
/// evaluates has objects of its own, as it has an engine of its own, since most servers answer only the thread that
/// made them.
class ComApartment {
public:
    ComApartment() = default;
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
    /// All objects must have been released.
    ~ComApartment();

    /// A new object of the class with that program ID. Null with the reason in `error` if there is no such class, or it
    /// cannot be automated.
    Ref<IObject> Create(const std::string& programId, std::string& error);

private:
    [[maybe_unused]] bool isEntered = false; // where there is COM
};

} // namespace OrvUQL::Tool

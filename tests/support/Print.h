// How the library's things read in the output of a failed test.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <ostream>
#include <string>

// In the class's own namespace, which is where GoogleTest looks.
inline void PrintTo(const OrvStringT& text, std::ostream* out) { *out << '"' << text.ToUtf8() << '"'; }

namespace OrvUQL::Tests {

inline std::string Utf8(const OrvStringT& text) { return text.ToUtf8(); }

/// A value as "type text": "int 9", "string abc"; the type alone if it has no text; "(null)" for a null pointer.
inline std::string Describe(const IObject* object) {
    if (object == nullptr) {
        return "(null)";
    }
    OrvStringT text;
    if (!object->ToString(text, nullptr)) {
        return Utf8(object->GetTypeName());
    }
    return Utf8(object->GetTypeName()) + " " + Utf8(text);
}

} // namespace OrvUQL::Tests

#include "JsonTokens.h"

namespace OrvUQL::Tool {

void JsonTokens::Begin() {
    open.clear();
    next = Value;
}

void JsonTokens::EndValue() { next = open.empty() ? End : CommaOrEnd; }

bool JsonTokens::TakePunctuation(char c) {
    switch (c) {
    case '{':
    case '[':
        if (!TakesValue() || IsFull()) {
            return false;
        }
        open.push_back(c);
        next = c == '{' ? NameOrEnd : ValueOrEnd;
        return true;
    case '}':
        if (open.empty() || open.back() != '{' || (next != NameOrEnd && next != CommaOrEnd)) {
            return false;
        }
        open.pop_back();
        EndValue();
        return true;
    case ']':
        if (open.empty() || open.back() != '[' || (next != ValueOrEnd && next != CommaOrEnd)) {
            return false;
        }
        open.pop_back();
        EndValue();
        return true;
    case ':':
        if (next != Colon) {
            return false;
        }
        next = Value;
        return true;
    default: // a comma
        if (next != CommaOrEnd) {
            return false;
        }
        next = open.back() == '{' ? Name : Value;
        return true;
    }
}

bool JsonTokens::TakeString() {
    if (next == Name || next == NameOrEnd) {
        next = Colon;
        return true;
    }
    return TakeScalar();
}

bool JsonTokens::TakeScalar() {
    if (!TakesValue()) {
        return false;
    }
    EndValue();
    return true;
}

} // namespace OrvUQL::Tool

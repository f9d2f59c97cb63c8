// Whether brackets, quotes, commas and colons may follow each other as they do in a JSON document.
#pragma once

#include "JsonSyntax.h"

#include <cstddef>
#include <vector>

namespace OrvUQL::Tool {

/// Is told the tokens of one document that is an array or an object, and knows the first one that cannot be. Numbers
/// and words are all the same to it: whether they are any is for the reader of the document to say.
class JsonTokens {
public:
    /// Before the first token of a document.
    void Begin();

    /// Each takes one token: a bracket, a comma or a colon; a string; a number or a word. False if it cannot follow.
    bool TakePunctuation(char c);
    bool TakeString();
    bool TakeScalar();

    /// No more brackets can be opened.
    bool IsFull() const { return open.size() == deepestJson; }
    /// The document's last bracket has been taken.
    bool IsComplete() const { return open.empty() && next == End; }

private:
    enum ENext : unsigned char { Value, ValueOrEnd, Name, NameOrEnd, Colon, CommaOrEnd, End };

    bool TakesValue() const { return next == Value || next == ValueOrEnd; }
    void EndValue();

    std::vector<char> open; // the brackets that have been opened and not closed
    ENext next = Value;
};

} // namespace OrvUQL::Tool

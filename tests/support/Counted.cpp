#include "support/Counted.h"

namespace OrvUQL::Tests {

// Not inline: g++ would see it called on elements that it takes for the library's, whose memory is the library's own,
// and warn of what never happens.
CountedElement::~CountedElement() {
    if (value != nullptr) {
        ReleaseNested(value);
    }
    Counted::End(label);
}

} // namespace OrvUQL::Tests

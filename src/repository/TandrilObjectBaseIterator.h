#pragma once

#include "repository/ShownName.h"
#include "repository/TandrilObject.h"

#include <memory>

namespace LibraryBrowser {

// The engine behind a TandrilObjectIterator: one way of walking objects.
class TandrilObjectBaseIterator {
public:
    virtual ~TandrilObjectBaseIterator() = default;

    // The object at the position; only called while valid.
    virtual TandrilObject current() = 0;
    virtual void next() = 0;
    // The position is at an object. May move a filtering engine on to its
    // next match, hence not const.
    virtual bool isValid() = 0;
    // Back to the first object.
    virtual void restart() = 0;
    // An independent copy that stands at the same position.
    virtual std::unique_ptr<TandrilObjectBaseIterator> clone() const = 0;
    // The shown name and kind of the current object when the engine has them
    // at hand without reaching its node; null otherwise. Only called while
    // valid.
    virtual const ShownName* currentShownName() { return nullptr; }
};

} // namespace LibraryBrowser

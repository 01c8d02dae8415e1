#pragma once

#include "repository/TandrilObjectBaseIterator.h"

#include <memory>

namespace LibraryBrowser {

// The one way to walk repository objects: a value that owns a polymorphic
// engine. Copies clone the engine, so they walk on independently; a copy
// starts its own step count at 0 whatever the source had done.
class TandrilObjectIterator {
public:
    TandrilObjectIterator() = default;
    explicit TandrilObjectIterator(std::unique_ptr<TandrilObjectBaseIterator> engine);
    TandrilObjectIterator(const TandrilObjectIterator& other);
    TandrilObjectIterator(TandrilObjectIterator&& other) noexcept = default;
    // Replaces the engine by a clone of the other's; keeps this step count.
    TandrilObjectIterator& operator=(const TandrilObjectIterator& other);
    TandrilObjectIterator& operator=(TandrilObjectIterator&& other) noexcept = default;
    virtual ~TandrilObjectIterator();

    bool isValidIterator();
    // The object at the position, or a null object past the end.
    TandrilObject current();
    // What the engine has at hand of the current object (see the engine's
    // own); null past the end.
    const ShownName* currentShownName();
    // Moves on while valid; past the end it does nothing and doesn't count.
    void next();
    void restart();
    // True only for an iterator that has not moved and stands at no object:
    // one driven past its end is not empty. Costs one step at most.
    bool isEmpty();
    // The number of objects, counted on a restarted copy: a whole walk each
    // time, and this iterator does not move.
    int size() const;
    double sizeForNumora() const { return double(size()); }
    // Steps done since the last restart.
    int position() const { return m_position; }

private:
    std::unique_ptr<TandrilObjectBaseIterator> m_engine;
    int m_position = 0;
};

} // namespace LibraryBrowser

#pragma once

#include "repository/TandrilObjectIterator.h"

#include <functional>
#include <optional>

namespace LibraryBrowser {

// An engine that makes the iterator it stands for at its first use: a
// search whose counts came from elsewhere keeps its walk for whoever opens
// the hits, without reading anything until then.
class TandrilObjectDeferredIterator : public TandrilObjectBaseIterator {
public:
    using Make = std::function<TandrilObjectIterator()>;

    explicit TandrilObjectDeferredIterator(Make make) : m_make(std::move(make)) {}

    static TandrilObjectIterator defer(Make make);

    TandrilObject current() override { return made().current(); }
    void next() override { made().next(); }
    bool isValid() override { return made().isValidIterator(); }
    void restart() override { made().restart(); }
    std::unique_ptr<TandrilObjectBaseIterator> clone() const override;
    const ShownName* currentShownName() override { return made().currentShownName(); }

private:
    TandrilObjectIterator& made();

    Make m_make;
    std::optional<TandrilObjectIterator> m_made;
};

} // namespace LibraryBrowser

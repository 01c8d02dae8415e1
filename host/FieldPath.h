#pragma once

#include <QString>

#include <vector>

namespace LibraryBrowser::Host {

// The place of a value inside a JSON document, as keys and array indices
// from the top: shown to people as "blocks[3].icon.inputs".
class FieldPath {
public:
    struct Step {
        QString key;
        int index = -1;
    };

    FieldPath() = default;

    FieldPath key(const QString& name) const;
    FieldPath index(int position) const;

    const std::vector<Step>& steps() const { return m_steps; }
    bool isEmpty() const { return m_steps.empty(); }
    QString text() const;

private:
    std::vector<Step> m_steps;
};

} // namespace LibraryBrowser::Host

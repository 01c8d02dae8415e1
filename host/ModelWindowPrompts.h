#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace LibraryBrowser::Host {

// What the model windows ask of the person at the screen: file names, the
// fate of unsaved changes, and why something failed. The defaults are the
// toolkit's dialogs; tests answer in their place.
struct ModelWindowPrompts {
    enum class Unsaved { Save, Discard, Cancel };

    // An empty answer means the person cancelled.
    std::function<QString(QWidget* parent, const QString& suggested)> saveFileName;
    std::function<QString(QWidget* parent)> openFileName;
    std::function<Unsaved(QWidget* parent, const QString& systemName)> unsavedChanges;
    std::function<void(QWidget* parent, const QString& title, const QString& message)> failure;

    static ModelWindowPrompts dialogs();
    // The file filter of saved models.
    static QString fileFilter();
};

} // namespace LibraryBrowser::Host

#include "ModelWindowPrompts.h"

#include <QFileDialog>
#include <QMessageBox>

namespace LibraryBrowser::Host {

QString ModelWindowPrompts::fileFilter()
{
    return QStringLiteral("Tandril models and libraries (*.tdlib.json);;All files (*)");
}

ModelWindowPrompts ModelWindowPrompts::dialogs()
{
    ModelWindowPrompts prompts;
    prompts.saveFileName = [](QWidget* parent, const QString& suggested) {
        return QFileDialog::getSaveFileName(parent, QStringLiteral("Save Model"), suggested, fileFilter());
    };
    prompts.openFileName = [](QWidget* parent) {
        return QFileDialog::getOpenFileName(parent, QStringLiteral("Open Model"), QString(), fileFilter());
    };
    prompts.unsavedChanges = [](QWidget* parent, const QString& systemName) {
        QMessageBox box(QMessageBox::Warning, QStringLiteral("Unsaved Changes"),
                        QStringLiteral("Save the changes to \"%1\" before closing?").arg(systemName),
                        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, parent);
        box.setInformativeText(QStringLiteral("Changes that are not saved are lost."));
        box.setDefaultButton(QMessageBox::Save);
        switch (box.exec()) {
        case QMessageBox::Save: return Unsaved::Save;
        case QMessageBox::Discard: return Unsaved::Discard;
        default: return Unsaved::Cancel;
        }
    };
    prompts.failure = [](QWidget* parent, const QString& title, const QString& message) {
        QMessageBox::warning(parent, title, message);
    };
    return prompts;
}

} // namespace LibraryBrowser::Host

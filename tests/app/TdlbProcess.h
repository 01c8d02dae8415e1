#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace LibraryBrowser::Testing {

// What one run of the built tdlb left behind.
struct TdlbResult {
    int exitCode = -1;
    bool crashed = false;
    QString out;
    QString err;
    // Standard output as one JSON object; empty if it is none.
    QJsonObject json() const;
};

// The built tdlb on a private copy of the example root, with a preferences
// directory of its own, run as a separate process.
class TdlbProcess {
public:
    TdlbProcess();

    bool isReady() const { return m_ready; }
    QString root() const { return m_root.path(); }
    QString preferences() const { return m_prefs.path(); }

    // tdlb --root ROOT --prefdir PREFS arguments...
    TdlbResult run(const QStringList& arguments) const;
    // tdlb with exactly these arguments.
    static TdlbResult runRaw(const QStringList& arguments);

private:
    QTemporaryDir m_root;
    QTemporaryDir m_prefs;
    bool m_ready = false;
};

} // namespace LibraryBrowser::Testing

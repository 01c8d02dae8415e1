#pragma once

#include "Command.h"

#include <QStringList>

class QCommandLineParser;

#include <vector>

namespace LibraryBrowser::Tdlb {

// The whole of a tdlb run: host options, the command and its options, the
// host and the module brought up around the command, and the exit code.
class CommandLine {
public:
    CommandLine();

    // The arguments start with the program's name.
    int run(const QStringList& arguments);
    // Whether the command the arguments name shows a window or paints; false
    // for arguments that name none.
    bool usesWindowSystem(const QStringList& arguments) const;

private:
    // The options before the command's name, and the name.
    void configure(QCommandLineParser& parser) const;
    const Command* find(const QString& name) const;
    QString overview() const;

    std::vector<Command> m_commands;
};

} // namespace LibraryBrowser::Tdlb

#pragma once

#include "Command.h"

namespace LibraryBrowser::Tdlb {

// checksum: the checksum the store records for a file.
class ChecksumCommand : public Command {
public:
    QString name() const override;
    QString summary() const override;
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context) override;
};

} // namespace LibraryBrowser::Tdlb

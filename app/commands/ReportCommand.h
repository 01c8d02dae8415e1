#pragma once

#include "Command.h"

namespace LibraryBrowser::Tdlb {

// report: the log of the run that opens the repository.
class ReportCommand : public Command {
public:
    QString name() const override;
    QString summary() const override;
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context) override;
};

} // namespace LibraryBrowser::Tdlb

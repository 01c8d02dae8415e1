#pragma once

#include "Command.h"

namespace LibraryBrowser::Tdlb {

// generate: the writer's generation of every product or of one.
class GenerateCommand : public Command {
public:
    QString name() const override;
    QString summary() const override;
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context) override;
};

} // namespace LibraryBrowser::Tdlb

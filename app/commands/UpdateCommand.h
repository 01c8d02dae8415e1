#pragma once

#include "Command.h"

namespace LibraryBrowser::Tdlb {

// update: opens the repository, which synchronises the stores and the list of products.
class UpdateCommand : public Command {
public:
    QString name() const override;
    QString summary() const override;
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context) override;
};

} // namespace LibraryBrowser::Tdlb

#pragma once

#include "Command.h"

namespace LibraryBrowser::Tdlb {

// list: the products with their path, kind, place in the tree and state.
class ListCommand : public Command {
public:
    QString name() const override;
    QString summary() const override;
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context) override;
};

} // namespace LibraryBrowser::Tdlb

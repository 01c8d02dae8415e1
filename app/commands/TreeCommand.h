#pragma once

#include "Command.h"

namespace LibraryBrowser::Tdlb {

// tree: the objects below the top level or below one object, indented by depth.
class TreeCommand : public Command {
public:
    QString name() const override;
    QString summary() const override;
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context) override;
};

} // namespace LibraryBrowser::Tdlb

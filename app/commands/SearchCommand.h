#pragma once

#include "Command.h"

namespace LibraryBrowser::Tdlb {

// search: the objects whose shown name matches, grouped by product.
class SearchCommand : public Command {
public:
    QString name() const override;
    QString summary() const override;
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context) override;
};

} // namespace LibraryBrowser::Tdlb

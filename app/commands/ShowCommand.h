#pragma once

#include "Command.h"

#include "repository/Repository.h"

namespace LibraryBrowser::Tdlb {

// show: every attribute of one object, and its icon written to a file.
class ShowCommand : public Command {
public:
    QString name() const override;
    QString summary() const override;
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments, CommandContext& context) override;

private:
    int writeIcon(Repository& repository, const TandrilObject& object, const QString& file, int size,
                  CommandContext& context) const;
};

} // namespace LibraryBrowser::Tdlb

#include "HelpText.h"

#include <QFile>
#include <QStringList>

namespace LibraryBrowser::Host {

namespace {

bool isSectionHeading(const QString& line) { return line.startsWith(QLatin1String("## ")); }

// The lines from begin up to the next section heading, without pictures.
QString linesUntilNextSection(const QStringList& lines, qsizetype begin)
{
    QStringList kept;
    for (qsizetype i = begin; i < lines.size(); ++i) {
        if (i > begin && isSectionHeading(lines[i]))
            break;
        if (!lines[i].trimmed().startsWith(QLatin1String("![")))
            kept.append(lines[i]);
    }
    return kept.join('\n').trimmed() + '\n';
}

} // namespace

QString HelpText::readme()
{
    QFile file(QStringLiteral(":/tdhost/help/README.md"));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll());
}

QString HelpText::section(const QString& markdown, const QString& heading)
{
    const QStringList lines = markdown.split('\n');
    for (qsizetype i = 0; i < lines.size(); ++i)
        if (isSectionHeading(lines[i]) && lines[i].mid(3).trimmed() == heading)
            return linesUntilNextSection(lines, i);
    return QString();
}

QString HelpText::preamble(const QString& markdown) { return linesUntilNextSection(markdown.split('\n'), 0); }

QString HelpText::browserHelp()
{
    return "# Library Browser Help\n\n" + section(readme(), QStringLiteral("The first five minutes"));
}

QString HelpText::generalHelp()
{
    return preamble(readme()) + "\nHelp, \"Library Browser Help\" walks through the first five minutes.\n";
}

} // namespace LibraryBrowser::Host

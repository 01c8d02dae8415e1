#pragma once

#include <QString>

namespace LibraryBrowser::Host {

// The browser's own help, in Markdown: taken from the README that ships
// inside the host, so that what the Help menu says and what the README says
// are one text.
class HelpText {
public:
    // "Library Browser Help": the README's first five minutes.
    static QString browserHelp();
    // "Tandril Help": what the browser is, before the README's first section.
    static QString generalHelp();

    // The section of a Markdown text that starts at the "## " heading given,
    // heading included, up to the next heading of that level; empty if there
    // is none. Pictures are left out: the help window has no files beside it.
    static QString section(const QString& markdown, const QString& heading);
    // The text before the first "## " heading, pictures left out.
    static QString preamble(const QString& markdown);

private:
    static QString readme();
};

} // namespace LibraryBrowser::Host

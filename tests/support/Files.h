#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <map>
#include <string>

namespace LibraryBrowser::Testing {

// Writes the file, making its directory first; fails the test where it can't.
void writeFile(const std::string& file, const QByteArray& bytes);
// The file's bytes, or nothing where it can't be read.
QByteArray readFile(const std::string& file);
bool exists(const std::string& file);
void setModified(const std::string& file, const QDateTime& time);
// Every file below the directory, hidden ones too, by its path relative to
// the directory: to show that nothing on disk changed, or that two trees
// are alike.
std::map<QString, QByteArray> snapshot(const std::string& directory);

} // namespace LibraryBrowser::Testing

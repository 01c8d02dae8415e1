#include "support/Files.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace LibraryBrowser::Testing {

void writeFile(const std::string& file, const QByteArray& bytes)
{
    const QString name = QString::fromStdString(file);
    QDir().mkpath(QFileInfo(name).absolutePath());
    QFile out(name);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly | QIODevice::Truncate)) << file;
    out.write(bytes);
}

QByteArray readFile(const std::string& file)
{
    QFile in(QString::fromStdString(file));
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
}

bool exists(const std::string& file)
{
    return QFileInfo::exists(QString::fromStdString(file));
}

void setModified(const std::string& file, const QDateTime& time)
{
    QFile f(QString::fromStdString(file));
    ASSERT_TRUE(f.open(QIODevice::ReadWrite)) << file;
    ASSERT_TRUE(f.setFileTime(time, QFileDevice::FileModificationTime)) << file;
}

std::map<QString, QByteArray> snapshot(const std::string& directory)
{
    const QDir root(QString::fromStdString(directory));
    std::map<QString, QByteArray> files;
    QDirIterator it(root.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        files[root.relativeFilePath(file)] = readFile(file.toStdString());
    }
    return files;
}

} // namespace LibraryBrowser::Testing

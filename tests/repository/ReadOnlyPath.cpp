#include "ReadOnlyPath.h"

#include <QFile>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace LibraryBrowser::Testing {

namespace {
const QFileDevice::Permissions ReadOnly = QFileDevice::ReadOwner | QFileDevice::ReadUser |
                                          QFileDevice::ExeOwner | QFileDevice::ExeUser;
const QFileDevice::Permissions ReadWrite = ReadOnly | QFileDevice::WriteOwner | QFileDevice::WriteUser;
} // namespace

ReadOnlyPath::ReadOnlyPath(std::string path) : m_path(std::move(path))
{
    QFile::setPermissions(QString::fromStdString(m_path), ReadOnly);
    if (geteuid() != 0) {
        m_active = true;
        return;
    }
    m_immutable = setImmutable(true);
    m_active = m_immutable;
}

ReadOnlyPath::~ReadOnlyPath()
{
    if (m_immutable)
        setImmutable(false);
    QFile::setPermissions(QString::fromStdString(m_path), ReadWrite);
}

bool ReadOnlyPath::setImmutable(bool on)
{
    const int fd = ::open(m_path.c_str(), O_RDONLY | O_NONBLOCK);
    if (fd < 0)
        return false;
    int flags = 0;
    bool done = ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    if (done) {
        flags = on ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
        done = ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    }
    ::close(fd);
    return done;
}

} // namespace LibraryBrowser::Testing

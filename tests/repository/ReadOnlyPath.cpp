#include "ReadOnlyPath.h"

#include <QFile>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace LibraryBrowser::Testing {

namespace {
const QFileDevice::Permissions ReadOnly = QFileDevice::ReadOwner | QFileDevice::ReadUser | QFileDevice::ExeOwner
                                          | QFileDevice::ExeUser;
} // namespace

ReadOnlyPath::ReadOnlyPath(std::string path) : m_path(std::move(path))
{
    QFile::setPermissions(QString::fromStdString(m_path), ReadOnly);
    m_immutable = geteuid() == 0 && setImmutable(true);
    m_active = geteuid() != 0 || m_immutable;
}

ReadOnlyPath::~ReadOnlyPath()
{
    if (m_immutable)
        setImmutable(false);
    QFile::setPermissions(QString::fromStdString(m_path), ReadOnly | QFileDevice::WriteOwner | QFileDevice::WriteUser);
}

bool ReadOnlyPath::setImmutable(bool on)
{
    const int fd = ::open(m_path.c_str(), O_RDONLY | O_NONBLOCK);
    int flags = 0;
    bool done = fd >= 0 && ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
    flags = on ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
    done = done && ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    if (fd >= 0)
        ::close(fd);
    return done;
}

} // namespace LibraryBrowser::Testing

// The running-copy lock over flock(2).
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/InstanceLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace kelvar::platform
{

InstanceLock::~InstanceLock()
{
    Release();
}

bool InstanceLock::Acquire(const std::filesystem::path& path)
{
    Release();
    const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (descriptor < 0)
    {
        return true;
    }
    int result = 0;
    do
    {
        result = ::flock(descriptor, LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result != 0)
    {
        const int error = errno; // before close can change it
        ::close(descriptor);
        return error != EWOULDBLOCK;
    }
    Descriptor = descriptor;
    return true;
}

void InstanceLock::Release()
{
    if (Descriptor >= 0)
    {
        ::flock(Descriptor, LOCK_UN);
        ::close(Descriptor);
        Descriptor = -1;
    }
}

bool TryLockFirstByte(std::FILE* file)
{
    if (file == nullptr)
    {
        return true;
    }
    struct flock lock
    {
    };
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = 0;
    lock.l_len = 1;
    if (::fcntl(::fileno(file), F_SETLK, &lock) != 0)
    {
        return false;
    }
    lock.l_type = F_UNLCK;
    (void)::fcntl(::fileno(file), F_SETLK, &lock);
    return true;
}

} // namespace kelvar::platform

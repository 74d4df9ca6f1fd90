// Telling whether another copy of the program is running: a lock held for the whole run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdio>
#include <filesystem>

namespace kelvar::platform
{

/// An exclusive lock on a file, held by the running copy for as long as this object lives and
/// let go by the system when the process ends however it ends, so a crashed copy never leaves
/// a stale lock behind.
class InstanceLock
{
public:
    InstanceLock() = default;
    ~InstanceLock();
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    /// Takes the lock on `path`, creating the file when it's missing. Returns false when another
    /// process holds it. A file that can't be created at all counts as no other copy: the
    /// warning then can't help, and the program starts as the only one.
    bool Acquire(const std::filesystem::path& path);

    /// Lets the lock go.
    void Release();

    /// True while this object holds the lock.
    bool Held() const { return Descriptor >= 0; }

private:
    int Descriptor = -1;
};

/// Tries a lock on the first byte of an open file and lets it go at once: true when no other
/// process held it (or when there is no file to lock). Two running copies tell each other
/// apart so before a save.
bool TryLockFirstByte(std::FILE* file);

} // namespace kelvar::platform

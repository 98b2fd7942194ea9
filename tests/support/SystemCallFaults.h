#pragma once

/// Makes one of the system calls fail with which a file is written, as a full or broken disk does.
///
/// The calls are defined in the test program, so those of all libraries come through here. Counted
/// are the calls of the thread that armed it: open, read, pread, write, fsync, rename, close, link,
/// unlink, mkdir, rmdir.
class SystemCallFaults
{
public:
    /// Stands for an error number: the process is killed on the spot.
    static constexpr int Kill = -1;
    /// Stands for an error number: a write writes other bytes and says that all went well. Other
    /// calls do as ever.
    static constexpr int Spoil = -2;

    /// The `number`th call from now on, counted from 1, fails with `error`. A write that fails
    /// writes half, one that is interrupted nothing; a close that fails closes.
    SystemCallFaults(int number, int error);
    SystemCallFaults(const SystemCallFaults &) = delete;
    SystemCallFaults &operator=(const SystemCallFaults &) = delete;
    ~SystemCallFaults();

    /// Whether there were as many calls.
    static bool happened();
    /// Name of the call that failed.
    static const char *failedCall();
};

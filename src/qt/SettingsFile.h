// The settings file on the disk.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace tarvix {

// Every writer locks the folder, reads, and replaces the file as a whole, so that several programs can write, and a
// crash leaves the old file or the new one. The lock is the kernel's and ends with the process that holds it. Any
// thread; all answers are of the moment.
class SettingsFile {
public:
    enum class Kind {
        absent,
        text,
        unusable,  // a directory or device, too large for settings, or without leave to read it
    };
    struct Reading {
        Kind kind = Kind::absent;
        std::string text;  // the file's content; for an unusable one, why it is so
        friend bool operator==(const Reading&, const Reading&) = default;
    };
    // Holds the lock until it goes, and makes the folder if need be. False where somebody else has it for longer than a
    // write takes; true where there is nothing to lock.
    class Lock {
    public:
        explicit Lock(const SettingsFile& file);
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;
        explicit operator bool() const { return isHeld_; }

    private:
        int folder_ = -1;
        bool isHeld_ = false;
    };

    explicit SettingsFile(std::string path) : path_(std::move(path)) {}

    const std::string& path() const { return path_; }
    // Where a symbolic link leads in the end; the file itself need not be there.
    std::string target() const;

    Reading read() const;
    // Empty when done, else why not.
    std::string replace(std::string_view text) const;
    // Keeps a damaged text beside the file, and never over another one. The name of its file; empty when it can't be.
    std::string setAside(std::string_view text) const;

private:
    std::string path_;
};

}  // namespace tarvix

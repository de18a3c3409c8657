#pragma once
// Owners of resources from C libraries.

#include <dirent.h>
#include <glib.h>
#include <unistd.h>

#include <memory>
#include <utility>

struct GFree {
    void operator()(void* memory) const { g_free(memory); }
};
/// Memory to release with g_free.
template <typename T>
using GlibPointer = std::unique_ptr<T, GFree>;

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};
using DirectoryStream = std::unique_ptr<DIR, CloseDirectory>;

/// Owns a file descriptor, or none (-1).
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        if (this != &other) {
            Close();
            fd_ = std::exchange(other.fd_, -1);
        }
        return *this;
    }
    ~Descriptor() { Close(); }

    explicit operator bool() const { return fd_ >= 0; }
    int Get() const { return fd_; }
    int Release() { return std::exchange(fd_, -1); }

private:
    void Close()
    {
        if (fd_ >= 0) {
            close(fd_);
        }
    }
    int fd_ = -1;
};

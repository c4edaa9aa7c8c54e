#pragma once

#include <unistd.h>

#include <utility>

/// An open file descriptor, closed with its owner. -1: none.
class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int opened) : descriptor(opened) {}
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(descriptor, other.descriptor);
        return *this;
    }
    ~FileDescriptor() { close(); }

    void close()
    {
        if (isOpen())
            ::close(std::exchange(descriptor, -1));
    }

    [[nodiscard]] bool isOpen() const { return descriptor >= 0; }
    [[nodiscard]] int get() const { return descriptor; }

private:
    int descriptor = -1;
};

#pragma once

#include <utility>

namespace tavrin {

/// Owns an open file; closes it when destroyed.
class FileDescriptor {
public:
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&&) = delete;
    ~FileDescriptor() { close(); }

    bool isOpen() const { return number_ >= 0; }
    int number() const { return number_; }

    /// Closes now. The system's error number, 0 when all went well.
    int close();

private:
    int number_;
};

} // namespace tavrin

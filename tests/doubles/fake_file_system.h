#pragma once

#include "ports/file_system.h"

#include <algorithm>
#include <cerrno>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace tavrin::testing {

/// Files in memory that can be told to fail. A name in `failing` is the operation that fails with EIO, or the
/// beginning of a file's name that cannot be written.
class FakeFileSystem : public FileSystem {
public:
    std::map<std::string, std::string> files;
    std::map<std::string, std::string> links;
    std::set<std::string> directories;
    std::set<std::string> failing;
    std::vector<std::string> log; ///< the operations that change something, in order

    bool exists(const std::filesystem::path& path) override { return files.contains(path.string()); }

    /// Settled, and another for every content.
    std::optional<FileStamp> stamp(const std::filesystem::path& path) override {
        const auto file = files.find(path.string());
        if (failing.contains("read") || file == files.end())
            return std::nullopt;
        return FileStamp{.inode = std::hash<std::string>{}(file->second), .isSettled = true};
    }

    std::expected<Token, FileError> lock(const std::filesystem::path& path) override {
        if (failing.contains("lock"))
            return failure("lock", path);
        log.push_back("lock");
        return Token([this] { log.push_back("unlock"); });
    }

    std::vector<std::string> names(const std::filesystem::path& directory) override {
        std::vector<std::string> names;
        for (const auto& [path, content] : files)
            if (std::filesystem::path(path).parent_path() == directory)
                names.push_back(std::filesystem::path(path).filename().string());
        return names;
    }

    std::expected<std::string, FileError> read(const std::filesystem::path& path) override {
        if (failing.contains("read") || !files.contains(path.string()))
            return failure("read", path);
        return files.at(path.string());
    }

    std::expected<void, FileError> createDirectories(const std::filesystem::path& path) override {
        if (failing.contains("createDirectories"))
            return failure("createDirectories", path);
        directories.insert(path.string());
        return {};
    }

    std::expected<std::filesystem::path, FileError> resolveLink(const std::filesystem::path& path) override {
        const auto link = links.find(path.string());
        return link == links.end() ? path : std::filesystem::path(link->second);
    }

    std::expected<void, FileError> writeFlushed(const std::filesystem::path& path,
                                                std::string_view bytes) override {
        // A full disk leaves half a file behind.
        const bool fails = failing.contains("writeFlushed") ||
                           std::ranges::any_of(failing, [name = path.filename().string()](const auto& start) {
                               return name.starts_with(start);
                           });
        files[path.string()] = std::string(bytes.substr(0, fails ? bytes.size() / 2 : bytes.size()));
        return fails ? failure("writeFlushed", path) : done("write " + path.string());
    }

    std::expected<void, FileError> rename(const std::filesystem::path& from,
                                          const std::filesystem::path& to) override {
        if (failing.contains("rename") || !files.contains(from.string()))
            return failure("rename", to);
        files[to.string()] = files.at(from.string());
        files.erase(from.string());
        return done("rename " + to.string());
    }

    std::expected<void, FileError> flushDirectory(const std::filesystem::path& path) override {
        return failing.contains("flushDirectory") ? failure("flushDirectory", path)
                                                  : done("flush " + path.string());
    }

    std::expected<void, FileError> remove(const std::filesystem::path& path) override {
        if (failing.contains("remove"))
            return failure("remove", path);
        files.erase(path.string());
        return done("remove " + path.string());
    }

private:
    std::unexpected<FileError> failure(const char* operation, const std::filesystem::path& path) {
        return std::unexpected(FileError{operation, path.string(), EIO});
    }
    std::expected<void, FileError> done(std::string line) {
        log.push_back(std::move(line));
        return {};
    }
};

} // namespace tavrin::testing

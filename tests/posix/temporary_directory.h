#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace tavrin {

/// A directory of its own for one test, gone afterwards.
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "tavrin-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            std::abort();
        path_ = name;
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& path() const { return path_; }

    /// Writes a file below the directory with the folders above it.
    std::filesystem::path write(const std::filesystem::path& name, const std::string& text) const {
        const auto file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
        return file;
    }

    std::string read(const std::filesystem::path& name) const {
        std::stringstream text;
        text << std::ifstream(path_ / name, std::ios::binary).rdbuf();
        return text.str();
    }

private:
    std::filesystem::path path_;
};

} // namespace tavrin

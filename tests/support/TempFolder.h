#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

/// A folder of its own for one test, removed at the end.
class TempFolder {
public:
    explicit TempFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::string pattern = (parent / "mapanchor-XXXXXX").string();
        if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
        path_ = pattern;
    }
    /// A parent for tests that save thousands of times: nothing waits for a disk there.
    static std::filesystem::path InMemory() {
        const char* memory = "/dev/shm";
        return std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// The path of `name` in the folder.
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }
    /// Writes `content`, byte for byte, and returns the file's path.
    std::string Write(const std::string& name, const std::string& content) const {
        std::ofstream out(path_ / name, std::ios::binary);
        out << content;
        if (!out.flush()) throw std::runtime_error("cannot write " + name);
        return *this / name;
    }
    static std::string Slurp(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

private:
    std::filesystem::path path_;
};

#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <stdexcept>
#include <string>

/// Folders and files of tests, on every system. Paths are UTF-8.
namespace corvane::test {

inline std::filesystem::path PathOf(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}
inline std::string TextOf(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

/// A new empty folder that everybody may enter and list; removed with its contents at the end of the scope.
class TempFolder {
 public:
    TempFolder() {
        const std::filesystem::path parent = std::filesystem::temp_directory_path();
        std::filesystem::path path;
        do {
            path = parent / ("corvane-test-" + std::to_string(std::random_device{}()));
        } while (!std::filesystem::create_directory(path));
        std::filesystem::permissions(path, std::filesystem::perms(0755));
        path_ = TextOf(path);
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(PathOf(path_), ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// Path of `name` in the folder; with an empty name the folder with a separator at its end.
    [[nodiscard]] std::string operator/(const std::string& name) const { return path_ + "/" + name; }
    [[nodiscard]] const std::string& Path() const { return path_; }

    /// Names in the folder.
    [[nodiscard]] std::set<std::string> Names() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(PathOf(path_)))
            names.insert(TextOf(entry.path().filename()));
        return names;
    }

 private:
    std::string path_;
};

inline void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream stream(PathOf(path), std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) throw std::runtime_error("cannot write " + path);
}

inline std::string ReadBytes(const std::string& path) {
    std::ifstream stream(PathOf(path), std::ios::binary);
    if (!stream) throw std::runtime_error("cannot open " + path);
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace corvane::test

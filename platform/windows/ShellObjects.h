#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/windows/Windows.h"

/// The shell's automation objects as plain values. Every call that fails throws ShellFailure; it is caught at
/// the back-end's door.
namespace corvane {

class ShellFailure : public std::runtime_error {
 public:
    using runtime_error::runtime_error;
};

/// The thread's COM apartment, as long as it lives. A thread that has one already goes on with it.
class Apartment {
 public:
    Apartment();
    ~Apartment();
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

 private:
    bool entered_;
};

class ShellVerb {
 public:
    explicit ShellVerb(Microsoft::WRL::ComPtr<FolderItemVerb> verb) : verb_(std::move(verb)) {}

    [[nodiscard]] std::string Name() const;
    void Do() const;

 private:
    Microsoft::WRL::ComPtr<FolderItemVerb> verb_;
};

class ShellFolder;

class ShellFolderItem {
 public:
    explicit ShellFolderItem(Microsoft::WRL::ComPtr<FolderItem> item) : item_(std::move(item)) {}

    [[nodiscard]] std::string Name() const;
    [[nodiscard]] bool IsFolder() const;
    /// The folder that the item opens.
    [[nodiscard]] ShellFolder Open() const;
    [[nodiscard]] std::vector<ShellVerb> Verbs() const;

 private:
    Microsoft::WRL::ComPtr<FolderItem> item_;
};

class ShellFolder {
 public:
    ShellFolder() = default;
    explicit ShellFolder(Microsoft::WRL::ComPtr<Folder> folder) : folder_(std::move(folder)) {}

    [[nodiscard]] bool Exists() const { return folder_ != nullptr; }
    [[nodiscard]] std::string Title() const;
    [[nodiscard]] std::vector<ShellFolderItem> Items() const;

 private:
    Microsoft::WRL::ComPtr<Folder> folder_;
};

/// A name space of the shell by its number (CSIDL, shlobj.h). A folder that does not exist when the shell has
/// none of that number.
ShellFolder ShellNameSpace(int number);

}  // namespace corvane

#pragma once

#include <sys/mount.h>

#include "tests/unit/FileSupport.h"

namespace corvane::test {

/// A file system of 64 KiB, gone at the end of the scope. Needs a mount namespace of its own.
class SmallDisk {
 public:
    SmallDisk() : mounted_(mount("tmpfs", folder_.Path().c_str(), "tmpfs", 0, "size=64k") == 0) {}
    ~SmallDisk() {
        if (mounted_) umount2(folder_.Path().c_str(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    [[nodiscard]] bool Mounted() const { return mounted_; }
    [[nodiscard]] const TempFolder& Folder() const { return folder_; }
    [[nodiscard]] bool MakeReadOnly() const {
        return mount(nullptr, folder_.Path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, "size=64k") == 0;
    }

 private:
    TempFolder folder_;
    bool mounted_;
};

}  // namespace corvane::test

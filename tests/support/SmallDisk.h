#pragma once

#include <sys/mount.h>
#include <string>

/// A file system of its own on a folder, of few bytes. Only root can have one.
class SmallDisk {
public:
    explicit SmallDisk(std::string folder, const std::string& size) : folder_(std::move(folder)) {
        mounted_ = mount("tmpfs", folder_.c_str(), "tmpfs", 0, ("size=" + size).c_str()) == 0;
    }
    ~SmallDisk() {
        if (mounted_) umount2(folder_.c_str(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool IsMounted() const { return mounted_; }
    bool MakeReadOnly() const {
        return mount("tmpfs", folder_.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

private:
    std::string folder_;
    bool mounted_ = false;
};

#include "FilePlace.h"

#include <sys/stat.h>

#include <charconv>
#include <filesystem>
#include <system_error>

namespace qvinspect {

namespace {

namespace fs = std::filesystem;

FilePlace placeOf(const struct stat& status) {
    FilePlace place;
    place.device = status.st_dev;
    place.inode = status.st_ino;
    if (S_ISREG(status.st_mode)) {
        place.kind = FilePlace::Kind::Regular;
    } else if (S_ISBLK(status.st_mode)) {
        place = {FilePlace::Kind::BlockDevice, status.st_rdev, 0, {}};  // a device may have several nodes
    } else if (S_ISFIFO(status.st_mode)) {
        place.kind = FilePlace::Kind::Pipe;
    }
    return place;
}

FilePlace placeOfMissing(const std::string& path) {
    const fs::path end = followLinks(path);
    struct stat folder = {};
    if (stat(folderOf(end).c_str(), &folder) != 0) {
        return {FilePlace::Kind::Missing, 0, 0, end.lexically_normal()};
    }
    return {FilePlace::Kind::Missing, folder.st_dev, folder.st_ino, end.filename()};
}

}  // namespace

std::string folderOf(const std::string& path) {
    const fs::path folder = fs::path(path).parent_path();
    return folder.empty() ? "." : folder;
}

std::string followLinks(const std::string& path) {
    constexpr int kMostLinks = 40;  // as Linux follows
    fs::path end = path;
    for (int links = 0; links < kMostLinks; ++links) {
        std::error_code isNoLink;
        const fs::path target = fs::read_symlink(end, isNoLink);
        if (isNoLink || descriptorNamedBy(end)) {
            return end;
        }
        end = end.parent_path() / target;
    }
    return path;
}

std::optional<int> descriptorNamedBy(const std::string& path) {
    const fs::path link = path;
    std::error_code isMissing;
    const fs::path folder = fs::canonical(folderOf(link), isMissing);
    if (isMissing || folder != fs::canonical("/proc/self/fd", isMissing)) {
        return std::nullopt;
    }
    const std::string name = link.filename();
    int descriptor = 0;
    const auto [stop, error] = std::from_chars(name.data(), name.data() + name.size(), descriptor);
    return error == std::errc() && stop == name.data() + name.size() ? std::optional<int>(descriptor)
                                                                     : std::nullopt;
}

FilePlace placeOf(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 ? placeOf(status) : placeOfMissing(path);
}

FilePlace placeOf(int descriptor) {
    struct stat status = {};
    return fstat(descriptor, &status) == 0 ? placeOf(status) : FilePlace{};
}

bool isSamePlace(const FilePlace& a, const FilePlace& b) {
    return a.kind == b.kind && a.device == b.device && a.inode == b.inode && a.name == b.name;
}

bool canWriteOver(const FilePlace& output, const FilePlace& input) {
    return isSamePlace(output, input) && output.kind != FilePlace::Kind::Other;
}

bool canWriteOverEachOther(const FilePlace& a, const FilePlace& b) {
    return canWriteOver(a, b) && a.kind != FilePlace::Kind::Pipe;
}

}  // namespace qvinspect

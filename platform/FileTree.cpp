#include "platform/FileTree.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

bool isPresent(const fs::path& path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

void giveOwnerAllRights(const fs::path& directory, std::error_code& error) {
    fs::permissions(directory, fs::perms::owner_all, fs::perm_options::add, error);
}

void copyEntry(const fs::path& source, const fs::path& target) {
    const auto status = fs::symlink_status(source);
    if (fs::is_directory(status)) {
        std::error_code error;
        fs::create_directory(target, source);
        giveOwnerAllRights(target, error);
    } else {
        // Reports an error for sockets, devices and FIFOs.
        fs::copy(source, target, fs::copy_options::copy_symlinks);
    }
}

void makeDirectoriesWritable(const fs::path& item) {
    std::error_code error;
    if (!fs::is_directory(fs::symlink_status(item, error))) {
        return;
    }
    giveOwnerAllRights(item, error);
    for (fs::recursive_directory_iterator entry(item, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code ignored; // another directory may still be removable
        if (fs::is_directory(entry->symlink_status(ignored))) {
            giveOwnerAllRights(*entry, ignored);
        }
    }
}

} // namespace

std::uintmax_t diskSize(const fs::path& item) {
    const auto sizeOf = [](const fs::path& path) {
        constexpr std::uintmax_t kBlock = 4096;
        std::error_code error;
        const bool isFile = fs::is_regular_file(fs::symlink_status(path, error));
        const auto size = isFile ? fs::file_size(path, error) : 0;
        return kBlock + (error ? 0 : size);
    };
    std::uintmax_t total = sizeOf(item);
    std::error_code error;
    for (fs::recursive_directory_iterator entry(item, error), end; !error && entry != end;
         entry.increment(error)) {
        total += sizeOf(*entry);
    }
    return total;
}

std::error_code copyTree(const fs::path& source, const fs::path& target) {
    if (isPresent(target)) {
        return std::make_error_code(std::errc::file_exists);
    }
    try {
        copyEntry(source, target);
        if (fs::is_directory(fs::symlink_status(source))) {
            for (const auto& entry : fs::recursive_directory_iterator(source)) {
                copyEntry(entry, target / entry.path().lexically_relative(source));
            }
        }
        return {};
    } catch (const fs::filesystem_error& failure) {
        removeTree(target);
        return failure.code();
    }
}

std::error_code removeTree(const fs::path& item) {
    std::error_code error;
    fs::remove_all(item, error);
    if (error) {
        makeDirectoriesWritable(item);
        fs::remove_all(item, error);
    }
    return error;
}

} // namespace platform

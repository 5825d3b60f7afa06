// SPDX-License-Identifier: Apache-2.0

#include "orlixkit/posix/StateFolder.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

#include <fmt/format.h>
#include <sys/stat.h>

#include "orlixkit/ports/UserDefaults.h"

namespace orlix {

namespace {

[[noreturn]] void refuse(const std::filesystem::path& path, const std::string& why) {
  throw StoreException(fmt::format("state: {} {}", path.string(), why));
}

/// Status of the path itself, not of a link's target. Absent when the path does not exist.
std::optional<struct stat> statusOf(const std::filesystem::path& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) == 0) {
    return status;
  }
  if (errno != ENOENT) {
    refuse(path, fmt::format("cannot be looked at: {}. Choose another state folder.",
                             std::strerror(errno)));
  }
  return std::nullopt;
}

void requirePrivate(const std::filesystem::path& path, const struct stat& status) {
  if (S_ISLNK(status.st_mode)) {
    refuse(path, "is a symbolic link. Put what it leads to in its place.");
  }
  if (status.st_uid != ::geteuid()) {
    refuse(path,
           fmt::format("belongs to the user {}, not to {}, the user that runs this application. "
                       "Give it to that user, or choose another state folder.",
                       status.st_uid, ::geteuid()));
  }
  if ((status.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
    refuse(path, fmt::format("can be written by others (mode {:04o}). If its content can be "
                             "trusted, take that right away (chmod go-w).",
                             status.st_mode & 07777U));
  }
}

/// Without a trailing "/" or "/.", with which lstat would follow a symbolic link.
std::filesystem::path named(std::filesystem::path folder) {
  while (folder.has_relative_path() && (!folder.has_filename() || folder.filename() == ".")) {
    folder = folder.parent_path();
  }
  return folder.empty() ? "." : folder;
}

void make(const std::filesystem::path& folder) {
  const std::filesystem::path parent = folder.has_parent_path() ? folder.parent_path() : ".";
  std::error_code problem;
  std::filesystem::create_directories(parent, problem);
  // Another process may have created it meanwhile.
  if (!problem && ::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
    problem = std::error_code(errno, std::generic_category());
  }
  if (problem) {
    refuse(folder, fmt::format("cannot be made: {}. Make a folder that this user can write, or "
                               "choose another state folder.",
                               problem.message()));
  }
  syncFolder(parent);
}

}  // namespace

void requirePrivateFolder(const std::filesystem::path& folder) {
  const std::filesystem::path path = named(folder);
  if (!statusOf(path)) {
    make(path);
  }
  const auto status = statusOf(path);
  if (!status) {
    refuse(path, "has been removed while it was opened.");
  }
  requirePrivate(path, *status);
  if (!S_ISDIR(status->st_mode)) {
    refuse(path, "is no folder. Choose another state folder.");
  }
}

bool existsAndIsPrivate(const std::filesystem::path& file) {
  const auto status = statusOf(file);
  if (!status) {
    return false;
  }
  requirePrivate(file, *status);
  if (!S_ISREG(status->st_mode)) {
    refuse(file, "is no regular file. Move it away.");
  }
  return true;
}

void syncFolder(const std::filesystem::path& folder) {
  const int opened = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (opened >= 0) {
    ::fsync(opened);
    ::close(opened);
  }
}

}  // namespace orlix

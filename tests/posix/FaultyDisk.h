// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sqlite3.h>

namespace orlix {

/// Replaces the disk below SQLite while this object lives: counts the flushes, and fails on
/// request. Applies to files opened meanwhile. One at a time.
class FaultyDisk {
 public:
  enum class Fault { none, full, unreadable, readOnly };

  FaultyDisk() {
    fault = Fault::none;
    syncs = 0;
    disk_ = *real();
    disk_.zName = "faulty";
    disk_.xOpen = open;
    sqlite3_vfs_register(&disk_, 1);
  }
  ~FaultyDisk() { sqlite3_vfs_unregister(&disk_); }
  FaultyDisk(const FaultyDisk&) = delete;
  FaultyDisk& operator=(const FaultyDisk&) = delete;

  static inline Fault fault = Fault::none;
  static inline int syncs = 0;

 private:
  static sqlite3_vfs* real() {
    static sqlite3_vfs* const found = sqlite3_vfs_find(nullptr);
    return found;
  }
  static int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* granted) {
    if (fault == Fault::readOnly && (flags & SQLITE_OPEN_MAIN_DB) != 0) {
      flags = (flags & ~SQLITE_OPEN_READWRITE) | SQLITE_OPEN_READONLY;
    }
    const int result = real()->xOpen(real(), name, file, flags, granted);
    if (result == SQLITE_OK) {
      original_ = *file->pMethods;
      sqlite3_io_methods& own = (flags & SQLITE_OPEN_MAIN_DB) != 0 ? ofDatabase_ : ofOthers_;
      own = original_;
      own.xWrite = write;
      own.xRead = read;
      own.xSync = sync;
      file->pMethods = &own;
    }
    return result;
  }
  static int write(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset) {
    return fault == Fault::full ? SQLITE_FULL : original_.xWrite(file, data, size, offset);
  }
  static int read(sqlite3_file* file, void* data, int size, sqlite3_int64 offset) {
    return fault == Fault::unreadable ? SQLITE_IOERR_READ
                                      : original_.xRead(file, data, size, offset);
  }
  static int sync(sqlite3_file* file, int flags) {
    ++syncs;
    return original_.xSync(file, flags);
  }

  static inline sqlite3_io_methods original_{};  // all kinds of files read, write and sync alike
  static inline sqlite3_io_methods ofDatabase_{};
  static inline sqlite3_io_methods ofOthers_{};
  sqlite3_vfs disk_{};
};

}  // namespace orlix

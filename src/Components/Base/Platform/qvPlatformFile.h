// Files and directories by native path or handle. A native path is terminated bytes as the system takes them
// (see qvPlatformPath.h); an empty one names nothing, and every call on it gives `ErrorKind::notFound`.
//
// Every operation returns the system's number, 0 for success, retries what a signal interrupted, and
// announces itself to `beforeCall` under the name that stands in square brackets; of several names, under
// those of the steps that this system needs. Results are stored on success only, except for counts, which
// always tell how many bytes went.
//
// On Windows a file that is opened here may be read, written, renamed and deleted by others meanwhile, as
// near to POSIX systems as that one comes: a name that was deleted while its file is open may stay taken
// until the last handle closes. Of the permission bits there is one, the read-only mark: no bit for writing
// is set where it stands, and a file without the owner's bit for writing gets it. Directories have all bits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace qvPlatform {

// ---- Handles -------------------------------------------------------------------------------------------

/// An open file. Never one of the three standard streams, and never inherited by a started program.
using FileHandle = std::intptr_t;
inline constexpr FileHandle noFile = -1;

/// What `openFile` is to do; any sum of these with at least `openRead` or `openWrite`.
enum OpenFlag : unsigned {
  openRead = 1,
  openWrite = 2,
  openAppend = 4,     ///< Every write goes to the end of the file.
  openCreate = 8,     ///< Make the file where there is none.
  openExclusive = 16, ///< With `openCreate`: fail with `exists` where the name is taken, by a link too.
  openTruncate = 32,  ///< Empty the file.
  openPrivate = 64,   ///< A file that is made here is for its owner only, where files have permission bits.
};

/// Opens the file [open]. A directory gives `isDirectory`, whatever the flags are.
[[nodiscard]] int openFile(const char* path, unsigned flags, FileHandle* file) noexcept;
/// Makes an empty file in `directory` under a free name that the system chooses: the first three characters
/// of `prefix`, a hexadecimal number and ".tmp" [open]. `tooLong` where the system chooses no names, or none
/// in so long a directory.
[[nodiscard]] int makeNamedBySystem(const char* directory, const char* prefix, std::string* made);
/// Closes the handle, and then reports what went wrong on the way [close]. The handle is gone in every case.
int closeFile(FileHandle file) noexcept;
/// Reads until `size` bytes came or the file ended, and adds nothing to `*count` (may be null) but what came
/// [read]. Fewer than `size` with 0 returned means the end of the file.
[[nodiscard]] int readFile(FileHandle file, void* buffer, std::size_t size, std::size_t* count) noexcept;
/// Writes all `size` bytes, or tells in `*count` (may be null) how many went before it failed [write].
[[nodiscard]] int writeFile(FileHandle file, const void* buffer, std::size_t size,
                            std::size_t* count) noexcept;

enum class SeekFrom { start, current, end };
/// Moves the file position and stores the new one, counted from the start, in `*position` (may be null)
/// [seek].
[[nodiscard]] int seekFile(FileHandle file, std::int64_t offset, SeekFrom from,
                           std::int64_t* position) noexcept;
/// Cuts or extends the file to `size` bytes; the position stays [truncate].
[[nodiscard]] int truncateFile(FileHandle file, std::int64_t size) noexcept;
/// Returns when the file's bytes are on the device, or as far as the system can tell [sync].
[[nodiscard]] int syncFile(FileHandle file) noexcept;
/// The same for the file of that name [open] [sync] [close].
[[nodiscard]] int syncFileAt(const char* path) noexcept;
/// The same for the entries of a directory, so that a rename or a new name outlives a loss of power [sync].
[[nodiscard]] int syncDirectory(const char* path) noexcept;

// ---- C streams -----------------------------------------------------------------------------------------

/// Opens a C stream as `fopen` reads `mode` ("r", "w" or "a", then any of "b", "t", "+", "x"; what else
/// stands there is passed over), by way of `openFile` [open]. Bytes stay what they are, but for "t" where the
/// runtime has a text form, with the line ends of Windows.
[[nodiscard]] int openStream(const char* path, const char* mode, std::FILE** stream) noexcept;
/// Makes a C stream of a handle, which then belongs to the stream; on failure it still belongs to the caller
/// [stream].
[[nodiscard]] int streamOfFile(FileHandle file, const char* mode, std::FILE** stream) noexcept;
/// Closes the stream, and then reports what went wrong, lost buffered bytes included [close]. It is gone in
/// every case.
int closeStream(std::FILE* stream) noexcept;
/// Reads up to `size` bytes [read]. Fewer with 0 returned means the end of the file; `*atEnd` (may be null)
/// is the stream's own mark, which is set only when a read ran into the end.
[[nodiscard]] int readStream(std::FILE* stream, void* buffer, std::size_t size, std::size_t* count,
                             bool* atEnd) noexcept;
/// Writes through the stream's buffer [write].
[[nodiscard]] int writeStream(std::FILE* stream, const void* buffer, std::size_t size,
                              std::size_t* count) noexcept;
/// Hands the stream's buffer to the system [write].
[[nodiscard]] int flushStream(std::FILE* stream) noexcept;
/// Moves the position, in 64 bits everywhere; `position` as for `seekFile` [seek].
[[nodiscard]] int seekStream(std::FILE* stream, std::int64_t offset, SeekFrom from,
                             std::int64_t* position) noexcept;
/// Flushes, and returns when the bytes are on the device [write] [sync].
[[nodiscard]] int syncStream(std::FILE* stream) noexcept;

// ---- What a name stands for ----------------------------------------------------------------------------

enum class FileKind { file, directory, link, other };

struct FileInfo {
  FileKind kind = FileKind::other;
  std::int64_t size = 0;                ///< Bytes.
  std::int64_t modified = 0;            ///< Last change of the content, seconds since 1970 UTC.
  std::int32_t modifiedNanoseconds = 0; ///< The part of `modified` below a second.
  std::int64_t changed = 0; ///< Last change of content or attributes, on Windows the creation; as `modified`.
  unsigned permissions = 0; ///< The nine bits `rwxrwxrwx`.
  std::uint64_t volume = 0; ///< With `serial`: equal for two names of one file, and only then.
  std::uint64_t serial = 0;

  [[nodiscard]] bool isSameFile(const FileInfo& other) const noexcept {
    return volume == other.volume && serial == other.serial;
  }
};

/// What `path` leads to; a link is followed, so the kind is never `link` [stat].
[[nodiscard]] int queryFile(const char* path, FileInfo* info) noexcept;
/// What `path` itself is; a link is told as a link [stat].
[[nodiscard]] int queryLink(const char* path, FileInfo* info) noexcept;
[[nodiscard]] int queryHandle(FileHandle file, FileInfo* info) noexcept;

/// An account as the system names it. `domain` is the machine's name where the account belongs to the
/// machine. An identity without an account has its number as the account.
struct AccountName {
  std::string domain;
  std::string account;
};
/// Who owns what `path` leads to [owner]. Where the system itself looks accounts up, as Windows does, an
/// identity without one is a failure.
[[nodiscard]] int queryOwner(const char* path, AccountName* owner);
/// The group of what `path` leads to [owner].
[[nodiscard]] int queryGroup(const char* path, AccountName* group);

/// Rights, with the values that `access` calls know; a sum asks for all of them.
enum AccessRight : int { accessExists = 0, accessExecute = 1, accessWrite = 2, accessRead = 4 };
/// 0 where this process has the rights on what `path` leads to [access].
[[nodiscard]] int checkAccess(const char* path, int rights) noexcept;

// ---- Changing names and attributes ---------------------------------------------------------------------

/// Deletes a file's name; a link itself and never what it leads to [unlink]. A directory is refused.
[[nodiscard]] int deleteFile(const char* path) noexcept;
/// Gives a file or directory a new name on the same file system. A target of that name is never replaced: it
/// gives `exists`. A link is renamed itself [rename]; where the file system has no such form of renaming
/// [stat] [link] [unlink], or the name is first reserved [open] [mkdir]. The same path twice changes nothing
/// [stat].
[[nodiscard]] int renameFile(const char* from, const char* to) noexcept;
/// Makes `to` a link that leads where the link `from` says. An existing target gives `exists` [readlink]
/// [symlink].
[[nodiscard]] int copyLink(const char* from, const char* to) noexcept;
/// Copies a file's bytes, permission bits and modification time, sharing blocks where the file system can
/// [open] [stat] [clone] [reserve] [copy] [read] [write] [seek] [truncate] [attributes] [close] [unlink].
/// Without `overwrite` an existing target, a dangling link too, gives `exists` and is never opened; with it
/// the target keeps its identity. A target that the copy made and could not finish is deleted again; one that
/// was there before is left untouched where the space does not suffice, but is spoilt where the device fails
/// on the way.
[[nodiscard]] int copyFile(const char* from, const char* to, bool overwrite) noexcept;
/// Sets the nine permission bits of what `path` leads to [attributes].
[[nodiscard]] int setPermissions(const char* path, unsigned permissions) noexcept;
/// Gives `to` the permission bits of `from`, and its owner, group and list of rights as far as the system has
/// and allows them [stat] [attributes].
[[nodiscard]] int copyAttributes(const char* from, const char* to) noexcept;
/// Sets the modification time, seconds since 1970 UTC [attributes].
[[nodiscard]] int setModified(const char* path, std::int64_t seconds, std::int32_t nanoseconds) noexcept;

// ---- Directories and volumes ---------------------------------------------------------------------------

/// Makes one level of directory [mkdir].
[[nodiscard]] int makeDirectory(const char* path) noexcept;
/// Removes an empty directory [rmdir]; one with entries gives `notEmpty`.
[[nodiscard]] int removeDirectory(const char* path) noexcept;

/// The entries of one directory in the system's order, "." and ".." included where the system lists them. An
/// entry that comes or goes meanwhile may be listed or not. Not thread-safe.
class Directory {
public:
  Directory() noexcept = default;
  ~Directory() { close(); }
  Directory(const Directory&) = delete;
  Directory& operator=(const Directory&) = delete;

  /// Starts from the first entry; closes what was open [opendir] [open].
  [[nodiscard]] int open(const char* path) noexcept;
  void close() noexcept;
  /// Goes to the next entry [readdir]. `*name` is null after the last one, else valid until the next call.
  [[nodiscard]] int next(const char** name) noexcept;
  /// The kind of the entry that `next` gave; a link is told as a link, `other` where it vanished meanwhile.
  [[nodiscard]] FileKind kind() const noexcept { return kind_; }
  /// True where the entry is a directory or a link that leads to one.
  [[nodiscard]] bool leadsToDirectory() const noexcept;

private:
  void* stream_ = nullptr;
  const char* name_ = nullptr;
  FileKind kind_ = FileKind::other;
};

struct VolumeSpace {
  std::uint64_t total = 0;     ///< Bytes of the file system.
  std::uint64_t available = 0; ///< Bytes that this user may still take.
};
/// The room on the file system that `path` lies on [volume].
[[nodiscard]] int queryVolumeSpace(const char* path, VolumeSpace* space) noexcept;
/// Whether `path` lies on a file system that another machine serves [volume].
[[nodiscard]] int queryRemote(const char* path, bool* remote) noexcept;

} // namespace qvPlatform

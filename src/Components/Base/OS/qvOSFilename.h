// A wide path in canonical form, split into its parts on demand. Pure string work with the rules of Windows
// paths on every platform, but for the three operations on the process that the class names. How such a path
// reaches the system elsewhere stands in qvOSNativePath.h.
#pragma once

#include "Base/Containers/qvVector.h"
#include "Base/String/qvStringCString.h"
#include "Base/String/qvStringIString.h"
#include "Base/qvBase.h"

namespace qvOS {

class FilenameParts;

/// A path, canonical for the separator with which it was assigned: one kind of separator, none doubled but a
/// leading pair, none at the end but a root's, and no "\..\" that could be resolved.
///
/// No operation checks whether such a file exists, and none fails on a bad string.
/// The parts are a cache behind `const`: two threads must not ask one object for parts at the same time.
class QV_BASE_API Filename {
public:
  Filename();
  /// Copies the path as it stands. The separator becomes the platform's, whatever the other's is; an
  /// assignment carries it over.
  Filename(const Filename& other);
  Filename(const qvString::IString& name);
  /// A path with `sep` as its separator, such as '/'.
  Filename(const qvString::IString& name, qv::WChar sep);
  /// From the default encoding.
  Filename(const qvString::CString& name, char sep);
  Filename(const char* name, char sep);
  /// The directory `a` and the name `b` joined with the platform's separator. A separator of the other kind
  /// in either stays. Nothing goes between a bare drive such as "C:" and the name.
  Filename(const qvString::IString& a, const qvString::IString& b);
  Filename(const Filename& a, const Filename& b);
  virtual ~Filename();

  /// Takes the path and the separator.
  Filename& operator=(const Filename& other);
  /// Takes the path in canonical form for the separator that this value has.
  Filename& operator=(const qvString::IString& name);

  /// The canonical path.
  [[nodiscard]] const qvString::IString& name() const { return path_; }
  /// The drive ("C:") or the server and share ("\\server\share"); empty where there is neither. The
  /// references that this and the next five return are valid until the next assignment.
  [[nodiscard]] const qvString::IString& prefix() const;
  /// All before the last separator, the prefix included; a root keeps its separator.
  [[nodiscard]] const qvString::IString& dirname() const;
  /// What follows the last separator or the prefix.
  [[nodiscard]] const qvString::IString& basename() const;
  /// `basename` up to its last dot.
  [[nodiscard]] const qvString::IString& baseTrunk() const;
  /// `basename` after its last dot, so that ".profile" has the suffix "profile" and no trunk.
  [[nodiscard]] const qvString::IString& baseSuffix() const;
  /// The five above, in that order.
  [[nodiscard]] qv::vector<qvString::IString> components() const;

  /// True for "\\..." and "C:\...". A single leading backslash is not enough, and the test is on the
  /// backslash whatever the separator is.
  [[nodiscard]] bool isAbsolute() const;

  /// The platform's separator, a backslash everywhere.
  [[nodiscard]] static qv::WChar separator();
  /// Between the paths of a list: a semicolon.
  [[nodiscard]] static qv::WChar pathSeparator();
  /// The length that portable paths stay below: 260.
  [[nodiscard]] static int maxLength();

  [[nodiscard]] static qvString::IString join(const qvString::IString& a, const qvString::IString& b);
  [[nodiscard]] static qvString::IString join(const qvString::IString& a, const qvString::IString& b,
                                              const qvString::IString& c);
  [[nodiscard]] static qvString::IString join(const qvString::IString& a, const qvString::IString& b,
                                              const qvString::IString& c, const qvString::IString& d);

  /// Makes this the current directory of the whole process; true on success.
  bool setCwd() const;
  /// Makes a directory of this name, one level only; true on success, false where one is there already.
  bool makeDir() const;
  /// Assigns the current directory, absolute and with the platform's separator. Empty where it cannot be told
  /// or has 260 characters or more.
  Filename& getCwd();

protected:
  static void removeTrailingSeparators(qvString::IString& text, qv::WChar sep);
  static void removeDuplicateSeparators(qvString::IString& text, qv::WChar sep);
  static void removeSlashDotDotSlash(qvString::IString& text, qv::WChar sep);
  static void canonicalize(const qvString::IString& in, qv::WChar sep, qvString::IString& out);
  void assign(const qvString::IString& name);
  void assign(const qvString::IString& a, const qvString::IString& b);

private:
  const FilenameParts& split() const;
  void deleteImpl();

  qv::WChar separator_;
  qvString::IString path_;
  mutable FilenameParts* parts_ = nullptr; // null until first asked for
};

static_assert(sizeof(Filename) == 5 * sizeof(void*));

/// True where Windows keeps the name for a device, with any suffix and in any case: CON, PRN, AUX, NUL, and
/// COM or LPT with a digit from 1 to 9.
[[nodiscard]] QV_BASE_API bool isWindowsReservedDeviceName(const Filename& name);

} // namespace qvOS

// The same for callers without classes. Arguments and results are in the default encoding. The caller's
// buffer takes the result and a terminator; its size is not known here, so it must have the room.
extern "C" {
QV_BASE_API void qvOS_FilenamePrefix(const char* path, char* out);
QV_BASE_API void qvOS_FilenameDirname(const char* path, char* out);
QV_BASE_API void qvOS_FilenameBasename(const char* path, char* out);
QV_BASE_API void qvOS_FilenameBaseTrunk(const char* path, char* out);
QV_BASE_API void qvOS_FilenameBaseSuffix(const char* path, char* out);
QV_BASE_API void qvOS_FilenameJoin(const char* a, const char* b, char* out);
/// As `Filename::makeDir`.
QV_BASE_API bool qvOS_FilenameMakeDir(const char* path);
}

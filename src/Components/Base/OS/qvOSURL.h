// A locator, or a plain path, broken into its parts. Pure string work on every platform.
#pragma once

#include "Base/OS/qvOSFilename.h"
#include "Base/String/qvStringCString.h"
#include "Base/qvBase.h"

#include <cstddef>
#include <string_view>

namespace qvOS {

/// The parts of a text such as "proto://host:port/path?query#ref", or of a plain path, which counts as one of
/// the protocol "file"; so does "C://x", since one letter is a drive. Never changes after construction but by
/// assignment.
///
/// No string is refused: nonsense gives empty fields, and `hasIllegalCharacters` is the one check. The text
/// is taken as plain and never decoded, so a "%20" in it is encoded once more.
///
/// An `encoded` of true selects the percent-encoded form, false the form in which it was given.
class URL {
public:
  QV_BASE_API URL(const qvString::CString& text);
  /// The copy's file names have the platform's separator, where an assignment carries the separators over.
  QV_BASE_API URL(const URL& other);
  QV_BASE_API URL& operator=(const URL& other);
  QV_BASE_API ~URL();

  /// Lower case; "file" for a plain path.
  [[nodiscard]] QV_BASE_API qvString::CString getProtocol() const;
  /// Host and port as given, in lower case. A user name is not told from a host.
  [[nodiscard]] QV_BASE_API qvString::CString getAuthority() const;
  [[nodiscard]] QV_BASE_API qvString::CString getHost() const;
  /// The port as given, 0 where it is no number; else 443 for "https", 23 for "telnet", 21 for "ftp" and 80
  /// for all others.
  [[nodiscard]] QV_BASE_API int getPort() const;
  [[nodiscard]] QV_BASE_API qvString::CString getPath(bool encoded) const;
  /// A query of exactly one character at the very end of the text is dropped.
  [[nodiscard]] QV_BASE_API qvString::CString getQuery(bool encoded) const;
  [[nodiscard]] QV_BASE_API qvString::CString getRef(bool encoded) const;

  /// The platform's separator for "file", '/' for all others.
  [[nodiscard]] QV_BASE_API char getSeparator() const;
  /// Everything: protocol, authority, path, query and reference.
  [[nodiscard]] QV_BASE_API qvString::CString getFullURL(bool encoded) const;
  /// The path alone for "file", with its separator at the end if the plain path had one; for all others
  /// protocol, authority and path.
  [[nodiscard]] QV_BASE_API qvString::CString getName(bool encoded) const;
  /// The path with one kind of separator and none doubled.
  [[nodiscard]] QV_BASE_API qvString::CString getCanonicalPath(bool encoded) const;
  /// As `getName`, of the directory, with a separator at the end.
  [[nodiscard]] QV_BASE_API qvString::CString getDirname(bool encoded) const;
  /// The parts of the path as a file name, in UTF-8.
  [[nodiscard]] QV_BASE_API qvString::CString dirname(bool encoded) const;
  [[nodiscard]] QV_BASE_API qvString::CString basename(bool encoded) const;
  [[nodiscard]] QV_BASE_API qvString::CString baseTrunk(bool encoded) const;
  [[nodiscard]] QV_BASE_API qvString::CString baseSuffix(bool encoded) const;

  /// True where both name the same; the case of letters counts unless this URL is a "file".
  [[nodiscard]] QV_BASE_API bool comparePath(const URL& other) const;
  [[nodiscard]] QV_BASE_API bool isLocalFile() const;
  [[nodiscard]] QV_BASE_API bool IsIMan() const;
  /// Whether the path as a file name is absolute.
  [[nodiscard]] QV_BASE_API bool isAbsolute() const;
  /// The same for "file"; true for all others.
  [[nodiscard]] QV_BASE_API bool isAbsolutePath() const;

  /// Looks at the encoded path, the host and the protocol; not at authority, query and reference.
  [[nodiscard]] QV_BASE_API bool hasIllegalCharacters() const;
  /// Looks at a text as at a path, in which separators, colons and brackets are legal.
  [[nodiscard]] QV_BASE_API static bool hasIllegalCharacters(const qvString::CString& text);

  /// Blank, '<', '>' and '%' as '%' and two hexadecimal digits; all else as it stands.
  [[nodiscard]] QV_BASE_API static qvString::CString encode(const qvString::CString& text);
  /// Undoes any '%' with two digits. A character that is no digit counts as 0; an escape that the end cuts
  /// off is dropped.
  [[nodiscard]] QV_BASE_API static qvString::CString decode(const qvString::CString& text);
  [[nodiscard]] QV_BASE_API static qvString::CString decode(const char* text);
  /// By way of UTF-8.
  [[nodiscard]] QV_BASE_API static qvString::CString decode(const qvString::IString& text);
  [[nodiscard]] QV_BASE_API static qvString::CString removeDuplicateSeparators(const qvString::CString& text,
                                                                               char sep);
  [[nodiscard]] QV_BASE_API static qvString::CString removeTrailingSeparators(const qvString::CString& text,
                                                                              char sep);

protected:
  QV_BASE_API static qvString::CString canonicalize(const qvString::CString& text, char sep);

private:
  struct _info {
    qvString::CString path;
    qvString::CString query;
    qvString::CString ref;
  };

  void encodeAllInfo();
  static char asciiHexit2decimalHexit(char digit);
  static char decimalHexit2asciiHexit(char value);

  void parsePlainPath(const qvString::CString& text);
  void parseFile(const qvString::CString& text, std::size_t start);
  void parseRemote(const qvString::CString& locator, std::size_t start);
  void parseAuthority();
  void parseQueryAndRef(std::string_view text, std::size_t mark);
  void setFilePath(std::string_view path);
  void setRemotePath(std::string_view path);
  qvString::CString origin() const;
  const _info& info(bool encoded) const { return encoded ? encodedInfo_ : plainInfo_; }
  const Filename& file(bool encoded) const { return encoded ? encodedFile_ : plainFile_; }

  _info encodedInfo_;
  _info plainInfo_;
  qvString::CString host_;
  qvString::CString authority_;
  qvString::CString protocol_;
  int port_ = 80;
  bool endsWithSeparator_ = false;
  Filename encodedFile_;
  Filename plainFile_;
};

} // namespace qvOS

extern "C" {
/// `URL::isAbsolutePath` of the text.
QV_BASE_API bool isAbsolutePath(const char* text);
/// `URL::isLocalFile` of the text.
QV_BASE_API bool isLocalFile(const char* text);
}

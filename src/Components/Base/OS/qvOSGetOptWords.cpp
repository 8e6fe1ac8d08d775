#include "Base/OS/qvOSGetOptWords.h"

#include "Base/OS/qvOSNativePath.h"
#include "Base/String/qvStringCString.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace qvOS {

namespace {

// Whether a native word is the same text however it is read; most are, and then need no detour.
bool isPlain(std::string_view word) noexcept {
  return std::all_of(word.begin(), word.end(), [](char byte) {
    return static_cast<signed char>(byte) >= 0 && byte != '/' && byte != '\\' && byte != ':';
  });
}

} // namespace

void GetOptWords::clear() noexcept {
  text_.clear();
  starts_.clear();
  next_ = 0;
}

void GetOptWords::add(const qv::WChar* word) {
  starts_.push_back(text_.size());
  text_.insert(text_.end(), word, word + std::char_traits<qv::WChar>::length(word) + 1);
}

void GetOptWords::addNative(const char* word) {
  const std::size_t size = std::strlen(word);
  if (!isPlain({word, size})) return add(fromNativePath(qvString::CString(word)).asWChar());
  starts_.push_back(text_.size());
  text_.insert(text_.end(), word, word + size + 1);
}

GetOptWords::Word GetOptWords::at(std::size_t index) const noexcept {
  const std::size_t end = index + 1 < starts_.size() ? starts_[index + 1] : text_.size();
  return {text_.data() + starts_[index], end - starts_[index] - 1};
}

GetOptWords::Word GetOptWords::front() const noexcept { return at(next_); }

GetOptWords::Word GetOptWords::take() noexcept { return at(next_++); }

void GetOptWords::copyTo(qv::vector<qvString::IString>& words) const {
  words.clear();
  for (std::size_t i = next_; i < starts_.size(); ++i) words.emplace_back().assign(at(i).data());
}

} // namespace qvOS

#include "Base/String/qvStringTableKey.h"

#include "Base/String/qvStringCharacter.h"

#include <algorithm>
#include <string_view>

namespace qvStringTable {

using qvString::CString;

namespace {

struct Parts {
  bool areTwo = false;
  std::string_view setID;
  std::string_view rest;
};

/// The parts that `qvUtil::split` makes of a key, without copies. It adds no element for a separator at the
/// very end.
Parts partsOf(const CString& key) {
  std::string_view text = key.view();
  if (text.ends_with('.')) text.remove_suffix(1);
  const std::size_t stop = text.find('.');
  if (stop == std::string_view::npos || text.find('.', stop + 1) != std::string_view::npos)
    return {false, {}, key.view()};
  return {true, text.substr(0, stop), text.substr(stop + 1)};
}

bool isKeyCharacter(char c) { return qvString::isAlnum(c) || c == '.' || c == '_'; }

} // namespace

bool Key::isValidKeyString(const CString& text) {
  const Parts parts = partsOf(text);
  const std::string_view all = text.view();
  return parts.areTwo && !parts.setID.empty() && !parts.rest.empty() &&
         std::all_of(all.begin(), all.end(), isKeyCharacter);
}

bool Key::getSubParts(CString& setID, CString& rest) const {
  const Parts parts = partsOf(text_);
  // From copies, since either result may be the text itself.
  CString first(parts.setID), second(parts.rest);
  setID = std::move(first);
  rest = std::move(second);
  return parts.areTwo;
}

int Key::compareSetID(const Key& other) const {
  return partsOf(text_).setID.compare(partsOf(other.text_).setID);
}

} // namespace qvStringTable

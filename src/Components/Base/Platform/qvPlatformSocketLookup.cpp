// Hosts and their addresses, by the look-up that the systems share.
#include "Base/Platform/qvPlatformCall.h"
#include "Base/Platform/qvPlatformSocket.h"

// The system's look-up, and what differs in how it fails.
#if defined(_WIN32)
#include "Base/Platform/Windows/qvPlatformLookup.h"
#else
#include "Base/Platform/Posix/qvPlatformLookup.h"
#endif

#include <memory>

namespace qvPlatform {

namespace {

using Addresses = std::unique_ptr<addrinfo, void (*)(addrinfo*)>;

// `errorText` (may be null) receives the text of a failure.
int findAddresses(const char* host, const char* service, const addrinfo& hints, Addresses& list,
                  std::string* errorText) {
  addrinfo* found = nullptr;
  const int refused = beforeCall("getaddrinfo");
  const int result = refused ? failedLookup(refused) : ::getaddrinfo(host, service, &hints, &found);
  if (result && errorText) *errorText = lookupText(result);
  list.reset(result ? nullptr : found);
  return result;
}

} // namespace

Lookup lookUpHost(const char* host, HostForm form, std::string* text) {
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_STREAM;
  Addresses list(nullptr, freeAddressList);
  int result = findAddresses(host, nullptr, hints, list, text);
  const int flags = form == HostForm::name ? NI_NAMEREQD : NI_NUMERICHOST;
  for (const addrinfo* entry = list.get(); entry; entry = entry->ai_next) {
    char buffer[NI_MAXHOST];
    result = ::getnameinfo(entry->ai_addr, static_cast<socklen_t>(entry->ai_addrlen), buffer, sizeof buffer,
                           nullptr, 0, flags);
    *text = result ? lookupText(result) : buffer;
    if (!result && buffer[0]) return Lookup::found;
  }
  return result == noSuchHost ? Lookup::unknownHost : Lookup::failed;
}

addrinfo* addressList(const char* host, int port, bool passive, std::string* error) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = passive ? AI_PASSIVE : 0;
  Addresses list(nullptr, freeAddressList);
  (void)findAddresses(host, std::to_string(port).c_str(), hints, list, error);
  return list.release();
}

void freeAddressList(addrinfo* list) noexcept {
  if (list) ::freeaddrinfo(list);
}

const addrinfo* nextAddress(const addrinfo* entry) noexcept { return entry->ai_next; }

} // namespace qvPlatform

#include "Base/TCP/qvTCPAddress.h"

#include "Base/Platform/qvPlatformProcess.h"
#include "Base/Platform/qvPlatformSocket.h"
#include "Base/String/qvStringCString.h"
#include "Base/TCP/qvTCPSocketImpl.h"

#include <cstdlib>
#include <string>

namespace qvTCP {

using qvPlatform::HostForm;
using qvPlatform::Lookup;
using qvString::IString;
using qvUtil::Error;

static_assert(sizeof(Address) == 2 * sizeof(IString) + 2 * sizeof(void*));

namespace {

constexpr char localhostText[] = "127.0.0.1"; // also for addresses that are made before `Address::localhost`

// The place of the only colon; `npos` where there is none or more than one.
unsigned int onlyColon(const IString& text) {
  const unsigned int colon = text.find(QV_W(':'));
  return colon != IString::npos && text.find(QV_W(':'), colon + 1) == IString::npos ? colon : IString::npos;
}

// As `atoi` reads it, which leaves open what a number past its range gives; `strtoll` does not.
int portOf(const IString& text) { return static_cast<int>(std::strtoll(text.asUTF8(), nullptr, 10)); }

} // namespace

const IString Address::localhost(localhostText, qvString::UTF8Encoding);
const IString Address::localhostV6("::1", qvString::UTF8Encoding);
IString Address::localhost_name;

Address::Address(const IString& text, int port) { parse(text, port); }

Address::Address(const IString& text) {
  if (text.isEmpty()) throw Error(2, "qvTCP::Address: empty address or incorectly formed address");
  const unsigned int colon = onlyColon(text);
  if (colon == IString::npos)
    parse(text, -1);
  else
    parse(text.substr(0, colon), portOf(text.substr(colon + 1)));
}

void Address::parse(const IString& text, int port) {
  port_ = port;
  localLoopback_ = false;
  startSockets();
  if (text.isEmpty()) throw Error(2, "qvTCP::Address: empty address specified");
  const std::string host = IString(text).asUTF8(); // threads may share `text`, whose cache this would fill
  numbersAndDotsCached_ = qvPlatform::isDottedNumber(host.c_str());
  nameCached_ = !numbersAndDotsCached_;
  (nameCached_ ? name_ : numbersAndDots_) = text;
  if (numbersAndDotsCached_) localLoopback_ = host == localhostText;
}

bool Address::operator==(const Address& other) const {
  if (port_ != other.port_) return false;
  if (numbersAndDotsCached_ && other.numbersAndDotsCached_) return numbersAndDots_ == other.numbersAndDots_;
  return name_ == other.name_;
}

Error Address::resolve() const {
  const HostForm wanted = numbersAndDotsCached_ ? HostForm::name : HostForm::number;
  const IString known = numbersAndDotsCached_ ? numbersAndDots_ : name_;
  std::string text;
  const Lookup lookup = qvPlatform::lookUpHost(known.asUTF8(), wanted, &text);
  if (lookup != Lookup::found) return Error(lookup == Lookup::unknownHost ? 3 : 1, "%s", text.c_str());
  (wanted == HostForm::name ? name_ : numbersAndDots_).assign(text.c_str(), qvString::UTF8Encoding);
  return Error();
}

qv::pair<IString, Error> Address::getNumbersAndDots() const {
  if (!numbersAndDotsCached_) {
    const Error error = resolve();
    if (error) return {IString(), error};
    numbersAndDotsCached_ = true;
  }
  return {numbersAndDots_, Error()};
}

qv::pair<IString, Error> Address::getName() const {
  if (!nameCached_) {
    const Error error = resolve();
    if (error) return {IString(), error};
    nameCached_ = true;
  }
  return {name_, Error()};
}

addrinfo* Address::getAddrInfo(bool passive) const {
  Error error;
  return findAddresses(passive, error);
}

addrinfo* Address::findAddresses(bool passive, Error& error) const {
  const IString host = numbersAndDotsCached_ ? numbersAndDots_ : name_;
  const int port = hasAssignedPort() ? port_ : 0;
  std::string text;
  addrinfo* list = qvPlatform::addressList(host.isEmpty() ? nullptr : host.asUTF8(), port, passive, &text);
  if (!list) error = Error(2, "getaddrinfo failed: %s", text.c_str());
  return list;
}

const IString& Address::localhostName() {
  if (localhost_name.isEmpty())
    localhost_name.assign(qvPlatform::machineName().c_str(), qvString::UTF8Encoding);
  return localhost_name;
}

} // namespace qvTCP

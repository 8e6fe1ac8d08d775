// Which objects the packets of a file define, and which they refer to.
#pragma once

#include "packetFile.h"

class ReferenceVisitor : public Visitor {
public:
  void startFile(const FileHeader& header) override { header_ = header; }
  void startPacket(const Packet& packet) final;
  void open(Container) final { beginsPacket_ = false; }
  void value(const char* kind, const Scalar& scalar) final;
  void array(const char*) final { beginsPacket_ = false; }
  void bytes(std::string_view bytes, std::int64_t offset, const char* why) final;

protected:
  /// A packet begins. In a tagged file the object that it defines is told next.
  virtual void meet(const Packet& packet) = 0;
  virtual void define(std::uint64_t /*object*/) {}
  /// The packet refers to an object; never to that of number 0, which is none.
  virtual void refer(std::uint64_t object) = 0;

  FileHeader header_;
  std::int64_t hiddenBytes_ = 0; ///< In a tagged file, bytes where references may stand unseen.

private:
  bool beginsPacket_ = false; // with the object that it defines
};

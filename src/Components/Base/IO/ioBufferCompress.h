// The filter that compresses with LZW, in codes of 9 to 16 bits and with an end code of its own.
#pragma once

#include "Base/IO/ioBuffer.h"

#include <memory>

class ioLzwReader;
class ioLzwWriter;

class ioBufferCompress : public ioBuffer {
public:
  explicit ioBufferCompress(bool forReading);
  ~ioBufferCompress() override;

  /// Ends the stream of a writer: the codes that are pending, the end code, and a flush of the chain.
  void finish() override;
  [[nodiscard]] int kind() const override { return ioBufferKindCompress; }
  /// As `finish`, and then closes the links below.
  void closeLink() override;
  /// After the last byte the status becomes `ioBufferCompressedEnd`; bytes of the link below that follow the
  /// end code's group stay unread. Data that ends without the end code is `ioBufferFailed`.
  int readRaw(void* destination, int count) override;
  void writeRaw(const void* source, int count) override;

private:
  ioLzwWriter& writer();

  std::unique_ptr<ioLzwReader> reader_; ///< Made when the first byte moves, like the writer.
  std::unique_ptr<ioLzwWriter> writer_;
};

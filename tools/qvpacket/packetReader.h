// Reads the frame of a packet file: headers, type tables, and packets without a look into their bodies.
#pragma once

#include "packetFile.h"

class Input;

/// Reads the stream header. Throws `Damage`, as all of these do.
[[nodiscard]] FileHeader readStreamHeader(Input& input);

/// Reads the type table into `header`; what came before some damage stays there.
void readTypeTable(Input& input, FileHeader& header);

/// Reads a packet. One that is cut is read as far as it goes.
[[nodiscard]] Packet readPacket(Input& input, const FileHeader& header);

/// Behind the end packet: whether a further packet file follows.
[[nodiscard]] bool anotherFileFollows(Input& input, const FileHeader& header);

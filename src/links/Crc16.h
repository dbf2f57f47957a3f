// CRC-16 of the dynamic packets: the reflected polynomial 0xA001 (CRC-16/ARC),
// table driven. Callers seed it with 1, not 0; the controllers do the same.
#pragma once

namespace KavroLibrary {

extern const unsigned short crctable[256];

// Runs the CRC over data[start] .. data[start + length - 1].
unsigned short tabularCRC16(unsigned short crc, const unsigned char* data, unsigned short length, int start);

}  // namespace KavroLibrary

// The concentrator's configuration fields, read and written through the
// configuration-memory commands; each returns true when the exchange worked.
#pragma once

#include <cstdint>
#include <string>

namespace KavroLibrary {

struct NetworkConfiguration;

namespace wcmfields {

// Field ids of the concentrator itself.
constexpr int kScanDuration = 2;
constexpr int kRestart = 6;

// Field offsets within a device slot ((index + 1) x 1000 + offset).
constexpr int kType = 2;
constexpr int kName = 3;
constexpr int kIdentity = 4;
constexpr int kConnection = 6;
constexpr int kBattery = 7;
constexpr int kChannelValue = 35;  // + channel, thousandths
constexpr int kChannelText = 47;   // + channel
constexpr int kNumChannels = 61;
constexpr int kConfigMode = 91;
constexpr int kEnteredConfigMode = 92;

bool readByte(NetworkConfiguration* config, int addr, int field, unsigned char& value);
bool readUInt(NetworkConfiguration* config, int addr, int field, unsigned int& value);
bool readString(NetworkConfiguration* config, int addr, int field, std::string& value);
bool writeByte(NetworkConfiguration* config, int addr, int field, unsigned char value);
bool writeString(NetworkConfiguration* config, int addr, int field, const std::string& value);

}  // namespace wcmfields
}  // namespace KavroLibrary

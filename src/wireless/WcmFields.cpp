#include "wireless/WcmFields.h"

#include "commands/KavroCommands.h"

namespace KavroLibrary {
namespace wcmfields {

bool readByte(NetworkConfiguration* config, int addr, int field, unsigned char& value) {
    return KavroCommands::KavroConfigRead_Byte(config, addr, field, value) == 0;
}

bool readUInt(NetworkConfiguration* config, int addr, int field, unsigned int& value) {
    return KavroCommands::KavroConfigRead_UInt(config, addr, field, value) == 0;
}

bool readString(NetworkConfiguration* config, int addr, int field, std::string& value) {
    // The typed string read cannot tell an empty field from a failed read.
    const KavroConfigReadResult block = KavroCommands::KavroConfigRead(config, addr, field, 0);
    const bool good = block.LinkStatus == 0;
    value.clear();
    if (good && block.Data != nullptr && block.DataLength > 0) {
        value.assign(reinterpret_cast<const char*>(block.Data), static_cast<std::size_t>(block.DataLength));
    }
    delete[] block.Data;
    return good;
}

bool writeByte(NetworkConfiguration* config, int addr, int field, unsigned char value) {
    return KavroCommands::KavroConfigWrite_Byte(config, addr, field, value).LinkStatus == 0;
}

bool writeString(NetworkConfiguration* config, int addr, int field, const std::string& value) {
    return KavroCommands::KavroConfigWrite_String(config, addr, field, value).LinkStatus == 0;
}

}  // namespace wcmfields
}  // namespace KavroLibrary

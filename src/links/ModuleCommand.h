// One outgoing module command and its reply, as exchanged with a link.
#pragma once

#include <cstdint>

namespace KavroLibrary {

// Type of a module command.
enum ModuleCommandType : int {
    CommandWithReply = 0,     // the reply is fetched afterwards with GetModuleCommandReply
    CommandWithoutReply = 1,  // no reply (the USB link clocks one block back and drops it)
    CommandUnknownReply = 2,  // reply length not known in advance
};

struct ModuleCommand {
    int Type = CommandWithReply;
    int Length = 0;                 // bytes in Data: command code, address, payload
    int ReplyLength = 0;            // reply bytes the controller collects from the module
    unsigned char* Data = nullptr;  // borrowed
};

struct ModuleReply {
    std::uint32_t Status = 255;     // 0 good, 255 nothing arrived
    std::uint32_t Length = 0;       // payload bytes in Data
    unsigned char* Data = nullptr;  // new[] buffer owned by the caller (delete[])
};

}  // namespace KavroLibrary

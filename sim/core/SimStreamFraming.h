// Frames of the byte-stream faces: the Ethernet interface module (TCP) and
// the serial interface module (RS-232). Both send module commands in the
// same frames; they differ in the controller requests' answers and in the
// two bytes that follow every Ethernet reply.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/SimBytes.h"
#include "core/SimRequest.h"

namespace kavrosim {

enum class SimStreamDialect { Ethernet, Serial };

struct SimParsed {
    enum class Result {
        Complete,    // `request` holds the first `consumed` bytes, decoded
        Incomplete,  // the bytes so far begin a request; more must come
        Garbage,     // the first byte begins no request; `request` logs it
    };
    Result result = Result::Incomplete;
    std::size_t consumed = 0;
    SimRequest request;
};

// Decodes the request at the start of `data`.
SimParsed parseStreamRequest(SimStreamDialect dialect, const std::uint8_t* data, std::size_t size);

// The bytes the controller writes back for `answer` (cut when the answer
// asks for it); empty when it writes nothing.
Bytes frameStreamAnswer(SimStreamDialect dialect, const SimRequest& request, const SimAnswer& answer);

}  // namespace kavrosim

// The one entry point every fuzz target defines. Built with libFuzzer under
// clang, or with ReplayMain.cpp to replay a corpus in an ordinary build.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

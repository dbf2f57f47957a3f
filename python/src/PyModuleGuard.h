// Module objects held by Python outlive the modules when the network
// clears, disconnects or loads: each call through such an object first
// checks that the module it was handed out for is still on its network, and
// raises RuntimeError instead of touching freed memory.
#pragma once

#include <type_traits>
#include <utility>

namespace KavroLibrary {
class KavroModule;
class KavroNetwork;
}  // namespace KavroLibrary

namespace kavro_python {

// Called when a module, or a part of one (its difference, buffered or
// status object), is handed to Python.
void rememberModule(const KavroLibrary::KavroModule* module, const KavroLibrary::KavroNetwork* network);
void rememberPart(const void* part, const KavroLibrary::KavroModule* module);

// Throw std::runtime_error when the module is no longer on its network.
void ensureModule(const KavroLibrary::KavroModule* module);
void ensurePart(const void* part);

template <typename C>
void ensure(const C* self) {
    if constexpr (std::is_base_of_v<KavroLibrary::KavroModule, C>) {
        ensureModule(self);
    } else {
        ensurePart(self);
    }
}

// A member function, checked before each call.
template <typename C, typename R, typename... A>
auto onNetwork(R (C::*f)(A...)) {
    return [f](C& self, A... arguments) -> R {
        ensure<C>(&self);
        return (self.*f)(std::forward<A>(arguments)...);
    };
}
template <typename C, typename R, typename... A>
auto onNetwork(R (C::*f)(A...) const) {
    return [f](const C& self, A... arguments) -> R {
        ensure<C>(&self);
        return (self.*f)(std::forward<A>(arguments)...);
    };
}

}  // namespace kavro_python

// Objects held by Python outlive what they stand for: modules go when their
// network clears, disconnects or loads, networks of the collection when it
// finds networks again. Each call through such an object first checks that
// what it was handed out for is still there, and raises RuntimeError instead
// of touching freed memory.
#pragma once

#include <type_traits>
#include <utility>

namespace KavroLibrary {
class KavroModule;
class KavroNetwork;
class KavroNetworks;
}  // namespace KavroLibrary

namespace kavro_python {

// Called when a module, or a part of one (its difference, buffered or
// status object), is handed to Python.
void rememberModule(const KavroLibrary::KavroModule* module, const KavroLibrary::KavroNetwork* network);
void rememberPart(const void* part, const KavroLibrary::KavroModule* module);
// A part of a part (a wireless tool's settings), belonging to the same module.
void rememberPartOf(const void* part, const void* parent);
// A network of the collection, and a part of a network (its buffered,
// difference or dynamic object).
void rememberNetwork(const KavroLibrary::KavroNetwork* network, const KavroLibrary::KavroNetworks* collection);
void rememberNetworkPart(const void* part, const KavroLibrary::KavroNetwork* network);
// Before the collection finds its networks again, which replaces them all.
void renewingNetworks(const KavroLibrary::KavroNetworks* collection);

// Throw std::runtime_error when the module is no longer on its network, or
// the network no longer in its collection. Objects never handed out through
// the remember functions (networks made in Python) always pass.
void ensureModule(const KavroLibrary::KavroModule* module);
void ensurePart(const void* part);
void ensureNetwork(const KavroLibrary::KavroNetwork* network);
void ensureNetworkPart(const void* part);

template <typename C>
void ensure(const C* self) {
    if constexpr (std::is_base_of_v<KavroLibrary::KavroModule, C>) {
        ensureModule(self);
    } else if constexpr (std::is_base_of_v<KavroLibrary::KavroNetwork, C>) {
        ensureNetwork(self);
    } else {
        ensurePart(self);  // parts of networks are checked by ensureNetworkPart
    }
}

// A member function of a network part, checked before each call.
template <typename C, typename R, typename... A>
auto onNetworkPart(R (C::*f)(A...)) {
    return [f](C& self, A... arguments) -> R {
        ensureNetworkPart(&self);
        return (self.*f)(std::forward<A>(arguments)...);
    };
}
template <typename C, typename R, typename... A>
auto onNetworkPart(R (C::*f)(A...) const) {
    return [f](const C& self, A... arguments) -> R {
        ensureNetworkPart(&self);
        return (self.*f)(std::forward<A>(arguments)...);
    };
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

// A part of a module (its status, difference or buffered object, a
// concentrator's slots), which lives as long as the module.
template <typename Module, typename Part>
auto part(Part* (Module::*get)() const) {
    return [get](const Module& module) {
        ensureModule(&module);
        Part* found = (module.*get)();
        rememberPart(found, &module);
        return found;
    };
}

}  // namespace kavro_python

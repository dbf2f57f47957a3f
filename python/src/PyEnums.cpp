// Makes one IntEnum class per enumeration of the public headers, with the
// library's own text forms: member.text and Class.from_text(text).
#include <string>
#include <utility>
#include <vector>

#include "PyBindings.h"

namespace kavro_python {

namespace {

template <typename E>
void addEnum(py::module_& m, const char* name, const std::vector<std::pair<const char*, E>>& members,
             std::string (*toText)(E), E (*fromText)(const std::string&)) {
    py::list entries;
    for (const auto& [member, value] : members) {
        entries.append(py::make_tuple(member, static_cast<long long>(value)));
        // "None" is a Python keyword: None_ reaches the same member by attribute.
        if (std::string(member) == "None") entries.append(py::make_tuple("None_", static_cast<long long>(value)));
    }
    py::object type = py::module_::import("enum").attr("IntEnum")(name, entries, py::arg("module") = "kavro");
    EnumClass<E>::type = type.inc_ref().ptr();
    type.attr("text") = py::module_::import("builtins").attr("property")(
        py::cpp_function([toText](E value) { return toText(value); }));
    type.attr("from_text") = py::module_::import("builtins").attr("staticmethod")(
        py::cpp_function([fromText](const std::string& text) { return fromText(text); }, py::arg("text")));
    m.attr(name) = type;
}

}  // namespace

void bindEnums(py::module_& m) {
    using namespace KavroLibrary;
#define KAVRO_ENUM_BEGIN(E) addEnum<E>(m, #E, {
#define KAVRO_ENUM_VALUE(E, member) {#member, E::member},
#define KAVRO_ENUM_END(E) }, &E##_ToString, &E##_FromString);
#include "KavroEnumTable.inc"
#undef KAVRO_ENUM_BEGIN
#undef KAVRO_ENUM_VALUE
#undef KAVRO_ENUM_END
}

}  // namespace kavro_python

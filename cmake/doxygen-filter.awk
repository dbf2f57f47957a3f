# Turns the headers' plain comments into doc comments for Doxygen, line for
# line (so that its warnings point at the right lines): the comment block at
# the top of a header describes the file, a comment above a declaration
# describes it, and a comment after a declaration on its line describes that
# declaration. The text companions of the enumerations share one comment in
# KavroEnums.h; each gets its line here. Deleted copy operations are no API.
BEGIN { header = 1 }
header && /^#pragma once/ { header = 0; print "/// @file"; next }
/^[ \t]*\/\/([^\/!].*)?$/ { sub(/\/\//, "///"); print; next }
/= delete;/ { print ""; next }
/^std::string e[A-Za-z0-9_]+_ToString\(/ {
    print "/** The text of a value; empty for a value outside the enumeration. */ " $0; next
}
/^e[A-Za-z0-9_]+ e[A-Za-z0-9_]+_FromString\(/ {
    print "/** The value of a text, matched exactly; throws std::runtime_error when none matches. */ " $0; next
}
/[;,{][ \t]+\/\/ / { sub(/[ \t]+\/\/ /, " ///< "); print; next }
{ print }

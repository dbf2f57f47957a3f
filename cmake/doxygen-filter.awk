# Turns the headers' plain comments into doc comments for Doxygen, line for
# line: the comment block at the top of a header describes the file, a
# comment above a declaration describes it, and a comment after a
# declaration on its line describes that declaration.
BEGIN { header = 1 }
header && /^#pragma once/ { header = 0; print "/// @file"; next }
/^[ \t]*\/\/([^\/!].*)?$/ { sub(/\/\//, "///"); print; next }
/[;,{][ \t]+\/\/ / { sub(/[ \t]+\/\/ /, " ///< "); print; next }
{ print }

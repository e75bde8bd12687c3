# cmake -DIN=<text file> -DOUT=<source> -DHEADER=<header> -DNAMESPACE=<namespace> -DNAME=<constant> -P EmbedText.cmake
# Writes the text as a constant of a C++ source, in a raw literal.
get_filename_component(source "${IN}" NAME)
file(READ "${IN}" text)
file(WRITE "${OUT}" "// Made by the build from ${source}.
#include \"${HEADER}\"

namespace ${NAMESPACE} {

extern const char ${NAME}[] = R\"tsv(${text})tsv\";

}  // namespace ${NAMESPACE}
")

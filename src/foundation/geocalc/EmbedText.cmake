# cmake -DIN=<text file> -DOUT=<source> -P EmbedText.cmake
# Writes the text as a constant of a C++ source, in a raw literal.
file(READ "${IN}" text)
file(WRITE "${OUT}" "// Made by the build from ermapper.tsv.
#include \"geocalc/ErMapperText.h\"

namespace GeoCalc::DB {

extern const char kErMapperText[] = R\"tsv(${text})tsv\";

}  // namespace GeoCalc::DB
")

#include "sidecar/wld/WorldFile.h"

#include <Tellurion/Numbers.h>

#include <string_view>

namespace MapAnchor {

AffineTerms WorldFile::ToAffine() const {
    return {line[0], line[2], line[4] - line[0] * 0.5, line[1], line[3], line[5] - line[3] * 0.5};
}

WorldFile WorldFile::FromAffine(const AffineTerms& t) {
    return {{t.a, t.d, t.b, t.e, t.a * 0.5 + t.c, t.e * 0.5 + t.f}, 6};
}

WorldFile ParseWorldFile(Tellurion::BFile& file) {
    WorldFile world_file;
    std::string_view text;
    for (double& number : world_file.line) {
        if (!file.ReadLineBytes(text)) break;
        number = Tellurion::ParseDouble(text);
        ++world_file.lines_read;
    }
    return world_file;
}

Tellurion::BString FormatWorldFile(const WorldFile& world_file) {
    std::string text;
    for (const double number : world_file.line)
        text += Tellurion::PrintFixed(number, 12) + "\n";
    return text;
}

}  // namespace MapAnchor

// Reads the world file that is named and prints its affine; non-zero when it is not
// what the file says.

#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BException.h>

#include <cstdio>

int main(int argc, char** argv) {
    using namespace Tellurion;
    if (argc != 2) return 64;
    try {
        BGeoReference reference;
        BString used;
        MapAnchor::BMapAnchor::Read(BString(argv[1]), reference, used, 0, 0, EMathTransformType::Affine,
                                    nullptr);
        double a, b, c, d, e, f;
        reference.MathTransform->GetAffineParameters(a, b, c, d, e, f);
        std::printf("%g %g %g %g %g %g %s\n", a, b, c, d, e, f, reference.CoordSys->GetName().Utf8());
        return a == 2 && b == 0 && c == 10 && d == 0 && e == -2 && f == 50 ? 0 : 1;
    } catch (const BException& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}

// The smallest host: reads a reference by its file's name and uses it.

#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/BException.h>

#include <iostream>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: example_read FILE\n";
        return 64;
    }
    using namespace Tellurion;
    try {
        BGeoReference reference;
        BString used_file;
        MapAnchor::BMapAnchor::Read(BString(argv[1]), reference, used_file, 2000, 1000,
                                    EMathTransformType::Affine, nullptr);
        if (reference.HasCoordSys())
            std::cout << reference.CoordSys->GetName() << " (" << reference.CoordSys->ToEPSGCode() << ")\n";
        double x = 0.0;
        double y = 0.0;
        if (reference.HasMathTransform() && reference.MathTransform->ConvertSourceToTarget(x, y))
            std::cout << BString::Format("column 0, row 0 is at %.10g, %.10g\n", x, y);
    } catch (const BException& error) {
        std::cerr << error.what() << "\n";
        return 2;
    }
}

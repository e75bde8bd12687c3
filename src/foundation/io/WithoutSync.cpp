#include <Tellurion/WithoutSync.h>

namespace Tellurion {
namespace {

thread_local int living = 0;

}  // namespace

WithoutSync::WithoutSync() {
    ++living;
}

WithoutSync::~WithoutSync() {
    --living;
}

bool WithoutSync::IsOn() {
    return living > 0;
}

}  // namespace Tellurion

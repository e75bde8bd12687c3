#include <MapAnchor/BGeoReferenceInvalidCoordSysException.h>
#include <MapAnchor/BGeoReferenceInvalidReferenceFileException.h>
#include <MapAnchor/BGeoReferenceInvalidTransformException.h>
#include <MapAnchor/BGeoReferenceNotSupportedException.h>
#include <MapAnchor/BGeoReferenceReadException.h>
#include <MapAnchor/BGeoReferenceWriteException.h>
#include <MapAnchor/BReadParametersException.h>

#include <gtest/gtest.h>

namespace MapAnchor {

using namespace Tellurion;

template <class Exception, class Base>
void ExpectFamily(const char* type, const std::string& message) {
    try {
        throw Exception("Class::Op", "why");
    } catch (const Base& error) {
        EXPECT_STREQ(error.GetTypeName(), type);
        EXPECT_EQ(error.GetDetailedMessage().StdStr(), message + " why (Class::Op)");
    }
}

// Hosts catch by base class and show the texts.
TEST(Exceptions, HaveFixedMessagesAndBases) {
    ExpectFamily<BGeoReferenceInvalidCoordSysException, BCoordSysException>(
        "BGeoReferenceInvalidCoordSysException",
        "The coordinate system in this reference file is not valid.");
    ExpectFamily<BGeoReferenceInvalidReferenceFileException, BDataManagerException>(
        "BGeoReferenceInvalidReferenceFileException", "The reference file is not valid.");
    ExpectFamily<BGeoReferenceInvalidTransformException, BException>(
        "BGeoReferenceInvalidTransformException", "The transform in this reference file is not valid.");
    ExpectFamily<BGeoReferenceNotSupportedException, BException>(
        "BGeoReferenceNotSupportedException",
        "The operation being performed is not supported by this reference type");
    ExpectFamily<BGeoReferenceReadException, BDataManagerException>(
        "BGeoReferenceReadException", "A problem occured while trying to read the reference file.");
    ExpectFamily<BGeoReferenceWriteException, BDataManagerException>(
        "BGeoReferenceWriteException", "A problem occured while trying to write the reference file.");
    EXPECT_STREQ(BReadParametersException().what(), "BReadParameters Exception");
    EXPECT_STREQ(BReadParametersException("m", "s", "d").what(), "m d (s)");
}

}  // namespace MapAnchor

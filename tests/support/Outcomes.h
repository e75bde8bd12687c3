#pragma once

#include <gtest/gtest.h>

#include "LogCapture.h"
#include "References.h"
#include "Roads.h"
#include "TempFolder.h"

#include <array>
#include <sstream>
#include <string>
#include <vector>

/// How reads and saves end, and tables of it that formats share.
namespace MapAnchor {

constexpr const char* kNoAccess = "BFileAccessException";
constexpr const char* kInvalidFile = "BGeoReferenceInvalidReferenceFileException";
constexpr const char* kInvalidSystem = "BGeoReferenceInvalidCoordSysException";
constexpr const char* kInvalidTransform = "BGeoReferenceInvalidTransformException";
constexpr const char* kNoReference = "BFileContentNotValidException";
constexpr const char* kNotSupported = "BGeoReferenceNotSupportedException";
constexpr const char* kUnsupported = "BUnsupportedFileTypeException";
constexpr const char* kWriteFailure = "BGeoReferenceWriteException";

using Six = std::array<double, 6>;

inline std::string CodeOf(const Tellurion::BGeoReference& reference) {
    return reference.HasCoordSys() ? reference.CoordSys->ToEPSGCode().StdStr() : "none";
}

/// The points, one a line: name, column, row, x, y and z, then "off" for a disabled one.
inline std::string PointsOf(const Tellurion::BGeoReference& reference) {
    std::ostringstream text;
    text.precision(15);
    for (const Tellurion::BPointPair& p : reference.PointPairVector)
        text << p.Name.StdStr() << ": " << p.Column << ' ' << p.Row << ' ' << p.World.x << ' ' << p.World.y
             << ' ' << p.World.z << (p.Enabled ? "\n" : " off\n");
    return text.str();
}

/// Reads what must be good, by name or by type with both flags.
inline Tellurion::BGeoReference Good(const std::string& file) {
    Tellurion::BGeoReference reference;
    EXPECT_EQ(Roads::Read(file, reference).type, "") << file;
    return reference;
}
inline Tellurion::BGeoReference Good(Tellurion::EReferenceType type, const std::string& file,
                                     unsigned int flags = Roads::kStrict) {
    Tellurion::BGeoReference reference;
    EXPECT_EQ(Roads::Read(type, file, reference, flags).type, "") << file;
    return reference;
}

/// Saves what must be taken, by name or by type with both flags; the bytes of the file.
inline std::string Written(const std::string& file, const Tellurion::BGeoReference& reference,
                           const std::string& image = "image.tif") {
    EXPECT_EQ(Roads::Save(file, reference, image).type, "");
    return TempFolder::Slurp(file);
}
inline std::string Written(Tellurion::EReferenceType type, const std::string& file,
                           const Tellurion::BGeoReference& reference, unsigned int flags = Roads::kStrict) {
    EXPECT_EQ(Roads::Save(type, file, reference, flags).type, "");
    return TempFolder::Slurp(file);
}

/// The text with `value` for every `mark`.
inline std::string Filled(std::string text, char mark, const std::string& value) {
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += value.size())
        text.replace(at, 1, value);
    return text;
}

inline void ExpectThrown(const Thrown& got, const Thrown& wanted) {
    EXPECT_EQ(got.type, wanted.type);
    EXPECT_EQ(got.source, wanted.source);
    EXPECT_EQ(got.detail, wanted.detail);
}

/// What is thrown by name, by type, and by type with both flags; empty for success.
struct Ends {
    const char* by_name = "";
    const char* by_type = "";
    const char* strict = "";
};
constexpr Ends kTaken{};
constexpr Ends kRefused{kUnsupported, kInvalidFile, kInvalidFile};
constexpr Ends kNoFit{"", "", kInvalidTransform};
constexpr Ends kNoSystem{"", "", kInvalidSystem};

/// What a good read comes to.
struct Holds {
    std::size_t points = 0;
    bool transform = false;
    bool system = false;
};

struct RoadCase {
    const char* name;
    std::string content;
    Ends ends = {};
    Holds holds = {};
};

/// Reads each content on the three roads. The extension begins with its dot.
inline void ExpectRoads(Tellurion::EReferenceType type, const std::string& extension,
                        const std::vector<RoadCase>& cases) {
    const TempFolder folder;
    const LogCapture quiet;
    for (const RoadCase& test : cases) {
        SCOPED_TRACE(test.name);
        const std::string file = folder.Write(test.name + extension, test.content);
        Tellurion::BGeoReference by_name, by_type, strict;
        EXPECT_EQ(Roads::Read(file, by_name).type, test.ends.by_name);
        EXPECT_EQ(Roads::Read(type, file, by_type).type, test.ends.by_type);
        EXPECT_EQ(Roads::Read(type, file, strict, Roads::kStrict).type, test.ends.strict);
        if (!*test.ends.by_name) {
            EXPECT_EQ(by_name.PointPairVector.size(), test.holds.points);
            EXPECT_EQ(by_name.HasCoordSys(), test.holds.system);
        }
        EXPECT_EQ(by_name.HasMathTransform(), test.holds.transform && !*test.ends.by_name);
        if (*test.ends.by_type) continue;
        EXPECT_EQ(by_type.PointPairVector.size(), test.holds.points);
        EXPECT_EQ(by_type.HasMathTransform(), test.holds.transform);
        EXPECT_EQ(by_type.HasCoordSys(),
                  test.holds.system && test.ends.strict != std::string(kInvalidSystem));
    }
}

struct PlaceCase {
    const char* name;
    std::string content;
    Six terms;
    const char* code = "none";
};

/// Reads each content by name, and by type without flags.
inline void ExpectPlaces(Tellurion::EReferenceType type, const std::string& extension,
                         const std::vector<PlaceCase>& cases) {
    const TempFolder folder;
    const LogCapture quiet;
    for (const PlaceCase& test : cases) {
        SCOPED_TRACE(test.name);
        const std::string file = folder.Write(test.name + extension, test.content);
        for (const Tellurion::BGeoReference& reference : {Good(file), Good(type, file, 0)}) {
            ASSERT_TRUE(reference.HasMathTransform());
            EXPECT_EQ(References::Terms(reference), test.terms);
            EXPECT_EQ(CodeOf(reference), test.code);
        }
    }
}

/// A read by type that fails. "%" stands for the file; "*" for whatever detail there is,
/// which "@" in the log repeats.
struct FailureCase {
    const char* name;
    std::string content;
    Thrown thrown;
    std::vector<std::string> log = {};
    unsigned int flags = Roads::kStrict;
};

inline void ExpectFailures(Tellurion::EReferenceType type, const std::string& extension,
                           const std::vector<FailureCase>& cases) {
    const TempFolder folder;
    for (const FailureCase& test : cases) {
        SCOPED_TRACE(test.name);
        const LogCapture log;
        const std::string file = folder.Write(test.name + extension, test.content);
        Tellurion::BGeoReference reference;
        const Thrown got = Roads::Read(type, file, reference, test.flags);
        const std::string detail = test.thrown.detail == "*" ? got.detail : test.thrown.detail;
        EXPECT_NE(got.detail, "");
        ExpectThrown(got, {test.thrown.type, test.thrown.source, Filled(detail, '%', file)});
        std::vector<std::string> lines;
        for (const std::string& line : test.log)
            lines.push_back(Filled(Filled(line, '%', file), '@', got.detail));
        EXPECT_EQ(log.lines, lines);
    }
}

}  // namespace MapAnchor

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

inline void ExpectThrown(const Thrown& got, const std::string& type, const std::string& source,
                         const std::string& detail) {
    EXPECT_EQ(got.type, type);
    EXPECT_EQ(got.source, source);
    EXPECT_EQ(got.detail, detail);
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
constexpr Ends kByNameAlone{"", kInvalidFile, kInvalidFile};

/// What a good read stores.
struct Holds {
    std::size_t points = 0;
    bool transform = false;
    bool system = false;
};

/// The rows of a table of contents: each is written to a file and read by name and by type.
class ReadTable {
public:
    ReadTable(Tellurion::EReferenceType type, std::string extension, std::string source)
        : type_(type), extension_(std::move(extension)), source_(std::move(source)) {}

    /// How the three reads end, and what the good ones store.
    void Ends(const char* name, const std::string& content, const MapAnchor::Ends& ends,
              const Holds& holds = {}) const {
        SCOPED_TRACE(name);
        const LogCapture quiet;
        const std::string file = File(name, content);
        Tellurion::BGeoReference by_name, by_type, strict;
        EXPECT_EQ(Roads::Read(file, by_name).type, ends.by_name);
        EXPECT_EQ(Roads::Read(type_, file, by_type).type, ends.by_type);
        EXPECT_EQ(Roads::Read(type_, file, strict, Roads::kStrict).type, ends.strict);
        EXPECT_EQ(by_name.HasMathTransform(), holds.transform && !*ends.by_name);
        if (!*ends.by_name) ExpectStored(by_name, holds, holds.system);
        // A system that fails the strict read is stored by name at most.
        const bool system = holds.system && ends.strict != std::string(kInvalidSystem);
        if (!*ends.by_type) ExpectStored(by_type, holds, system);
    }
    /// A good read by name, and one by type without flags.
    void Places(const char* name, const std::string& content, const Six& terms,
                const char* code = "none") const {
        SCOPED_TRACE(name);
        const LogCapture quiet;
        const std::string file = File(name, content);
        for (const Tellurion::BGeoReference& reference : {Good(file), Good(type_, file, 0)}) {
            ASSERT_TRUE(reference.HasMathTransform());
            EXPECT_EQ(References::Terms(reference), terms);
            EXPECT_EQ(CodeOf(reference), code);
        }
    }
    /// A read by type with both flags that fails. In the texts "%" stands for the file, and "@" in
    /// the log for the detail; the detail "*" may be any.
    void Fails(const std::string& content, const char* type, const std::string& detail,
               const std::vector<std::string>& log = {}, const char* source = nullptr) const {
        SCOPED_TRACE(detail);
        const LogCapture capture;
        const std::string file = File("failure", content);
        Tellurion::BGeoReference reference;
        const Thrown got = Roads::Read(type_, file, reference, Roads::kStrict);
        EXPECT_NE(got.detail, "");
        ExpectThrown(got, type, source ? source : source_,
                     detail == "*" ? got.detail : Filled(detail, '%', file));
        std::vector<std::string> lines;
        for (const std::string& line : log)
            lines.push_back(Filled(Filled(line, '%', file), '@', got.detail));
        EXPECT_EQ(capture.lines, lines);
    }

private:
    std::string File(const std::string& name, const std::string& content) const {
        return folder_.Write(name + extension_, content);
    }
    static void ExpectStored(const Tellurion::BGeoReference& reference, const Holds& holds, bool system) {
        EXPECT_EQ(reference.PointPairVector.size(), holds.points);
        EXPECT_EQ(reference.HasMathTransform(), holds.transform);
        EXPECT_EQ(reference.HasCoordSys(), system);
    }

    Tellurion::EReferenceType type_;
    std::string extension_;
    std::string source_;
    TempFolder folder_;
};

}  // namespace MapAnchor

#pragma once

#include <Tellurion/BParamList.h>
#include <Tellurion/BString.h>

#include <string>
#include <vector>

namespace MapAnchor {

/// Which drivers of GDAL may read a file that nobody vouches for. GDAL itself goes by the
/// content alone: a text named "map.tif" can be a request to a web server.
class GdalDrivers {
public:
    /// Of a BParamList: see Scope.
    static constexpr const char* kKey = "MAP_ANCHOR_GDAL_DRIVERS";

    using Names = std::vector<const char*>;  ///< ends in a null, as GDAL takes it

    /// The drivers that read the named file, and files of the same name beside it, and
    /// nothing else. One that is not in the table, as of a later GDAL, is not among them.
    static const Names& Plain();
    /// Of these the ones that a file's extension can mean; all for another extension.
    static const Names& ForName(const Tellurion::BString& file);

    /// The drivers that the host allows beside these: by Allow(), by a Scope of this thread,
    /// or by having put them into the process itself.
    static Names Allowed();

    /// The driver that takes a local file by its content and is not allowed here, since it
    /// opens hosts or other files that a file names; empty when there is none. Nothing is
    /// opened but the file itself.
    static std::string RefusedFor(const Tellurion::BString& file);

    /// Allows drivers for the whole process, by names that commas or blanks part, in place of
    /// those allowed before. A BReadParametersException for a name that GDAL does not know.
    static void Allow(const Tellurion::BString& names);
    static Tellurion::BString AllowedNames();

    /// Allows the drivers that a host's parameters name, in this thread, while it lives.
    class Scope {
    public:
        /// `params` may be null. Throws as Allow() does.
        explicit Scope(const Tellurion::BParamList* params) {
            if (params && params->HasProperty(kKey)) Enter(*params);
        }
        ~Scope() {
            if (is_entered_) Leave();
        }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

        // For the module of GDAL.
        void Enter(const Tellurion::BParamList& params);
        void Leave();

    private:
        bool is_entered_ = false;
        std::vector<std::string> names_;
        const Scope* outer_ = nullptr;
        friend class GdalDrivers;
    };
};

}  // namespace MapAnchor

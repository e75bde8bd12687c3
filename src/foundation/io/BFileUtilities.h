#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

namespace Tellurion {

/// Questions about path texts. Only Exists() and IsRegularFile() look at the file
/// system, and CompletePath() at the current folder.
class TELLURION_EXPORT BFileUtilities {
public:
    static bool Exists(const BString& path);  ///< true for files and folders
    /// True for a file with bytes of its own, or a link to one. Nothing else is ever opened
    /// for reading: no folder, pipe, device or socket.
    static bool IsRegularFile(const BString& path);
    /// The absolute form; an absolute path comes back as it is.
    static BString CompletePath(const BString& path);
    /// The extension with its dot; empty when the last component has none.
    static BString GetExtension(const BString& path);
    /// `extension` without a dot; added when the path has none.
    static BString ChangeExtension(const BString& path, const BString& extension);
    /// The last component with its extension.
    static BString GetFileName(const BString& path);
    /// The last component without its extension.
    static BString GetBasename(const BString& path);
};

}  // namespace Tellurion

#pragma once

namespace VellumLib {

/// While one lives, in any thread, PoDoFo's settings of the whole process are those that this
/// library needs: nothing is printed on standard error, and object numbers have a cap. When
/// the last one ends, the settings of the host are back. Every entry into PoDoFo holds one:
/// a load, and a document for as long as it lives.
class PoDoFoSettings {
public:
    PoDoFoSettings();
    ~PoDoFoSettings();
    PoDoFoSettings(const PoDoFoSettings&) = delete;
    PoDoFoSettings& operator=(const PoDoFoSettings&) = delete;
};

}  // namespace VellumLib

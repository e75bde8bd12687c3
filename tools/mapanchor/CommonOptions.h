#pragma once

#include "Console.h"

namespace CLI {
class App;
}

/// Options that every subcommand has.
struct CommonOptions {
    bool json = false;
    int indent = -1;
    bool quiet = false;
    bool verbose = false;
    ColorMode color = ColorMode::Auto;

    void AddTo(CLI::App& app);
    Console MakeConsole() const { return Console(color, quiet); }
};

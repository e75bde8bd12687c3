#include "InputNames.h"

#include <iostream>

void ForEachInput(const std::vector<std::string>& names, bool nul_separated,
                  const std::function<void(const std::string& name)>& visit) {
    for (const std::string& name : names) {
        if (name != "-") {
            visit(name);
            continue;
        }
        for (std::string line; std::getline(std::cin, line, nul_separated ? '\0' : '\n');) {
            if (!nul_separated && !line.empty() && line.back() == '\r') line.pop_back();
            if (!line.empty()) visit(line);
        }
    }
}

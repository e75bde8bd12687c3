"""Conan 2 recipe of this tree: conan create packaging/conan"""
import pathlib
import re

from conan import ConanFile
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy

ROOT = pathlib.Path(__file__).resolve().parents[2]


class MapAnchorConan(ConanFile):
    name = "mapanchor"
    description = "Reads and writes the georeferencing of rasters and maps"
    license = "MIT"
    package_type = "shared-library"
    settings = "os", "compiler", "build_type", "arch"
    options = {"tools": [True, False], "modules": [True, False]}
    default_options = {"tools": False, "modules": True}

    def set_version(self):
        cmake = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
        self.version = re.search(r"project\(MapAnchor VERSION ([0-9.]+)", cmake).group(1)

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "LICENSE", "abi/*", "capi/*", "cmake/*", "python/*", "src/*", "tools/*"):
            copy(self, pattern, ROOT, self.export_sources_folder)

    def requirements(self):
        for package in ("gdal/[>=3.4 <4]", "proj/[>=9 <10]", "eigen/[>=3.3 <4]", "podofo/0.9.7", "qt/[>=5.15 <6]",
                        "nlohmann_json/[>=3.10 <4]"):
            self.requires(package)
        if self.options.tools:
            self.requires("cli11/[>=2 <3]")

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.variables["MAPANCHOR_BUILD_TOOLS"] = bool(self.options.tools)
        toolchain.variables["MAPANCHOR_MODULES"] = bool(self.options.modules)
        toolchain.variables["MAPANCHOR_BUILD_TESTS"] = False
        toolchain.variables["MAPANCHOR_PYTHON"] = False
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        copy(self, "LICENSE", self.source_folder, pathlib.Path(self.package_folder) / "licenses")

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "MapAnchor")
        for target, libs in (("Tellurion", ["Tellurion"]), ("MapAnchor", ["MapAnchor"]), ("C", ["mapanchor-c"])):
            self.cpp_info.components[target].libs = libs
            self.cpp_info.components[target].set_property("cmake_target_name", f"MapAnchor::{target}")
        self.cpp_info.components["MapAnchor"].requires = ["Tellurion"]
        self.cpp_info.components["Tellurion"].requires = [
            "gdal::gdal", "proj::proj", "eigen::eigen", "podofo::podofo", "qt::qt", "nlohmann_json::nlohmann_json"]
        if self.options.tools:
            self.cpp_info.components["Tellurion"].requires.append("cli11::cli11")

"""Conan 2 recipe: conan create packaging/conan, from the root of the repository."""

import os
import re

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load

VERSION_HEADER = os.path.join("modules", "demuxer", "low_level", "common", "QVNaluVersion.h")


class QvnaluConan(ConanFile):
    name = "qvnalu"
    description = "NAL unit framing, parameter sets and SEI for H.264 and H.265 elementary streams"
    package_type = "library"
    settings = "os", "compiler", "build_type", "arch"
    options = {"shared": [True, False], "fPIC": [True, False]}
    default_options = {"shared": False, "fPIC": True}
    implements = ["auto_shared_fpic"]

    @property
    def _root(self):
        return os.path.join(self.recipe_folder, "..", "..")

    def set_version(self):
        header = load(self, os.path.join(self._root, VERSION_HEADER))
        self.version = ".".join(re.findall(r"#define QVNALU_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)", header))

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "README.md", "CHANGELOG.md", "cmake/*", "modules/*"):
            copy(self, pattern, self._root, self.export_sources_folder)

    def validate(self):
        check_min_cppstd(self, 17)
        if self.settings.compiler == "msvc":
            raise ConanInvalidConfiguration("qvnalu is compiled with GCC or Clang")
        if self.options.shared and self.settings.os not in ("Linux", "FreeBSD", "Android"):
            raise ConanInvalidConfiguration("qvnalu is a shared library on ELF systems only")

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        for part in ("BUILD_TESTS", "BUILD_TOOLS", "BUILD_FUZZERS", "DEVELOPER"):
            toolchain.cache_variables[f"QVNALU_{part}"] = False
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "qvnalu")
        # The library and the core do not require each other: the core may be the program's own. A program that links
        # both names the library first.
        for component, library, requires in (
            ("nalu", "qvnalu", []),
            ("core_standalone", "qvcore_standalone", []),
            ("bitstream", "qvbitstream", []),
            ("sps_completion", "qvsps_completion", ["nalu", "bitstream"]),
        ):
            info = self.cpp_info.components[component]
            info.libs = [library]
            info.requires = requires
            info.includedirs = [os.path.join("include", "qvnalu"), "include"]
            info.set_property("cmake_target_name", f"qv::{component}")
            info.set_property("pkg_config_name", library)

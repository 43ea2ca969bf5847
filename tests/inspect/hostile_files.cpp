// Writes the hostile files into a folder, with a list: on each line a name and the arguments of the program
// that make the file costly, separated by a tab.
//
// Usage: hostile_files FOLDER
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

#include "HostileFiles.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: hostile_files FOLDER\n");
        return 1;
    }
    try {
        const std::filesystem::path folder = argv[1];
        std::filesystem::create_directories(folder);
        std::ofstream list;
        list.exceptions(std::ofstream::failbit | std::ofstream::badbit);
        list.open(folder / "list");
        for (const qv_test::HostileFile& hostile : qv_test::hostileFiles()) {
            std::ofstream file;
            file.exceptions(std::ofstream::failbit | std::ofstream::badbit);
            file.open(folder / hostile.name, std::ios::binary);
            file.write(reinterpret_cast<const char*>(hostile.bytes.data()),
                       static_cast<std::streamsize>(hostile.bytes.size()));
            list << hostile.name << '\t' << hostile.arguments << '\n';
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "hostile_files: %s\n", error.what());
        return 1;
    }
    return 0;
}

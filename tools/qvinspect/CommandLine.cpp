#include "CommandLine.h"

#include <CLI/CLI.hpp>

#include "ExitCode.h"

namespace qvinspect {

CommandLine parseCommandLine(int argc, const char* const* argv) {
    CLI::App app(
        "Lists access units, NAL units, parameter sets and SEI messages of H.264 and H.265 video: raw Annex "
        "B\n"
        "files and containers.",
        "qvinspect");
    app.footer(
        "Exit code: 0 when every file was listed, broken as it may be; 1 for a wrong command line;\n"
        "2 when a file could not be inspected at all.");
    CommandLine line;
    std::string codec = "auto";
    app.add_option("--codec", codec, "What the files hold; in a container, the video to choose")
        ->check(CLI::IsMember({"auto", "h264", "h265"}))
        ->capture_default_str();
    std::vector<int> requested;
    app.add_option("--request", requested, "SEI payload type to keep as an item; may be given again")
        ->type_name("TYPE")
        ->expected(1)
        ->take_all()
        ->check(CLI::NonNegativeNumber);
    app.add_option("FILE", line.files, "Files to inspect, one after the other")->required();
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        line.exitCode = app.exit(error) == 0 ? kExitOk : kExitUsage;
        return line;
    }
    line.requested.assign(requested.begin(), requested.end());
    if (codec != "auto") {
        line.codec = codec == "h264" ? QVCodecIDAvc : QVCodecIDHevc;
    }
    return line;
}

}  // namespace qvinspect

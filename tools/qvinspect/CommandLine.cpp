#include "CommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <map>
#include <set>
#include <stdexcept>

#include "ExitCode.h"
#include "analysis/NalUnitNames.h"
#include "report/JsonSchema.h"

namespace qvinspect {

namespace {

constexpr const char* kInputGroup = "Input";
constexpr const char* kShownGroup = "What is shown";
constexpr const char* kOutputGroup = "Outputs (- for standard output)";
constexpr const char* kCheckGroup = "Checks";

const std::map<std::string, std::optional<QVCodecID>> kCodecs = {
    {"auto", std::nullopt}, {"h264", QVCodecIDAvc}, {"h265", QVCodecIDHevc}};
const std::map<std::string, InputFormat> kFormats = {
    {"auto", InputFormat::Auto},    {"annexb", InputFormat::AnnexB}, {"lp1", InputFormat::Lengths1},
    {"lp2", InputFormat::Lengths2}, {"lp4", InputFormat::Lengths4},  {"container", InputFormat::Container}};
const std::map<std::string, Level> kLevels = {{"summary", Level::Summary},
                                              {"samples", Level::Samples},
                                              {"nalus", Level::Nalus},
                                              {"sei", Level::Sei},
                                              {"fields", Level::Fields}};
const std::map<std::string, ColorUse> kColors = {
    {"auto", ColorUse::Auto}, {"always", ColorUse::Always}, {"never", ColorUse::Never}};

template <typename Value>
std::set<std::string> namesOf(const std::map<std::string, Value>& values) {
    std::set<std::string> names;
    for (const auto& entry : values) {
        names.insert(entry.first);
    }
    return names;
}

// Texts as they stand on the command line, ahead of being understood.
struct Words {
    std::string codec = "auto";
    std::string format = "auto";
    std::string level;
    std::string color = "auto";
    std::vector<int> requested;
    std::vector<std::string> t35;
    std::vector<std::string> checks;
    bool listChecks = false;
    bool showSchema = false;
};

uint32_t hexNumber(const std::string& text, uint32_t most, const std::string& whole) {
    const bool hasPrefix = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const char* const begin = text.data() + (hasPrefix ? 2 : 0);
    const char* const end = text.data() + text.size();
    uint32_t number = 0;
    const auto [stop, error] = std::from_chars(begin, end, number, 16);
    if (begin == end || error != std::errc() || stop != end || number > most) {
        throw std::invalid_argument(fmt::format(
            "--t35 {}: write the country code in hexadecimal, as in b5, or with the provider code, "
            "as in b5:0031",
            whole));
    }
    return number;
}

T35Codes parseT35(const std::string& text) {
    const size_t colon = text.find(':');
    T35Codes codes{static_cast<uint8_t>(hexNumber(text.substr(0, colon), 0xFF, text)), std::nullopt};
    if (colon != std::string::npos) {
        codes.itu_t_t35_provider_code =
            static_cast<uint16_t>(hexNumber(text.substr(colon + 1), 0xFFFF, text));
    }
    return codes;
}

void addInputOptions(CLI::App& app, CommandLine& line, Words& words) {
    app.add_option("FILE", line.files, "Files to inspect, one after the other; - for standard input");
    app.add_option("--codec", words.codec, "What the files hold; in a container, the video to choose")
        ->type_name("auto|h264|h265")
        ->check(CLI::IsMember(namesOf(kCodecs)))
        ->group(kInputGroup);
    app.add_option("--format", words.format, "How NAL units are framed, lpN: by lengths of N bytes")
        ->type_name("auto|annexb|lp1|lp2|lp4|container")
        ->check(CLI::IsMember(namesOf(kFormats)))
        ->group(kInputGroup);
    app.add_option("--stream", line.input.stream, "Stream of the container, counted from 0")
        ->type_name("N")
        ->group(kInputGroup);
    app.add_option("--frame-rate", line.input.frameRate, "Frames a second, for a raw stream that tells none")
        ->type_name("RATE")
        ->check(CLI::PositiveNumber)
        ->group(kInputGroup);
    app.add_option("--start", line.input.start, "Leave out the first SECONDS")
        ->type_name("SECONDS")
        ->check(CLI::NonNegativeNumber)
        ->group(kInputGroup);
    app.add_option("--duration", line.input.duration, "Inspect only so many SECONDS")
        ->type_name("SECONDS")
        ->check(CLI::PositiveNumber)
        ->group(kInputGroup);
    app.add_option("--limit", line.input.mostAccessUnits, "Inspect only N access units")
        ->type_name("N")
        ->check(CLI::PositiveNumber)
        ->group(kInputGroup);
}

void addShownOptions(CLI::App& app, CommandLine& line, Words& words) {
    app.add_option(
           "--level", words.level,
           "How deep to go. Without it a summary, or as deep as filters need; JSON and NDJSON in full")
        ->type_name("summary|samples|nalus|sei|fields")
        ->check(CLI::IsMember(namesOf(kLevels)))
        ->group(kShownGroup);
    const auto repeatable = [&](const char* name, auto& values, const char* help, const char* type) {
        return app.add_option(name, values, help)
            ->type_name(type)
            ->allow_extra_args(false)
            ->group(kShownGroup);
    };
    repeatable("--type", line.filter.unitTypes, "Only NAL units of this nal_unit_type", "N")
        ->check(CLI::Range(0, 63));
    repeatable("--sei", line.filter.seiTypes, "Only SEI messages of this payloadType", "TYPE");
    repeatable("--t35", words.t35, "Only ITU-T T.35 messages with these codes, as b5 or b5:0031",
               "COUNTRY[:PROVIDER]");
    app.add_flag("--key-only", line.filter.keyOnly, "Only key access units")->group(kShownGroup);
    app.add_flag("--errors-only", line.filter.errorsOnly, "Only access units with errors")
        ->group(kShownGroup);
    repeatable("--request", words.requested,
               "Have the library keep SEI messages of this payloadType as items", "TYPE")
        ->check(CLI::NonNegativeNumber);
}

void addOutputOptions(CLI::App& app, CommandLine& line, Words& words) {
    const auto file = [&](const char* name, std::string& path, const char* help, const char* type = "FILE") {
        app.add_option(name, path, help)->type_name(type)->group(kOutputGroup);
    };
    file("--json", line.json, "One JSON document");
    file("--ndjson", line.ndjson, "A JSON object on each line");
    file("--csv", line.csv, "A row for each NAL unit");
    file("--html", line.html, "A report to open in a browser");
    file("--to-annexb", line.toAnnexB, "The stream with start codes");
    file("--to-lengths", line.toLengths, "The stream with 4-byte lengths");
    file("--extract-sei", line.extractSei, "Payloads of kept SEI items, with an index", "DIR");
    app.add_option("--color", words.color, "Colours of the listing")
        ->type_name("auto|always|never")
        ->check(CLI::IsMember(namesOf(kColors)))
        ->group(kOutputGroup);
    app.add_flag("--schema", words.showSchema, "Show the JSON Schema of --json and --ndjson")
        ->group(kOutputGroup);
    app.add_flag("--stamp", line.stamp, "Put the date and whole paths into the outputs")->group(kOutputGroup);
}

void addCheckOptions(CLI::App& app, CommandLine& line, Words& words) {
    app.add_option("--check", words.checks, "Hold the stream against a rule; may be given again")
        ->type_name("RULE")
        ->allow_extra_args(false)
        ->group(kCheckGroup);
    app.add_flag("--list-checks", words.listChecks, "Show all rules")->group(kCheckGroup);
    app.add_flag("--strict", line.strict, "Errors in a stream are a failure")->group(kCheckGroup);
}

void understand(CommandLine& line, const Words& words) {
    line.input.codec = kCodecs.at(words.codec);
    line.input.format = kFormats.at(words.format);
    line.color = kColors.at(words.color);
    if (!words.level.empty()) {
        line.level = kLevels.at(words.level);
    }
    line.requested.assign(words.requested.begin(), words.requested.end());
    for (const std::string& text : words.t35) {
        line.filter.t35.push_back(parseT35(text));
    }
    for (const std::string& text : words.checks) {
        line.checks.push_back(parseCheck(text));
    }
    if (line.files.empty()) {
        throw std::invalid_argument("no FILE was named; - stands for standard input");
    }
    const auto isStdin = [](const std::string& file) { return file == "-"; };
    if (std::count_if(line.files.begin(), line.files.end(), isStdin) > 1) {
        throw std::invalid_argument("standard input can be inspected only once");
    }
    const std::vector<std::string> outputs = {line.json, line.ndjson,   line.csv,
                                              line.html, line.toAnnexB, line.toLengths};
    if (std::count(outputs.begin(), outputs.end(), "-") > 1) {
        throw std::invalid_argument("only one output can go to standard output; name a file for the others");
    }
    const bool isRaw = line.input.format != InputFormat::Auto && line.input.format != InputFormat::Container;
    if (line.input.stream && isRaw) {
        throw std::invalid_argument(fmt::format(
            "--stream chooses in a container and --format {} is none; leave one of them out", words.format));
    }
    const bool takesOneInput = !line.toAnnexB.empty() || !line.toLengths.empty() || !line.extractSei.empty();
    if (takesOneInput && line.files.size() > 1) {
        throw std::invalid_argument("--to-annexb, --to-lengths and --extract-sei take one FILE at a time");
    }
}

void listChecks() {
    for (const CheckRule& rule : checkRules()) {
        const std::string name =
            *rule.value == '\0' ? rule.name : fmt::format("{}={}", rule.name, rule.value);
        fmt::print("{:<34} {}\n", name, rule.help);
    }
}

}  // namespace

CommandLine parseCommandLine(int argc, const char* const* argv) {
    CLI::App app("Shows what H.264 and H.265 video holds: raw byte streams and containers.", "qvinspect");
    app.set_version_flag("--version", "qvinspect " QVINSPECT_VERSION);
    app.footer(
        "Examples:\n"
        "  qvinspect movie.mp4                                one screen about the stream\n"
        "  qvinspect --level nalus --limit 50 broken.h264     its first NAL units\n"
        "  qvinspect --html report.html --ndjson all.ndjson movie.mkv\n"
        "  qvinspect --check no-errors --check max-key-interval=2s movie.ts\n"
        "\n"
        "Exit code: 0 fine, 1 wrong command line, 2 an input cannot be opened or holds no such video,\n"
        "3 errors in a stream with --strict, 4 a check failed, 5 an output cannot be written,\n"
        "130 interrupted.");
    CommandLine line;
    Words words;
    addInputOptions(app, line, words);
    addShownOptions(app, line, words);
    addOutputOptions(app, line, words);
    addCheckOptions(app, line, words);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        line.exitCode = app.exit(error) == 0 ? kExitOk : kExitUsage;
        return line;
    }
    if (words.listChecks) {
        listChecks();
        line.exitCode = kExitOk;
        return line;
    }
    if (words.showSchema) {
        fmt::print("{}", kJsonSchema);
        line.exitCode = kExitOk;
        return line;
    }
    try {
        understand(line, words);
    } catch (const std::invalid_argument& error) {
        fmt::print(stderr, "{}\nRun with --help for more information.\n", error.what());
        line.exitCode = kExitUsage;
    }
    return line;
}

}  // namespace qvinspect

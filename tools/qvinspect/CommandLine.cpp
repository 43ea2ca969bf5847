#include "CommandLine.h"

#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <utility>

#include "ExitCode.h"
#include "FilePlace.h"
#include "report/Diagnostics.h"
#include "report/JsonSchema.h"
#include "report/Output.h"
#include "report/PrintableName.h"

namespace qvinspect {

namespace {

constexpr const char* kInputGroup = "Input";
constexpr const char* kShownGroup = "What is shown";
constexpr const char* kOutputGroup = "Outputs (- for standard output)";
constexpr const char* kCheckGroup = "Checks";
constexpr const char* kOtherGroup = "Other";

// The values of an option, in the order in which they are shown.
template <typename Value>
using Choices = std::vector<std::pair<const char*, Value>>;

const Choices<std::optional<QVCodecID>> kCodecs = {
    {"auto", std::nullopt}, {"h264", QVCodecIDAvc}, {"h265", QVCodecIDHevc}};
const Choices<InputFormat> kFormats = {{"auto", InputFormat::Auto},    {"annexb", InputFormat::AnnexB},
                                       {"lp1", InputFormat::Lengths1}, {"lp2", InputFormat::Lengths2},
                                       {"lp4", InputFormat::Lengths4}, {"container", InputFormat::Container}};
const Choices<Level> kLevels = {{"summary", Level::Summary}, {"samples", Level::Samples},
                                {"nalus", Level::Nalus},     {"sei", Level::Sei},
                                {"fields", Level::Fields},   {"elements", Level::Elements}};
const Choices<ColorUse> kColors = {
    {"auto", ColorUse::Auto}, {"always", ColorUse::Always}, {"never", ColorUse::Never}};

template <typename Value>
auto find(const Choices<Value>& choices, const std::string& word) {
    return std::find_if(choices.begin(), choices.end(),
                        [&](const auto& choice) { return word == choice.first; });
}

// The message for a wrong word lists the valid ones.
template <typename Value>
auto oneOf(const Choices<Value>& choices) {
    return [&choices](const std::string& word) {
        if (find(choices, word) != choices.end()) {
            return std::string();
        }
        std::vector<const char*> names;
        for (const auto& choice : choices) {
            names.push_back(choice.first);
        }
        return fmt::format("\"{}\" is none of {}", printableName(word), fmt::join(names, ", "));
    };
}

template <typename Number>
std::optional<Number> numberOf(const std::string& word) {
    Number number{};
    const char* const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    return error == std::errc() && stop == end ? std::optional<Number>(number) : std::nullopt;
}

auto wholeNumber(uint64_t least, uint64_t most, const char* range) {
    return [=](const std::string& word) {
        const auto number = numberOf<uint64_t>(word);
        return number && *number >= least && *number <= most
                   ? std::string()
                   : fmt::format("\"{}\" is no number {}", printableName(word), range);
    };
}

std::string refuseNonNegative(const std::string& word) {
    const auto number = numberOf<double>(word);
    return number && std::isfinite(*number) && *number >= 0
               ? std::string()
               : fmt::format("\"{}\" is no number from 0 on", printableName(word));
}

std::string refusePositive(const std::string& word) {
    const auto number = numberOf<double>(word);
    return number && std::isfinite(*number) && *number > 0
               ? std::string()
               : fmt::format("\"{}\" is no number above 0", printableName(word));
}

// Texts of the command line before they are parsed.
struct Words {
    std::string codec = "auto";
    std::string format = "auto";
    std::string level;
    std::string color = "auto";
    std::vector<int> requested;
    std::vector<std::string> t35;
    std::vector<std::string> dropSei;
    std::vector<std::string> keepSei;
    std::vector<std::string> dropT35;
    std::vector<std::string> checks;
    bool listChecks = false;
    bool showSchema = false;
};

// Without the 0x that may be before each of the numbers.
std::string withoutPrefixes(std::string text) {
    for (const size_t begin : {text.find(':') + 1, size_t{0}}) {
        if (text.compare(begin, 2, "0x") == 0 || text.compare(begin, 2, "0X") == 0) {
            text.erase(begin, 2);
        }
    }
    return text;
}

qv::sei::T35Code parseT35(const char* option, const std::string& text) {
    const auto code = qv::sei::t35CodeOf(withoutPrefixes(text));
    if (!code) {
        throw std::invalid_argument(
            fmt::format("{}: \"{}\" is not a code; write the country in hexadecimal, as b5, or with the "
                        "provider, as b5:0031",
                        option, printableName(text)));
    }
    return *code;
}

// The words between commas.
std::vector<std::string> wordsOf(const std::string& list) {
    std::vector<std::string> words;
    size_t begin = 0;
    for (size_t comma = list.find(','); comma != std::string::npos; comma = list.find(',', begin)) {
        words.push_back(list.substr(begin, comma - begin));
        begin = comma + 1;
    }
    words.push_back(list.substr(begin));
    return words;
}

std::vector<uint32_t> parseTypes(const char* option, const std::vector<std::string>& lists) {
    std::vector<uint32_t> types;
    for (const std::string& list : lists) {
        for (const std::string& word : wordsOf(list)) {
            const auto type = numberOf<uint32_t>(word);
            if (!type) {
                throw std::invalid_argument(fmt::format(
                    "{}: \"{}\" is no payloadType; write numbers, as 4 or 4,5", option, printableName(word)));
            }
            types.push_back(*type);
        }
    }
    return types;
}

SeiRemoval removalOf(const Words& words) {
    SeiRemoval removal;
    removal.droppedTypes = parseTypes("--drop-sei", words.dropSei);
    removal.keptTypes = parseTypes("--keep-sei", words.keepSei);
    for (const std::string& list : words.dropT35) {
        for (const std::string& word : wordsOf(list)) {
            removal.droppedT35.push_back(parseT35("--drop-t35", word));
        }
    }
    return removal;
}

void addInputOptions(CLI::App& app, CommandLine& line, Words& words) {
    app.add_option("FILE", line.files);
    app.add_option("--codec", words.codec, "auto, h264 or h265; in a container, the video to select")
        ->type_name("CODEC")
        ->check(oneOf(kCodecs))
        ->group(kInputGroup);
    app.add_option("--format", words.format,
                   "auto, annexb, container, or lp1, lp2, lp4 for raw\n"
                   "streams with lengths of 1, 2 or 4 bytes")
        ->type_name("FORMAT")
        ->check(oneOf(kFormats))
        ->group(kInputGroup);
    app.add_option("--stream", line.input.stream, "stream of the container, counted from 0")
        ->type_name("N")
        ->check(wholeNumber(0, UINT_MAX, "from 0 on"))
        ->group(kInputGroup);
    app.add_option("--frame-rate", line.input.frameRate, "frames a second, for a raw stream without a rate")
        ->type_name("RATE")
        ->check(refusePositive)
        ->group(kInputGroup);
    app.add_option("--start", line.input.start, "leave out the first SECONDS")
        ->type_name("SECONDS")
        ->check(refuseNonNegative)
        ->group(kInputGroup);
    app.add_option("--duration", line.input.duration, "inspect only so many SECONDS")
        ->type_name("SECONDS")
        ->check(refusePositive)
        ->group(kInputGroup);
    app.add_option("--limit", line.input.mostAccessUnits, "inspect only N access units")
        ->type_name("N")
        ->check(wholeNumber(1, UINT64_MAX, "from 1 on"))
        ->group(kInputGroup);
}

void addShownOptions(CLI::App& app, CommandLine& line, Words& words) {
    app.add_option("--level", words.level,
                   "summary, samples, nalus, sei, fields or elements: the\n"
                   "depth;\n"
                   "without it a summary, or the depth that filters need,\n"
                   "and everything in JSON and NDJSON")
        ->type_name("LEVEL")
        ->check(oneOf(kLevels))
        ->group(kShownGroup);
    const auto repeatable = [&](const char* name, auto& values, const char* help, const char* type) {
        return app.add_option(name, values, help)
            ->type_name(type)
            ->allow_extra_args(false)
            ->group(kShownGroup);
    };
    repeatable("--type", line.filter.unitTypes, "only NAL units of this nal_unit_type", "N")
        ->check(wholeNumber(0, 63, "from 0 to 63"));
    repeatable("--sei", line.filter.seiTypes, "only SEI messages of this payloadType", "TYPE")
        ->check(wholeNumber(0, UINT32_MAX, "from 0 on"));
    repeatable("--t35", words.t35, "only ITU-T T.35 messages of these codes: b5, b5:0031", "CODES");
    app.add_flag("--key-only", line.filter.keyOnly, "only key access units")->group(kShownGroup);
    app.add_flag("--errors-only", line.filter.errorsOnly, "only access units with errors")
        ->group(kShownGroup);
    repeatable("--request", words.requested, "keep SEI messages of this payloadType as items", "TYPE")
        ->check(wholeNumber(0, INT_MAX, "from 0 on"));
}

void addOutputOptions(CLI::App& app, CommandLine& line, Words& words) {
    const auto file = [&](const char* name, std::string& path, const char* help, const char* type = "FILE") {
        app.add_option(name, path, help)->type_name(type)->group(kOutputGroup);
    };
    file("--json", line.json, "one JSON document");
    file("--ndjson", line.ndjson, "a JSON object on each line");
    file("--csv", line.csv, "a row for each NAL unit");
    file("--html", line.html, "a report to open in a browser");
    file("--to-annexb", line.toAnnexB, "the stream with start codes");
    file("--to-lengths", line.toLengths, "the stream with 4-byte lengths");
    app.add_flag("--rewrite", line.rewrite,
                 "to standard output: as --to-annexb, with each unit that\n"
                 "can be read into a record written from it")
        ->group(kOutputGroup);
    const auto list = [&](const char* name, std::vector<std::string>& lists, const char* help,
                          const char* type) {
        app.add_option(name, lists, help)->type_name(type)->allow_extra_args(false)->group(kOutputGroup);
    };
    list("--drop-sei", words.dropSei,
         "streams are written without SEI messages of these\n"
         "payloadTypes: 4 or 4,5",
         "TYPES");
    list("--keep-sei", words.keepSei,
         "streams are written with SEI messages of these\n"
         "payloadTypes only",
         "TYPES");
    list("--drop-t35", words.dropT35,
         "streams are written without ITU-T T.35 messages of these\n"
         "codes: 26:0004",
         "CODES");
    app.add_flag("--elements", line.elements,
                 "to standard output: the syntax elements of each NAL unit,\n"
                 "a JSON object on each line")
        ->group(kOutputGroup);
    file("--extract-sei", line.extractSei, "a new folder of SEI items, a file for each, and an index", "DIR");
    app.add_option("--color", words.color, "auto, always or never: colours of the listing")
        ->type_name("WHEN")
        ->check(oneOf(kColors))
        ->group(kOutputGroup);
    app.add_flag("--schema", words.showSchema, "show the JSON Schema of --json and --ndjson")
        ->group(kOutputGroup);
    app.add_flag("--stamp", line.stamp, "put the date and whole paths into the outputs")->group(kOutputGroup);
}

void addCheckOptions(CLI::App& app, CommandLine& line, Words& words) {
    app.add_option("--check", words.checks, "check the stream against a rule; may be given again")
        ->type_name("RULE")
        ->allow_extra_args(false)
        ->group(kCheckGroup);
    app.add_flag("--list-checks", words.listChecks, "show all rules")->group(kCheckGroup);
    app.add_flag("--strict", line.strict, "errors in a stream are a failure")->group(kCheckGroup);
}

void addOtherOptions(CLI::App& app) {
    app.set_help_flag("-h,--help", "show this")->group(kOtherGroup);
    app.set_version_flag("--version", "qvinspect " QVINSPECT_VERSION, "show the version")->group(kOtherGroup);
}

// Each option on its own lines, in two columns that fit a terminal.
class Help : public CLI::FormatterBase {
public:
    std::string make_help(const CLI::App* app, std::string, CLI::AppFormatMode) const override {
        std::string text =
            fmt::format("{}\n\nUsage: qvinspect [OPTION]... FILE...\n", app->get_description());
        for (const char* group : {kInputGroup, kShownGroup, kOutputGroup, kCheckGroup, kOtherGroup}) {
            text += fmt::format("\n{}:\n", group);
            for (const CLI::Option* option : app->get_options(
                     [&](const CLI::Option* candidate) { return candidate->get_group() == group; })) {
                text += optionHelp(*option);
            }
        }
        return fmt::format("{}\n{}\n", text, app->get_footer());
    }

private:
    static std::string optionHelp(const CLI::Option& option) {
        constexpr size_t kColumn = 22;
        const std::string type = option.get_expected_max() > 0 ? " " + option.get_type_name() : "";
        std::string help = option.get_description();
        for (size_t at = help.find('\n'); at != std::string::npos; at = help.find('\n', at + 1)) {
            help.insert(at + 1, kColumn, ' ');
        }
        return fmt::format("{:<{}}{}\n", fmt::format("  {}{}", option.get_name(false, true), type), kColumn,
                           help);
    }
};

constexpr const char* kFooter =
    "Examples:\n"
    "  qvinspect movie.mp4                              a summary on one screen\n"
    "  qvinspect --level nalus --limit 50 broken.h264   its first NAL units\n"
    "  qvinspect --html report.html --ndjson all.ndjson movie.mkv\n"
    "  qvinspect --check no-errors --check max-key-interval=2s movie.ts\n"
    "  qvinspect --to-annexb - movie.mp4 | player -\n"
    "\n"
    "Exit code: 0 success, 1 wrong command line, 2 an input cannot be opened or has\n"
    "no such video, 3 errors in a stream (--strict), 4 a check failed, 5 an output\n"
    "cannot be written, or not all of it, 130 interrupted.";

// "--option" and its output, for the outputs on the command line.
using NamedOutputs = std::vector<std::pair<const char*, std::string>>;

NamedOutputs outputsOf(const CommandLine& line) {
    NamedOutputs outputs = {{"--json", line.json},
                            {"--ndjson", line.ndjson},
                            {"--csv", line.csv},
                            {"--html", line.html},
                            {"--to-annexb", line.toAnnexB},
                            {"--to-lengths", line.toLengths},
                            {"--rewrite", line.rewrite ? "-" : ""},
                            {"--elements", line.elements ? "-" : ""}};
    outputs.erase(std::remove_if(outputs.begin(), outputs.end(),
                                 [](const auto& output) { return output.second.empty(); }),
                  outputs.end());
    return outputs;
}

// The name of a file in messages, and its identity.
struct NamedPlace {
    std::string name;
    FilePlace place;
};

NamedPlace placeOfInput(const std::string& path) {
    return path == "-" ? NamedPlace{"standard input", placeOf(STDIN_FILENO)}
                       : NamedPlace{"the input " + printableName(path), placeOf(path)};
}

// Includes standard output, which the listing uses if no output is "-".
std::vector<NamedPlace> placesOf(const NamedOutputs& outputs) {
    std::vector<NamedPlace> places = {{"standard output", placeOf(STDOUT_FILENO)}};
    for (const auto& [option, path] : outputs) {
        if (path != "-") {
            places.push_back({fmt::format("{} {}", option, printableName(path)), placeOf(path)});
        }
    }
    return places;
}

[[noreturn]] void refuseSame(const NamedPlace& a, const NamedPlace& b) {
    throw std::invalid_argument(
        fmt::format("{} and {} are the same file; name another file", a.name, b.name));
}

void refuseClashes(const CommandLine& line) {
    const NamedOutputs outputs = outputsOf(line);
    const auto isStdout = [](const auto& output) { return output.second == "-"; };
    if (std::count_if(outputs.begin(), outputs.end(), isStdout) > 1) {
        throw std::invalid_argument("only one output can go to standard output; name a file for the others");
    }
    const std::vector<NamedPlace> places = placesOf(outputs);
    for (auto output = places.begin(); output != places.end(); ++output) {
        for (const std::string& file : line.files) {
            const NamedPlace input = placeOfInput(file);
            if (canWriteOver(output->place, input.place)) {
                refuseSame(*output, input);
            }
        }
        for (auto other = places.begin(); other != output; ++other) {
            if (canWriteOverEachOther(output->place, other->place)) {
                refuseSame(*other, *output);
            }
        }
    }
}

void understand(CommandLine& line, const Words& words) {
    line.input.codec = find(kCodecs, words.codec)->second;
    line.input.format = find(kFormats, words.format)->second;
    line.color = find(kColors, words.color)->second;
    if (!words.level.empty()) {
        line.level = find(kLevels, words.level)->second;
    }
    line.requested.assign(words.requested.begin(), words.requested.end());
    for (const std::string& text : words.t35) {
        line.filter.t35.push_back(parseT35("--t35", text));
    }
    line.removal = removalOf(words);
    for (const std::string& text : words.checks) {
        line.checks.push_back(parseCheck(text));
    }
    if (line.files.empty()) {
        throw std::invalid_argument("no FILE was named; - is standard input");
    }
    const auto isStdin = [](const std::string& file) { return file == "-"; };
    if (std::count_if(line.files.begin(), line.files.end(), isStdin) > 1) {
        throw std::invalid_argument("standard input can be inspected only once");
    }
    refuseClashes(line);
    const bool isRaw = line.input.format != InputFormat::Auto && line.input.format != InputFormat::Container;
    if (line.input.stream && isRaw) {
        throw std::invalid_argument(fmt::format(
            "--stream selects a stream of a container and --format {} is not one; leave one of them out",
            words.format));
    }
    const bool writesStream = !line.toAnnexB.empty() || !line.toLengths.empty() || line.rewrite;
    if (!line.removal.empty() && !writesStream) {
        throw std::invalid_argument(
            "--drop-sei, --keep-sei and --drop-t35 change the stream of --to-annexb, --to-lengths or "
            "--rewrite; "
            "name one of them");
    }
    const bool takesOneInput = writesStream || !line.extractSei.empty();
    if (takesOneInput && line.files.size() > 1) {
        throw std::invalid_argument(
            "--to-annexb, --to-lengths, --rewrite and --extract-sei take one FILE at a time");
    }
}

std::string listOfChecks() {
    std::string text;
    for (const CheckRule& rule : checkRules()) {
        const std::string name =
            *rule.value == '\0' ? rule.name : fmt::format("{}={}", rule.name, rule.value);
        text += fmt::format("{:<28}{}\n", name, rule.help);
    }
    return text;
}

void show(const std::string& text) {
    Output out("-");
    out.write(text);
    out.close();
}

int refuse(const std::string& reason) {
    complain(printableName(reason), "\nqvinspect --help shows all options.");
    return kExitUsage;
}

}  // namespace

CommandLine parseCommandLine(int argc, const char* const* argv) {
    CLI::App app("Shows the contents of H.264 and H.265 video in raw byte streams and containers.",
                 "qvinspect");
    app.formatter(std::make_shared<Help>());
    app.footer(kFooter);
    CommandLine line;
    Words words;
    addInputOptions(app, line, words);
    addShownOptions(app, line, words);
    addOutputOptions(app, line, words);
    addCheckOptions(app, line, words);
    addOtherOptions(app);
    try {
        app.parse(argc, argv);
        if (words.listChecks || words.showSchema) {
            show(words.listChecks ? listOfChecks() : kJsonSchema);
            line.exitCode = kExitOk;
            return line;
        }
        understand(line, words);
    } catch (const CLI::CallForHelp&) {
        show(app.help());
        line.exitCode = kExitOk;
    } catch (const CLI::CallForVersion& version) {
        show(fmt::format("{}\n", version.what()));
        line.exitCode = kExitOk;
    } catch (const CLI::ParseError& error) {
        line.exitCode = refuse(error.what());
    } catch (const std::invalid_argument& error) {
        line.exitCode = refuse(error.what());
    }
    return line;
}

}  // namespace qvinspect

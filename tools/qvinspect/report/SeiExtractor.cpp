#include "report/SeiExtractor.h"

#include <fmt/format.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "analysis/SeiNames.h"
#include "input/Budgets.h"

namespace qvinspect {

namespace {

using Json = nlohmann::ordered_json;

// Makes the folder, or uses an empty one, and returns the path of the index.
std::string indexIn(const std::string& folder) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (!fs::is_directory(folder, error) && fs::exists(folder, error)) {
        throw OutputError(fmt::format("{} is not a folder: name a new one", outputName(folder)));
    }
    fs::create_directory(folder, error);
    if (error) {
        throw OutputError(fmt::format("{} cannot be made: {}", outputName(folder), error.message()));
    }
    const bool isEmpty = fs::is_empty(folder, error);
    if (error) {
        throw OutputError(fmt::format("{} cannot be used: {}", outputName(folder), error.message()));
    }
    if (!isEmpty) {
        throw OutputError(fmt::format("{} is not empty: name a new folder, or empty it", outputName(folder)));
    }
    return folder + "/index.json";
}

std::string textOf(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

SeiExtractor::SeiExtractor(const std::string& folder) : folder_(folder), index_(indexIn(folder)) {}

void SeiExtractor::fail(const std::string& name, const std::string& reason) {
    if (std::exchange(isListing_, false)) {
        index_.print("\n], \"left_out\": {}, \"error\": {}}}\n", leftOut_, textOf(reason));
    } else {
        index_.write(textOf({{"input", name}, {"error", reason}}) + "\n");
    }
}

void SeiExtractor::begin(const StreamHead& head) {
    codec_ = head.info.parameters.codecId;
    index_.print("{{\"input\": {}, \"codec\": \"{}\", \"items\": [", textOf(head.name),
                 codec_ == QVCodecIDAvc ? "h264" : "h265");
    isListing_ = true;
}

void SeiExtractor::add(const AccessUnitView& view) {
    bytes_ += view.accessUnit.size;
    for (const RecordItemView& record : view.recordItems) {
        take(view, nullptr, record.nalUnitType, *record.item);
    }
    for (const UnitView& unit : view.units) {
        for (const SeiItem* item : unit.items) {
            take(view, unit.report, unit.report->type, *item);
        }
    }
    leftOut_ += view.isShown ? view.details.unlistedItems : 0;
}

void SeiExtractor::take(const AccessUnitView& view, const UnitReport* unit, uint32_t nalUnitType,
                        const SeiItem& item) {
    if (items_ < extractedFiles(bytes_)) {
        addItem(view, unit, nalUnitType, item);
    } else {
        ++leftOut_;
    }
}

void SeiExtractor::addItem(const AccessUnitView& view, const UnitReport* unit, uint32_t nalUnitType,
                           const SeiItem& item) {
    const std::string name =
        fmt::format("{:08}_au{:08}_sei{}.bin", items_ + 1, view.number, item.payloadType);
    Output file(folder_ + "/" + name);
    file.write(item.bytes.data(), item.bytes.size());
    file.close();
    const Json entry = {{"file", name},
                        {"access_unit", view.number},
                        {"time", view.time ? Json(*view.time) : Json()},
                        {"offset", unit != nullptr ? Json(unit->offset) : Json()},
                        {"nal_unit_type", nalUnitType},
                        {"payload_type", item.payloadType},
                        {"name", seiName(codec_, item.payloadType)},
                        {"size", item.bytes.size()},
                        {"requested", item.delivery == Delivery::Requested},
                        {"delivery", item.delivery == Delivery::Text ? "text" : "payload"}};
    index_.print("{}\n{}", items_ == 0 ? "" : ",", textOf(entry));
    ++items_;
}

void SeiExtractor::end(const StreamEnd&) {
    index_.print("\n], \"left_out\": {}}}\n", leftOut_);
    isListing_ = false;
}

void SeiExtractor::finish() {
    index_.close();
    if (leftOut_ > 0) {
        throw OutputError(
            fmt::format("{} SEI items have no file in {}: there are too many for a stream of {} bytes",
                        leftOut_, outputName(folder_), bytes_));
    }
}

}  // namespace qvinspect

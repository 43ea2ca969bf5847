// A JSON object on each line that can be read alone.
#ifndef QVINSPECT_NDJSON_H
#define QVINSPECT_NDJSON_H

#include <cstdint>
#include <string>

#include "report/JsonRecords.h"
#include "report/Output.h"
#include "report/Presenter.h"

namespace qvinspect {

class Ndjson : public Presenter {
public:
    Ndjson(const std::string& path, JsonOptions options);

    void fail(const std::string& name, const std::string& reason) override;
    void begin(const StreamHead& head) override;
    void add(const AccessUnitView& view) override;
    void end(const StreamEnd& end) override;
    void finish() override;

private:
    JsonRecord recordOf(const char* kind) const;
    void write(const JsonRecord& record);

    Output output_;
    JsonOptions options_;
    std::string name_;
    uint64_t fileIndex_ = 0;  // of the current input, or of the next one
    bool isFileOpen_ = false;
};

}  // namespace qvinspect

#endif

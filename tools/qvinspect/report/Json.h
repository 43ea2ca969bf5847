// One JSON document, written as the inputs are read.
#ifndef QVINSPECT_JSON_H
#define QVINSPECT_JSON_H

#include <string>

#include "report/JsonRecords.h"
#include "report/Output.h"
#include "report/Presenter.h"

namespace qvinspect {

class Json : public Presenter {
public:
    Json(const std::string& path, JsonOptions options);

    void fail(const std::string& name, const std::string& reason) override;
    void begin(const StreamHead& head) override;
    void add(const AccessUnitView& view) override;
    void end(const StreamEnd& end) override;
    void finish() override;

private:
    void beginFile(const JsonRecord& members);
    void endFile(const JsonRecord& members);

    Output output_;
    JsonOptions options_;
    bool isFirstFile_ = true;
    bool isFileOpen_ = false;
    bool isFirstAccessUnit_ = true;
};

}  // namespace qvinspect

#endif

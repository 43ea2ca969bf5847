// The JSON Schema of what --json and --ndjson write.
#ifndef QVINSPECT_JSONSCHEMA_H
#define QVINSPECT_JSONSCHEMA_H

namespace qvinspect {

// report/inspector-output.schema.json to the letter.
extern const char kJsonSchema[];

}  // namespace qvinspect

#endif

// What makes values of records.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "DocumentReader.h"
#include "RecordBatch.h"
#include "Ref.h"

#include <cstddef>
#include <memory>
#include <string>

namespace OrvUQL::Tool {

/// For one thread, to which the values belong as well.
class RecordValues {
public:
    virtual ~RecordValues() = default;

    /// The value of a record of the batch; or null, with the place and the message in `failure`. Increases the batch's
    /// replacements and may set its brokenLine. Throws std::bad_alloc.
    virtual Ref<IObject> Make(RecordBatch& batch, const RecordBatch::Record& record, RecordBatch::Failure& failure) = 0;
};

/// ":LINE:COLUMN", as it stands behind the name of a file.
std::string TellPlace(std::size_t line, std::size_t column);

/// Documents of JSON.
std::unique_ptr<RecordValues> MakeJsonValues(JsonLibrary library);
/// Lines as strings.
std::unique_ptr<RecordValues> MakeLineValues();

} // namespace OrvUQL::Tool

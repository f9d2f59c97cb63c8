// Evaluates the records of a batch.
#pragma once

#include "Options.h"
#include "QueryRunner.h"
#include "RecordBatch.h"
#include "RecordValues.h"

#include <memory>
#include <string>

namespace OrvUQL::Tool {

/// For one thread.
class RecordEvaluator {
public:
    /// `queryRunner` is borrowed and must be prepared; so are the options.
    RecordEvaluator(QueryRunner& queryRunner, const QueryOptions& queryOptions, const Printer& resultPrinter);

    /// Fills what of the batch is the evaluator's.
    void Evaluate(RecordBatch& batch);

private:
    bool EvaluateRecord(RecordBatch& batch, const RecordBatch::Record& record);
    void SetValue(IObject* value);

    QueryRunner& runner;
    const QueryOptions& options;
    std::string nullLine; // what stands for a record that failed
    std::unique_ptr<RecordValues> values;
};

} // namespace OrvUQL::Tool

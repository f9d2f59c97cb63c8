// Evaluates the records of a batch.
#pragma once

#include "JsonReader.h"
#include "QueryRunner.h"
#include "RecordBatch.h"

namespace OrvUQL::Tool {

/// For one thread.
class RecordEvaluator {
public:
    /// `queryRunner` is borrowed and must be prepared. With `goOn` a record that fails does not end its batch.
    RecordEvaluator(QueryRunner& queryRunner, bool goOn) : runner(queryRunner), keepGoing(goOn) {}

    /// Fills the batch's output, failures and isInputSpoilt. Stops at text that is not JSON.
    void Evaluate(RecordBatch& batch);

private:
    QueryRunner& runner;
    JsonReader reader;
    bool keepGoing;
};

} // namespace OrvUQL::Tool

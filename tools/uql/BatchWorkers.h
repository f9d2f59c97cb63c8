// The threads that evaluate batches.
#pragma once

#include "Options.h"
#include "RecordBatch.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace OrvUQL::Tool {

/// Thrown where no engine can be prepared as the first one was: an automation server may refuse another object. A
/// thread that cannot prepare its own, as it may have less stack for a deeply nested query, leaves the work to others.
struct WorkerFailed {
    std::string message;
};

/// Takes batches and gives them back evaluated, in the same order. Each thread has an engine, a query tree and a JSON
/// reader of its own.
class BatchWorkers {
public:
    /// `queryText` must have been parsed once without an error; it and the options are borrowed. The caller's thread is
    /// one of those that evaluate: it does so instead of waiting, unless results are to be written at once.
    BatchWorkers(const std::string& queryText, const QueryOptions& queryOptions, const Printer& resultPrinter);
    BatchWorkers(const BatchWorkers&) = delete;
    BatchWorkers& operator=(const BatchWorkers&) = delete;
    /// Batches that have not been begun are given up.
    ~BatchWorkers();

    bool IsEmpty() const { return pending.empty(); }
    /// As many batches as keep every thread busy while the oldest is waited for; of large records one for each thread.
    bool IsFull() const {
        return pending.size() >= capacity ||
               (pendingBytes >= manyBytes && pending.size() >= static_cast<std::size_t>(options.jobs));
    }
    void Submit(std::unique_ptr<RecordBatch> batch);
    /// Waits for the oldest batch. Throws what its evaluation threw, or WorkerFailed.
    std::unique_ptr<RecordBatch> Take();

private:
    struct Entry {
        std::unique_ptr<RecordBatch> batch;
        bool isDone = false;
    };
    class Worker;

    void Run();
    bool MakeWorker(std::unique_lock<std::mutex>& lock, std::unique_ptr<Worker>& worker);
    void EvaluateNext(std::unique_lock<std::mutex>& lock, Worker& worker);

    static constexpr std::size_t manyBytes = 8 << 20;

    const std::string& text;
    const QueryOptions& options;
    const Printer& printer;
    bool helps; // the caller's thread, where there are others
    std::size_t capacity;
    std::unique_ptr<Worker> ownWorker;          // of the caller's thread
    std::deque<std::shared_ptr<Entry>> pending; // the caller's: all that has been submitted and not taken
    std::size_t pendingBytes = 0;               // of their records
    std::mutex mutex;                           // guards what follows and the entries
    std::condition_variable workArrived;
    std::condition_variable workDone;
    std::deque<std::shared_ptr<Entry>> waiting;
    int working = 0; // the threads that evaluate, or will
    std::exception_ptr workerFailure;
    bool isClosing = false;
    std::vector<std::thread> threads;
};

} // namespace OrvUQL::Tool

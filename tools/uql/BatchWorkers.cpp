#include "BatchWorkers.h"

#include "QueryRunner.h"
#include "RecordEvaluator.h"

#include <system_error>
#include <utility>

namespace OrvUQL::Tool {

/// Everything that one thread evaluates with.
class BatchWorkers::Worker {
public:
    Worker(const std::string& text, const QueryOptions& options, const Printer& printer)
        : runner(printer), evaluator(runner, options, printer) {
        QueryFailure failure;
        if (!runner.Prepare(text, options.settings, failure)) {
            throw WorkerFailed{std::move(failure.message)};
        }
    }

    void Evaluate(RecordBatch& batch) { evaluator.Evaluate(batch); }

private:
    QueryRunner runner;
    RecordEvaluator evaluator;
};

BatchWorkers::BatchWorkers(const std::string& queryText, const QueryOptions& queryOptions, const Printer& resultPrinter)
    : text(queryText), options(queryOptions), printer(resultPrinter), capacity(1) {
    if (options.jobs == 1) {
        ownWorker = std::make_unique<Worker>(text, options, printer);
        return;
    }
    const std::size_t jobs = static_cast<std::size_t>(options.jobs);
    capacity = 4 * jobs;
    threads.reserve(jobs);
    try {
        while (threads.size() < jobs) {
            threads.emplace_back([this] { Run(); });
        }
    } catch (const std::system_error&) {
        // The system gives no more threads. Those that there are do the work, or this one.
        if (threads.empty()) {
            capacity = 1;
            ownWorker = std::make_unique<Worker>(text, options, printer);
        }
    }
}

BatchWorkers::~BatchWorkers() {
    {
        const std::lock_guard lock(mutex);
        isClosing = true;
    }
    workArrived.notify_all();
    for (std::thread& thread : threads) {
        thread.join();
    }
}

void BatchWorkers::Submit(std::unique_ptr<RecordBatch> batch) {
    const auto entry = std::make_shared<Entry>();
    pendingBytes += batch->text.size();
    entry->batch = std::move(batch);
    pending.push_back(entry);
    if (ownWorker) {
        ownWorker->Evaluate(*entry->batch);
        entry->isDone = true;
        return;
    }
    {
        const std::lock_guard lock(mutex);
        waiting.push_back(entry);
    }
    workArrived.notify_one();
}

std::unique_ptr<RecordBatch> BatchWorkers::Take() {
    const std::shared_ptr<Entry> entry = std::move(pending.front());
    pending.pop_front();
    pendingBytes -= entry->batch->text.size();
    std::unique_lock lock(mutex);
    workDone.wait(lock, [&] { return entry->isDone; });
    if (entry->batch->exception) {
        std::rethrow_exception(entry->batch->exception);
    }
    return std::move(entry->batch);
}

void BatchWorkers::Run() {
    std::unique_ptr<Worker> worker;
    for (;;) {
        std::unique_lock lock(mutex);
        workArrived.wait(lock, [this] { return isClosing || !waiting.empty(); });
        if (isClosing) {
            return;
        }
        const std::shared_ptr<Entry> entry = std::move(waiting.front());
        waiting.pop_front();
        lock.unlock();
        try {
            if (!worker) {
                worker = std::make_unique<Worker>(text, options, printer);
            }
            worker->Evaluate(*entry->batch);
        } catch (...) {
            entry->batch->exception = std::current_exception();
        }
        lock.lock();
        entry->isDone = true;
        lock.unlock();
        workDone.notify_one();
    }
}

} // namespace OrvUQL::Tool

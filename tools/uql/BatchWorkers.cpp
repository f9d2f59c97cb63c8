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
    : text(queryText), options(queryOptions), printer(resultPrinter), helps(!queryOptions.isUnbuffered), capacity(1) {
    if (options.jobs == 1) {
        return;
    }
    const std::size_t jobs = static_cast<std::size_t>(options.jobs);
    const std::size_t wanted = helps ? jobs - 1 : jobs;
    capacity = 4 * jobs;
    threads.reserve(wanted);
    try {
        while (threads.size() < wanted) {
            threads.emplace_back([this] { Run(); });
            const std::lock_guard lock(mutex);
            ++working;
        }
    } catch (const std::system_error&) {
        // The system gives no more threads. Those that there are do the work, or this one.
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
    while (!entry->isDone) {
        const bool isAlone = working <= 0;
        if (waiting.empty() || !(helps || isAlone)) {
            workDone.wait(lock);
        } else if (ownWorker) {
            EvaluateNext(lock, *ownWorker);
        } else if (!MakeWorker(lock, ownWorker)) {
            if (isAlone) {
                std::rethrow_exception(workerFailure);
            }
            helps = false;
        }
    }
    if (entry->batch->exception) {
        std::rethrow_exception(entry->batch->exception);
    }
    return std::move(entry->batch);
}

void BatchWorkers::Run() {
    std::unique_ptr<Worker> worker;
    std::unique_lock lock(mutex);
    for (;;) {
        workArrived.wait(lock, [this] { return isClosing || !waiting.empty(); });
        if (isClosing) {
            return;
        }
        if (worker) {
            EvaluateNext(lock, *worker);
        } else if (!MakeWorker(lock, worker)) {
            --working;
            workArrived.notify_one(); // somebody has to do this one's work: another thread,
            workDone.notify_one();    // or the caller's, if that was the last
            return;
        }
    }
}

/// Prepares what the calling thread evaluates with. False, with the exception kept, if that is not possible. `lock` is
/// not held meanwhile.
bool BatchWorkers::MakeWorker(std::unique_lock<std::mutex>& lock, std::unique_ptr<Worker>& worker) {
    std::exception_ptr failure;
    lock.unlock();
    try {
        worker = std::make_unique<Worker>(text, options, printer);
    } catch (...) {
        failure = std::current_exception();
    }
    lock.lock();
    workerFailure = failure ? failure : workerFailure;
    return static_cast<bool>(worker);
}

/// Takes the oldest batch that has not been begun and evaluates it. `lock` is not held meanwhile.
void BatchWorkers::EvaluateNext(std::unique_lock<std::mutex>& lock, Worker& worker) {
    const std::shared_ptr<Entry> entry = std::move(waiting.front());
    waiting.pop_front();
    lock.unlock();
    try {
        worker.Evaluate(*entry->batch);
    } catch (...) {
        entry->batch->exception = std::current_exception();
    }
    lock.lock();
    entry->isDone = true;
    workDone.notify_one();
}

} // namespace OrvUQL::Tool

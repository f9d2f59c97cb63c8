// An interactive session without its terminal: what each entry gives.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "ComObject.h"
#include "Completion.h"
#include "EngineSettings.h"
#include "LastValue.h"
#include "Ref.h"

#include <atomic>
#include <string>
#include <string_view>

namespace OrvUQL::Tool {

struct SessionReply {
    std::string out; ///< for standard output, its lines ended
    std::string err; ///< for standard error
    bool isEnd = false;
};

/// One engine, one thread.
class Session {
public:
    /// With `coloured` the replies have the escape sequences of a terminal in them.
    explicit Session(bool coloured) : isColoured(coloured) {}

    /// False with the reason in `error`: see PrepareEngine.
    bool Prepare(const EngineSettings& settings, std::string& error);

    /// From now on queries end as soon as this flag is true. Borrowed.
    void SetCancelFlag(const std::atomic<bool>& flag) { cancel = &flag; }

    /// A query, or a command, which begins with a colon.
    SessionReply Enter(const std::string& entry);

    /// True if an entry goes on in the next line: a bracket, a brace or a quote is open.
    static bool NeedsMore(std::string_view entry);

    /// What can stand at a place of an entry.
    Completion Complete(std::string_view entry, std::size_t cursor);

private:
    friend class SessionCommands;

    struct Query {
        OrvStringT text;
        Ref<IQueryElement> tree;
    };

    /// For as long as it lives the engine has the session's limits and the flag. Without the flag and without limits
    /// evaluation is faster.
    class CancelScope {
    public:
        explicit CancelScope(Session& owner) : session(owner) { session.SetLimits(session.cancel); }
        CancelScope(const CancelScope&) = delete;
        CancelScope& operator=(const CancelScope&) = delete;
        ~CancelScope() { session.SetLimits(nullptr); }

    private:
        Session& session;
    };

    void SetLimits(const std::atomic<bool>* flag);
    bool IsCancelled() const { return cancel != nullptr && *cancel; }
    /// False if the text cannot be parsed, which has then been told.
    bool Parse(const std::string& text, Query& query, SessionReply& reply);
    void Evaluate(const std::string& text, SessionReply& reply);
    void ShowValue(const IObject& value, SessionReply& reply) const;
    void ShowFailure(const Query& query, IError* error, SessionReply& reply);
    void ShowError(const std::string& message, SessionReply& reply) const;
    std::string Colour(const char* code, const std::string& text) const;

    ComApartment apartment; // outlives the engine and all values
    QueryEngine engine;
    bool isColoured;
    double resolution = 0.0;
    LimitSettings limits;
    const std::atomic<bool>* cancel = nullptr;
    EvaluationUsage usage;    // of the last query, as far as it was counted
    Ref<LastValue> lastValue; // the engine's variable unless something else has been set
};

} // namespace OrvUQL::Tool

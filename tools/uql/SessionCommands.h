// The commands of a session: the entries that begin with a colon.
#pragma once

#include "Session.h"

#include <string>
#include <string_view>
#include <vector>

namespace OrvUQL::Tool {

class SessionCommands {
public:
    explicit SessionCommands(Session& owner) : session(owner) {}

    /// `entry` begins with the colon.
    void Run(const std::string& entry, SessionReply& reply);
    /// A command's name, or what it takes.
    Completion Complete(std::string_view entry, std::size_t cursor);

private:
    using Handler = void (SessionCommands::*)(const std::string& argument, SessionReply& reply);
    enum EArgument { Nothing, Names, File, Query };

    struct Command {
        const char* name;
        EArgument takes;
        const char* usage; ///< what stands behind the name
        const char* description;
        Handler handler;
    };

    static const std::vector<Command>& GetCommands();

    void Help(const std::string& argument, SessionReply& reply);
    void Limits(const std::string& argument, SessionReply& reply);
    void Load(const std::string& argument, SessionReply& reply);
    void Props(const std::string& argument, SessionReply& reply);
    void Var(const std::string& argument, SessionReply& reply);
    void Units(const std::string& argument, SessionReply& reply);
    void Precision(const std::string& argument, SessionReply& reply);
    void Tree(const std::string& argument, SessionReply& reply);
    void Explain(const std::string& argument, SessionReply& reply);
    void Time(const std::string& argument, SessionReply& reply);
    void CompleteText(const std::string& argument, SessionReply& reply);
    void Quit(const std::string& argument, SessionReply& reply);

    void ShowLimits(SessionReply& reply) const;
    void ListCommands(SessionReply& reply);
    bool ReadJson(const std::string& argument, Ref<IObject>& value, SessionReply& reply);
    std::vector<std::string> GetHelpNames();

    Session& session;
};

} // namespace OrvUQL::Tool

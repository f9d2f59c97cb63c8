// Where there is no library for it, lines are edited as the terminal itself does: a console of Windows has history and
// editing of its own.
#include "LineEditor.h"

namespace OrvUQL::Tool {

std::unique_ptr<LineEditor> LineEditor::MakeForTerminal(const Completer&, const std::string&) { return nullptr; }

std::string LineEditor::GetName() { return "the terminal's own"; }

} // namespace OrvUQL::Tool

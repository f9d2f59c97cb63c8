#include "Inflater.h"

namespace OrvUQL::Tool {

std::unique_ptr<Inflater> MakeInflater(std::string& error) {
    error = "gzip input is not supported by this build";
    return nullptr;
}

} // namespace OrvUQL::Tool

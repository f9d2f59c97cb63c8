// uql: evaluates queries from the command line.

#include "Command.h"

int main(int argc, char** argv) {
    return OrvUQL::Tool::RunCommand([&] { return std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc); });
}

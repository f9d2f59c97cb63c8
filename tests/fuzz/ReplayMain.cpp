// Runs a fuzz target without a fuzzer, so that every compiler and every build takes part: over kept inputs, over the
// queries of conformance files, and over inputs by chance, which are as good as any for the targets that make their
// texts by the bytes.
//
//     replay [--random COUNT [--seed N]] FILE...      *.uqlt, or a corpus, which has an input a line

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::size_t count = 0;

void Run(const std::string& input) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    ++count;
}

/// The bytes of a corpus's line: "\xNN" is one, any other character is itself.
std::string Unescaped(std::string_view line) {
    std::string bytes;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (line[at] == '\\' && at + 3 < line.size()) {
            bytes += static_cast<char>(std::stoi(std::string(line.substr(at + 2, 2)), nullptr, 16));
            at += 3;
        } else {
            bytes += line[at];
        }
    }
    return bytes;
}

bool RunFile(const std::string& path) {
    std::ifstream file(path);
    const bool isConformance = path.ends_with(".uqlt");
    for (std::string line; std::getline(file, line);) {
        if (!isConformance) {
            Run(Unescaped(line));
        } else if (line.starts_with("? ")) {
            Run(line.substr(2));
        }
    }
    return file.eof();
}

void RunRandom(unsigned long inputs, unsigned long seed) {
    std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
    for (; inputs > 0; --inputs) {
        std::string input(random() % 200, '\0');
        for (char& byte : input) {
            byte = static_cast<char>(random());
        }
        Run(input);
    }
}

} // namespace

int main(int argc, char** argv) {
    unsigned long inputs = 0;
    unsigned long seed = 1;
    for (int index = 1; index < argc; ++index) {
        if (std::strcmp(argv[index], "--random") == 0 && index + 1 < argc) {
            inputs = std::strtoul(argv[++index], nullptr, 10);
        } else if (std::strcmp(argv[index], "--seed") == 0 && index + 1 < argc) {
            seed = std::strtoul(argv[++index], nullptr, 10);
        } else if (!RunFile(argv[index])) {
            std::fprintf(stderr, "%s cannot be read\n", argv[index]);
            return 1;
        }
    }
    RunRandom(inputs, seed);
    std::printf("%zu inputs\n", count);
    return count == 0;
}

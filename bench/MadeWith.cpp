#include "MadeWith.h"

#include <version>

#if defined(__linux__)
#include <features.h>
#endif
#if defined(__GLIBC__)
#include <gnu/libc-version.h>
#endif

namespace OrvUQL::bench {

namespace {

std::string Compiler() {
#if defined(__clang__)
    return "clang++ " + std::to_string(__clang_major__) + '.' + std::to_string(__clang_minor__) + '.' +
           std::to_string(__clang_patchlevel__);
#elif defined(__GNUC__)
    return "g++ " + std::to_string(__GNUC__) + '.' + std::to_string(__GNUC_MINOR__) + '.' +
           std::to_string(__GNUC_PATCHLEVEL__);
#else
    return "unknown";
#endif
}

std::string StandardLibrary() {
#if defined(__GLIBCXX__)
    return "libstdc++ " + std::to_string(_GLIBCXX_RELEASE) + " of " + std::to_string(__GLIBCXX__);
#elif defined(_LIBCPP_VERSION)
    return "libc++ " + std::to_string(_LIBCPP_VERSION);
#else
    return "unknown";
#endif
}

std::string SystemLibrary() {
#if defined(__GLIBC__)
    return std::string("glibc ") + gnu_get_libc_version();
#else
    return "unknown";
#endif
}

std::string Processor() {
#if defined(__x86_64__)
    return "x86_64";
#elif defined(__aarch64__)
    return "aarch64";
#else
    return "unknown";
#endif
}

} // namespace

std::string MadeWith() {
    return "compiler\t" + Compiler() + "\nstandard library\t" + StandardLibrary() + "\nC library\t" + SystemLibrary() +
           "\nprocessor\t" + Processor() + "\nflags\t" ORVUQL_BENCH_FLAGS "\n";
}

} // namespace OrvUQL::bench

#pragma once

/// Marks what the library exports.
///
/// ORVUQL_BUILDING is defined while the library itself is compiled, ORVUQL_STATIC by whoever links the static library
/// on Windows, where a declaration has to know whether it comes from another module. Elsewhere everything not marked
/// is hidden, so a mark is all it takes.
#if defined(_WIN32)
#if defined(ORVUQL_STATIC)
#define ORVUQL_API
#elif defined(ORVUQL_BUILDING)
#define ORVUQL_API __declspec(dllexport)
#else
#define ORVUQL_API __declspec(dllimport)
#endif
#else
#define ORVUQL_API __attribute__((visibility("default")))
#endif

/// Two virtual overloads of one name, written in the order of their slots in the table of virtual functions.
///
/// Microsoft's ABI gathers the overloads that a class declares for one name and lays them out last to first; everywhere
/// else the order of declaration counts. Each declaration carries its own semicolon and no comma outside parentheses:
///
///     ORV_OVERLOADS2(virtual int Find(const wchar_t* name) = 0;, virtual int Find(int id) = 0;)
///
/// _MSC_VER is asked first and alone: compilers that follow Microsoft's ABI may define __GNUC__ beside it.
#if defined(_MSC_VER)
#define ORV_OVERLOADS2(a, b) b a
#else
#define ORV_OVERLOADS2(a, b) a b
#endif

/// Marks interfaces and class templates of which the library and its hosts each have the type information. On ELF it is
/// then the same for both, so that dynamic_cast works across the border.
#if defined(_WIN32)
#define ORVUQL_SHARED_TYPE
#else
#define ORVUQL_SHARED_TYPE __attribute__((visibility("default")))
#endif

/// Keeps a function out of its callers.
#if defined(_MSC_VER)
#define ORVUQL_NOINLINE __declspec(noinline)
#else
#define ORVUQL_NOINLINE __attribute__((noinline))
#endif

/// Makes a function part of its callers.
#if defined(_MSC_VER) && !defined(__clang__)
#define ORVUQL_ALWAYS_INLINE __forceinline
#else
#define ORVUQL_ALWAYS_INLINE inline __attribute__((always_inline))
#endif

/// Makes what a function calls part of it.
#if defined(__GNUC__)
#define ORVUQL_FLATTEN __attribute__((flatten))
#else
#define ORVUQL_FLATTEN
#endif

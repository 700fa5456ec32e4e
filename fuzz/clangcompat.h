#pragma once

// Force-included by scripts/fuzz.sh into every file of the clang build (-include), and nowhere
// else. Qt 5.15's QLatin1String(const char*) is constexpr through a call of strlen(), which gcc
// evaluates in constant expressions and clang does not, so a constexpr QLatin1String made from
// a string literal (as src/libs/vexainputsourcewidget/inputsourceitem.cpp has) does not compile
// with clang. Every strlen() then goes to a constexpr function over the builtin, which clang
// evaluates; it is also reachable as std:: and :: for the headers that qualify the name.
// <cstring> comes first: it removes any strlen macro when it is included.
#include <cstddef>
#include <cstring>
#include <string.h>

constexpr std::size_t vexa_constexpr_strlen(const char* text)
{
    return __builtin_strlen(text);
}

namespace std {
using ::vexa_constexpr_strlen;
} // namespace std

#define strlen(text) vexa_constexpr_strlen(text)

// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What scripts/mutate writes into its copy of the sources, so that one build holds every mutant and
// FX_MUTANT chooses one when a program starts. In a program that is given a file in FX_REACHED the
// mutants that it reaches leave a mark there, a byte each: 1, or 2 where C++ does not allow them.
//
// An operator stays where it was, `a < b` becoming `a < Mutant < b`, so that its rank stays too:
// what takes the mutant keeps the left side, and what takes both sides chooses. A constant
// expression never has the mutant.

#ifndef FX_MUTANTS_H
#define FX_MUTANTS_H

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <sys/mman.h>
#include <type_traits>
#include <unistd.h>
#include <utility>

namespace mutants {

struct Choice
{
    int chosen = -1;
    char* reached = nullptr;

    Choice()
    {
        if (const char* number = std::getenv("FX_MUTANT"))
            chosen = std::atoi(number);
        if (const char* path = std::getenv("FX_REACHED")) {
            const int file = open(path, O_RDWR);
            const auto bytes = static_cast<size_t>(lseek(file, 0, SEEK_END));
            void* memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
            close(file);
            if (memory == MAP_FAILED)
                std::abort();
            reached = static_cast<char*>(memory);
        }
    }
};

inline const Choice& choice()
{
    static const Choice made;
    return made;
}

inline bool on(int id)
{
    if (choice().reached != nullptr)
        choice().reached[id] = 1;
    return choice().chosen == id;
}

// That C++ does not allow this mutant.
inline void noteNone(int id)
{
    if (choice().reached != nullptr)
        choice().reached[id] = 2;
}

template <typename T>
T more(int id, T value)
{
    return on(id) ? static_cast<T>(value + 1) : value;
}

template <typename T>
constexpr T moreAtRunTime(int id, T value)
{
    if (!__builtin_is_constant_evaluated() && on(id))
        return static_cast<T>(value + 1);
    return value;
}

inline bool flipped(int id, bool value)
{
    return value != on(id);
}

struct Lesser
{
    int id;
    template <typename A, typename B>
    constexpr std::common_type_t<A, B> operator()(const A& a, const B& b) const
    {
        if (!__builtin_is_constant_evaluated() && on(id))
            return a < b ? b : a;
        return a < b ? a : b;
    }
};

struct Greater
{
    int id;
    template <typename A, typename B>
    constexpr std::common_type_t<A, B> operator()(const A& a, const B& b) const
    {
        if (!__builtin_is_constant_evaluated() && on(id))
            return a < b ? a : b;
        return a < b ? b : a;
    }
};

struct Step
{
    int id;
};

template <typename T>
constexpr T& operator->*(Step step, T& value)
{
    if (!__builtin_is_constant_evaluated() && on(step.id))
        return --value;
    return ++value;
}

struct Not
{
    int id;
};

template <typename T>
constexpr bool operator->*(Not no, T&& value)
{
    if (!__builtin_is_constant_evaluated() && on(no.id))
        return static_cast<bool>(std::forward<T>(value));
    return !std::forward<T>(value);
}

// `a && b` becomes `a && And{1} && [&] { return b; }`, so that b still is asked only if it must be.
struct And
{
    int id;
    bool left = false;
};

struct Or : And
{};

template <typename A>
constexpr And operator&&(A&& a, And mutant)
{
    return {mutant.id, static_cast<bool>(std::forward<A>(a))};
}

template <typename A>
constexpr Or operator||(A&& a, Or mutant)
{
    return {{mutant.id, static_cast<bool>(std::forward<A>(a))}};
}

template <typename B>
constexpr bool operator&&(And mutant, B&& right)
{
    if (!__builtin_is_constant_evaluated() && on(mutant.id))
        return mutant.left || right();
    return mutant.left && right();
}

template <typename B>
constexpr bool operator||(Or mutant, B&& right)
{
    if (!__builtin_is_constant_evaluated() && on(mutant.id))
        return mutant.left && right();
    return mutant.left || right();
}

// What is said of each other operator: its name, itself, what takes its place.
#define FX_SWAPPED(Name, op, other)                                                                \
    struct Name                                                                                    \
    {                                                                                              \
        int id;                                                                                    \
    };                                                                                             \
    template <typename A>                                                                          \
    struct Name##Left                                                                              \
    {                                                                                              \
        A&& a;                                                                                     \
        int id;                                                                                    \
    };                                                                                             \
    template <typename A, typename B, typename = void>                                             \
    struct Name##Swaps : std::false_type                                                           \
    {};                                                                                            \
    template <typename A, typename B>                                                              \
    struct Name##Swaps<A, B, std::void_t<decltype(std::declval<A>() other std::declval<B>())>>     \
        : std::is_same<std::decay_t<decltype(std::declval<A>() other std::declval<B>())>,          \
                       std::decay_t<decltype(std::declval<A>() op std::declval<B>())>>             \
    {};                                                                                            \
    template <typename A>                                                                          \
    constexpr Name##Left<A> operator op(A&& a, Name mutant)                                        \
    {                                                                                              \
        return {std::forward<A>(a), mutant.id};                                                    \
    }                                                                                              \
    template <typename A, typename B>                                                              \
    constexpr auto operator op(Name##Left<A>&& left, B&& b)                                        \
        ->decltype(std::forward<A>(left.a) op std::forward<B>(b))                                  \
    {                                                                                              \
        using Result = decltype(std::forward<A>(left.a) op std::forward<B>(b));                    \
        if constexpr (Name##Swaps<A&&, B&&>::value) {                                              \
            if (!__builtin_is_constant_evaluated() && on(left.id))                                 \
                return static_cast<Result>(std::forward<A>(left.a) other std::forward<B>(b));      \
        } else if (!__builtin_is_constant_evaluated()) {                                           \
            noteNone(left.id);                                                                     \
        }                                                                                          \
        return std::forward<A>(left.a) op std::forward<B>(b);                                      \
    }

FX_SWAPPED(LessEqual, <=, <)
FX_SWAPPED(Less, <, <=)
FX_SWAPPED(GreaterEqual, >=, >)
FX_SWAPPED(GreaterThan, >, >=)
FX_SWAPPED(Equal, ==, !=)
FX_SWAPPED(Unequal, !=, ==)
FX_SWAPPED(Plus, +, -)
FX_SWAPPED(Minus, -, +)
FX_SWAPPED(Remainder, %, /)
FX_SWAPPED(Quotient, /, *)
FX_SWAPPED(LeftShift, <<, >>)
FX_SWAPPED(BitOr, |, &)
FX_SWAPPED(BitAnd, &, |)

}  // namespace mutants

#endif

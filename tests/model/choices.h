// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Where a session takes its decisions from: a seeded generator, or the bytes of a fuzzer's input.

#ifndef TESTS_MODEL_CHOICES_H
#define TESTS_MODEL_CHOICES_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <vector>

class Choices
{
public:
    Choices() = default;
    virtual ~Choices() = default;
    Choices(const Choices&) = delete;
    Choices& operator=(const Choices&) = delete;

    // A number from 0 to `limit` - 1; 0 when `limit` is below 2.
    virtual int below(int limit) = 0;
    // Nothing is left to decide by; a generator never ends.
    virtual bool exhausted() const { return false; }

    bool oneIn(int n) { return below(n) == 1; }
    int between(int lowest, int highest) { return lowest + below(highest - lowest + 1); }

    template <typename Value>
    Value oneOf(std::initializer_list<Value> values)
    {
        return values.begin()[below(static_cast<int>(values.size()))];
    }

    template <typename Value>
    const Value& oneOf(const std::vector<Value>& values)
    {
        return values[static_cast<std::size_t>(below(static_cast<int>(values.size())))];
    }
};

class RandomChoices : public Choices
{
public:
    explicit RandomChoices(unsigned int seed) : generator(seed) {}
    int below(int limit) override
    {
        return limit < 2 ? 0 : static_cast<int>(generator() % static_cast<unsigned int>(limit));
    }

private:
    std::mt19937 generator;
};

class ByteChoices : public Choices
{
public:
    ByteChoices(const std::uint8_t* input, std::size_t byteCount) : bytes(input), left(byteCount) {}
    int below(int limit) override
    {
        if (limit < 2)
            return 0;
        const int low = next();
        return (limit > 256 ? low * 256 + next() : low) % limit;
    }
    bool exhausted() const override { return left == 0; }

private:
    int next()
    {
        if (left == 0)
            return 0;
        --left;
        return *bytes++;
    }

    const std::uint8_t* bytes;
    std::size_t left;
};

#endif

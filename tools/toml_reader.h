// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A TOML file, read section by section. What is wrong is noted with its line, and reading goes on
// with the value that a key left out would have.

#pragma once

#include "tools/words.h"

#include <QStringList>
#include <QVector>

// A wrong file gets its message in every build: toml++ 3.3 asserts that no table's name begins with
// ",".
#ifndef TOML_ASSERT
#define TOML_ASSERT(expr) static_assert(true)
#endif
#include <toml++/toml.h>

#include <memory>
#include <optional>

namespace fxtools {

struct Mistake
{
    int line = 0;  // 0: something is missing
    int column = 0;
    QString text;

    QString in(const QString& path) const;  // "fxgate.toml, line 3, column 8: ..."
};

// Throws Failure with all of them, unless there are none.
void requireNone(const QVector<Mistake>& mistakes, const QString& path);

class TomlReader;

// A table of the file; one that is not there has no keys.
class TomlSection
{
public:
    TomlSection(TomlReader& reader, const toml::table* table, const QString& name);

    QStringList names() const;
    bool has(const char* key) const;
    bool hasText(const char* key) const;
    TomlSection inner(const QString& key);
    QVector<TomlSection> each(const char* key);  // of a list of tables: [[page]]
    int line() const;                            // where it begins

    void allowOnly(const QStringList& known);
    void reject(const char* key, const QString& text);  // at the key's value
    void rejectAll(const QString& text);                // at the section's first line
    void missing(const char* key, const char* example);

    QString text(const char* key, const QString& unlessSaid = {});
    QString file(const char* key, const QString& unlessSaid = {});
    QString oneOf(const char* key, const QStringList& words);  // the first one unless said
    bool flag(const char* key);                                // false unless said
    int number(const char* key, Range range, int unlessSaid);
    std::optional<double> real(const char* key);
    qint64 timeMs(const char* key, Range range, qint64 unlessSaid);
    qint64 bytes(const char* key, Range range, qint64 unlessSaid);

private:
    const toml::node* node(const char* key) const;
    void rejectRead(const char* key, const QString& wanted);

    TomlReader& m_reader;
    const toml::table* m_table;
    QString m_name;
};

class TomlReader
{
public:
    explicit TomlReader(const QString& path);  // throws Failure if it cannot be read
    ~TomlReader();

    bool isToml() const { return m_root != nullptr; }
    TomlSection root() { return TomlSection(*this, m_root.get(), QString()); }
    QString beside(const QString& file) const;
    void note(int line, int column, const QString& text);
    QVector<Mistake> mistakes() const;  // by line
    int mistakeCount() const { return m_mistakes.size(); }

private:
    QString m_path;
    std::unique_ptr<toml::table> m_root;
    QVector<Mistake> m_mistakes;
};

}  // namespace fxtools

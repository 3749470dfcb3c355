// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// A TOML file, read section by section. What is wrong is noted with its line, and reading goes on
// with the value that a key left out would have.

#pragma once

#include "tools/fxgate/configuration.h"

#include <QStringList>

#include <toml++/toml.h>

#include <memory>

namespace fxgate {

struct Range
{
    qint64 least;
    qint64 most;
};

bool isName(const QString& text);  // that can stand in a topic
QString nameMistake(const QString& text);

class ConfigurationReader;

// A table of the file; one that is not there has no keys.
class Section
{
public:
    Section(ConfigurationReader& reader, const toml::table* table, const QString& name);

    QStringList names() const;
    bool has(const char* key) const;
    Section inner(const QString& key);

    void allowOnly(const QStringList& known);
    void reject(const char* key, const QString& text);  // at the key's value
    void rejectAll(const QString& text);                // at the section's first line
    void missing(const char* key, const char* example);

    QString text(const char* key, const QString& unlessSaid = {});
    QString name(const char* key, const QString& unlessSaid = {});
    QString file(const char* key, const QString& unlessSaid = {});
    QString oneOf(const char* key, const QStringList& words);  // the first one unless said
    bool flag(const char* key);                                // false unless said
    int number(const char* key, Range range, int unlessSaid);
    qint64 timeMs(const char* key, Range range, qint64 unlessSaid);
    qint64 bytes(const char* key, Range range, qint64 unlessSaid);

private:
    const toml::node* node(const char* key) const;

    ConfigurationReader& m_reader;
    const toml::table* m_table;
    QString m_name;
};

class ConfigurationReader
{
public:
    explicit ConfigurationReader(const QString& path);  // throws Failure if it cannot be read
    ~ConfigurationReader();

    bool isToml() const { return m_root != nullptr; }
    Section root() { return Section(*this, m_root.get(), QString()); }
    QString beside(const QString& file) const;
    void note(int line, int column, const QString& text);
    QVector<Mistake> mistakes() const;  // by line

private:
    QString m_path;
    std::unique_ptr<toml::table> m_root;
    QVector<Mistake> m_mistakes;
};

}  // namespace fxgate

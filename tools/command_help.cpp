// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/command_help.h"

#include "tools/quoted.h"
#include "tools/table.h"
#include "tools/words.h"

#include <QRegularExpression>

namespace fxtools {

namespace {

constexpr int helpColumns = 80;
constexpr int textColumn = 28;

// "  -o, --timeout MS         what it does", wrapped.
std::string row(const QString& names, const std::string& text)
{
    const QString title = "  " + names;
    const bool isLong = title.size() >= textColumn - 1;
    const QString first = isLong ? QString(textColumn, ' ') : title.leftJustified(textColumn);
    const QString lines =
        wrapped(first + QString::fromStdString(text), helpColumns, textColumn).join('\n');
    return ((isLong ? title + '\n' : QString()) + lines + '\n').toStdString();
}

QString upperName(const CLI::Option* positional)
{
    const bool isList = positional->get_expected_max() >= CLI::detail::expected_max_vector_size;
    return QString::fromStdString(positional->get_name(true)).toUpper() +
           (isList ? QStringLiteral("...") : QString());
}

class HelpFormatter : public CLI::Formatter
{
public:
    HelpFormatter() { label("Positionals", "Arguments"); }

    std::string make_usage(const CLI::App* app, std::string name) const override
    {
        QString usage = QString::fromStdString("Usage: " + name) + " [OPTION]...";
        for (const CLI::Option* const option : app->get_options()) {
            if (option->get_positional())
                usage += QString(option->get_required() ? " %1" : " [%1]").arg(upperName(option));
        }
        if (app->get_require_subcommand_min() > 0)
            usage += QLatin1String(" COMMAND [ARGUMENT]...");
        return (usage + '\n').toStdString();
    }

    std::string make_option(const CLI::Option* option, bool isPositional) const override
    {
        QString names = isPositional ? upperName(option)
                                     : QString::fromStdString(option->get_name(false, true))
                                           .replace(',', QLatin1String(", "));
        if (!isPositional && option->get_type_size() != 0)
            names += ' ' + QString::fromStdString(option->get_type_name());
        return row(names, option->get_description());
    }

    std::string make_subcommand(const CLI::App* command) const override
    {
        return row(QString::fromStdString(command->get_name()), command->get_description());
    }
};

// The command that was parsed last: upload of "fxhost recipe upload".
const CLI::App& innermost(const CLI::App& app)
{
    const std::vector<CLI::App*> parsed = app.get_subcommands();
    return parsed.empty() ? app : innermost(*parsed.front());
}

QStringList commandNames(const CLI::App& app)
{
    QStringList names;
    for (const CLI::App* const command : app.get_subcommands({}))
        names += QString::fromStdString(command->get_name());
    return names;
}

QStringList optionNames(const CLI::App& app)
{
    QStringList names;
    for (const CLI::Option* const option : app.get_options()) {
        for (const std::string& name : option->get_lnames())
            names += "--" + QString::fromStdString(name);
    }
    return app.get_parent() ? names + optionNames(*app.get_parent()) : names;
}

// In usual words what the parser says in its own.
QString reworded(const QString& text)
{
    static const QRegularExpression subcommand(QStringLiteral("^A subcommand is required$"));
    static const QRegularExpression argument(QStringLiteral("^(\\S+) is required$"));
    static const QRegularExpression value(QStringLiteral("^(\\S+): 1 required (\\S+) missing$"));
    static const QRegularExpression flag(
        QStringLiteral("^(\\S+) was given a disallowed flag override$"));
    if (subcommand.match(text).hasMatch())
        return QStringLiteral("command missing");
    if (argument.match(text).hasMatch()) {
        const QString name = argument.match(text).captured(1);
        return (name.startsWith('-') ? name : name.toUpper()) + " missing";
    }
    if (value.match(text).hasMatch())
        return QString(text).replace(value, QStringLiteral("\\1: \\2 missing"));
    return QString(text)
        .replace(flag, QStringLiteral("--\\1 takes no value"))
        .replace(QLatin1String(" excludes "), QLatin1String(" cannot be used with "));
}

}  // namespace

QString helpOf(const CLI::App& app)
{
    return (app.get_parent() ? helpOf(*app.get_parent()) + ' ' : QString()) +
           QString::fromStdString(app.get_name());
}

QString unknownWord(const CLI::App& command, const QString& word)
{
    if (word.startsWith('-') && word.size() > 1) {
        const QString name = word.section('=', 0, 0);
        return "unknown option " + quoted(name) + didYouMean(name, optionNames(command));
    }
    if (command.get_require_subcommand_min() > 0)
        return "unknown command " + quoted(word) + didYouMean(word, commandNames(command));
    return "unexpected argument " + quoted(word);
}

std::shared_ptr<CLI::FormatterBase> helpFormatter()
{
    return std::make_shared<HelpFormatter>();
}

QString usageMistake(const CLI::App& app, const CLI::ParseError& error)
{
    const CLI::App& command = innermost(app);
    const std::vector<std::string> unknown = app.remaining(true);
    const QString text = unknown.empty()
                             ? reworded(QString::fromStdString(error.what()).simplified())
                             : unknownWord(command, QString::fromStdString(unknown.front()));
    return text.endsWith('?') ? text : text + "; see " + helpOf(command) + " --help";
}

}  // namespace fxtools

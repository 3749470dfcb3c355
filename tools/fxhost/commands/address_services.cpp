// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// What the driver's own address services say, without a PLC.
// fxhost types: the register types, as the driver describes them.
// fxhost check: whether addresses are valid, what they mean and where they lie on the wire.
// fxhost series: the addresses for copies of a panel object, as the screen editor makes them.

#include "tools/fxhost/commands/address_options.h"
#include "tools/quoted.h"

namespace fxtools {

namespace {

ExitCode runTypes(const CommonOptions& common)
{
    const AddressServices services = addressServices(common);
    Records records(common.output, {{"type"},
                                    {"lowest", Align::Right},
                                    {"highest", Align::Right},
                                    {"base", Align::Right},
                                    {"width"},
                                    {"writable"}});
    for (const RegisterType& type : services.catalogue.all()) {
        records.add({type.name, type.numberText(type.lowest), type.numberText(type.highest),
                     type.numberBase, widthText(type.width), type.writable});
    }
    records.finish();
    return ExitCode::Good;
}

using Addresses = std::vector<std::string>;

QString meaningOf(const AskedAddress& asked, const RegisterCatalogue& catalogue)
{
    const RegisterRange& range = asked.range;
    QString meaning = QStringLiteral("%1 of station %2, %3")
                          .arg(range.text().section('#', -1))
                          .arg(range.station)
                          .arg(widthText(range.type.width));
    if (asked.bit)
        meaning += QStringLiteral(", bit %1").arg(*asked.bit);
    if (asked.isGroup)
        meaning += QStringLiteral(", as one number");
    if (const std::optional<Alias> alias = catalogue.aliasIn(range))
        meaning += "; " + alias->text();
    return meaning;
}

void add(const QString& text, const AskedAddress& asked, const RegisterCatalogue& catalogue,
         Records& records)
{
    const RegisterType& type = asked.range.type;
    const QJsonValue write = type.writable ? wireText(type.writeAddress(asked.range.first))
                                           : QJsonValue(QJsonValue::Undefined);
    records.add({text, true, meaningOf(asked, catalogue),
                 wireText(type.readAddress(asked.range.first)), write});
}

// Returns whether it is a valid address, or a tag.
bool check(const QString& text, const AddressServices& services, Records& records)
{
    try {
        if (!isTagName(text, services)) {
            add(text, askedAddress(takeApart(text), services.catalogue), services.catalogue,
                records);
            return true;
        }
        for (const Tag& tag : tagsNamed(text, services))
            add(tag.name, tag.asked, services.catalogue, records);
        return true;
    } catch (const Failure& failure) {
        records.add({text, false, failure.text()});
        return false;
    }
}

ExitCode runCheck(const CommonOptions& common, const Addresses& addresses)
{
    const AddressServices services = addressServices(common);
    Records records(common.output,
                    {{"address"}, {"valid"}, {"meaning"}, {"read at"}, {"write at"}});
    bool allValid = true;
    for (const std::string& list : addresses) {
        for (const QString& text : QString::fromStdString(list).split(','))
            allValid &= check(text, services, records);
    }
    records.finish();
    return allValid ? ExitCode::Good : ExitCode::SomeFailed;
}

constexpr int mostCopies = 65536;

struct SeriesOptions
{
    std::string address;
    int copies = 10;
    std::optional<int> step;
};

ExitCode runSeries(const CommonOptions& common, const SeriesOptions& options)
{
    if (options.step == 0)  // which the driver takes as 1
        throw Failure(ExitCode::Usage,
                      QStringLiteral("invalid --step %1: use 1 or more, or -2 for 32-bit values")
                          .arg(*options.step));
    const AddressServices services = addressServices(common);
    AskedAddress asked = addressIn(QString::fromStdString(options.address), services);
    RegisterRange& range = asked.range;
    QVector<QString> texts;
    QVector<int> numbers;
    const int result =
        services.library.multiCopy(range.type.name, range.first, options.copies,
                                   options.step.value_or(range.count), texts, numbers);
    Records records(common.output, {{"copy", Align::Right}, {"address"}});
    for (int copy = 0; copy < numbers.size(); ++copy) {
        range.first = numbers[copy];
        records.add({copy + 1, asked.nameOf(0)});
    }
    records.finish();
    if (result == fxSeriesFitted)
        return ExitCode::Good;
    complain(QStringLiteral("the series runs past %1%2; every copy beyond it gets this address")
                 .arg(range.type.name, range.type.numberText(range.type.highest)));
    return ExitCode::SomeFailed;
}

}  // namespace

void addTypesCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command = app.add_subcommand("types", "Print the register types");
    addExamples(*command, {"fxhost types", "fxhost types --json"});
    onRun(*command, action, [&common] { return runTypes(common); });
}

void addCheckCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("check", "Print what addresses mean and where they lie on the wire");
    const auto addresses = std::make_shared<Addresses>();
    command
        ->add_option("address", *addresses,
                     "Addresses, such as D100, X17 or M8000, or names of tags")
        ->required();
    addExamples(*command, {"fxhost check D100 X17 M8000 2#TV5 CV200 D0-D9"});
    onRun(*command, action, [&common, addresses] { return runCheck(common, *addresses); });
}

void addSeriesCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("series", "Print the addresses for copies of a screen object");
    const auto options = std::make_shared<SeriesOptions>();
    command->add_option("address", options->address, "Address of the first copy, or name of a tag")
        ->required();
    command->add_option("-n,--count", options->copies, "Number of copies (default: 10)")
        ->type_name("N")
        ->check(within({1, mostCopies}));
    command
        ->add_option("--step", options->step,
                     "Distance between copies (default: the registers of ADDRESS, one for D100); "
                     "-2 for 32-bit values: two words or one counter")
        ->type_name("N")
        ->check(within({fxStepOf32Bits, fxMaxElements}));
    addExamples(*command, {"fxhost series Y6 -n 5", "fxhost series D100 -n 4 --step 10"});
    onRun(*command, action, [&common, options] { return runSeries(common, *options); });
}

}  // namespace fxtools

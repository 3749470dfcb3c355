// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost check: asks the driver's own address services whether addresses are valid.

#include "tools/fxhost/commands/connection.h"
#include "tools/library/addresses.h"

namespace fxtools {

namespace {

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

// Returns whether the address is valid.
bool check(const QString& text, const RegisterCatalogue& catalogue, Records& records)
{
    try {
        const AskedAddress asked = askedAddress(takeApart(text), catalogue);
        const RegisterType& type = asked.range.type;
        const QJsonValue write = type.writable ? wireText(type.writeAddress(asked.range.first))
                                               : QJsonValue(QJsonValue::Undefined);
        records.add({text, true, meaningOf(asked, catalogue),
                     wireText(type.readAddress(asked.range.first)), write});
        return true;
    } catch (const Failure& failure) {
        records.add({text, false, failure.text()});
        return false;
    }
}

ExitCode runCheck(const CommonOptions& common, const Addresses& addresses)
{
    const AddressServices services(common);
    Records records(common.output,
                    {{"address"}, {"valid"}, {"meaning"}, {"read at"}, {"write at"}});
    bool allValid = true;
    for (const std::string& list : addresses) {
        for (const QString& text : QString::fromStdString(list).split(','))
            allValid &= check(text, services.catalogue, records);
    }
    records.finish();
    return allValid ? ExitCode::Good : ExitCode::SomeFailed;
}

}  // namespace

void addCheckCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("check", "Print what addresses mean and where they lie on the wire");
    const auto addresses = std::make_shared<Addresses>();
    command->add_option("address", *addresses, "Addresses, such as D100, X17 or M8000")->required();
    addExamples(*command, {"fxhost check D100 X17 M8000 2#TV5 CV200 D0-D9"});
    onRun(*command, action, [&common, addresses] { return runCheck(common, *addresses); });
}

}  // namespace fxtools

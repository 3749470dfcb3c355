// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxhost series: the addresses for copies of a panel object, as the screen editor makes them.

#include "tools/fxhost/commands/connection.h"
#include "tools/library/addresses.h"

namespace fxtools {

namespace {

constexpr int mostCopies = 65536;

struct SeriesOptions
{
    std::string address;
    int copies = 10;
    int step = 1;
};

ExitCode runSeries(const CommonOptions& common, const SeriesOptions& options)
{
    if (options.step == 0)  // which the driver takes as 1
        throw Failure(ExitCode::Usage,
                      QStringLiteral("invalid --step %1: use 1 or more, or -2 for 32-bit values")
                          .arg(options.step));
    const AddressServices services(common);
    const RegisterRange first =
        parseAddress(QString::fromStdString(options.address), services.catalogue);
    QVector<QString> texts;
    QVector<int> numbers;
    const int result = services.library.multiCopy(first.type.name, first.first, options.copies,
                                                  options.step, texts, numbers);
    Records records(common.output, {{"copy", Align::Right}, {"address"}});
    for (int copy = 0; copy < numbers.size(); ++copy) {
        RegisterRange range = first;
        range.first = numbers[copy];
        records.add({copy + 1, range.nameOf(0)});
    }
    records.finish();
    if (result == fxSeriesFitted)
        return ExitCode::Good;
    complain(QStringLiteral("the series runs past %1%2; every copy beyond it gets this address")
                 .arg(first.type.name, first.type.numberText(first.type.highest)));
    return ExitCode::SomeFailed;
}

}  // namespace

void addSeriesCommand(CLI::App& app, const CommonOptions& common, Action& action)
{
    CLI::App* command =
        app.add_subcommand("series", "Print the addresses for copies of a screen object");
    const auto options = std::make_shared<SeriesOptions>();
    command->add_option("address", options->address, "Address of the first copy")->required();
    command->add_option("-c,--count", options->copies, "Number of copies (default: 10)")
        ->type_name("N")
        ->check(within({1, mostCopies}));
    command
        ->add_option(
            "--step", options->step,
            "Distance between copies (default: 1); -2 for 32-bit values: two words or one counter")
        ->type_name("N")
        ->check(within({fxStepOf32Bits, fxMaxElements}));
    addExamples(*command, {"fxhost series Y6 -c 5", "fxhost series D100 -c 4 --step 10"});
    onRun(*command, action, [&common, options] { return runSeries(common, *options); });
}

}  // namespace fxtools

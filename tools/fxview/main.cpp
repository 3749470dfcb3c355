// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// fxview: a window for one PLC. Reads the command line, opens the window at once, and lets a thread
// talk to the PLC. What keeps it from the PLC stands in the window: who started it from a desktop
// sees no other place.

#include "tools/failure.h"
#include "tools/fxview/options.h"
#include "tools/fxview/plc/chosen_plc.h"
#include "tools/fxview/plc/plc_thread.h"
#include "tools/fxview/plc/recipe_orders.h"
#include "tools/fxview/screens/plain_screen.h"
#include "tools/fxview/widgets/language.h"
#include "tools/fxview/widgets/page_pictures.h"
#include "tools/fxview/widgets/theme.h"
#include "tools/library/output_file.h"
#include "tools/link/interrupt.h"
#include "tools/standard_streams.h"

#include <QDateTime>
#include <QDir>
#include <QStandardPaths>
#include <QTimer>

namespace {

using namespace fxview;
using fxtools::Failure;

// A source without a PLC, for a window that only says why.
class NoPlc : public PlcSource
{
public:
    QString name() const override { return QStringLiteral("fxview"); }
    bool isSimulated() const override { return false; }
    QVector<fxtools::Tag> tags() const override { return {}; }
    void write(int /*id*/, int /*tag*/, const QString& /*text*/) override {}
    void writeSoon(int /*id*/, int /*tag*/, const QString& /*text*/) override {}
    void benchCommand(const QString& /*command*/) override {}
    void order(const RecipeOrder& order) override
    {
        emit recipeEnded(refusedRecipe(order, QStringLiteral("there is no PLC")));
    }
    void cancelRecipe(int /*id*/) override {}
};

std::unique_ptr<fxtools::AddressServices> servicesOf(const ChosenPlc& chosen)
{
    return std::make_unique<fxtools::AddressServices>(chosen.settings.library, chosen.settings.tags,
                                                      chosen.settings.station);
}

// Also the screen to show.
std::unique_ptr<PlcThread> plcOf(Options& options, QString& mistakes)
{
    const ChosenPlc chosen = choosePlc(options.plc, options.tags);
    if (options.screen.isEmpty() && areSampleTags(chosen))
        options.screen = QStringLiteral(":/sample_screen.toml");
    std::unique_ptr<fxtools::AddressServices> services = servicesOf(chosen);
    const ChosenTags tags = tagsOf(*services);
    mistakes = tags.mistakes;
    return std::make_unique<PlcThread>(chosen.settings, chosen.name, std::move(services),
                                       tags.tags);
}

// Among other data of the user: "alarms-press1.csv".
QString dataFileOf(const QString& plc, const QString& kind, const QString& suffix)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(folder);
    QString name = plc;
    for (QChar& character : name)
        character = character.isLetterOrNumber() ? character : QChar('-');
    return folder + '/' + kind + '-' + name + suffix;
}

int writeNewScreen(const Options& options)
{
    try {
        if (QFile::exists(options.newScreen))
            throw Failure(fxtools::ExitCode::File,
                          options.newScreen + " exists; choose another name");
        const std::unique_ptr<fxtools::AddressServices> services =
            servicesOf(choosePlc(options.plc, options.tags));
        const ChosenTags tags = tagsOf(*services);
        if (!tags.mistakes.isEmpty())
            qWarning("fxview: %s", qPrintable(tags.mistakes));
        fxtools::OutputFile file(options.newScreen, fxtools::OutputFile::Mode::New,
                                 services->catalogue);
        file.write(plainScreenText(tags.tags).toUtf8());
        file.commit();
        return static_cast<int>(fxtools::ExitCode::Good);
    } catch (const Failure& failure) {
        qCritical("fxview: %s", qPrintable(failure.text()));
        return static_cast<int>(failure.code());
    }
}

// A signal closes the window as a click does, so that no push button stays pressed.
void closeOnSignals(MainWindow& window)
{
    fxtools::catchSignals();
    auto* timer = new QTimer(&window);
    QObject::connect(timer, &QTimer::timeout, &window, [&window] {
        if (fxtools::interrupted())
            window.closeSoon();
    });
    timer->start(100);
}

int show(Options options)
{
    const bool isGiven = !options.screen.isEmpty();
    std::unique_ptr<PlcThread> plc;
    NoPlc noPlc;
    QString problem, mistakes;
    try {
        plc = plcOf(options, mistakes);
    } catch (const Failure& failure) {
        problem = failure.text();
        qWarning("fxview: %s", qPrintable(problem));
        if (!options.pictures.isEmpty())
            return static_cast<int>(failure.code());  // nothing that could be good
    }
    PlcSource& source = plc ? static_cast<PlcSource&>(*plc) : noPlc;
    MainWindow window(source, QDateTime::currentMSecsSinceEpoch);
    window.keepAlarmsIn(dataFileOf(source.name(), "alarms", ".csv"));
    window.keepRecipeNotesIn(dataFileOf(source.name(), "recipes", ".txt"));
    if (!options.screen.isEmpty() && plc)
        window.openScreen(options.screen, isGiven);
    closeOnSignals(window);
    window.show();
    if (!mistakes.isEmpty()) {
        qWarning("fxview: %s", qPrintable(mistakes));
        window.tellOfMistakes(mistakes);
        if (!options.pictures.isEmpty())
            return static_cast<int>(fxtools::ExitCode::File);
    }
    if (plc)
        plc->start();
    else
        window.tellThatNothingStarts(problem);
    if (!options.pictures.isEmpty())
        takePictures(window, options.pictures);
    return QApplication::exec();
}

int runCommandLine(int argumentCount, char** arguments)
{
    int exitCode = 0;
    const std::optional<Options> options = readOptions(argumentCount, arguments, exitCode);
    if (!options)
        return exitCode;
    if (!options->newScreen.isEmpty()) {
        const QCoreApplication application(argumentCount, arguments);  // knows the library's folder
        return writeNewScreen(*options);
    }
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(argumentCount, arguments);
    QApplication::setApplicationName(QStringLiteral("fxview"));
    QApplication::setDesktopFileName(QStringLiteral("fxview"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/fxview.svg")));
    useLanguage(application, options->language);
    // Before there is a style of its own, the palette is the desktop's.
    applyTheme(application, options->isDark || isDark(QApplication::palette()));
    return show(*options);
}

}  // namespace

int main(int argumentCount, char** arguments)
{
    fxtools::openClosedStreams();
    try {
        return runCommandLine(argumentCount, arguments);
    } catch (const std::exception& error) {
        qCritical("fxview: %s", error.what());
        return static_cast<int>(fxtools::ExitCode::SomeFailed);
    }
}

// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT
//
// Draws the window in the states that docs/window.md shows, in front of a plant that a clock alone
// moves, so that each run draws the same: view_pictures FOLDER. With --check it says which pictures
// of the folder are not what it draws. scripts/window-pictures draws those of the documents.

#include "tests/tools/fxview/compared_pictures.h"
#include "tests/tools/fxview/view_support.h"
#include "tests/tools/support/loaded_driver.h"
#include "tools/exchange/diagnosis.h"
#include "tools/fxview/plc/recipe_orders.h"
#include "tools/fxview/widgets/language.h"
#include "tools/fxview/widgets/main_window.h"
#include "tools/fxview/widgets/theme.h"

#include <QComboBox>
#include <QDir>
#include <QFontInfo>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>

#include <cmath>
#include <cstdio>

using namespace fxview;
using namespace view_tests;
using fxtools::ReplyVerdict;

namespace {

constexpr int stepMs = 100;
constexpr int runMs = 60000;

const char* const plantRows =
    "oven.temperature,D100,signed,0.1,,°C,,200,,0,250,20,180,,Measured at the door\n"
    "oven.setpoint,D101,signed,0.1,,°C,,1000,rw,0,250,,,,\n"
    "oil.pressure,D110,signed,0.01,,bar,,200,ro,,,1.2,,,Pump 1\n"
    "oil.level,D111,,,,%,,1000,ro,,,10,95,,\n"
    "conveyor.speed,D120,signed,0.1,,m/min,,200,rw,0,30,,,,\n"
    "conveyor.parts,D130,,,,,,1000,ro,,,,,,Since the last reset\n"
    "conveyor.run,M0,,,,,,200,rw,,,,,,\n"
    "door.closed,X0,,,,,,200,,,,,,,\n"
    "valve.open,Y1,,,,,,200,,,,,,,\n"
    "program,D200:8,text,,,,,5000,ro,,,,,,\n";

const char* const screenOfThePlant = R"([[page]]
title = "Oven"
[[page.text]]
row = 1
column = 1
width = 5
text = "Baking line"
[[page.text]]
tag = "program"
row = 1
column = 8
width = 5
label = "Program"
[[page.dial]]
tag = "oven.temperature"
row = 2
column = 1
width = 4
height = 4
label = "Oven"
[[page.trend]]
tag = "oven.temperature"
row = 2
column = 5
width = 8
height = 4
label = "Oven, last minute"
min = 100
max = 200
[[page.bar]]
tag = "oil.pressure"
row = 6
column = 1
width = 4
label = "Oil pressure"
min = 0
max = 5
[[page.bar]]
tag = "oil.level"
row = 6
column = 5
width = 4
label = "Oil level"
min = 0
max = 100
[[page.numeric-display]]
tag = "conveyor.speed"
row = 6
column = 9
width = 4
label = "Conveyor"
[[page.numeric-entry]]
tag = "oven.setpoint"
row = 7
column = 1
width = 4
label = "Set the oven to"
[[page.switch]]
tag = "conveyor.run"
row = 7
column = 5
width = 4
label = "Conveyor"
on-text = "runs"
off-text = "stands"
[[page.numeric-display]]
tag = "conveyor.parts"
row = 7
column = 9
width = 4
label = "Loaves"
[[page.lamp]]
tag = "door.closed"
row = 8
column = 1
width = 4
label = "Door"
on-text = "closed"
off-text = "open"
[[page.lamp]]
tag = "valve.open"
row = 8
column = 5
width = 4
label = "Steam valve"
on-colour = "yellow"
[[page.push-button]]
tag = "conveyor.run"
row = 8
column = 9
width = 4
label = "Stop"
action = "reset"
)";

QVector<fxtools::Tag> manyTags()
{
    QByteArray rows;
    for (int number = 0; number < 2000; ++number)
        rows += "station" + QByteArray::number(number / 40 + 1) + ".value" +
                QByteArray::number(number % 40 + 1) + ",D" + QByteArray::number(number) +
                ",,,,,,,,,,,,,\n";
    return tagsOf(rows);
}

struct Scene
{
    explicit Scene(const QVector<fxtools::Tag>& tags = tagsOf(plantRows)) : plc(tags)
    {
        window.resize(1024, 600);
        window.show();
    }

    template <typename Page>
    Page* turnTo()
    {
        auto* page = window.findChild<Page*>();
        window.findChild<QTabWidget*>()->setCurrentWidget(page);
        return page;
    }

    // A minute of the plant; the oven gets too hot in it if it is to.
    void run(double heat = 20)
    {
        emit plc.linkChanged(true, {});
        for (int ms = 0; ms <= runMs; ms += stepMs) {
            const double s = ms / 1000.0;
            nowMs = view_tests::nowMs + ms;
            emit plc.readings({
                at(0, std::round(1500 + 10 * heat * std::sin(s / 7)) / 10),
                at(1, 150),
                at(2, std::round(310 + 40 * std::sin(s / 3) * std::cos(s / 11)) / 100),
                at(3, 71),
                at(4, std::round(120 + 15 * std::sin(s / 5)) / 10),
                at(5, 4180 + static_cast<int>(s / 4)),
                at(6, 1),
                at(7, 1),
                at(8, static_cast<int>(s / 6) % 2),
                at(9, QStringLiteral("BREAD 750 G")),
            });
        }
        window.showMoment();
    }

    Reading at(int tag, const QJsonValue& value) const { return good(tag, value, nowMs); }

    void save(const QString& folder, const char* name)
    {
        window.showMoment();
        for (int turns = 0; turns < 5; ++turns)
            QApplication::processEvents();
        const QString file = QDir(folder).filePath(QLatin1String(name) + ".png");
        if (!window.grab().save(file))
            qFatal("could not write %s", qPrintable(file));
    }

    qint64 nowMs = view_tests::nowMs;
    FakePlc plc;
    MainWindow window{plc, [this] { return nowMs; }};
};

void drawEmpty(const QString& folder)
{
    Scene scene((QVector<fxtools::Tag>()));
    scene.window.tellThatNothingStarts("press.csv, line 3: unknown address 'Q5'");
    scene.save(folder, "empty");
}

void drawValues(const QString& folder, const char* name, QSize size = {1024, 600})
{
    Scene scene;
    scene.window.resize(size);
    scene.run();
    auto* table = scene.window.findChild<ValuesPage*>()->findChild<QTableView*>();
    table->selectRow(1);
    scene.save(folder, name);
}

void drawStale(const QString& folder)
{
    Scene scene;
    scene.run();
    scene.nowMs += 12000;
    QVector<Reading> readings;
    for (int tag = 0; tag < 9; ++tag)
        readings += stale(tag, "not read for 3 periods", scene.nowMs - 3000);
    emit scene.plc.readings(readings << bad(9, "refused by the PLC", scene.nowMs));
    scene.save(folder, "stale");
}

void drawAlarms(const QString& folder)
{
    Scene scene;
    scene.turnTo<AlarmPage>();
    scene.run(45);
    emit scene.plc.readings({scene.at(2, 0.9), scene.at(3, 97)});
    scene.nowMs += 4000;
    emit scene.plc.readings({scene.at(0, 191.5), scene.at(3, 80)});
    scene.save(folder, "alarms");
}

void drawMany(const QString& folder)
{
    Scene scene(manyTags());
    emit scene.plc.linkChanged(true, {});
    QVector<Reading> readings;
    for (int tag = 0; tag < 2000; ++tag)
        readings += scene.at(tag, tag * 37 % 1000);
    emit scene.plc.readings(readings);
    scene.window.findChild<ValuesPage*>()->findChild<QLineEdit*>()->setText("station7");
    scene.save(folder, "many");
}

void drawTrends(const QString& folder)
{
    Scene scene;
    auto* page = scene.turnTo<TrendPage>();
    for (const int tag : {0, 2, 4, 8})
        page->add(tag);
    scene.run();
    auto* view = page->findChild<TrendView*>();
    for (int turns = 0; turns < 5; ++turns)
        QApplication::processEvents();
    QTest::mouseClick(view, Qt::LeftButton, {}, {view->width() * 2 / 5, view->height() / 2});
    QTest::mouseClick(view, Qt::LeftButton, Qt::ShiftModifier,
                      {view->width() * 3 / 5, view->height() / 2});
    scene.save(folder, "trends");
}

QVector<fxtools::Exchange> someExchanges()
{
    QVector<fxtools::Exchange> exchanges;
    for (int number = 0; number < 12; ++number) {
        fxtools::Exchange exchange;
        exchange.verdict = number == 7 ? ReplyVerdict::Silence : ReplyVerdict::Good;
        if (number != 7)
            exchange.reply = QByteArray("\x02"
                                        "DC050000E8\x03"
                                        "0F");
        exchange.startedUs = 61000000 + number * 48000;
        exchange.tookUs = 39200 + number * 137 % 900;
        exchanges += exchange;
    }
    return exchanges;
}

void drawLine(const QString& folder)
{
    using tool_tests::range;
    Scene scene;
    scene.turnTo<LinePage>();
    scene.run();
    LineReport report;
    report.loadPercent = 43;
    for (int number = 0; number < 900; ++number)
        report.statistics.responses.add(17000 + number * number % 9100 + (number % 40 ? 0 : 60000));
    report.statistics.kinds[fxtools::ExchangeKind::CyclicRead] = {903, 900, 3, 0};
    report.statistics.verdicts[ReplyVerdict::Good] = 900;
    report.statistics.verdicts[ReplyVerdict::Silence] = 3;
    report.verdict =
        fxtools::meaning({{}, "press1", true, false, fxtools::checkOf(report.statistics, false)});
    report.blocks = {
        {{range("D100:31"), {range("D100:2"), range("D110:2"), range("D120"), range("D130")}},
         141.5},
        {{range("D200:8"), {range("D200:8")}}, 45.6},
        {{range("M0:8"), {range("M0")}}, 29.7},
        {{range("X0:8"), {range("X0")}}, 29.7},
        {{range("Y0:8"), {range("Y1")}}, 29.7}};
    emit scene.plc.lineReport(report);
    emit scene.plc.exchanges(someExchanges());
    scene.save(folder, "line");
}

void drawRecipes(const QString& folder)
{
    using tool_tests::range;
    Scene scene;
    auto* page = scene.turnTo<RecipePage>();
    scene.run();
    auto* file = page->findChild<QLineEdit*>();
    QTest::keyClicks(file, "/recipes/bread.csv");
    QTest::keyClick(file, Qt::Key_Return);
    RecipeResult opened = resultOf(scene.plc.recipes.last());
    opened.recipe = {{range("D1000:8"), {750, 220, 215, 205, 18, 35, 4, 1}}};
    opened.values = valuesOf(opened.recipe);
    emit scene.plc.recipeEnded(opened);
    RecipeResult compared = resultOf(scene.plc.recipes.last());
    for (RecipeValue& value : compared.values)
        value.inPlc = value.inFile;
    compared.values[1].inPlc = 225;
    compared.values[4].inPlc = 20;
    emit scene.plc.recipeEnded(compared);
    scene.save(folder, "recipes");
}

void drawScreen(const QString& folder)
{
    QTemporaryFile file;
    if (!file.open() || file.write(screenOfThePlant) < 0 || !file.flush())
        qFatal("no place for a screen");
    Scene scene;
    scene.window.openScreen(file.fileName(), true);
    scene.run();
    scene.save(folder, "screen");
}

void drawAll(QApplication& application, const QString& folder)
{
    const QFont font(QStringLiteral("DejaVu Sans"), 9);
    const auto usePalette = [&](bool isDark) {
        applyTheme(application, isDark);
        QApplication::setFont(font);
    };
    usePalette(false);
    drawEmpty(folder);
    drawValues(folder, "values");
    drawValues(folder, "narrow", {560, 420});
    drawStale(folder);
    drawAlarms(folder);
    drawMany(folder);
    drawTrends(folder);
    drawLine(folder);
    drawRecipes(folder);
    drawScreen(folder);
    usePalette(true);
    drawValues(folder, "dark");
    usePalette(false);
    useLanguage(application, "de");
    drawValues(folder, "german");
}

}  // namespace

int main(int argumentCount, char** arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_FONT_DPI", "96");
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("TZ", "UTC");
    QApplication application(argumentCount, arguments);
    const QStringList words = QApplication::arguments().mid(1);
    const bool mustCheck = words.value(0) == QLatin1String("--check");
    if (words.size() != (mustCheck ? 2 : 1))
        qFatal("usage: view_pictures [--check] FOLDER");
    if (QFontInfo(QFont(QStringLiteral("DejaVu Sans"))).family() != QLatin1String("DejaVu Sans")) {
        std::puts("the font DejaVu Sans is not installed");
        return 77;
    }
    if (!mustCheck) {
        drawAll(application, words[0]);
        return 0;
    }
    const QTemporaryDir folder;
    drawAll(application, folder.path());
    const QStringList different = differentPictures(folder.path(), words[1]);
    for (const QString& line : different)
        std::puts(qPrintable(line));
    if (!different.isEmpty())
        std::puts("If that is wanted: scripts/window-pictures BUILD");
    return different.isEmpty() ? 0 : 1;
}

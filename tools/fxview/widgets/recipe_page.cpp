// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/recipe_page.h"

#include "tools/service/recipe.h"

#include <QFileDialog>
#include <QFileInfo>

namespace fxview {

namespace {

using Act = RecipeOrder::Act;

QString nameOf(const QString& file)
{
    return QFileInfo(file).fileName();
}

// "D100:40 D200", as a person writes it: where frames end is of no interest.
QString addressesText(const QVector<fxtools::RegisterRun>& runs)
{
    QStringList texts;
    for (const fxtools::RegisterRange& range : joined(fxtools::rangesOf(runs)))
        texts += range.text();
    return texts.join(' ');
}

}  // namespace

RecipePage::RecipePage(const QVector<fxtools::Tag>& tags, QWidget* parent)
    : QWidget(parent), m_table(new RecipeTable(tags, this)), m_controls(*this, *m_table)
{
    listen();
    say(tr("Open a file with a line ADDRESS,VALUE for each register, or name registers and a new "
           "file to upload into"));
    setStep(Step::Idle);
}

void RecipePage::listen()
{
    connect(m_controls.browse, &QPushButton::clicked, this, &RecipePage::browse);
    connect(m_controls.open, &QPushButton::clicked, this, [this] { start(Act::Open); });
    connect(m_controls.file, &QLineEdit::returnPressed, m_controls.open, &QPushButton::click);
    connect(m_controls.file, &QLineEdit::textChanged, this, &RecipePage::nameFile);
    connect(m_controls.registers, &QLineEdit::textChanged, this, [this] { setStep(m_step); });
    connect(m_controls.compare, &QPushButton::clicked, this, [this] { start(Act::Compare); });
    connect(m_controls.download, &QPushButton::clicked, this, &RecipePage::askToDownload);
    connect(m_controls.upload, &QPushButton::clicked, this, &RecipePage::upload);
    connect(m_controls.cancel, &QPushButton::clicked, this, &RecipePage::cancel);
    connect(m_controls.yes, &QPushButton::clicked, this, [this] { answer(true); });
    connect(m_controls.no, &QPushButton::clicked, this, [this] { answer(false); });
}

// What is compared and downloaded is what the table shows, so that must be the file that is named.
void RecipePage::nameFile()
{
    setStep(m_step);
    if (m_step == Step::Idle && !m_runs.isEmpty() && !isOpen())
        say(tr("Open the file first: the table still shows %1").arg(m_recipe));
}

bool RecipePage::isOpen() const
{
    return !m_runs.isEmpty() && m_controls.file->text() == m_recipe;
}

// A window beside this one, which goes on.
void RecipePage::browse()
{
    auto* dialog = new QFileDialog(this, tr("Recipe file"), m_controls.file->text(),
                                   tr("Recipes (*.csv);;All files (*)"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setModal(false);
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setLabelText(QFileDialog::Accept, tr("Choose"));
    connect(dialog, &QFileDialog::fileSelected, m_controls.file, &QLineEdit::setText);
    dialog->show();
}

bool RecipePage::isDownloading() const
{
    return m_step == Step::Busy && m_order.act == Act::Download;
}

void RecipePage::cancel()
{
    if (m_step == Step::Busy)
        emit cancelled(m_order.id);
}

void RecipePage::start(RecipeOrder::Act act, bool mayReplace)
{
    m_order.id += 1;
    m_order.act = act;
    m_order.file = m_controls.file->text();
    m_order.registers = m_controls.registers->text();
    m_order.recipe =
        act == Act::Compare || act == Act::Download ? m_runs : QVector<fxtools::RegisterRun>();
    m_order.mayReplace = mayReplace;
    m_readingMs = m_nowMs;
    m_isReadingBack = false;
    m_controls.progress->reset();
    setStep(Step::Busy);
    if (act == Act::Download) {
        say(tr("Writing %1 to the PLC…").arg(nameOf(m_recipe)));
        showProgress(m_order.id, 0, m_runs.size(), false);
    } else {
        say(act == Act::Upload ? tr("Reading from the PLC…") : tr("Comparing…"));
    }
    emit ordered(m_order);
}

// What is known now is told before more is written.
void RecipePage::showProgress(int id, int done, int total, bool isReadingBack)
{
    if (id != m_order.id || m_step != Step::Busy)
        return;
    m_controls.progress->setRange(0, total);
    m_controls.progress->setValue(done);
    if (isReadingBack && !std::exchange(m_isReadingBack, true)) {
        m_readingMs = m_nowMs;
        say(isDownloading() ? tr("Reading %1 back…").arg(nameOf(m_recipe)) : tr("Comparing…"));
    }
    if (!isDownloading() || isReadingBack)
        return;
    const QVector<fxtools::RegisterRange> all = fxtools::rangesOf(m_runs);
    const QString unknown = rangesText(all.mid(done));
    emit stated(m_recipe,
                tr("The window ended while %1 was written to the PLC. Written: %2. "
                   "UNKNOWN whether written: %3. Download it again, or compare.")
                    .arg(nameOf(m_recipe), done == 0 ? tr("none") : rangesText(all.mid(0, done)),
                         unknown.isEmpty() ? tr("none") : unknown),
                done == 0);
}

QString RecipePage::objection() const
{
    for (const RecipeValue& value : m_table->values()) {
        if (!value.objection.isEmpty())
            return value.objection;
    }
    return {};
}

void RecipePage::askToDownload()
{
    setStep(Step::AskingToDownload);
    m_controls.yes->setText(tr("&Yes, write"));
    say(tr("Write %1 values of %2 to the PLC? %3 differ from what it held, %4 were not read.")
            .arg(m_table->rowCount())
            .arg(nameOf(m_recipe))
            .arg(m_table->different())
            .arg(m_table->unread()));
    m_controls.no->setFocus();
}

void RecipePage::upload()
{
    if (!QFileInfo::exists(m_controls.file->text())) {
        start(Act::Upload);
        return;
    }
    setStep(Step::AskingToReplace);
    m_controls.yes->setText(tr("&Yes, replace"));
    say(tr("%1 exists. Replace it by the values that the PLC holds in %2?")
            .arg(m_controls.file->text(), m_controls.registers->text()));
    m_controls.no->setFocus();
}

void RecipePage::answer(bool isYes)
{
    const Step asked = m_step;
    setStep(Step::Idle);
    if (!isYes)
        say(asked == Step::AskingToReplace ? tr("Nothing was uploaded")
                                           : tr("Nothing was written"));
    else if (asked == Step::AskingToDownload)
        start(Act::Download);
    else if (asked == Step::AskingToReplace)
        start(Act::Upload, true);
    (asked == Step::AskingToReplace ? m_controls.upload : m_controls.download)->setFocus();
}

void RecipePage::take(const RecipeResult& result)
{
    if (result.id != m_order.id || m_step != Step::Busy)
        return;
    setStep(Step::Idle);
    switch (result.act) {
    case Act::Open:
        takeOpened(result);
        return;
    case Act::Download:
        takeDownload(result);
        return;
    case Act::Compare:
        m_table->show(result.values, m_readingMs);
        if (isWhole(result))
            emit stated(m_recipe, {}, false);
        if (result.problem.isEmpty() && result.notCompared.isEmpty())
            sayDifferences();
        else
            say(tr("Not compared to the end: %1").arg(result.problem + result.notCompared));
        break;
    case Act::Upload:
        if (!result.problem.isEmpty()) {
            say(tr("Nothing was uploaded: %1. The file is as it was.").arg(result.problem));
            return;
        }
        m_recipe = m_order.file;
        m_runs = result.recipe;
        m_table->show(result.values, m_readingMs);
        say(uploadText(m_recipe, result));
        break;
    }
    setStep(Step::Idle);
}

void RecipePage::takeOpened(const RecipeResult& result)
{
    m_recipe = result.problem.isEmpty() ? m_order.file : QString();
    m_runs = result.recipe;
    m_table->show(result.values, m_readingMs);
    setStep(Step::Idle);
    if (!result.problem.isEmpty()) {
        say(tr("Not opened: %1").arg(result.problem));
        return;
    }
    m_controls.registers->setText(addressesText(m_runs));
    m_controls.registers->setCursorPosition(0);
    if (m_isLinkUp)
        start(Act::Compare);
    else
        sayDifferences();
}

void RecipePage::takeDownload(const RecipeResult& result)
{
    m_table->show(result.values, m_readingMs);
    setStep(Step::Idle);
    const QString text = downloadText(nameOf(m_recipe), result);
    say(text);
    const bool isNothing =
        std::all_of(result.values.begin(), result.values.end(), [](const RecipeValue& value) {
            return value.state == RecipeValue::State::NotWritten;
        });
    emit stated(m_recipe, isWhole(result) || isNothing ? QString() : text, isNothing);
}

void RecipePage::sayDifferences()
{
    const QString text = tr("%1: %2 registers; %3 differ from the PLC, %4 were not read")
                             .arg(nameOf(m_recipe))
                             .arg(m_table->rowCount())
                             .arg(m_table->different())
                             .arg(m_table->unread());
    say(objection().isEmpty() ? text : tr("%1. May not be downloaded: %2").arg(text, objection()));
}

void RecipePage::say(const QString& text)
{
    m_controls.said->setText(text);
}

void RecipePage::setLinkUp(bool isUp)
{
    m_isLinkUp = isUp;
    if (!isUp && (m_step == Step::AskingToDownload || m_step == Step::AskingToReplace))
        answer(false);
    setStep(m_step);
}

void RecipePage::setStep(Step step)
{
    m_step = step;
    RecipeControls::Possible possible;
    possible.isIdle = step == Step::Idle;
    possible.isAsking = step == Step::AskingToDownload || step == Step::AskingToReplace;
    possible.isLinkUp = m_isLinkUp;
    possible.isOpen = isOpen();
    possible.isAllowed = objection().isEmpty();
    m_controls.enable(possible);
}

void RecipePage::showMoment(qint64 nowMs)
{
    m_nowMs = nowMs;
    m_table->showMoment(nowMs);
}

}  // namespace fxview

// SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
// SPDX-License-Identifier: MIT

#include "tools/fxview/widgets/language.h"

#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

// The macro wants to stand outside of every namespace.
static void loadGerman()
{
    Q_INIT_RESOURCE(german);
}

namespace fxview {

void useLanguage(QApplication& application, const QString& language)
{
    const QString wanted = language.isEmpty() ? QLocale::system().uiLanguages().value(0) : language;
    if (!wanted.startsWith(QLatin1String("de")))
        return;
    loadGerman();
    // Texts of Qt itself, such as those of a field's menu, stay English where they are not
    // installed.
    const QString ofQt = QLibraryInfo::location(QLibraryInfo::TranslationsPath);
    for (const QString& file : {ofQt + "/qtbase_de.qm", QStringLiteral(":/fxview_de.qm")}) {
        auto* translator = new QTranslator(&application);
        if (translator->load(file))
            QApplication::installTranslator(translator);
    }
}

}  // namespace fxview

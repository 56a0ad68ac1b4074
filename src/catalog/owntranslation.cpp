#include "catalog/owntranslation.h"

#include "catalog/localization.h"
#include "common/mainthread.h"

#include <QCoreApplication>
#include <QDir>

namespace {

const QString translationsFolder = QStringLiteral(":/i18n");
const QString translationPrefix = QStringLiteral("quillon_");

} // namespace

std::unique_ptr<QTranslator> loadOwnTranslation(const QStringList &languages)
{
    QStringList available;
    const QStringList files =
        QDir(translationsFolder).entryList({translationPrefix + QStringLiteral("*.qm")}, QDir::Files);
    for (const QString &file : files)
        available.append(file.sliced(translationPrefix.size()).chopped(3));
    const auto locale = preferredLocalization(available, languages);
    if (!locale)
        return nullptr;
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(translationPrefix + *locale, translationsFolder))
        return nullptr;
    return translator;
}

bool installOwnTranslation(const QStringList &languages)
{
    QUILLON_ASSERT_MAIN_THREAD();
    static std::unique_ptr<QTranslator> installed;
    if (installed)
        QCoreApplication::removeTranslator(installed.get());
    installed = loadOwnTranslation(languages);
    return installed && QCoreApplication::installTranslator(installed.get());
}

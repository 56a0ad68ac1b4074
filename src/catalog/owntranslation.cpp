#include "catalog/owntranslation.h"

#include "catalog/localization.h"
#include "common/installedfiles.h"
#include "common/log.h"
#include "common/mainthread.h"

#include <QCoreApplication>
#include <QDir>

namespace {

const QString translationPrefix = QStringLiteral("quillon_");

} // namespace

std::unique_ptr<QTranslator> loadOwnTranslation(const QStringList &languages)
{
    const QString translationsFolder = installedDataFolder() + QStringLiteral("/quillon/translations");
    QStringList available;
    const QStringList files =
        QDir(translationsFolder).entryList({translationPrefix + QStringLiteral("*.qm")}, QDir::Files);
    for (const QString &file : files)
        available.append(file.sliced(translationPrefix.size()).chopped(3));
    const auto locale = preferredLocalization(available, languages);
    if (!locale)
        return nullptr;
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(translationPrefix + *locale, translationsFolder)) {
        qCWarning(lcCatalog) << "The translation" << *locale << "in" << translationsFolder << "could not be read";
        return nullptr;
    }
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

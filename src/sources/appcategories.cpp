#include "sources/appcategories.h"

#include "sources/desktopentryfile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <array>
#include <optional>

namespace {

struct CategoryFiles {
    const char *gnome;
    const char *kde;
    const char *englishName;
    const char *icon;
};

// Indexed by AppCategory. GNOME's names come from gnome-menus, KDE's from
// plasma-workspace (kf5- on Plasma 5, kf6- on Plasma 6).
constexpr std::array<CategoryFiles, 12> categoryFiles{{
    {"AudioVideo", "multimedia", QT_TRANSLATE_NOOP("AppCategory", "Sound & Video"), "applications-multimedia"},
    {"Development", "development", QT_TRANSLATE_NOOP("AppCategory", "Programming"), "applications-development"},
    {"Education", "education", QT_TRANSLATE_NOOP("AppCategory", "Education"), "applications-education"},
    {"Game", "games", QT_TRANSLATE_NOOP("AppCategory", "Games"), "applications-games"},
    {"Graphics", "graphics", QT_TRANSLATE_NOOP("AppCategory", "Graphics"), "applications-graphics"},
    {"Network", "internet", QT_TRANSLATE_NOOP("AppCategory", "Internet"), "applications-internet"},
    {"Office", "office", QT_TRANSLATE_NOOP("AppCategory", "Office"), "applications-office"},
    {"GnomeScience", "science", QT_TRANSLATE_NOOP("AppCategory", "Science"), "applications-science"},
    {"Settings", "settingsmenu", QT_TRANSLATE_NOOP("AppCategory", "Settings"), "preferences-desktop"},
    {"System-Tools", "system", QT_TRANSLATE_NOOP("AppCategory", "System Tools"), "applications-system"},
    {"Utility", "utilities", QT_TRANSLATE_NOOP("AppCategory", "Accessories"), "applications-utilities"},
    {"X-GNOME-Other", "unknown", QT_TRANSLATE_NOOP("AppCategory", "Other"), "applications-other"},
}};
static_assert(categoryFiles.size() == EnumCases<AppCategory>::cases.size());

std::optional<CategoryFolder> readDirectoryFile(const QString &path)
{
    const auto file = DesktopEntryFile::load(QFile::encodeName(path));
    if (!file)
        return std::nullopt;
    const QString name = file->localeString("Name").value_or(QString());
    if (name.isEmpty())
        return std::nullopt;
    return CategoryFolder{name, QUrl::fromLocalFile(path), file->localeString("Icon").value_or(QString())};
}

} // namespace

AppCategory mainCategory(const QStringList &categories)
{
    for (const QString &category : categories) {
        // Audio and Video are main categories that imply AudioVideo.
        if (category == QLatin1String("Audio") || category == QLatin1String("Video"))
            return AppCategory::AudioVideo;
        if (const auto main = enumFromString<AppCategory>(category); main && *main != AppCategory::Other)
            return *main;
    }
    return AppCategory::Other;
}

CategoryNames::CategoryNames(const QStringList &dataDirs, const QStringList &desktops)
    : m_preferKde(desktops.contains(QLatin1String("KDE")))
{
    for (const QString &dir : dataDirs)
        m_directoryDirs.append(dir + QLatin1String("/desktop-directories/"));
}

CategoryFolder CategoryNames::folder(AppCategory category) const
{
    const CategoryFiles &files = categoryFiles[size_t(category)];
    const QString gnome = QLatin1String(files.gnome) + QLatin1String(".directory");
    const QString kde = QLatin1String(files.kde) + QLatin1String(".directory");
    QStringList candidates{gnome, QLatin1String("kf6-") + kde, QLatin1String("kf5-") + kde};
    if (m_preferKde)
        candidates.move(0, 2);

    for (const QString &file : std::as_const(candidates)) {
        // The first data directory holding the file wins, as for desktop entries.
        for (const QString &dir : m_directoryDirs) {
            const QString path = dir + file;
            if (!QFileInfo::exists(path))
                continue;
            if (auto folder = readDirectoryFile(path))
                return *folder;
            break;
        }
    }
    return CategoryFolder{QCoreApplication::translate("AppCategory", files.englishName), QUrl(),
                          QLatin1String(files.icon)};
}

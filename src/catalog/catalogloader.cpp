#include "catalog/catalogloader.h"

#include "catalog/catalogcodec.h"
#include "common/log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QXmlStreamReader>

#include <algorithm>
#include <cstdlib>

namespace {

const QString noCatalogMessage = QStringLiteral("No catalog in the app bundle's Catalogs folder");

// The catalog folder under the root whose name matches, ignoring case.
std::optional<QString> catalogFolder(const QString &root, const QString &desktop)
{
    const QStringList folders = QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &folder : folders) {
        if (folder.compare(desktop, Qt::CaseInsensitive) == 0)
            return folder;
    }
    return std::nullopt;
}

bool isInstalled(const CatalogEnvironment &environment, const QString &executable)
{
    return !QStandardPaths::findExecutable(executable, environment.searchPaths).isEmpty();
}

std::optional<SettingsProgram> programFor(const CatalogEnvironment &environment, const QString &desktop)
{
    for (const SettingsProgram &program : environment.programs) {
        if (program.desktop.compare(desktop, Qt::CaseInsensitive) == 0)
            return program;
    }
    return std::nullopt;
}

} // namespace

size_t qHash(const SettingsProgram &program, size_t seed) noexcept
{
    return qHashMulti(seed, program.desktop, program.executable, program.metainfoPaths);
}

CatalogEnvironment CatalogEnvironment::system()
{
    return {
        QStringLiteral(":/Catalogs"),
        qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts),
        {
            {QStringLiteral("gnome"),
             QStringLiteral("gnome-control-center"),
             {QStringLiteral("/usr/share/metainfo/org.gnome.Settings.metainfo.xml"),
              QStringLiteral("/usr/share/metainfo/org.gnome.Settings.appdata.xml")}},
            {QStringLiteral("kde"),
             QStringLiteral("systemsettings"),
             {QStringLiteral("/usr/share/metainfo/org.kde.systemsettings.metainfo.xml"),
              QStringLiteral("/usr/share/metainfo/org.kde.systemsettings.appdata.xml")}},
        },
        {},
    };
}

QString chooseDesktop(const CatalogEnvironment &environment)
{
    for (const QString &desktop : environment.currentDesktops) {
        if (const auto folder = catalogFolder(environment.resourceRoot, desktop.trimmed()))
            return *folder;
    }
    for (const SettingsProgram &program : environment.programs) {
        const auto folder = catalogFolder(environment.resourceRoot, program.desktop);
        if (folder && isInstalled(environment, program.executable))
            return *folder;
    }
    return QStringLiteral("gnome");
}

std::optional<OSVersion> metainfoVersion(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QXmlStreamReader xml(&file);
    std::optional<OSVersion> newest;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement || xml.name() != u"release")
            continue;
        const auto version = OSVersion::parse(xml.attributes().value(QStringLiteral("version")));
        if (version && (!newest || *newest < *version))
            newest = version;
    }
    if (xml.hasError())
        return std::nullopt;
    return newest;
}

std::optional<QString> chooseDocument(const QStringList &files, const std::optional<OSVersion> &running)
{
    QList<std::pair<OSVersion, QString>> documents;
    for (const QString &file : files) {
        if (const auto version = OSVersion::parse(QFileInfo(file).completeBaseName()))
            documents.append({*version, file});
    }
    if (documents.isEmpty())
        return std::nullopt;
    // Stable, so equal versions keep their listing order and the later one
    // is met first by the walk from the end.
    std::stable_sort(documents.begin(), documents.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    // A settings program that names no release is an older one: release
    // lists came to these AppStream files later (GNOME Settings 43, Debian
    // 12's, has none). So it gets the oldest document.
    if (!running)
        return documents.first().second;
    for (auto it = documents.crbegin(); it != documents.crend(); ++it) {
        if (it->first <= *running)
            return it->second;
    }
    return documents.first().second;
}

Decoded<Catalog> loadCatalog(const CatalogEnvironment &environment)
{
    const QString desktop = chooseDesktop(environment);
    const QDir folder(environment.resourceRoot + u'/' + desktop);
    QStringList files;
    for (const QString &name : folder.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name))
        files.append(folder.filePath(name));

    std::optional<OSVersion> running;
    if (const auto program = programFor(environment, desktop)) {
        for (const QString &path : program->metainfoPaths) {
            if ((running = metainfoVersion(path)))
                break;
        }
    }

    const auto chosen = chooseDocument(files, running);
    if (!chosen)
        return Decoded<Catalog>::failure(noCatalogMessage);

    const QString name = QFileInfo(*chosen).fileName();
    QFile file(*chosen);
    if (!file.open(QIODevice::ReadOnly))
        return Decoded<Catalog>::failure(name + QStringLiteral(" could not be decoded: ") + file.errorString());
    auto catalog = decodeCatalog(file.readAll());
    if (!catalog)
        return Decoded<Catalog>::failure(name + QStringLiteral(" could not be decoded: ") + catalog.error());
    return catalog;
}

namespace {

// The documents are part of the program; without a usable one it cannot do
// its job, so this ends the process rather than limp on.
Catalog loadOrExit()
{
    auto catalog = loadCatalog(CatalogEnvironment::system());
    if (!catalog) {
        qCCritical(lcCatalog, "%s", qUtf8Printable(catalog.error()));
        std::exit(EXIT_FAILURE);
    }
    return std::move(catalog).value();
}

} // namespace

const Catalog &Catalog::current()
{
    // A function-local static is initialised exactly once, even when several
    // threads ask at the same time.
    static const Catalog catalog = loadOrExit();
    return catalog;
}

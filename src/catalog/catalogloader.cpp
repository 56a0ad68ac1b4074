#include "catalog/catalogloader.h"

#include "catalog/catalogcodec.h"
#include "common/log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QProcess>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStandardPaths>
#include <QXmlStreamReader>

#include <algorithm>
#include <cstdlib>
#include <sys/stat.h>

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

QString versionText(const OSVersion &version)
{
    QStringList parts;
    for (const qint64 part : version.parts)
        parts.append(QString::number(part));
    return parts.join(u'.');
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
        QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation)
            + QStringLiteral("/quillon/settings-program-version"),
    };
}

QString chooseDesktop(const CatalogEnvironment &environment, QString *reason)
{
    const auto because = [reason](const QString &text) {
        if (reason)
            *reason = text;
    };
    for (const QString &desktop : environment.currentDesktops) {
        if (const auto folder = catalogFolder(environment.resourceRoot, desktop.trimmed())) {
            because(QStringLiteral("the session's desktop is %1").arg(desktop.trimmed()));
            return *folder;
        }
    }
    QStringList executables;
    for (const SettingsProgram &program : environment.programs) {
        const auto folder = catalogFolder(environment.resourceRoot, program.desktop);
        if (folder && isInstalled(environment, program.executable)) {
            because(
                QStringLiteral("no desktop of the session has a catalog, and %1 is installed").arg(program.executable));
            return *folder;
        }
        executables.append(program.executable);
    }
    because(QStringLiteral("no desktop of the session has a catalog and none of %1 is installed")
                .arg(executables.join(QStringLiteral(", "))));
    return QStringLiteral("gnome");
}

Decoded<QMap<QString, QString>> readAliases(const QString &path)
{
    using Aliases = QMap<QString, QString>;
    QFile file(path);
    if (!file.exists())
        return Aliases();
    if (!file.open(QIODevice::ReadOnly))
        return Decoded<Aliases>::failure(file.errorString());
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error != QJsonParseError::NoError || !json.isObject())
        return Decoded<Aliases>::failure(QStringLiteral("expected an object of release names to file names"));
    Aliases aliases;
    const QJsonObject object = json.object();
    for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
        if (!it->isString() || !OSVersion::parse(it.key()))
            return Decoded<Aliases>::failure(QStringLiteral("\"%1\" is not a release and a file name").arg(it.key()));
        aliases.insert(it.key(), it->toString());
    }
    return aliases;
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

// What identifies one build of a program file: a package update replaces
// the file, and with it all of these.
QString fileIdentity(const QString &path)
{
    struct stat status { };
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return QStringLiteral("%1 %2 %3.%4 %5")
        .arg(path)
        .arg(status.st_size)
        .arg(status.st_mtim.tv_sec)
        .arg(status.st_mtim.tv_nsec)
        .arg(status.st_ino);
}

// The cache holds one line, "<identity>\t<version>"; anything else, or another
// identity, is not used.
std::optional<OSVersion> rememberedVersion(const QString &cache, const QString &identity)
{
    QFile file(cache);
    if (cache.isEmpty() || identity.isEmpty() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QStringList fields = QString::fromUtf8(file.read(4096)).trimmed().split(u'\t');
    if (fields.size() != 2 || fields[0] != identity)
        return std::nullopt;
    return OSVersion::parse(fields[1]);
}

void rememberVersion(const QString &cache, const QString &identity, const OSVersion &version)
{
    if (cache.isEmpty() || identity.isEmpty())
        return;
    QDir().mkpath(QFileInfo(cache).path());
    QSaveFile file(cache);
    if (!file.open(QIODevice::WriteOnly) || file.write((identity + u'\t' + versionText(version)).toUtf8()) < 0
        || !file.commit()) {
        qCDebug(lcCatalog) << "Could not remember the settings program's version in" << cache;
    }
}

// Asking the program starts a whole GTK or Qt application, a tenth of a
// second spent before the tray icon shows, so the answer is remembered.
std::optional<OSVersion> programVersion(const CatalogEnvironment &environment, const QString &executable)
{
    const QString path = QStandardPaths::findExecutable(executable, environment.searchPaths);
    if (path.isEmpty())
        return std::nullopt;
    const QString identity = fileIdentity(path);
    if (const auto remembered = rememberedVersion(environment.versionCache, identity))
        return remembered;
    QProcess process;
    // Neither program needs a display to print its version; keep Qt's one
    // from looking for one.
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(env);
    process.start(path, {QStringLiteral("--version")}, QIODevice::ReadOnly);
    if (!process.waitForFinished(5000)) {
        process.kill();
        process.waitForFinished(1000);
        return std::nullopt;
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return std::nullopt;
    const QStringList words = QString::fromUtf8(process.readAllStandardOutput())
                                  .split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
    const auto version = words.isEmpty() ? std::nullopt : OSVersion::parse(words.last());
    if (version)
        rememberVersion(environment.versionCache, identity, *version);
    return version;
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

size_t qHash(const CatalogChoice &choice, size_t seed) noexcept
{
    return qHashMulti(seed, choice.document, choice.desktopReason, choice.versionReason);
}

Decoded<Catalog> loadCatalog(const CatalogEnvironment &environment, CatalogChoice *choice)
{
    QString desktopReason;
    const QString desktop = chooseDesktop(environment, &desktopReason);
    const QDir folder(environment.resourceRoot + u'/' + desktop);
    QStringList files;
    for (const QString &name : folder.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name))
        files.append(folder.filePath(name));

    // A release that shares an older release's document takes part in the
    // choice under its own name and then reads the shared file.
    const auto aliases = readAliases(folder.filePath(QStringLiteral("aliases.json")));
    if (!aliases)
        qCWarning(lcCatalog, "%s: %s", qUtf8Printable(folder.filePath(QStringLiteral("aliases.json"))),
                  qUtf8Printable(aliases.error()));
    QHash<QString, QString> sharedFiles;
    if (aliases) {
        for (auto it = aliases.value().constBegin(); it != aliases.value().constEnd(); ++it) {
            const QString name = folder.filePath(it.key() + QStringLiteral(".json"));
            files.append(name);
            sharedFiles.insert(name, folder.filePath(it.value()));
        }
    }

    std::optional<OSVersion> running;
    QString versionSource;
    if (const auto program = programFor(environment, desktop)) {
        for (const QString &path : program->metainfoPaths) {
            if ((running = metainfoVersion(path))) {
                versionSource = path;
                break;
            }
        }
        if (!running && (running = programVersion(environment, program->executable)))
            versionSource = program->executable + QStringLiteral(" --version");
    }

    const auto chosen = chooseDocument(files, running);
    if (!chosen)
        return Decoded<Catalog>::failure(noCatalogMessage);
    const QString path = sharedFiles.value(*chosen, *chosen);

    QString versionReason;
    if (!running) {
        versionReason = QStringLiteral("the settings program's version is unknown (no AppStream release, no "
                                       "answer to --version), so the oldest catalog");
    } else {
        const auto release = OSVersion::parse(QFileInfo(*chosen).completeBaseName());
        versionReason = QStringLiteral("%1 names release %2").arg(versionSource, versionText(*running));
        if (release && *running < *release)
            versionReason += QStringLiteral(", older than every catalog, so the oldest");
        else if (*chosen != path)
            versionReason += QStringLiteral(", served by release %1's catalog (aliases.json)")
                                 .arg(QFileInfo(*chosen).completeBaseName());
    }
    const QString name = QFileInfo(path).fileName();
    qCInfo(lcCatalog, "Catalog %s/%s: %s; %s", qUtf8Printable(desktop), qUtf8Printable(name),
           qUtf8Printable(desktopReason), qUtf8Printable(versionReason));
    if (choice)
        *choice = {desktop + u'/' + name, desktopReason, versionReason};

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Decoded<Catalog>::failure(name + QStringLiteral(" could not be decoded: ") + file.errorString());
    auto catalog = decodeCatalog(file.readAll());
    if (!catalog)
        return Decoded<Catalog>::failure(name + QStringLiteral(" could not be decoded: ") + catalog.error());
    return catalog;
}

namespace {

struct LoadedCatalog {
    Catalog catalog;
    CatalogChoice choice;
};

// The documents are part of the program; without a usable one it cannot do
// its job, so this ends the process rather than limp on.
LoadedCatalog loadOrExit()
{
    CatalogChoice choice;
    auto catalog = loadCatalog(CatalogEnvironment::system(), &choice);
    if (!catalog) {
        qCCritical(lcCatalog, "%s", qUtf8Printable(catalog.error()));
        std::exit(EXIT_FAILURE);
    }
    return {std::move(catalog).value(), std::move(choice)};
}

const LoadedCatalog &loaded()
{
    // A function-local static is initialised exactly once, even when several
    // threads ask at the same time.
    static const LoadedCatalog catalog = loadOrExit();
    return catalog;
}

} // namespace

const Catalog &Catalog::current()
{
    return loaded().catalog;
}

const CatalogChoice &CatalogChoice::current()
{
    return loaded().choice;
}

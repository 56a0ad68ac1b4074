#include "settings/symboliconsmodel.h"

#include "sources/textmatch.h"

#include <QDir>
#include <QDirIterator>
#include <QHash>
#include <QIcon>
#include <QSet>
#include <QSettings>

namespace {

const QString symbolicSuffix = QStringLiteral("-symbolic");

// The theme, the themes it inherits, and hicolor, which every theme falls
// back to.
QStringList themeChain()
{
    QStringList chain;
    QStringList pending{QIcon::themeName(), QIcon::fallbackThemeName(), QStringLiteral("hicolor")};
    while (!pending.isEmpty()) {
        const QString theme = pending.takeFirst();
        if (theme.isEmpty() || chain.contains(theme))
            continue;
        chain.append(theme);
        for (const QString &root : QIcon::themeSearchPaths()) {
            const QString index = root + QLatin1Char('/') + theme + QStringLiteral("/index.theme");
            if (!QFile::exists(index))
                continue;
            const QSettings settings(index, QSettings::IniFormat);
            pending.append(settings.value(QStringLiteral("Icon Theme/Inherits")).toStringList());
            break;
        }
    }
    return chain;
}

} // namespace

SymbolicIconsModel::SymbolicIconsModel(const QStringList &names, QObject *parent)
    : QAbstractListModel(parent)
    , m_names(names)
{
}

QStringList SymbolicIconsModel::themeSymbols()
{
    // Thousands of files: walked once per theme and process.
    static QHash<QString, QStringList> cache;
    const QString theme = QIcon::themeName();
    if (const auto hit = cache.constFind(theme); hit != cache.constEnd())
        return *hit;
    QSet<QString> names;
    for (const QString &theme : themeChain()) {
        for (const QString &root : QIcon::themeSearchPaths()) {
            QDirIterator files(root + QLatin1Char('/') + theme, {QStringLiteral("*-symbolic.svg")}, QDir::Files,
                               QDirIterator::Subdirectories);
            while (files.hasNext()) {
                files.next();
                const QString name = files.fileInfo().completeBaseName();
                if (name.endsWith(symbolicSuffix))
                    names.insert(name);
            }
        }
    }
    QStringList sorted(names.begin(), names.end());
    sorted.sort();
    cache.insert(theme, sorted);
    return sorted;
}

int SymbolicIconsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_names.size());
}

QVariant SymbolicIconsModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const QString &name = m_names.at(index.row());
    switch (role) {
    case Qt::ToolTipRole:
    case Qt::AccessibleTextRole:
        // The names read better without the suffix every one of them has.
        return name.chopped(symbolicSuffix.size()).replace(QLatin1Char('-'), QLatin1Char(' '));
    case Qt::DecorationRole:
        return QIcon::fromTheme(name);
    case SymbolRole:
        return name;
    case FoldedNameRole:
        return foldForSearch(name);
    default:
        return {};
    }
}

QModelIndex SymbolicIconsModel::indexOf(const std::optional<QString> &symbol) const
{
    const qsizetype at = symbol ? m_names.indexOf(*symbol) : -1;
    return at < 0 ? QModelIndex() : index(int(at));
}

#include "hotkeys/desktopshortcuts.h"

#include "hotkeys/accelerators.h"
#include "hotkeys/gnomeshortcuts.h"

#include <QDir>
#include <QFile>

QList<HotKeyCombination> desktopShortcuts()
{
    QString configHome = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (configHome.isEmpty())
        configHome = QDir::homePath() + QStringLiteral("/.config");
    return GnomeShortcuts::inUse() + kdeShortcuts(configHome + QStringLiteral("/kglobalshortcutsrc"));
}

// Each line is action=<active keys>,<default keys>,<friendly name>; the
// [component] groups and their _k_friendly_name entries carry no keys.
QList<HotKeyCombination> kdeShortcuts(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    QList<HotKeyCombination> result;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.isEmpty() || line.startsWith(u'[') || line.startsWith(u'#') || line.startsWith(QLatin1String("_k_")))
            continue;
        const qsizetype equals = line.indexOf(u'=');
        if (equals < 0)
            continue;
        const QString value = line.mid(equals + 1);
        // A comma as the key itself ("Ctrl+,") comes before the separator.
        qsizetype comma = value.indexOf(u',');
        if (comma > 0 && value.at(comma - 1) == u'+')
            comma = value.indexOf(u',', comma + 1);
        result += fromKdeKeyList(value.left(comma));
    }
    return result;
}

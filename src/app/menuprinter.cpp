#include "app/menuprinter.h"

#include "app/lazymenu.h"
#include "app/menubuilder.h"

#include <QAction>
#include <QMenu>
#include <QUrl>
#include <QWidgetAction>

namespace {

// What the person sees: "&&" shows as "&".
QString shown(QString text)
{
    return text.replace(QLatin1String("&&"), QLatin1String("&"));
}

void print(QMenu *menu, int level, int depth, QString &out)
{
    // Folders are read on workers; a printout shows what they hold.
    MenuBuilder::waitUntilLoaded(menu, std::chrono::seconds(10));
    const QString indent(level * 2, QLatin1Char(' '));
    for (QAction *action : menu->actions()) {
        if (action->isSeparator()) {
            out += indent
                   + (action->text().isEmpty() ? QStringLiteral("---")
                                               : QLatin1Char('[') + shown(action->text()) + QLatin1Char(']'))
                   + QLatin1Char('\n');
            continue;
        }
        if (qobject_cast<QWidgetAction *>(action)) {
            out += indent + QStringLiteral("(search field)\n");
            continue;
        }
        QString line = indent + shown(action->text());
        if (!action->isEnabled())
            line += QStringLiteral("  (disabled)");
        const QUrl url = action->data().toUrl();
        if (!url.isEmpty())
            line += QStringLiteral("  <") + url.toString() + QLatin1Char('>');
        if (action->menu())
            line += QStringLiteral("  ▸");
        out += line + QLatin1Char('\n');
        if (QMenu *submenu = action->menu(); submenu && level + 1 < depth) {
            if (auto *lazy = qobject_cast<LazyMenu *>(submenu))
                lazy->fillIfNeeded();
            print(submenu, level + 1, depth, out);
        }
    }
}

} // namespace

QString menuText(QMenu *menu, int depth)
{
    QString out;
    print(menu, 0, depth, out);
    return out;
}

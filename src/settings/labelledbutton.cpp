#include "settings/labelledbutton.h"

#include <QIcon>
#include <QToolButton>

QToolButton *labelledButton(const QString &title, QWidget *parent, const QString &iconName)
{
    auto *made = new QToolButton(parent);
    // A "&" in a desktop's text is not a mnemonic.
    made->setText(QString(title).replace(QLatin1Char('&'), QStringLiteral("&&")));
    made->setAccessibleName(title);
    made->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    made->setFocusPolicy(Qt::StrongFocus);
    if (!iconName.isEmpty())
        made->setIcon(QIcon::fromTheme(iconName));
    return made;
}

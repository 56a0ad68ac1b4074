#include "app/aboutwindow.h"

#include "platform/ownicons.h"

#include <QIcon>
#include <QLabel>
#include <QUrl>
#include <QVBoxLayout>

namespace {

constexpr int iconSize = 64;
// Wide enough for a settings program's AppStream path on one line or two.
constexpr int textWidth = 320;

} // namespace

AboutWindow::AboutWindow(const QString &version, const CatalogChoice &catalog, Open open, QWidget *parent)
    : QWidget(parent, Qt::Window)
{
    setWindowTitle(tr("About Quillon"));
    setWindowIcon(applicationIcon());

    auto *icon = new QLabel(this);
    icon->setPixmap(applicationIcon().pixmap(QSize(iconSize, iconSize)));
    icon->setAlignment(Qt::AlignCenter);

    auto *name = new QLabel(QStringLiteral("Quillon"), this);
    QFont bold = name->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.3);
    name->setFont(bold);
    name->setAlignment(Qt::AlignCenter);

    const QUrl site{QLatin1String(productSite)};
    QLabel *link = smallLine(QStringLiteral("<a href=\"%1\">%2</a>").arg(site.toString().toHtmlEscaped(), site.host()));
    link->setTextFormat(Qt::RichText);
    link->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    connect(link, &QLabel::linkActivated, this, [open = std::move(open)](const QString &url) { open(QUrl(url)); });

    auto *layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setSpacing(4);
    layout->addWidget(icon);
    layout->addSpacing(6);
    layout->addWidget(name);
    layout->addWidget(smallLine(tr("Version %1").arg(version)));
    layout->addSpacing(10);
    layout->addWidget(link);
    layout->addSpacing(10);
    // Plain text people can select and paste into a report.
    QStringList lines{tr("Settings catalog: %1").arg(catalog.document)};
    QStringList reasons{catalog.desktopReason, catalog.versionReason};
    reasons.removeAll(QString());
    if (!reasons.isEmpty())
        lines.append(tr("Chosen because %1.").arg(reasons.join(tr(", and "))));
    for (const QString &line : std::as_const(lines)) {
        QLabel *label = smallLine(line);
        label->setTextFormat(Qt::PlainText);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        layout->addWidget(label);
    }
}

QLabel *AboutWindow::smallLine(const QString &text)
{
    auto *label = new QLabel(text, this);
    QFont small = label->font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    label->setFont(small);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setFixedWidth(textWidth);
    return label;
}

void AboutWindow::present()
{
    show();
    raise();
    activateWindow();
}

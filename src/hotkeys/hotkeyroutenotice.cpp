#include "hotkeys/hotkeyroutenotice.h"

#include "hotkeys/hotkeycenter.h"

#include <QClipboard>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QLabel *codeLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QLabel *paragraph(QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

HotKeyRouteNotice::HotKeyRouteNotice(QList<HotKeyCenter *> centers, BindingRoute route, QWidget *parent)
    : QWidget(parent)
    , m_centers(std::move(centers))
    , m_route(route)
    , m_explanation(paragraph(this))
    , m_confirm([](QWidget *parent, const QString &question) {
        return QMessageBox::question(parent, tr("Add Keyboard Shortcut"), question) == QMessageBox::Yes;
    })
{
    m_explanation->setObjectName(QStringLiteral("routeExplanation"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_explanation);

    auto *commands = new QGridLayout;
    commands->setContentsMargins(0, 0, 0, 0);
    commands->setColumnStretch(2, 1);
    layout->addLayout(commands);
    for (const HotKeyCenter *center : std::as_const(m_centers)) {
        const QString command = BindingRoute::command(center->number());
        const int row = commands->rowCount();
        commands->addWidget(codeLabel(command, this), row, 0);
        auto *copy = new QPushButton(tr("Copy"), this);
        copy->setAccessibleName(tr("Copy “%1”").arg(command));
        connect(copy, &QPushButton::clicked, this, [command] { QGuiApplication::clipboard()->setText(command); });
        commands->addWidget(copy, row, 1);
    }

    if (!m_route.configFile().isEmpty()) {
        auto *intro = paragraph(this);
        intro->setText(tr("Or add these lines to %1 and reload it:").arg(m_route.configFile()));
        layout->addWidget(intro);
        for (int i = 0; i < m_centers.size(); ++i) {
            auto *line = codeLabel({}, this);
            line->setWordWrap(true);
            m_configLines.append(line);
            auto *copy = new QPushButton(tr("Copy"), this);
            connect(copy, &QPushButton::clicked, this, [line] { QGuiApplication::clipboard()->setText(line->text()); });
            auto *row = new QHBoxLayout;
            row->addWidget(line);
            row->addWidget(copy);
            row->addStretch();
            layout->addLayout(row);
        }
    }

    if (m_route.canAddGnomeShortcut() && !m_centers.isEmpty()) {
        m_addToGnome = new QPushButton(tr("Add GNOME Keyboard Shortcut…"), this);
        m_gnomeState = paragraph(this);
        connect(m_addToGnome, &QPushButton::clicked, this, &HotKeyRouteNotice::addToGnome);
        auto *row = new QHBoxLayout;
        row->addWidget(m_addToGnome);
        row->addStretch();
        layout->addLayout(row);
        layout->addWidget(m_gnomeState);
    }

    for (const HotKeyCenter *center : std::as_const(m_centers))
        connect(center, &HotKeyCenter::statusChanged, this, &HotKeyRouteNotice::refresh);
    refresh();
}

void HotKeyRouteNotice::refresh()
{
    const bool needed = std::any_of(m_centers.begin(), m_centers.end(),
                                    [](const HotKeyCenter *center) { return center->needsDesktopRoute(); });
    setVisible(needed);
    m_explanation->setText(explanationText());
    for (int i = 0; i < m_configLines.size(); ++i) {
        const HotKeyCenter &center = *m_centers.at(i);
        m_configLines.at(i)->setText(m_route.configLine(BindingRoute::command(center.number()), keysFor(center)));
    }
    if (m_addToGnome) {
        const HotKeyCenter &search = *m_centers.first();
        const auto bound = m_route.gnomeShortcut(search.number());
        m_gnomeState->setText(
            bound ? tr("GNOME runs “%1” on %2.").arg(BindingRoute::command(search.number()), bound->display)
                  : QString());
        m_gnomeState->setVisible(bound.has_value());
        m_addToGnome->setVisible(!bound || !bound->sameKeys(keysFor(search)));
    }
}

QString HotKeyRouteNotice::explanationText() const
{
    const QString refusal = tr("This desktop does not let applications set global keyboard shortcuts, so "
                               "Quillon’s own shortcuts will not work here.");
    switch (m_route.desktop()) {
    case RouteDesktop::Gnome:
        return refusal + u' '
               + tr(
                   "Bind these commands to keys in Settings → Keyboard → Keyboard Shortcuts → Custom Shortcuts, or let "
                   "Quillon add the shortcut for the search panel:");
    case RouteDesktop::Plasma:
        return refusal + u' ' + tr("Bind these commands to keys in System Settings → Shortcuts:");
    case RouteDesktop::Sway:
    case RouteDesktop::Hyprland:
    case RouteDesktop::Other:
        break;
    }
    return refusal + u' ' + tr("Bind these commands to keys in the desktop’s own keyboard settings:");
}

// The combination the user chose, or a suggestion when there is none.
HotKeyCombination HotKeyRouteNotice::keysFor(const HotKeyCenter &center) const
{
    return center.wanted().value_or(BindingRoute::suggestedCombination(center.number()));
}

void HotKeyRouteNotice::addToGnome()
{
    const HotKeyCenter &search = *m_centers.first();
    const HotKeyCombination keys = keysFor(search);
    const QString command = BindingRoute::command(search.number());
    if (!m_confirm(this, tr("Add a shortcut to GNOME’s keyboard settings that runs “%1” when you press %2?")
                             .arg(command, keys.display)))
        return;
    if (!m_route.addGnomeShortcut(search.number(), keys)) {
        m_gnomeState->setText(tr("GNOME’s keyboard settings could not be changed."));
        m_gnomeState->setVisible(true);
        return;
    }
    refresh();
}

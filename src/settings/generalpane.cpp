#include "settings/generalpane.h"

#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "config/preferences.h"
#include "hotkeys/bindingroute.h"
#include "hotkeys/hotkeycenter.h"
#include "hotkeys/hotkeyrecorder.h"
#include "hotkeys/hotkeyroutenotice.h"
#include "platform/loginitem.h"
#include "settings/updatesettings.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

namespace {

const QString showSearchKey = QStringLiteral("ShowSearch");

// A dimmed, wrapping line under a control that says why it cannot be used.
QLabel *explanation(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setVisible(!text.isEmpty());
    return label;
}

} // namespace

GeneralPane::GeneralPane(Preferences &preferences, MenuStore &store, UpdateSettings &updates, SystemStrings &strings,
                         QWidget *parent)
    : QWidget(parent)
    , m_form(new QFormLayout(this))
{
    m_form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    addLoginRow(strings);

    auto *search = new QCheckBox(strings.text(SystemString::ShowSearch), this);
    const QVariant shown = preferences.value(showSearchKey);
    search->setChecked(!shown.isValid() || shown.toBool());
    connect(search, &QCheckBox::toggled, this, [&preferences](bool on) { preferences.setValue(showSearchKey, on); });
    m_form->addRow(search);

    addUpdateRows(updates, strings);
    addRecentsRows(store, strings);
}

void GeneralPane::addLoginRow(SystemStrings &strings)
{
    auto *login = new QCheckBox(strings.text(SystemString::OpenAtLogin), this);
    const auto reason = LoginItem::unavailableReason();
    auto *why = explanation(reason.value_or(QString()), this);
    login->setChecked(LoginItem(QCoreApplication::applicationFilePath()).isEnabled());
    login->setEnabled(!reason);
    connect(login, &QCheckBox::toggled, this, [login, why](bool on) {
        const auto error = LoginItem(QCoreApplication::applicationFilePath()).setEnabled(on);
        why->setVisible(error.has_value());
        why->setText(error.value_or(QString()));
        if (error) {
            const QSignalBlocker blocker(login);
            login->setChecked(!on);
        }
    });
    m_form->addRow(login);
    m_form->addRow(why);
}

void GeneralPane::addUpdateRows(UpdateSettings &updates, SystemStrings &strings)
{
    if (!updates.isConfigured()) {
        // Nothing to switch: the package manager brings new versions.
        m_form->addRow(explanation(tr("Quillon is updated with the rest of your system, by your distribution."), this));
        return;
    }
    auto *automatic = new QCheckBox(strings.text(SystemString::AutomaticUpdates), this);
    automatic->setChecked(updates.automaticallyChecksForUpdates());
    connect(automatic, &QCheckBox::toggled, this,
            [&updates](bool on) { updates.setAutomaticallyChecksForUpdates(on); });

    QString checkText = strings.text(SystemString::CheckForUpdates);
    auto *check = new QPushButton(checkText + QStringLiteral("…"), this);
    check->setAccessibleName(checkText);
    connect(check, &QPushButton::clicked, this, [&updates] { updates.checkForUpdates(); });

    auto *row = new QHBoxLayout;
    row->addWidget(automatic);
    row->addStretch();
    row->addWidget(check);
    m_form->addRow(row);
}

void GeneralPane::addRecentsRows(MenuStore &store, SystemStrings &strings)
{
    addHeading(strings.text(SystemString::Recents));

    auto *limit = new QSpinBox(this);
    limit->setRange(0, MenuStore::maximumRecents);
    limit->setValue(std::clamp(store.recentsLimit(), 0, MenuStore::maximumRecents));
    limit->setAccessibleName(strings.text(SystemString::NumberOfItems));
    connect(limit, &QSpinBox::valueChanged, &store, &MenuStore::setRecentsLimit);
    connect(&store, &MenuStore::recentsLimitChanged, limit, [limit, &store] {
        const QSignalBlocker blocker(limit);
        limit->setValue(std::clamp(store.recentsLimit(), 0, MenuStore::maximumRecents));
    });
    m_form->addRow(strings.text(SystemString::NumberOfItems), limit);

    auto *clear = new QPushButton(strings.text(SystemString::ClearMenu), this);
    clear->setEnabled(!store.recents().isEmpty());
    connect(clear, &QPushButton::clicked, &store, [&store] { store.setRecents({}); });
    connect(&store, &MenuStore::recentsChanged, clear,
            [clear, &store] { clear->setEnabled(!store.recents().isEmpty()); });
    auto *row = new QHBoxLayout;
    row->addWidget(clear);
    row->addStretch();
    m_form->addRow(row);
}

void GeneralPane::addHeading(const QString &text)
{
    auto *heading = new QLabel(QStringLiteral("<b>%1</b>").arg(text.toHtmlEscaped()), this);
    heading->setAccessibleName(text);
    m_form->addRow(heading);
}

void GeneralPane::addHotKeyRows(HotKeyCenters &hotKeys, SystemStrings &strings)
{
    addHeading(strings.text(SystemString::KeyboardShortcut));
    // A row of its own across the whole pane, so the paragraph wraps at the
    // pane's width rather than being squeezed beside a label.
    m_hotKeyRoute = new HotKeyRouteNotice({&hotKeys.search(), &hotKeys.menu()}, BindingRoute::forSession(), this);
    m_form->addRow(m_hotKeyRoute);
    m_searchHotKey = new HotKeyRecorder(hotKeys.search(), hotKeys.others(hotKeys.search()), this);
    m_menuHotKey = new HotKeyRecorder(hotKeys.menu(), hotKeys.others(hotKeys.menu()), this);
    m_searchHotKey->setAccessibleName(strings.text(SystemString::Search));
    m_menuHotKey->setAccessibleName(strings.text(SystemString::Menu));
    m_form->addRow(strings.text(SystemString::Search), m_searchHotKey);
    m_form->addRow(strings.text(SystemString::Menu), m_menuHotKey);
}

#include "settings/generalpane.h"

#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "config/preferences.h"
#include "platform/loginitem.h"
#include "settings/updatesettings.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QFormLayout>
#include <QLabel>
#include <QSpinBox>

namespace {
const QString showSearchKey = QStringLiteral("ShowSearch");
} // namespace

GeneralPane::GeneralPane(Preferences &preferences, MenuStore &store, UpdateSettings &updates, QWidget *parent)
    : QWidget(parent)
    , m_form(new QFormLayout(this))
{
    SystemStrings &strings = SystemStrings::shared();
    m_form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);

    auto *login = new QCheckBox(strings.text(SystemString::OpenAtLogin), this);
    auto *loginError = new QLabel(this);
    loginError->setWordWrap(true);
    loginError->hide();
    login->setChecked(LoginItem(QCoreApplication::applicationFilePath()).isEnabled());
    connect(login, &QCheckBox::toggled, this, [login, loginError](bool on) {
        const auto error = LoginItem(QCoreApplication::applicationFilePath()).setEnabled(on);
        loginError->setVisible(error.has_value());
        loginError->setText(error.value_or(QString()));
        if (error) {
            const QSignalBlocker blocker(login);
            login->setChecked(!on);
        }
    });
    m_form->addRow(login);
    m_form->addRow(loginError);

    auto *search = new QCheckBox(strings.text(SystemString::ShowSearch), this);
    const QVariant shown = preferences.value(showSearchKey);
    search->setChecked(!shown.isValid() || shown.toBool());
    connect(search, &QCheckBox::toggled, this, [&preferences](bool on) { preferences.setValue(showSearchKey, on); });
    m_form->addRow(search);

    auto *automatic = new QCheckBox(strings.text(SystemString::AutomaticUpdates), this);
    automatic->setChecked(updates.isConfigured() && updates.automaticallyChecksForUpdates());
    automatic->setEnabled(updates.isConfigured());
    connect(automatic, &QCheckBox::toggled, this,
            [&updates](bool on) { updates.setAutomaticallyChecksForUpdates(on); });
    m_form->addRow(automatic);

    auto *recents = new QSpinBox(this);
    recents->setRange(0, MenuStore::maximumRecents);
    recents->setValue(std::clamp(store.recentsLimit(), 0, MenuStore::maximumRecents));
    connect(recents, &QSpinBox::valueChanged, &store, &MenuStore::setRecentsLimit);
    m_form->addRow(strings.text(SystemString::Recents) + QStringLiteral(" – ")
                       + strings.text(SystemString::NumberOfItems),
                   recents);
}

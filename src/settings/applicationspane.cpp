#include "settings/applicationspane.h"

#include "catalog/systemstrings.h"
#include "config/menustore.h"
#include "settings/favoriteappsmodel.h"
#include "sources/contentsources.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QListView>
#include <QSortFilterProxyModel>
#include <QVBoxLayout>

ApplicationsPane::ApplicationsPane(const SettingsServices &services, QWidget *parent)
    : QWidget(parent)
    , m_model(new FavoriteAppsModel(services.store, services.sources.context().scanApps, this))
    , m_filtered(new QSortFilterProxyModel(this))
    , m_show(new QComboBox(this))
    , m_filter(new QLineEdit(this))
    , m_view(new QListView(this))
{
    SystemStrings &strings = services.sources.context().strings;
    MenuStore &store = services.store;

    const QString showTitle = strings.text(SystemString::Show);
    m_show->addItem(strings.text(SystemString::AllApplications), false);
    m_show->addItem(strings.text(SystemString::Favorites), true);
    m_show->setAccessibleName(showTitle);
    m_show->setCurrentIndex(store.showsOnlyFavoriteApps() ? 1 : 0);
    connect(m_show, &QComboBox::currentIndexChanged, &store,
            [this, &store] { store.setShowsOnlyFavoriteApps(m_show->currentData().toBool()); });
    connect(&store, &MenuStore::showsOnlyFavoriteAppsChanged, m_show, [this, &store] {
        const QSignalBlocker blocker(m_show);
        m_show->setCurrentIndex(store.showsOnlyFavoriteApps() ? 1 : 0);
    });

    m_filter->setPlaceholderText(strings.text(SystemString::Search));
    m_filter->setAccessibleName(strings.text(SystemString::Search));
    m_filter->setClearButtonEnabled(true);
    m_filtered->setSourceModel(m_model);
    m_filtered->setFilterCaseSensitivity(Qt::CaseInsensitive);
    connect(m_filter, &QLineEdit::textChanged, m_filtered, &QSortFilterProxyModel::setFilterFixedString);

    m_view->setModel(m_filtered);
    m_view->setAccessibleName(strings.text(SystemString::Favorites));
    m_view->setUniformItemSizes(true);
    m_view->setIconSize(QSize(16, 16));

    auto *form = new QFormLayout;
    form->addRow(showTitle, m_show);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_filter);
    layout->addWidget(m_view);
}

void ApplicationsPane::showEvent(QShowEvent *event)
{
    // The scan waits until someone looks at the tab.
    m_model->load();
    QWidget::showEvent(event);
}

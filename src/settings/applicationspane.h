#pragma once

#include "settings/settingsservices.h"

#include <QWidget>

class FavoriteAppsModel;
class QComboBox;
class QLineEdit;
class QListView;
class QSortFilterProxyModel;

// Which applications the Applications source shows: all of them, or only
// the favourites ticked here.
class ApplicationsPane : public QWidget
{
    Q_OBJECT

public:
    explicit ApplicationsPane(const SettingsServices &services, QWidget *parent = nullptr);

    FavoriteAppsModel *model() const { return m_model; }
    QLineEdit *filter() const { return m_filter; }
    QListView *view() const { return m_view; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    FavoriteAppsModel *m_model;
    QSortFilterProxyModel *m_filtered;
    QComboBox *m_show;
    QLineEdit *m_filter;
    QListView *m_view;
};

#pragma once

#include "catalog/catalogloader.h"

#include <QWidget>

#include <functional>

class QLabel;

// The About window: small, centred and not modal, as desktops' about boxes
// are. The icon, the name, the version, the product's site, and the settings
// catalog in use with why it was chosen, which a bug report needs.
class AboutWindow : public QWidget
{
    Q_OBJECT

public:
    using Open = std::function<void(const QUrl &url)>;

    AboutWindow(const QString &version, const CatalogChoice &catalog, Open open, QWidget *parent = nullptr);

    void present();

private:
    QLabel *smallLine(const QString &text);
};

inline constexpr const char *productSite = "https://quillon.app";

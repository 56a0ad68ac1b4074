#pragma once

#include "app/updatechecker.h"

#include <QWidget>

#include <functional>

class QLabel;
class QPushButton;
class QProgressBar;
class QTextBrowser;

// The small window of a check the user asked for: checking, then the new
// version with its notes and a Download button, "up to date", or the error.
class UpdateWindow : public QWidget
{
    Q_OBJECT

public:
    using Open = std::function<void(const QUrl &url)>;

    UpdateWindow(QString currentVersion, Open open, QWidget *parent = nullptr);

    void showChecking();
    void showResult(const UpdateCheckResult &result);

    // What the window says right now, for tests and diagnostics.
    QString headline() const;

Q_SIGNALS:
    // Closed, or Cancel pressed, while the check was still running.
    void checkCancelled();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void openLink(const QUrl &url);
    void present();

    QString m_currentVersion;
    Open m_open;
    QLabel *m_headline;
    QLabel *m_detail;
    QProgressBar *m_progress;
    QTextBrowser *m_notes;
    QPushButton *m_download;
    QPushButton *m_close;
    QUrl m_downloadURL;
    bool m_checking = false;
};

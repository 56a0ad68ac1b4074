#pragma once

#include "hotkeys/hotkeyrecordermodel.h"

#include <QWidget>

class QLabel;
class QPushButton;
class QToolButton;

// The settings control of one hot key: a button that shows the combination
// and records a new one when clicked, a button that removes it, and what
// went wrong with the last attempt. Where the session lets no program
// have global shortcuts, it offers the desktop's own keyboard settings.
class HotKeyRecorder : public QWidget
{
    Q_OBJECT

public:
    // command: what the desktop should run for this hot key when Quillon
    // cannot register it itself ("quillon --toggle-search").
    HotKeyRecorder(HotKeyCenter &center, QList<HotKeyCenter *> others, const QString &command,
                   QWidget *parent = nullptr);
    ~HotKeyRecorder() override;

    HotKeyRecorderModel &model() { return m_model; }
    QPushButton *recordButton() const { return m_button; }
    QToolButton *clearButton() const { return m_clear; }
    QLabel *warning() const { return m_warning; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void toggleRecording();
    void refresh();
    void updateDesktopOffer();
    void addToDesktop();
    void removeFromDesktop();

    HotKeyRecorderModel m_model;
    QString m_command;
    QPushButton *m_button;
    QToolButton *m_clear;
    QLabel *m_warning;
    QLabel *m_hint;
    QPushButton *m_addToDesktop;
    QPushButton *m_removeFromDesktop;
};

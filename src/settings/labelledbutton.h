#pragma once

#include <QString>

class QToolButton;
class QWidget;

// A tool button showing its label, which is also its name for screen
// readers: as wide as its text, so rows of them fit a narrow window, and
// reachable with Tab.
QToolButton *labelledButton(const QString &title, QWidget *parent, const QString &iconName = {});
